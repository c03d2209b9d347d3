// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbClipboard.h"

#include "gui/platform/SelectionText.h"

XcbClipboard::XcbClipboard(XcbConnection& connection, XcbSelectionServer& server, xcb_window_t ownWindow)
    : display(connection), selections(server),
      reader(connection, ownWindow, connection.Atom(XcbAtom::OwnClipboard)), window(ownWindow)
{
}

void XcbClipboard::SetText(const MString& text)
{
    isHandedOver = false;
    const auto bytes = std::make_shared<const std::string>(text.ToUTF8());
    std::vector<XcbSelectionServer::Form> forms;
    for (const XcbAtom atom : { XcbAtom::Utf8String, XcbAtom::TextPlainUtf8, XcbAtom::TextPlain })
        forms.push_back({ display.Atom(atom), bytes });
    forms.push_back({ XCB_ATOM_STRING, std::make_shared<const std::string>(LatinOf(text)) });
    selections.Offer(XCB_ATOM_PRIMARY, forms);
    selections.Offer(display.Atom(XcbAtom::Clipboard), std::move(forms));
}

MString XcbClipboard::GetText()
{
    const xcb_atom_t utf8 = display.Atom(XcbAtom::Utf8String);
    for (const xcb_atom_t selection : { display.Atom(XcbAtom::Clipboard), xcb_atom_t{ XCB_ATOM_PRIMARY } })
    {
        if (const std::string* own = selections.Offered(selection, utf8))
            return MString::FromUTF8(*own);
        const auto owner = display.Await(display->xcb_get_selection_owner_reply,
                                         display->xcb_get_selection_owner(display, selection));
        if (!owner || owner->owner == XCB_NONE)
            continue;
        if (Read(selection, utf8))
            return TextOfUTF8Selection(reader.Bytes());
        if (reader.Now() == XcbSelectionReader::State::Failed && Read(selection, XCB_ATOM_STRING))
            return TextOfLatinSelection(reader.Bytes());
        reader.Cancel();
        return {};
    }
    return {};
}

bool XcbClipboard::Read(xcb_atom_t selection, xcb_atom_t target)
{
    reader.Begin(selection, target, display.Time());
    const auto take = [this](const xcb_generic_event_t& event)
    {
        return reader.Handle(event) || selections.Handle(event);
    };
    while (reader.IsWaiting() && display.WaitFor(take, PatienceMilliseconds))
        continue;
    return reader.Now() == XcbSelectionReader::State::Done;
}

void XcbClipboard::HandOver()
{
    const xcb_atom_t manager = display.Atom(XcbAtom::ClipboardManager);
    if (isHandedOver || !selections.Owns(display.Atom(XcbAtom::Clipboard)))
        return;
    isHandedOver = true;
    const auto owner = display.Await(display->xcb_get_selection_owner_reply,
                                     display->xcb_get_selection_owner(display, manager));
    if (!owner || owner->owner == XCB_NONE)
        return;
    display->xcb_convert_selection(display, window, manager, display.Atom(XcbAtom::SaveTargets),
                                   display.Atom(XcbAtom::OwnClipboard), display.Time());
    bool isSaved = false;
    const auto take = [&](const xcb_generic_event_t& event)
    {
        if ((event.response_type & 0x7F) != XCB_SELECTION_NOTIFY)
            return selections.Handle(event);
        isSaved = reinterpret_cast<const xcb_selection_notify_event_t&>(event).selection == manager;
        return isSaved;
    };
    while (!isSaved && display.WaitFor(take, PatienceMilliseconds))
        continue;
}
