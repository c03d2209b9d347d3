// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MWindow.h"
#include "gui/widgets/MStaticMultiLine.h"

/// A note on a control, near the pointer. It takes neither mouse nor keyboard.
class MTooltip : public MWindow
{
public:
    MTooltip();
    ~MTooltip() override;

    /// @param name  above the text, may be empty
    /// @param markup  may be empty
    /// @param near  in the owner's places, what it must not cover
    void ShowFor(MWindow& owner, const MString& name, const MString& markup, const MRectangle& near);
    void Paint(MDrawer& drawer) override;

private:
    MStaticMultiLine* text = nullptr;
};
