// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MStandardWindow.h"

#include "gui/windows/MHelpWindow.h"

MStandardWindow::~MStandardWindow()
{
    Close();
}

const MControl* MStandardWindow::ToldFor(const MControl* control)
{
    while (control != nullptr && (control->usesParentHelp || control->help.IsEmpty() || !control->showsHelp))
        control = control->usesParentHelp || control->help.IsEmpty() ? control->Parent() : nullptr;
    return control;
}

void MStandardWindow::OnHoverChanged()
{
    tooltip.Close();
    SetTimer(*this, ToldFor(HoverLeaf()) != nullptr ? TooltipMilliseconds : 0);
}

bool MStandardWindow::PreviewEvent(MControl* child, const MControlEvent& event)
{
    if (event.code == MEventCode::Move)
    {
        if (!tooltip.IsOpen() && ToldFor(HoverLeaf()) != nullptr)
            SetTimer(*this, TooltipMilliseconds);
    }
    else if (event.code != MEventCode::KeyUp)
    {
        tooltip.Close();
        SetTimer(*this, 0);
    }
    return MWindow::PreviewEvent(child, event);
}

void MStandardWindow::OnTimer()
{
    SetTimer(*this, 0);
    const MControl* told = ToldFor(HoverLeaf());
    if (told != nullptr && told != this && IsOpen() && CaptureOwner() == nullptr && BlockedBy() == nullptr)
        tooltip.ShowFor(*this, told->caption, told->help, told->AbsoluteRectangle());
}

void MStandardWindow::ShowHelp(MControl& control)
{
    const MControl* told = ToldFor(&control);
    if (told == nullptr)
        return;
    tooltip.Close();
    auto opened = std::make_unique<MHelpWindow>();
    opened->SetStyle(Style());
    opened->SetHelp(told->caption, told->help);
    helpWindow = std::move(opened);
    helpWindow->Open(MWindowSystem::Kind::Dialog, this);
}

void MStandardWindow::OnClosing()
{
    SetTimer(*this, 0);
    tooltip.Close();
    if (helpWindow != nullptr)
        helpWindow->Close();
}
