// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/fields/MScrollBar.h"
#include "gui/widgets/MStaticMultiLine.h"
#include "gui/windows/MDialog.h"

/// Shows a marked-up text, which can be scrolled.
class MHelpWindow : public MDialog
{
public:
    MHelpWindow();
    void SetHelp(const MString& name, const MString& markup);
    bool OnEvent(const MControlEvent& event) override;

protected:
    void OnPlaced() override;

private:
    void OnScroll(const MOnNotifyParams& params);

    MControl* view = nullptr;
    MStaticMultiLine* text = nullptr;
    MScrollBar* bar = nullptr;
};
