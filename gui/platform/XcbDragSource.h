// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MString.h"
#include "gui/platform/XcbSelectionServer.h"
#include "gui/platform/XcbWindowList.h"

/// Files or a text that the user drags out of one of our windows: over whatever lies under the pointer, one
/// of ours too. Source: Xdnd 5. Thread: GUI.
class XcbDragSource
{
public:
    XcbDragSource(XcbConnection& connection, XcbSelectionServer& server)
        : display(connection), selections(server)
    {
    }

    /// With a button held, so that the server gives the window all of the mouse.
    void Begin(xcb_window_t from, const std::vector<MString>& files, const MString& text);
    /// The mouse is ours until the button goes up.
    bool IsDragging() const { return phase == Phase::Dragging; }
    xcb_window_t Window() const { return source; }
    /// The other program would take it here.
    bool IsAccepted() const { return accepted; }
    void Move(MPoint onScreen);
    void Release();
    void Cancel();
    /// True: the event was for this.
    bool Handle(const xcb_generic_event_t& event);

private:
    enum class Phase : std::uint8_t
    {
        Idle,
        Dragging,
        Dropping,   // released, before the other has told whether it would take it
        Dropped   // the other reads
    };
    struct Receiver
    {
        xcb_window_t window = XCB_NONE;   // under the pointer
        xcb_window_t proxy = XCB_NONE;   // that messages for it go to
        std::uint32_t version = 0;
        bool operator==(const Receiver&) const = default;
    };

    Receiver FindReceiver(MPoint onScreen);
    bool Look(xcb_window_t window, Receiver& found);
    void EnterReceiver(const Receiver& next);
    void LeaveReceiver();
    void TellPosition();
    void Drop();
    void End();
    void Send(XcbAtom type, std::initializer_list<std::uint32_t> values);

    XcbConnection& display;
    XcbSelectionServer& selections;
    xcb_window_t source = XCB_NONE;
    std::vector<xcb_atom_t> types;
    Receiver receiver;
    MPoint pointer;
    Phase phase = Phase::Idle;
    bool awaitsStatus = false;
    bool hasMoved = false;   // since the position that was told last
    bool accepted = false;
};
