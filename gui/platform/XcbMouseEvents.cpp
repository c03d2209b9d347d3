// SPDX-License-Identifier: GPL-3.0-or-later
// The mouse's part of the dispatcher.
#include "gui/controls/MWindows.h"
#include "gui/platform/XcbEventDispatcher.h"

namespace
{
constexpr std::uint16_t Buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;

// Of the server's 1 left, 2 middle, 3 right.
MEventCode PressOf(xcb_button_t button)
{
    return button == 1 ? MEventCode::LeftDown : button == 2 ? MEventCode::MiddleDown : MEventCode::RightDown;
}

MEventCode ReleaseOf(xcb_button_t button)
{
    return static_cast<MEventCode>(static_cast<std::int32_t>(PressOf(button)) + 3);
}

std::uint16_t MaskOf(xcb_button_t button)
{
    return static_cast<std::uint16_t>(XCB_BUTTON_MASK_1 << (button - 1));
}
}   // namespace

// A captured mouse belongs to one window, wherever it is; the server alone doesn't do that while a pop-up
// is open.
XcbEventDispatcher::Spot XcbEventDispatcher::SpotOf(xcb_window_t id, MPoint inside, MPoint onScreen) const
{
    XcbWindow* captured = session.grab.Capturing();
    if (captured == nullptr || captured->Id() == id)
        return { session.windows.Find(id), inside.x, inside.y };
    const MRectangle area = captured->ScreenRectangle();
    return { captured, onScreen.x - area.left, onScreen.y - area.top };
}

void XcbEventDispatcher::SendMouse(const Spot& spot, MEventCode code, std::uint8_t modifiers,
                                   std::int32_t key) const
{
    if (spot.window == nullptr)
        return;
    MControlEvent event;
    event.code = code;
    event.x = spot.x;
    event.y = spot.y;
    event.modifiers = modifiers;
    event.key = key;
    spot.window->Root().MouseMessage(event);
}

void XcbEventDispatcher::OnPress(const xcb_button_press_event_t& event)
{
    session.display.NoteTime(event.time);
    if (event.detail >= 4)
        return OnWheel(event);
    session.grab.NoteButtons(true);
    const XcbWindow* pressed = session.windows.Find(event.event);
    if (pressed == nullptr || session.dragSource.IsDragging())
        return;
    // While a pop-up is open it gets the presses in other programs' windows.
    const bool isOutside = event.event == session.grab.PopUp() &&
                           !MRectangle::OfSize(0, 0, pressed->Size().width, pressed->Size().height)
                                .Contains(event.event_x, event.event_y);
    if (MWindows::Get()->ClosePopUps(isOutside ? nullptr : &pressed->Root()) || isOutside)
        return;
    const Spot spot = SpotOf(event.event, { event.event_x, event.event_y }, { event.root_x, event.root_y });
    if (spot.window == nullptr)
        return;
    MControlEvent press;
    press.code = PressOf(event.detail);
    press.x = spot.x;
    press.y = spot.y;
    press.modifiers =
        XcbKeyboard::ModifiersOf(static_cast<std::uint16_t>(event.state | MaskOf(event.detail)));
    spot.window->Root().PressMessage(press, event.time);
}

// Buttons 4 to 7 are a notch up, down, left or right. Sideways is what a wheel with Shift means.
void XcbEventDispatcher::OnWheel(const xcb_button_press_event_t& event)
{
    constexpr std::int32_t notch = 120;
    if (event.detail > 7)
        return;
    std::uint8_t modifiers = XcbKeyboard::ModifiersOf(event.state);
    if (event.detail > 5)
        modifiers |= ModifierShift;
    SendMouse(SpotOf(event.event, { event.event_x, event.event_y }, { event.root_x, event.root_y }),
              MEventCode::Wheel, modifiers, event.detail % 2 == 0 ? notch : -notch);
}

void XcbEventDispatcher::OnRelease(const xcb_button_release_event_t& event)
{
    session.display.NoteTime(event.time);
    if (event.detail >= 4)
        return;
    const auto left = static_cast<std::uint16_t>(event.state & ~MaskOf(event.detail));
    session.grab.NoteButtons((left & Buttons) != 0);
    if (session.dragSource.IsDragging())
    {
        session.dragSource.Release();
        UpdateDragCursor();
        return;
    }
    SendMouse(SpotOf(event.event, { event.event_x, event.event_y }, { event.root_x, event.root_y }),
              ReleaseOf(event.detail), XcbKeyboard::ModifiersOf(left));
}

void XcbEventDispatcher::OnMotion(const xcb_motion_notify_event_t& event)
{
    session.display.NoteTime(event.time);
    if (session.dragSource.IsDragging())
    {
        session.dragSource.Move({ event.root_x, event.root_y });
        return;
    }
    SendMouse(SpotOf(event.event, { event.event_x, event.event_y }, { event.root_x, event.root_y }),
              MEventCode::Move, XcbKeyboard::ModifiersOf(event.state));
}

void XcbEventDispatcher::OnEnter(const xcb_enter_notify_event_t& event)
{
    session.display.NoteTime(event.time);
    if (event.mode == XCB_NOTIFY_MODE_GRAB || session.dragSource.IsDragging())
        return;
    SendMouse(SpotOf(event.event, { event.event_x, event.event_y }, { event.root_x, event.root_y }),
              MEventCode::Move, XcbKeyboard::ModifiersOf(event.state));
}

void XcbEventDispatcher::OnLeave(const xcb_leave_notify_event_t& event)
{
    session.display.NoteTime(event.time);
    XcbWindow* window = session.windows.Find(event.event);
    // With a button held the mouse is still the window's.
    if (window != nullptr && (event.state & Buttons) == 0 && event.mode != XCB_NOTIFY_MODE_GRAB)
        window->Root().LeaveMessage();
}

void XcbEventDispatcher::UpdateDragCursor()
{
    XcbWindow* window = session.windows.Find(session.dragSource.Window());
    if (window == nullptr || !session.dragSource.IsDragging())
        return;
    window->SetCursor(
        session.cursors.Get(session.dragSource.IsAccepted() ? MStdCursor::Copy : MStdCursor::Forbidden));
}
