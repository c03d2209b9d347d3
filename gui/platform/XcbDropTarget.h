// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/platform/XcbSelectionReader.h"
#include "gui/platform/XcbWindowList.h"

/// Files or a text that another program's user drags over our windows and drops there. All steps answer to
/// what comes; nothing waits, for the other program may run on this very thread. Source: Xdnd 5. Thread: GUI.
class XcbDropTarget
{
public:
    XcbDropTarget(XcbConnection& connection, XcbWindowList& allWindows, xcb_window_t ownWindow);

    /// True: the event was for this.
    bool Handle(const xcb_generic_event_t& event);

private:
    bool TakeMessage(const xcb_client_message_event_t& message);
    void Enter(const xcb_client_message_event_t& message);
    void Over(const xcb_client_message_event_t& message);
    void Leave();
    void Drop(const xcb_client_message_event_t& message);
    void Finish();
    void Answer(bool accepts);
    void Refuse();
    void Forget();
    xcb_atom_t FirstOf(std::initializer_list<XcbAtom> wanted,
                       const std::vector<std::uint32_t>& offered) const;
    bool Accept(const MWindow& root);
    void Deliver(MWindow& root, const std::string& bytes, MPoint at) const;

    XcbConnection& display;
    XcbWindowList& windows;
    XcbSelectionReader reader;
    xcb_window_t source = XCB_NONE;
    xcb_window_t target = XCB_NONE;
    xcb_atom_t fileType = XCB_NONE;   // of what is offered; XCB_NONE: none that we can read
    xcb_atom_t textType = XCB_NONE;
    xcb_atom_t type = XCB_NONE;   // the one of them that is wanted at the place
    MWindow::Dragged kind = MWindow::Dragged::Files;
    MPoint place;   // in the target
    std::uint32_t version = 0;
    bool accepted = false;
};
