// SPDX-License-Identifier: GPL-3.0-or-later
// How a control takes part in events, and how it is painted.
#include "gui/controls/EventRouting.h"
#include "gui/controls/MWindow.h"

bool MControl::SendEvent(const MControlEvent& event)
{
    return EventRouting::Send(*this, event);
}

MControl* MControl::ChildAt(std::int32_t x, std::int32_t y) const
{
    return EventRouting::ChildAt(*this, x, y);
}

bool MControl::OnEvent(const MControlEvent& event)
{
    MWindow* window = Window();
    if (window == nullptr || (event.code != MEventCode::KeyDown && event.code != MEventCode::KeyUp))
        return false;
    const bool moves = event.key == MKey::Tab || (event.key >= MKey::Left && event.key <= MKey::Down);
    if (event.Has(ModifierCtrl) || event.Has(ModifierAlt) || (!moves && event.key != MKey::Escape))
        return false;
    if (event.key == MKey::Escape)
    {
        if (!window->closesOnEscape)
            return false;
        if (event.code == MEventCode::KeyDown)
            window->RequestClose();
        return true;
    }
    if (event.code == MEventCode::KeyDown)
    {
        const bool back = event.key == MKey::Tab ? event.Has(ModifierShift)
                                                 : event.key == MKey::Left || event.key == MKey::Up;
        window->MoveFocus(!back);
    }
    return true;
}

bool MControl::PreviewEvent(MControl*, const MControlEvent&)
{
    return false;
}

void MControl::OnMouseEnter()
{
    Invalidate();
}

void MControl::OnMouseLeave()
{
    Invalidate();
}

MStdCursor MControl::GetCursor(std::int32_t x, std::int32_t y) const
{
    if (cursor != MStdCursor::Inherited)
        return cursor;
    if (parentControl == nullptr)
        return MStdCursor::Arrow;
    return parentControl->GetCursor(x + absolute[0] - parentControl->absolute[0],
                                    y + absolute[1] - parentControl->absolute[1]);
}

void MControl::SetFocus()
{
    if (MWindow* window = Window())
        window->SetFocusOwner(this);
}

bool MControl::HasFocus() const
{
    const MWindow* window = Window();
    return window != nullptr && window->FocusOwner() == this;
}

void MControl::Capture()
{
    if (MWindow* window = Window())
        window->SetCaptureOwner(this);
}

void MControl::ReleaseCapture()
{
    if (MWindow* window = Window(); window != nullptr && window->CaptureOwner() == this)
        window->SetCaptureOwner(nullptr);
}

bool MControl::HasCapture() const
{
    const MWindow* window = Window();
    return window != nullptr && window->CaptureOwner() == this;
}

void MControl::Invalidate()
{
    Invalidate(OwnRectangle());
}

void MControl::Invalidate(const MRectangle& part)
{
    MWindow* window = Window();
    if (window == nullptr || !IsShown())
        return;
    const MRectangle seen = VisibleRectangle().Intersection(part);
    if (!seen.IsEmpty())
        window->InvalidateArea(seen.Moved(absolute[0], absolute[1]));
}

void MControl::Paint(MDrawer& drawer)
{
    if (MStyle* used = Style())
        used->Paint(*this, drawer);
}

std::uint16_t MControl::GetDrawState() const
{
    std::uint16_t state = shownState;
    if (IsUsable())
        state |= DrawEnabled;
    // Dragged out, it would do nothing if it were released.
    if (hovered && pressed == 0)
        state |= DrawHovered;
    if (hovered && pressed != 0)
        state |= DrawPressed;
    if (HasFocus())
        state |= DrawFocused;
    return state;
}
