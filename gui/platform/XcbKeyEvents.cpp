// SPDX-License-Identifier: GPL-3.0-or-later
// The keyboard's part of the dispatcher.
#include <algorithm>

#include "gui/controls/MWindows.h"
#include "gui/platform/XcbEventDispatcher.h"

void XcbEventDispatcher::OnKey(const xcb_key_press_event_t& event, bool isDown)
{
    session.display.NoteTime(event.time);
    XcbWindow* window = session.windows.Find(event.event);
    if (window == nullptr)
        return;
    const bool isChild = window->WindowKind() == MWindowSystem::Kind::Child;
    const bool wasSent = (event.response_type & 0x80) != 0;
    const HandedKey key{ event.time, event.detail, static_cast<std::uint8_t>(event.response_type & 0x7F) };
    if (wasSent && std::find(handedKeys.begin(), handedKeys.end(), key) != handedKeys.end())
        return;
    // The server gives a window the keys of the one around it while the pointer is inside. They are the
    // host's.
    if (isChild && !window->HasKeyboard())
        return HandOn(*window, event);
    const bool taken = SendKey(event.event, event, isDown);
    window = session.windows.Find(event.event);
    if (!taken && isChild && window != nullptr)
        HandOn(*window, event);
}

bool XcbEventDispatcher::SendKey(xcb_window_t id, const xcb_key_press_event_t& event, bool isDown)
{
    XcbKeyboard::Meaning meaning;
    if (isDown)
        meaning = session.keyboard.Press(event.detail, event.state);
    else
        meaning.key = session.keyboard.Release(event.detail, event.state);
    MControlEvent told;
    told.modifiers = XcbKeyboard::ModifiersOf(event.state);
    told.x = event.event_x;
    told.y = event.event_y;
    if (isDown && meaning.key == MKey::Escape && session.dragSource.IsDragging())
    {
        session.dragSource.Cancel();
        return true;
    }

    bool taken = !isDown && takenKeys[event.detail];
    const auto send = [&]
    {
        if (XcbWindow* window = session.windows.Find(id))
            taken = window->Root().KeyMessage(told) || taken;
    };
    told.key = meaning.key;
    told.code = isDown ? MEventCode::KeyDown : MEventCode::KeyUp;
    if (meaning.key != 0)
        send();
    told.code = MEventCode::Character;
    told.key = 0;
    for (const char32_t character : meaning.text)
    {
        told.character = character;
        send();
    }
    takenKeys[event.detail] = isDown && taken;
    return taken;
}

// Marked as sent, so that a host that gives all its keys to us doesn't get them back for ever.
void XcbEventDispatcher::HandOn(const XcbWindow& window, const xcb_key_press_event_t& event)
{
    xcb_key_press_event_t copy = event;
    copy.response_type = event.response_type & 0x7F;
    copy.event = window.Parent();
    copy.child = window.Id();
    handedKeys[nextHandedKey++ % handedKeys.size()] = { event.time, event.detail, copy.response_type };
    const bool isDown = copy.response_type == XCB_KEY_PRESS;
    session.display->xcb_send_event(session.display, 1, copy.event,
                                    isDown ? XCB_EVENT_MASK_KEY_PRESS : XCB_EVENT_MASK_KEY_RELEASE,
                                    reinterpret_cast<const char*>(&copy));
}

void XcbEventDispatcher::OnFocus(const xcb_focus_in_event_t& event, bool has)
{
    XcbWindow* window = session.windows.Find(event.event);
    // A grab, of a desktop's shortcut for instance, passes; and where the pointer is doesn't matter.
    const bool isPassing = event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB;
    if (window != nullptr && !isPassing && event.detail < XCB_NOTIFY_DETAIL_POINTER)
        SetKeyboard(*window, has);
}

void XcbEventDispatcher::SetKeyboard(XcbWindow& window, bool has)
{
    if (window.HasKeyboard() == has)
        return;
    window.NoteKeyboard(has);
    session.keyboard.ForgetSequence();
    takenKeys.reset();
    if (has)
    {
        window.Root().FocusMessage(true);
        return;
    }
    // Who takes it is told next, where it is one of ours.
    session.display.Read();
    const xcb_generic_event_t* next = session.display.Peek(
        [this](const xcb_generic_event_t& event)
        {
            return (event.response_type & 0x7F) == XCB_FOCUS_IN &&
                   session.windows.Find(reinterpret_cast<const xcb_focus_in_event_t&>(event).event) !=
                       nullptr;
        });
    XcbWindow* taker = next != nullptr
                           ? session.windows.Find(reinterpret_cast<const xcb_focus_in_event_t*>(next)->event)
                           : nullptr;
    const bool closesPopUps = taker == nullptr && session.grab.IsRefused();
    window.Root().FocusMessage(false, taker != nullptr ? &taker->Root() : nullptr);
    if (closesPopUps)
        MWindows::Get()->ClosePopUps(nullptr);
}
