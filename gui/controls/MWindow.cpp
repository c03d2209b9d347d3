// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MWindow.h"

#include <algorithm>

#include "gui/controls/MWindows.h"

namespace
{
MWindowSystem* Platform()
{
    MWindows* windows = MWindows::Get();
    return windows != nullptr ? &windows->Platform() : nullptr;
}

template <typename Visit>
void EachBelow(MControl& control, const Visit& visit)
{
    visit(control);
    for (const auto& child : control.Children())
        if (child->IsVisible() && child->IsEnabled())
            EachBelow(*child, visit);
}
}   // namespace

MWindow::MWindow()
{
    controlType = MControlType::Window;
}

MWindow::~MWindow()
{
    Close();
    layouts.clear();
    children.clear();
}

void MWindow::Open(MWindowSystem::Kind kind, MWindow* owner)
{
    if (open)
        return;
    MWindowSystem& platform = *Platform();
    platform.Initialize();
    Start(kind, owner, owner != nullptr ? platform.GetHandle(*owner) : 0);
    const MPoint corner = FirstPlace(owner);
    platform.ShowAt(*this, MRectangle::OfSize(corner.x, corner.y, Width(), Height()));
    if (kind != MWindowSystem::Kind::PopUp)
        platform.Activate(*this);
}

void MWindow::AttachToParent(MWindowSystem::Handle hostWindow)
{
    if (open)
        return;
    Platform()->Initialize();
    Start(MWindowSystem::Kind::Child, nullptr, hostWindow);
    attached = true;
    Platform()->Show(*this);
}

void MWindow::Start(MWindowSystem::Kind kind, MWindow* owner, MWindowSystem::Handle handle)
{
    GoLive();
    platformSize = askedSize = { Width(), Height() };
    const std::uint8_t stretch = GetStretch();
    resizableX = resizableX && (stretch & 1) != 0;
    resizableY = resizableY && (stretch & 2) != 0;
    MWindowSystem& platform = *Platform();
    platform.CreateWindow(*this, kind, handle);
    ownerWindow = owner;
    open = true;
    MWindows::Get()->Add(*this);
    platform.SetTitle(*this, caption);
    platform.SetSizeLimits(*this, MinimalSize(Axis::X), MinimalSize(Axis::Y), resizableX ? maxWidth : Width(),
                           resizableY ? maxHeight : Height());
    Invalidate();
    OnOpened();
}

MPoint MWindow::FirstPlace(MWindow* owner)
{
    const MWindowSystem& platform = *Platform();
    if (owner == nullptr && !movesToScreenCentre)
        return { X(), Y() };
    const MPoint pointer = platform.GetCursorScreen();
    MRectangle around = platform.GetWorkArea(pointer.x, pointer.y);
    if (owner != nullptr && !movesToScreenCentre)
    {
        const MRectangle over = platform.GetScreenRect(*owner);
        around = platform.GetWorkArea((over.left + over.right) / 2, (over.top + over.bottom) / 2);
        // A place of its own counts, as far as the screen has it.
        const bool placed = X() != 0 || Y() != 0;
        const MPoint wished = placed ? MPoint{ X(), Y() }
                                     : MPoint{ over.left + (over.Width() - Width()) / 2,
                                               over.top + (over.Height() - Height()) / 2 };
        return { std::clamp(wished.x, around.left, std::max(around.left, around.right + 1 - Width())),
                 std::clamp(wished.y, around.top, std::max(around.top, around.bottom + 1 - Height())) };
    }
    return { around.left + std::max(0, (around.Width() - Width()) / 2),
             around.top + std::max(0, (around.Height() - Height()) / 2) };
}

void MWindow::Detach()
{
    Close();
}

void MWindow::Close()
{
    if (!open)
        return;
    open = false;
    OnClosing();
    Withdraw(*this);
    MWindows& windows = *MWindows::Get();
    // Whoever is above goes first: nothing may point down into a closed window.
    for (MWindow* each : std::vector<MWindow*>(windows.OpenWindows()))
        if (each->ownerWindow == this)
            each->Close();
    MWindow* freed = ownerWindow != nullptr && ownerWindow->blocker == this ? ownerWindow : nullptr;
    if (freed != nullptr)
        freed->blocker = nullptr;
    ownerWindow = nullptr;
    modal = false;
    attached = false;
    windows.Platform().DestroyWindow(*this);
    windows.Remove(*this);
    if (freed != nullptr && freed->open)
        windows.Platform().Activate(*freed);
    picture = MBitmap();
    MOnWindowCloseParams params;
    params.source = this;
    params.result = modalResult;
    closed.Post(GlobalEventProcessor(), params);
}

bool MWindow::RequestClose(std::int32_t result)
{
    if (!open || !CanClose())
        return false;
    modalResult = result;
    Close();
    return true;
}

void MWindow::OpenModal(MWindow* owner)
{
    modalResult = 0;
    Open(MWindowSystem::Kind::Dialog, owner);
    modal = true;
    ownerWindow = owner;
    if (owner == nullptr)
        return;
    owner->SetCaptureOwner(nullptr);
    owner->SetHover(nullptr);
    owner->blocker = this;
}

std::int32_t MWindow::ShowModal(MWindow* owner)
{
    OpenModal(owner);
    MWindowSystem& platform = *Platform();
    while (open && modalResult == 0 && platform.WaitForMessages(-1))
    {
    }
    const std::int32_t result = modalResult;
    Close();
    return result;
}

