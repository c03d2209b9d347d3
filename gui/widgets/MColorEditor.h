// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "gui/controls/MControl.h"

class MEdit;

/// Chooses a colour: a field of saturation and brightness, a bar of hues, a bar of alpha, and the eight
/// digits, red first.
class MColorEditor : public MControl
{
public:
    MColorEditor();

    MColor Color() const;
    /// From outside: no event.
    void SetColor(MColor color);
    MCallback<MOnNotifyParams>& OnColor() { return changed; }

    /// "value": eight hexadecimal digits.
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;

    /// RRGGBBAA.
    static MString TextOf(MColor color);
    /// Six or eight digits; false leaves the colour.
    static bool ColorOf(const MString& text, MColor& color);

protected:
    MSize ContentMinimum() const override;
    void OnPlaced() override;

private:
    enum class Part
    {
        None,
        Field,
        Hue,
        Alpha
    };

    MRectangle AreaOf(Part part) const;
    void Follow(const MControlEvent& event);
    void Changed();
    void OnText(const MOnClickParams& params);

    MCallback<MOnNotifyParams> changed;
    MEdit* digits = nullptr;
    double hue = 0;   // 0 to 1
    double saturation = 0;
    double brightness = 1;
    std::uint8_t alpha = 255;
    Part held = Part::None;
};
