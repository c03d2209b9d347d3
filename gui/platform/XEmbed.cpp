// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XEmbed.h"

void XEmbed::Announce(bool isShown)
{
    constexpr std::uint32_t version = 0;
    const xcb_atom_t info = display.Atom(XcbAtom::XEmbedInfo);
    display.SetValues(window, info, info, { version, isShown ? 1u : 0u });
}

void XEmbed::RequestFocus()
{
    display.SendMessage(embedder, embedder, display.Atom(XcbAtom::XEmbed),
                        { display.Time(), static_cast<std::uint32_t>(Message::RequestFocus), 0, 0, 0 });
}

XEmbed::Message XEmbed::Take(const xcb_client_message_event_t& message)
{
    const auto what = static_cast<Message>(message.data.data32[1]);
    if (what == Message::EmbeddedNotify)
        embedder = message.data.data32[3];
    return what;
}
