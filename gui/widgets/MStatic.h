// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MControl.h"

/// A line of text.
class MStatic : public MControl
{
public:
    MStatic();

    void SetText(const MString& text);
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;

    MPlacement alignment = MPlacement::Begin;
    MStdColor color = MStdColor::Text2;

protected:
    MSize ContentMinimum() const override;

    bool keepsWidth = false;   // cut where it doesn't fit, instead of asking for its width
};
