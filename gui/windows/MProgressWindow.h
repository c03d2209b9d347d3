// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/widgets/MButton.h"
#include "gui/widgets/MProgressBar.h"
#include "gui/widgets/MStatic.h"
#include "gui/windows/MDialog.h"

/// Shows how far something long has come, and lets it be cancelled.
class MProgressWindow : public MDialog
{
public:
    explicit MProgressWindow(const MString& title);

    /// @param share  0 to 1
    void SetProgress(const MString& step, double share);
    void SetTitle(const MString& title);
    /// The user has pressed "Cancel", closed the window or pressed Escape. It stays open, "Finishing...",
    /// until whoever works closes it.
    bool IsCancelled() const { return cancelled; }
    bool CanClose() override;

protected:
    void Realize() override;
    bool Accept(MModalValue) override;

private:
    void Cancel();

    MStatic* step = nullptr;
    MStatic* percentage = nullptr;
    MProgressBar* bar = nullptr;
    MButton* canceller = nullptr;
    bool cancelled = false;
};
