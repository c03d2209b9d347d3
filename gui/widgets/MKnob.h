// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/widgets/MControlValue.h"

/// A knob with its label above and its value below.
class MKnob : public MControlValue
{
public:
    MKnob();
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;

protected:
    MSize ContentMinimum() const override;
    MRectangle TypingArea() const override;
    MStdFont ValueFont() const override { return MStdFont::SmallValue; }

private:
    struct Parts
    {
        MRectangle label;
        MRectangle knob;
        MRectangle value;
    };
    Parts Places() const;

    double diameter = 42;   // units
};

/// A knob by itself, as small as its place.
class MRotator : public MControlValue
{
public:
    MRotator();
    void Paint(MDrawer& drawer) override;

protected:
    MSize ContentMinimum() const override;
    MRectangle TypingArea() const override { return {}; }
};
