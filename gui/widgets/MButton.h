// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MControl.h"

/// Something to press: with text, with an icon, or with both. Clicks are told by Clicks().OnLeftClick(), also
/// when a key presses it: Enter and Space.
class MButton : public MControl
{
public:
    MButton();

    /// A toggle shows a lamp while it is on.
    void SetOn(bool nowOn);
    bool IsOn() const { return on; }
    /// What Enter presses in its window; one in each.
    void SetPrimary(bool nowPrimary);
    void SetIcon(MStdIcon shown);
    /// A second, quieter line.
    void SetSecondLine(const MString& text);
    /// DrawLearning, DrawSource or DrawTarget while it waits or measures; 0 otherwise.
    void SetGlow(std::uint16_t state);
    /// As if it had been clicked.
    void Press();

    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    std::uint16_t GetDrawState() const override;
    bool OnEvent(const MControlEvent& event) override;

    bool isToggle = false;   ///< a click switches it on or off by itself
    MPlacement alignment = MPlacement::Middle;
    MStdColor iconColor = MStdColor::Icon;

protected:
    MSize ContentMinimum() const override;
    void Realize() override;
    /// A click, before it is told.
    virtual void OnPressed();
    virtual void PaintContent(MDrawer& drawer, const MRectangle& area, std::uint16_t state);

    MStdIcon icon = MStdIcon::None;
    MString secondLine;

private:
    std::uint16_t glow = 0;
    bool on = false;
    bool primary = false;
    bool keyDown = false;
};
