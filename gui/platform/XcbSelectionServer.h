// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <memory>

#include "gui/platform/XcbConnection.h"

/// Hands what this module has copied, or drags, to the programs that ask for it; large data in pieces, each
/// when the one before was taken. Source: ICCCM 2.0, section 2. Thread: GUI.
class XcbSelectionServer
{
public:
    /// The same data may be offered in several forms.
    struct Form
    {
        xcb_atom_t target = XCB_NONE;
        std::shared_ptr<const std::string> bytes;
    };

    /// @param ownWindow  lives longer
    XcbSelectionServer(XcbConnection& connection, xcb_window_t ownWindow)
        : display(connection), window(ownWindow)
    {
    }

    void Offer(xcb_atom_t selection, std::vector<Form> forms);
    void Withdraw(xcb_atom_t selection);
    /// Null where another program has it.
    const std::string* Offered(xcb_atom_t selection, xcb_atom_t target) const;
    bool Owns(xcb_atom_t selection) const { return offers.count(selection) != 0; }
    /// True: the event was for this.
    bool Handle(const xcb_generic_event_t& event);

private:
    struct Offering
    {
        std::vector<Form> forms;
        xcb_timestamp_t since = 0;
    };
    struct Transfer
    {
        xcb_window_t receiver = XCB_NONE;
        xcb_atom_t property = XCB_NONE;
        Form form;
        std::size_t position = 0;
    };

    void Answer(const xcb_selection_request_event_t& request);
    bool Put(const Offering& offer, xcb_window_t receiver, xcb_atom_t target, xcb_atom_t property);
    bool PutSeveral(const Offering& offer, xcb_window_t receiver, xcb_atom_t property);
    void PutBytes(xcb_window_t receiver, xcb_atom_t property, const Form& form);
    bool Continue(const xcb_property_notify_event_t& taken);
    void EndTransfers(xcb_window_t receiver, xcb_atom_t property);
    std::size_t PieceBytes() const;

    static constexpr std::size_t MostTransfers = 32;   // whoever stops taking is forgotten in the end

    XcbConnection& display;
    xcb_window_t window;
    std::map<xcb_atom_t, Offering> offers;
    std::vector<Transfer> transfers;
};
