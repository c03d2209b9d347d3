// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MRepeaterButton.h"

#include "gui/controls/MWindow.h"

bool MRepeaterButton::OnEvent(const MControlEvent& event)
{
    MWindow* window = Window();
    if (window != nullptr && event.code == MEventCode::LeftDown)
        window->SetTimer(*this, FirstMilliseconds);
    return MButton::OnEvent(event);
}

void MRepeaterButton::OnTimer()
{
    MWindow* window = Window();
    if (window == nullptr)
        return;
    window->SetTimer(*this, IsPressed() ? NextMilliseconds : 0);
    // Dragged out, it pauses.
    if (IsPressed() && IsHovered())
        Press();
}

void MRepeaterButton::OnCaptureEnd()
{
    if (MWindow* window = Window())
        window->SetTimer(*this, 0);
}