void MWindow::EndModal(std::int32_t result)
{
    modalResult = result;
    Close();
}

MWindow* MWindow::BlockedBy() const
{
    MWindow* innermost = blocker;
    while (innermost != nullptr && innermost->blocker != nullptr)
        innermost = innermost->blocker;
    return innermost;
}

void MWindow::SetFocusOwner(MControl* control)
{
    if (control == focusOwner || (control != nullptr && (!control->IsShown() || !control->IsUsable())))
        return;
    MControl* before = focusOwner;
    for (MControl* each = before; each != nullptr; each = each->parentControl)
        each->focusChild = nullptr;
    focusOwner = control;
    for (MControl* each = control; each != nullptr && each->parentControl != nullptr;
         each = each->parentControl)
        each->parentControl->focusChild = each;
    MControlEvent event;
    event.code = MEventCode::Focus;
    if (before != nullptr)
    {
        event.otherControl = control;
        before->Invalidate();
        before->SendEvent(event);
    }
    // Nobody needs keys any more: they are the host's again.
    if (control == nullptr && focusOwner == nullptr && open)
        Platform()->ReturnKeyboard(*this);
    // Losing it, the other may have handed it on.
    if (control != nullptr && focusOwner == control)
    {
        event.focused = true;
        event.otherControl = before;
        control->Invalidate();
        control->SendEvent(event);
        if (open)
            Platform()->TakeKeyboard(*this);
    }
}

void MWindow::ReturnKeyboard()
{
    if (open && attached)
        Platform()->ReturnKeyboard(*this);
}

void MWindow::MoveFocus(bool forward)
{
    std::vector<MControl*> stops;
    EachBelow(*this,
              [&stops](MControl& each)
              {
                  if (each.tabStop)
                      stops.push_back(&each);
              });
    if (stops.empty())
        return;
    const auto present = std::find(stops.begin(), stops.end(), focusOwner);
    std::size_t next = forward ? 0 : stops.size() - 1;
    if (present != stops.end())
    {
        const auto at = static_cast<std::size_t>(present - stops.begin());
        next = (at + (forward ? 1 : stops.size() - 1)) % stops.size();
    }
    SetFocusRing(true);
    SetFocusOwner(stops[next]);
}

void MWindow::SetFocusRing(bool shows)
{
    if (showsFocusRing == shows)
        return;
    showsFocusRing = shows;
    if (focusOwner != nullptr)
        focusOwner->Invalidate();
}

MRectangle MWindow::FocusRing() const
{
    if (!showsFocusRing || focusOwner == nullptr || !focusOwner->IsShown() || Style() == nullptr ||
        focusOwner->VisibleRectangle().IsEmpty())
        return {};
    const std::int32_t reach = Style()->FocusRingReach();
    return focusOwner->AbsoluteRectangle().Inset(-reach, -reach);
}

void MWindow::SetCaptureOwner(MControl* control)
{
    if (captureOwner == control)
        return;
    MControl* before = captureOwner;
    captureOwner = control;
    if (before != nullptr)
        before->OnCaptureEnd();
    if (!open || captureOwner != control)
        return;
    if (control != nullptr)
        Platform()->SetCapture(*this);
    else
        Platform()->ReleaseCapture(*this);
}

void MWindow::SetTimer(MControl& control, std::int32_t milliseconds)
{
    MWindows* windows = MWindows::Get();
    if (windows != nullptr)
        windows->Timers().Set(control, milliseconds, windows->Platform().GetTime());
}

void MWindow::Forget(const MControl& leaving)
{
    const auto below = [&leaving](const MControl* each)
    {
        return each != nullptr && leaving.IsAncestorOf(*each);
    };
    if (below(focusOwner))
    {
        for (MControl* each = focusOwner; each != nullptr; each = each->parentControl)
            each->focusChild = nullptr;
        focusOwner = nullptr;
    }
    if (below(captureOwner))
    {
        captureOwner = nullptr;
        if (open)
            Platform()->ReleaseCapture(*this);
    }
    // What is left of the way is hovered still.
    while (below(hoverLeaf))
        hoverLeaf = hoverLeaf->parentControl;
    if (below(dropTarget))
        dropTarget = nullptr;
    std::erase_if(globalKeyHandlers, below);
    if (MWindows* windows = MWindows::Get())
        windows->Forget(leaving);
}

void MWindow::Withdraw(const MControl& control)
{
    const auto below = [&control](const MControl* each)
    {
        return each != nullptr && control.IsAncestorOf(*each);
    };
    if (below(captureOwner))
    {
        captureOwner->pressed = 0;
        SetCaptureOwner(nullptr);
    }
    if (below(focusOwner))
        SetFocusOwner(nullptr);
    // What is disabled still shows why.
    if (below(hoverLeaf) && !control.IsShown())
        SetHover(control.parentControl);
    dragging = false;
}

void MWindow::AskForSize()
{
    const MSize wanted{ Width(), Height() };
    if (!open || wanted == platformSize || wanted == askedSize)
        return;
    askedSize = wanted;
    MWindowSystem& platform = *Platform();
    platform.SetSizeLimits(*this, MinimalSize(Axis::X), MinimalSize(Axis::Y), resizableX ? maxWidth : Width(),
                           resizableY ? maxHeight : Height());
    if (requestSize == nullptr || !requestSize(wanted.width, wanted.height))
        platform.SetSizeOnly(*this, wanted.width, wanted.height);
}
