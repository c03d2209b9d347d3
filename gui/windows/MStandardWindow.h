// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "gui/controls/MWindow.h"
#include "gui/windows/MTooltip.h"

/// A window that tells of the control under the mouse after a moment of rest, and opens its help with F1.
class MStandardWindow : public MWindow
{
public:
    static constexpr std::int32_t TooltipMilliseconds = 600;

    ~MStandardWindow() override;

    void OnHoverChanged() override;
    bool PreviewEvent(MControl* child, const MControlEvent& event) override;
    void OnTimer() override;
    void ShowHelp(MControl& control) override;
    bool IsTooltipShown() const { return tooltip.IsOpen(); }

protected:
    void OnClosing() override;

private:
    /// The control whose help is told at another one: itself, or an ancestor. Null: there is none.
    static const MControl* ToldFor(const MControl* control);

    MTooltip tooltip;
    std::unique_ptr<MWindow> helpWindow;
};
