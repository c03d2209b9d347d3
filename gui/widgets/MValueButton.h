// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/widgets/MControlValue.h"

/// A button that is on while its value is not at its first step; each press takes the next.
class MValueButton : public MControlValue
{
public:
    MValueButton();
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    std::uint16_t GetDrawState() const override;
    bool OnEvent(const MControlEvent& event) override;

    MStdIcon icon = MStdIcon::None;

protected:
    MSize ContentMinimum() const override;
    MRectangle TypingArea() const override { return {}; }

private:
    void Next();
};
