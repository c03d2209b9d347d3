// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <bitset>

#include "gui/controls/MControlEvent.h"
#include "gui/platform/XcbSession.h"

/// Turns what the server sends into messages to our roots. A message may close its window, or any other,
/// or wait in a loop of its own for further ones: after each, windows are looked up anew. Thread: GUI.
class XcbEventDispatcher
{
public:
    explicit XcbEventDispatcher(XcbSession& openSession) : session(openSession) {}

    /// Takes the next event, and those that it makes needless. Within a message's scope.
    /// @return  whether it can only lead to painting
    bool DispatchNext();
    /// A window that the server has no more.
    void Lose(xcb_window_t id);

private:
    struct Spot
    {
        XcbWindow* window = nullptr;   // that the mouse's events go to
        std::int32_t x = 0;
        std::int32_t y = 0;
    };
    // A key that was handed on, which the host may hand back.
    struct HandedKey
    {
        xcb_timestamp_t time = 0;
        xcb_keycode_t code = 0;
        std::uint8_t type = 0;
        bool operator==(const HandedKey&) const = default;
    };

    void Dispatch(const xcb_generic_event_t& event);
    bool DispatchToHelpers(const xcb_generic_event_t& event);
    void OnExtensionEvent(const xcb_generic_event_t& event);

    Spot SpotOf(xcb_window_t window, MPoint inside, MPoint onScreen) const;
    void OnPress(const xcb_button_press_event_t& event);
    void OnWheel(const xcb_button_press_event_t& event);
    void OnRelease(const xcb_button_release_event_t& event);
    void OnMotion(const xcb_motion_notify_event_t& event);
    void OnEnter(const xcb_enter_notify_event_t& event);
    void OnLeave(const xcb_leave_notify_event_t& event);
    void SendMouse(const Spot& spot, MEventCode code, std::uint8_t modifiers, std::int32_t key = 0) const;
    void UpdateDragCursor();

    void OnKey(const xcb_key_press_event_t& event, bool isDown);
    bool SendKey(xcb_window_t id, const xcb_key_press_event_t& event, bool isDown);
    void HandOn(const XcbWindow& window, const xcb_key_press_event_t& event);
    void OnFocus(const xcb_focus_in_event_t& event, bool has);
    void SetKeyboard(XcbWindow& window, bool has);

    void OnConfigure(const xcb_configure_notify_event_t& event);
    void OnMapped(xcb_window_t id, bool isMapped);
    void OnExpose(const xcb_expose_event_t& event);
    void OnMessage(const xcb_client_message_event_t& event);

    XcbSession& session;
    std::bitset<256> takenKeys;   // whose press somebody took
    std::array<HandedKey, 16> handedKeys;
    std::size_t nextHandedKey = 0;
};
