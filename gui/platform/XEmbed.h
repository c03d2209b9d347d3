// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/platform/XcbConnection.h"

/// How a window in another program's talks with the one around it, where that knows the protocol. Hosts
/// that don't are taken for what they are: a plain parent window. Source: XEmbed 0.5. Thread: GUI.
class XEmbed
{
public:
    enum class Message : std::uint32_t
    {
        EmbeddedNotify = 0,
        WindowActivate = 1,
        WindowDeactivate = 2,
        RequestFocus = 3,
        FocusIn = 4,
        FocusOut = 5
    };

    XEmbed(XcbConnection& connection, xcb_window_t embeddedWindow)
        : display(connection), window(embeddedWindow)
    {
    }

    /// Tells that the window knows the protocol, and whether it wants to be seen.
    void Announce(bool isShown);
    /// The program around knows it, too.
    bool IsEmbedded() const { return embedder != XCB_NONE; }
    void RequestFocus();
    /// What the program around tells.
    /// @return  what it means for this window's keyboard
    Message Take(const xcb_client_message_event_t& message);
    /// It has another parent, which has to introduce itself.
    void Forget() { embedder = XCB_NONE; }

private:
    XcbConnection& display;
    xcb_window_t window;
    xcb_window_t embedder = XCB_NONE;
};
