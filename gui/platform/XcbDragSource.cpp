// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbDragSource.h"

#include "gui/platform/SelectionText.h"
#include "gui/platform/UriList.h"

namespace
{
constexpr std::uint32_t Version = 5;
constexpr std::uint32_t OldestVersion = 3;
}   // namespace

void XcbDragSource::Begin(xcb_window_t from, const std::vector<MString>& files, const MString& text)
{
    Cancel();
    std::vector<XcbSelectionServer::Form> forms;
    if (!files.empty())
        forms.push_back(
            { display.Atom(XcbAtom::TextUriList), std::make_shared<const std::string>(UriListOf(files)) });
    if (!text.IsEmpty())
    {
        const auto bytes = std::make_shared<const std::string>(text.ToUTF8());
        for (const XcbAtom atom : { XcbAtom::Utf8String, XcbAtom::TextPlainUtf8, XcbAtom::TextPlain })
            forms.push_back({ display.Atom(atom), bytes });
    }
    if (forms.empty())
        return;
    types.clear();
    for (const XcbSelectionServer::Form& form : forms)
        types.push_back(form.target);
    source = from;
    phase = Phase::Dragging;
    display->xcb_change_property(display, XCB_PROP_MODE_REPLACE, source, display.Atom(XcbAtom::XdndTypeList),
                                 XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(types.size()), types.data());
    selections.Offer(display.Atom(XcbAtom::XdndSelection), std::move(forms));
    display.Flush();
}

// A window that knows the protocol, or one that another answers for.
bool XcbDragSource::Look(xcb_window_t window, Receiver& found)
{
    const xcb_atom_t proxyAtom = display.Atom(XcbAtom::XdndProxy);
    xcb_window_t proxy = window;
    const auto named = display.Values(window, proxyAtom, XCB_ATOM_WINDOW);
    // A proxy that has died doesn't name itself.
    if (!named.empty() && display.Values(named[0], proxyAtom, XCB_ATOM_WINDOW) == named)
        proxy = named[0];
    const auto version = display.Values(proxy, display.Atom(XcbAtom::XdndAware), XCB_ATOM_ATOM);
    if (version.empty() || version[0] < OldestVersion)
        return false;
    found = { window, proxy, std::min(version[0], Version) };
    return true;
}

// From the outside in: the innermost one counts, so that a window inside of a host's can be met.
XcbDragSource::Receiver XcbDragSource::FindReceiver(MPoint onScreen)
{
    Receiver found;
    xcb_window_t each = display.RootWindow();
    for (int depth = 0; depth < 64; ++depth)
    {
        const auto inner =
            display.Await(display->xcb_translate_coordinates_reply,
                          display->xcb_translate_coordinates(display, display.RootWindow(), each,
                                                             static_cast<std::int16_t>(onScreen.x),
                                                             static_cast<std::int16_t>(onScreen.y)));
        if (!inner || inner->child == XCB_NONE)
            break;
        each = inner->child;
        Look(each, found);
    }
    return found;
}

void XcbDragSource::Send(XcbAtom type, std::initializer_list<std::uint32_t> values)
{
    display.SendMessage(receiver.proxy, receiver.window, display.Atom(type), values);
}

void XcbDragSource::EnterReceiver(const Receiver& next)
{
    if (next == receiver)
        return;
    LeaveReceiver();
    receiver = next;
    if (receiver.window == XCB_NONE)
        return;
    const auto typeAt = [this](std::size_t i)
    {
        return i < types.size() ? types[i] : xcb_atom_t{ XCB_NONE };
    };
    Send(XcbAtom::XdndEnter,
         { source, receiver.version << 24 | (types.size() > 3 ? 1u : 0u), typeAt(0), typeAt(1), typeAt(2) });
}

void XcbDragSource::LeaveReceiver()
{
    if (receiver.window != XCB_NONE)
        Send(XcbAtom::XdndLeave, { source, 0 });
    receiver = {};
    awaitsStatus = false;
    hasMoved = false;
    accepted = false;
}

void XcbDragSource::Move(MPoint onScreen)
{
    if (phase != Phase::Dragging)
        return;
    pointer = onScreen;
    EnterReceiver(FindReceiver(onScreen));
    hasMoved = true;
    TellPosition();
}

// One at a time: the next when the one before was answered.
void XcbDragSource::TellPosition()
{
    if (receiver.window == XCB_NONE || awaitsStatus || !hasMoved)
        return;
    hasMoved = false;
    awaitsStatus = true;
    Send(XcbAtom::XdndPosition,
         { source, 0,
           static_cast<std::uint32_t>(pointer.x) << 16 | (static_cast<std::uint32_t>(pointer.y) & 0xFFFF),
           display.Time(), display.Atom(XcbAtom::XdndActionCopy) });
    display.Flush();
}

void XcbDragSource::Release()
{
    if (phase != Phase::Dragging)
        return;
    if (awaitsStatus)
        phase = Phase::Dropping;
    else
        Drop();
}

void XcbDragSource::Drop()
{
    if (receiver.window == XCB_NONE || !accepted)
    {
        Cancel();
        return;
    }
    phase = Phase::Dropped;
    Send(XcbAtom::XdndDrop, { source, 0, display.Time() });
    display.Flush();
}

void XcbDragSource::Cancel()
{
    if (phase == Phase::Idle)
        return;
    if (phase != Phase::Dropped)
        LeaveReceiver();
    End();
}

void XcbDragSource::End()
{
    phase = Phase::Idle;
    receiver = {};
    source = XCB_NONE;
    accepted = false;
    awaitsStatus = false;
    selections.Withdraw(display.Atom(XcbAtom::XdndSelection));
    display.Flush();
}

bool XcbDragSource::Handle(const xcb_generic_event_t& event)
{
    if ((event.response_type & 0x7F) != XCB_CLIENT_MESSAGE)
        return false;
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    if (message.format != 32)
        return false;
    const bool isOfReceiver = phase != Phase::Idle && message.data.data32[0] == receiver.window;
    if (message.type == display.Atom(XcbAtom::XdndFinished))
    {
        if (isOfReceiver && phase == Phase::Dropped)
            End();
        return true;
    }
    if (message.type != display.Atom(XcbAtom::XdndStatus))
        return false;
    if (!isOfReceiver || !awaitsStatus)
        return true;
    awaitsStatus = false;
    accepted = (message.data.data32[1] & 1) != 0;
    // Released over the place that was told last: the answer to that decides.
    if (phase == Phase::Dropping && !hasMoved)
        Drop();
    else
        TellPosition();
    return true;
}
