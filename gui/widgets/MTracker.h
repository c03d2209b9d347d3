// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/widgets/MControlValue.h"

/// A slider. As a row it has its label at the left and its value in a field at the right; compact it has
/// label, value and track below each other; bare it is the track alone, upright where it is higher than wide.
class MTracker : public MControlValue
{
public:
    enum class Form : std::int32_t
    {
        Row,
        Compact,
        Bare
    };

    MTracker();
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;

    Form form = Form::Row;

protected:
    MSize ContentMinimum() const override;
    MRectangle TypingArea() const override;
    double PositionAt(std::int32_t x, std::int32_t y) const override;
    double DragLength() const override;

private:
    struct Parts
    {
        MRectangle label;
        MRectangle track;
        MRectangle value;
    };
    Parts Places() const;
    Axis Along() const { return form == Form::Bare && Height() > Width() ? Axis::Y : Axis::X; }
};

template <>
struct MEnumLabels<MTracker::Form>
{
    static constexpr const char* Labels[] = { "row", "compact", "bare" };
};
