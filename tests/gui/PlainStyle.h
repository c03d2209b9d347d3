// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MControl.h"

/// A style for tests that look at places and events: everything is a flat rectangle.
class PlainStyle : public MStyle
{
public:
    MColor GetColor(std::int32_t index) const override
    {
        return MColor(0xFF000000u + static_cast<std::uint32_t>(index) * 0x010307u);
    }
    /// Inter as the system has it, the same in every role.
    MFont& GetFont(std::int32_t) const override
    {
        if (!fontLoaded)
        {
            font.height = 11;
            font.Load("/usr/share/fonts/opentype/inter/Inter-Regular.otf");
            fontLoaded = true;
        }
        return font;
    }
    std::int32_t GetSpacing(std::int32_t) const override { return gap; }
    double GetScale() const override { return 1; }
    Frame GetFrame(const MControl&) const override { return {}; }
    MSize GetMinimalSize(const MControl&) const override { return {}; }
    MSize GetDefaultSize(MControlType) const override { return { 20, 20 }; }
    void Paint(MControl& control, MDrawer& drawer) override
    {
        if (control.controlType == MControlType::Window)
            PaintFace(drawer, control.OwnRectangle(), control.controlType, 0);
    }
    void PaintFace(MDrawer& drawer, const MRectangle& area, MControlType, std::uint16_t) const override
    {
        drawer.FillRectangle(area, MColor(40, 40, 40));
    }
    void PaintFocusRing(MDrawer& drawer, const MRectangle& control) const override
    {
        drawer.Rectangle(control.Inset(-FocusRingReach(), -FocusRingReach()), RingColor);
    }
    std::int32_t FocusRingReach() const override { return 2; }
    void PaintIcon(MDrawer&, const MRectangle&, MStdIcon, MColor) const override {}
    MSize IconSize(MStdIcon) const override { return { 14, 14 }; }
    void PaintCheckBox(MDrawer&, const MRectangle&, MCheckBoxState, std::uint16_t) const override {}
    void PaintRadioButton(MDrawer&, const MRectangle&, std::uint16_t) const override {}
    void PaintKnob(MDrawer&, const MRectangle&, const ValueLook&, std::uint16_t) const override {}
    void PaintTracker(MDrawer&, const MRectangle&, Axis, const ValueLook&, std::uint16_t) const override {}
    void PaintProgress(MDrawer&, const MRectangle&, double) const override {}
    void PaintScrollBar(MDrawer&, const MRectangle&, const MRectangle&, Axis, std::uint16_t) const override {}
    void PaintItem(MDrawer&, const MRectangle&, MControlType, std::uint16_t) const override {}
    void PaintTab(MDrawer&, const MRectangle&, std::uint16_t) const override {}
    void PaintShadow(MDrawer&, const MRectangle&) const override {}
    std::int32_t ShadowReach() const override { return 0; }
    const MBitmap* GetBitmap(MStdBitmap) const override { return nullptr; }
    const MBitmap* FindBitmap(const MString&) const override { return nullptr; }

    static constexpr MColor RingColor{ 250, 240, 20 };
    std::int32_t gap = 0;

private:
    mutable MFont font;
    mutable bool fontLoaded = false;
};
