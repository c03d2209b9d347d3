// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbSelectionServer.h"

#include <algorithm>

void XcbSelectionServer::Offer(xcb_atom_t selection, std::vector<Form> forms)
{
    offers[selection] = { std::move(forms), display.Time() };
    display->xcb_set_selection_owner(display, window, selection, display.Time());
}

void XcbSelectionServer::Withdraw(xcb_atom_t selection)
{
    const auto found = offers.find(selection);
    if (found == offers.end())
        return;
    display->xcb_set_selection_owner(display, XCB_NONE, selection, found->second.since);
    offers.erase(found);
}

const std::string* XcbSelectionServer::Offered(xcb_atom_t selection, xcb_atom_t target) const
{
    const auto found = offers.find(selection);
    if (found == offers.end())
        return nullptr;
    for (const Form& form : found->second.forms)
        if (form.target == target)
            return form.bytes.get();
    return nullptr;
}

bool XcbSelectionServer::Handle(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7F)
    {
    case XCB_SELECTION_REQUEST:
        Answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        return true;
    case XCB_SELECTION_CLEAR:
    {
        const auto& clear = reinterpret_cast<const xcb_selection_clear_event_t&>(event);
        const auto found = offers.find(clear.selection);
        // One that was sent before the selection was taken anew tells of the past.
        if (found != offers.end() && (clear.time == 0 || found->second.since == 0 ||
                                      static_cast<std::int32_t>(clear.time - found->second.since) >= 0))
            offers.erase(found);
        return true;
    }
    case XCB_PROPERTY_NOTIFY:
    {
        const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        return notify.state == XCB_PROPERTY_DELETE && Continue(notify);
    }
    case XCB_DESTROY_NOTIFY:
    {
        const xcb_window_t gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
        return std::erase_if(transfers, [gone](const Transfer& each) { return each.receiver == gone; }) > 0;
    }
    default:
        return false;
    }
}

void XcbSelectionServer::Answer(const xcb_selection_request_event_t& request)
{
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = request.time;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    // Clients from before ICCCM name no property.
    const xcb_atom_t property = request.property != XCB_NONE ? request.property : request.target;
    const auto found = offers.find(request.selection);
    const bool isMany = request.target == display.Atom(XcbAtom::Multiple);
    if (found != offers.end() && (isMany ? PutSeveral(found->second, request.requestor, property)
                                         : Put(found->second, request.requestor, request.target, property)))
        answer.property = property;
    display->xcb_send_event(display, 0, request.requestor, 0, reinterpret_cast<const char*>(&answer));
    display.Flush();
}

bool XcbSelectionServer::Put(const Offering& offer, xcb_window_t receiver, xcb_atom_t target,
                             xcb_atom_t property)
{
    if (target == display.Atom(XcbAtom::Targets))
    {
        std::vector<xcb_atom_t> targets = { target, display.Atom(XcbAtom::Multiple),
                                            display.Atom(XcbAtom::Timestamp) };
        for (const Form& form : offer.forms)
            targets.push_back(form.target);
        display->xcb_change_property(display, XCB_PROP_MODE_REPLACE, receiver, property, XCB_ATOM_ATOM, 32,
                                     static_cast<std::uint32_t>(targets.size()), targets.data());
        return true;
    }
    if (target == display.Atom(XcbAtom::Timestamp))
    {
        display.SetValues(receiver, property, XCB_ATOM_INTEGER, { offer.since });
        return true;
    }
    for (const Form& form : offer.forms)
        if (form.target == target)
        {
            PutBytes(receiver, property, form);
            return true;
        }
    return false;
}

// Pairs of a target and a property; what can't be had gets no property.
bool XcbSelectionServer::PutSeveral(const Offering& offer, xcb_window_t receiver, xcb_atom_t property)
{
    std::vector<std::uint32_t> pairs = display.Values(receiver, property, XCB_GET_PROPERTY_TYPE_ANY);
    pairs.resize(pairs.size() / 2 * 2);
    for (std::size_t i = 0; i < pairs.size(); i += 2)
        if (pairs[i] == display.Atom(XcbAtom::Multiple) || !Put(offer, receiver, pairs[i], pairs[i + 1]))
            pairs[i + 1] = XCB_NONE;
    display->xcb_change_property(display, XCB_PROP_MODE_REPLACE, receiver, property, XCB_ATOM_ATOM, 32,
                                 static_cast<std::uint32_t>(pairs.size()), pairs.data());
    return !pairs.empty();
}

std::size_t XcbSelectionServer::PieceBytes() const
{
    return std::min<std::size_t>(display.RequestBytes() - 1024, 1 << 18);
}

void XcbSelectionServer::PutBytes(xcb_window_t receiver, xcb_atom_t property, const Form& form)
{
    if (form.bytes->size() <= PieceBytes())
    {
        display.SetText(receiver, property, form.target, *form.bytes);
        return;
    }
    EndTransfers(receiver, property);
    if (transfers.size() >= MostTransfers)
        transfers.erase(transfers.begin());
    transfers.push_back({ receiver, property, form });
    // Our own window listens already, and to more.
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    if (receiver != window)
        display->xcb_change_window_attributes(display, receiver, XCB_CW_EVENT_MASK, &mask);
    display.SetValues(receiver, property, display.Atom(XcbAtom::Incr),
                      { static_cast<std::uint32_t>(form.bytes->size()) });
}

// The receiver deletes the property when it has read it. An empty piece ends the transfer.
bool XcbSelectionServer::Continue(const xcb_property_notify_event_t& taken)
{
    const auto found = std::find_if(transfers.begin(), transfers.end(),
                                    [&taken](const Transfer& each)
                                    { return each.receiver == taken.window && each.property == taken.atom; });
    if (found == transfers.end())
        return false;
    const std::string piece = found->form.bytes->substr(found->position, PieceBytes());
    found->position += piece.size();
    display.SetText(found->receiver, found->property, found->form.target, piece);
    if (piece.empty())
        EndTransfers(taken.window, taken.atom);
    display.Flush();
    return true;
}

void XcbSelectionServer::EndTransfers(xcb_window_t receiver, xcb_atom_t property)
{
    const auto isIt = [&](const Transfer& each)
    {
        return each.receiver == receiver && each.property == property;
    };
    if (std::erase_if(transfers, isIt) == 0 || receiver == window)
        return;
    const bool isStillUsed =
        std::any_of(transfers.begin(), transfers.end(),
                    [receiver](const Transfer& each) { return each.receiver == receiver; });
    const std::uint32_t nothing = XCB_EVENT_MASK_NO_EVENT;
    if (!isStillUsed)
        display->xcb_change_window_attributes(display, receiver, XCB_CW_EVENT_MASK, &nothing);
}
