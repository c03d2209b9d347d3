// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/platform/XcbConnection.h"

/// Gets the data of a selection from the program that has it, event by event; large data come in pieces.
/// Nothing of what the other program tells about the size is believed. Source: ICCCM 2.0, section 2.
/// Thread: GUI.
class XcbSelectionReader
{
public:
    enum class State : std::uint8_t
    {
        Idle,
        Asked,
        InPieces,
        Done,
        Failed
    };
    /// More than that isn't taken.
    static constexpr std::size_t MostBytes = 64 << 20;

    /// @param ownWindow    lives longer, and listens to its properties
    /// @param ownProperty  of it, for the data
    XcbSelectionReader(XcbConnection& connection, xcb_window_t ownWindow, xcb_atom_t ownProperty)
        : display(connection), window(ownWindow), property(ownProperty)
    {
    }

    void Begin(xcb_atom_t selection, xcb_atom_t target, xcb_timestamp_t time);
    void Cancel() { state = State::Idle; }
    /// True: the event was for this, and State may have changed.
    bool Handle(const xcb_generic_event_t& event);
    State Now() const { return state; }
    bool IsWaiting() const { return state == State::Asked || state == State::InPieces; }
    xcb_atom_t Target() const { return wanted; }
    const std::string& Bytes() const { return bytes; }

private:
    void TakeAnswer(const xcb_selection_notify_event_t& answer);
    void TakePiece();

    XcbConnection& display;
    xcb_window_t window;
    xcb_atom_t property;
    xcb_atom_t asked = XCB_NONE;
    xcb_atom_t wanted = XCB_NONE;
    std::string bytes;
    State state = State::Idle;
};
