// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbSelectionReader.h"

void XcbSelectionReader::Begin(xcb_atom_t selection, xcb_atom_t target, xcb_timestamp_t time)
{
    asked = selection;
    wanted = target;
    bytes.clear();
    state = State::Asked;
    display->xcb_delete_property(display, window, property);
    display->xcb_convert_selection(display, window, selection, target, property, time);
    display.Flush();
}

bool XcbSelectionReader::Handle(const xcb_generic_event_t& event)
{
    const std::uint8_t type = event.response_type & 0x7F;
    if (type == XCB_SELECTION_NOTIFY)
    {
        const auto& answer = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
        // An answer to an earlier question, which wasn't waited for any more, names another target at most.
        if (state != State::Asked || answer.requestor != window || answer.selection != asked ||
            answer.target != wanted || (answer.property != property && answer.property != XCB_NONE))
            return false;
        TakeAnswer(answer);
        return true;
    }
    if (type != XCB_PROPERTY_NOTIFY || state != State::InPieces)
        return false;
    const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    if (notify.window != window || notify.atom != property || notify.state != XCB_PROPERTY_NEW_VALUE)
        return false;
    TakePiece();
    return true;
}

void XcbSelectionReader::TakeAnswer(const xcb_selection_notify_event_t& answer)
{
    if (answer.property == XCB_NONE)
    {
        state = State::Failed;
        return;
    }
    const XcbConnection::PropertyData data = display.TakeProperty(window, property, MostBytes);
    if (data.type == display.Atom(XcbAtom::Incr))
    {
        state = State::InPieces;
        display.Flush();   // that the property is deleted asks for the first piece
        return;
    }
    bytes = data.bytes;
    state = data.type != XCB_NONE && data.isWhole ? State::Done : State::Failed;
}

void XcbSelectionReader::TakePiece()
{
    const XcbConnection::PropertyData piece = display.TakeProperty(window, property, MostBytes);
    display.Flush();
    if (piece.type == XCB_NONE)
        return;   // told of already
    if (piece.bytes.empty())
        state = State::Done;
    else if (!piece.isWhole || bytes.size() + piece.bytes.size() > MostBytes)
    {
        bytes.clear();
        state = State::Failed;
    }
    else
        bytes += piece.bytes;
}
