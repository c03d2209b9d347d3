// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbDropTarget.h"

#include <algorithm>

#include "gui/platform/SelectionText.h"
#include "gui/platform/UriList.h"

XcbDropTarget::XcbDropTarget(XcbConnection& connection, XcbWindowList& allWindows, xcb_window_t ownWindow)
    : display(connection), windows(allWindows),
      reader(connection, ownWindow, connection.Atom(XcbAtom::OwnDrop))
{
}

bool XcbDropTarget::Handle(const xcb_generic_event_t& event)
{
    if (reader.IsWaiting() && reader.Handle(event))
    {
        if (!reader.IsWaiting())
            Finish();
        return true;
    }
    return (event.response_type & 0x7F) == XCB_CLIENT_MESSAGE &&
           TakeMessage(reinterpret_cast<const xcb_client_message_event_t&>(event));
}

bool XcbDropTarget::TakeMessage(const xcb_client_message_event_t& message)
{
    if (message.format != 32)
        return false;
    if (message.type == display.Atom(XcbAtom::XdndEnter))
        Enter(message);
    else if (message.type == display.Atom(XcbAtom::XdndPosition))
        Over(message);
    else if (message.type == display.Atom(XcbAtom::XdndLeave))
        Leave();
    else if (message.type == display.Atom(XcbAtom::XdndDrop))
        Drop(message);
    else
        return false;
    return true;
}

xcb_atom_t XcbDropTarget::FirstOf(std::initializer_list<XcbAtom> wanted,
                                  const std::vector<std::uint32_t>& offered) const
{
    for (const XcbAtom atom : wanted)
        if (std::find(offered.begin(), offered.end(), display.Atom(atom)) != offered.end())
            return display.Atom(atom);
    return XCB_NONE;
}

void XcbDropTarget::Enter(const xcb_client_message_event_t& message)
{
    Leave();
    const std::uint32_t* data = message.data.data32;
    constexpr std::uint32_t oldest = 3;
    constexpr std::uint32_t newest = 5;
    version = std::min(data[1] >> 24, newest);
    if (version < oldest || windows.Find(message.window) == nullptr)
        return;
    source = data[0];
    target = message.window;
    const bool hasList = (data[1] & 1) != 0;
    const std::vector<std::uint32_t> offered =
        hasList ? display.Values(source, display.Atom(XcbAtom::XdndTypeList), XCB_ATOM_ATOM)
                : std::vector<std::uint32_t>{ data[2], data[3], data[4] };
    fileType = FirstOf({ XcbAtom::TextUriList }, offered);
    textType = FirstOf({ XcbAtom::Utf8String, XcbAtom::TextPlainUtf8, XcbAtom::TextPlain }, offered);
}

// Paths as a text, as terminals drag them, are the last choice.
bool XcbDropTarget::Accept(const MWindow& root)
{
    using Dragged = MWindow::Dragged;
    struct Way
    {
        xcb_atom_t type;
        Dragged kind;
    };
    for (const Way& way :
         { Way{ fileType, Dragged::Files }, Way{ textType, Dragged::Text }, Way{ textType, Dragged::Files } })
        if (way.type != XCB_NONE && root.CanDropAt(place.x, place.y, way.kind))
        {
            type = way.type;
            kind = way.kind;
            return true;
        }
    return false;
}

void XcbDropTarget::Over(const xcb_client_message_event_t& message)
{
    XcbWindow* window = windows.Find(target);
    if (window == nullptr || message.data.data32[0] != source || message.window != target)
        return;
    const std::uint32_t packed = message.data.data32[2];
    const auto corner = window->ScreenRectangle();
    place = { static_cast<std::int16_t>(packed >> 16) - corner.left,
              static_cast<std::int16_t>(packed & 0xFFFF) - corner.top };
    display.NoteTime(message.data.data32[3]);
    MWindow& root = window->Root();
    accepted = Accept(root);
    Answer(accepted);
    root.DragMessage(place.x, place.y, accepted, kind);
}

// An empty rectangle: every move is to be told.
void XcbDropTarget::Answer(bool accepts)
{
    display.SendMessage(source, source, display.Atom(XcbAtom::XdndStatus),
                        { target, accepts ? 1u : 0u, 0, 0,
                          accepts ? display.Atom(XcbAtom::XdndActionCopy) : xcb_atom_t{ XCB_NONE } });
    display.Flush();
}

void XcbDropTarget::Leave()
{
    if (XcbWindow* window = windows.Find(target); window != nullptr && accepted)
    {
        Forget();
        window->Root().DragMessage(place.x, place.y, false);
    }
    Forget();
}

void XcbDropTarget::Drop(const xcb_client_message_event_t& message)
{
    if (message.data.data32[0] != source || source == XCB_NONE)
        return;
    if (!accepted)
    {
        Refuse();
        Leave();
        return;
    }
    reader.Begin(display.Atom(XcbAtom::XdndSelection), type, message.data.data32[2]);
}

void XcbDropTarget::Refuse()
{
    display.SendMessage(source, source, display.Atom(XcbAtom::XdndFinished), { target, 0, XCB_NONE });
    display.Flush();
}

void XcbDropTarget::Finish()
{
    const std::string bytes =
        reader.Now() == XcbSelectionReader::State::Done ? reader.Bytes() : std::string();
    XcbWindow* window = windows.Find(target);
    const bool isOfUse = !bytes.empty() && window != nullptr &&
                         (kind == MWindow::Dragged::Text || !FilesOfUriList(bytes).empty());
    if (!isOfUse)
    {
        Refuse();
        Leave();
        return;
    }
    display.SendMessage(source, source, display.Atom(XcbAtom::XdndFinished),
                        { target, 1, display.Atom(XcbAtom::XdndActionCopy) });
    display.Flush();
    const MPoint at = place;
    Forget();
    Deliver(window->Root(), bytes, at);
}

void XcbDropTarget::Deliver(MWindow& root, const std::string& bytes, MPoint at) const
{
    if (kind == MWindow::Dragged::Files)
        root.DropMessage(FilesOfUriList(bytes), at.x, at.y);
    else
        root.DropTextMessage(TextOfUTF8Selection(bytes), at.x, at.y);
}

void XcbDropTarget::Forget()
{
    reader.Cancel();
    source = XCB_NONE;
    target = XCB_NONE;
    fileType = XCB_NONE;
    textType = XCB_NONE;
    accepted = false;
}
