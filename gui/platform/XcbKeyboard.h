// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

#include "gui/platform/XcbConnection.h"

/// What the user's keys mean: layout, modifiers, and the dead keys and sequences of the user's language.
/// Keys that are held repeat as presses without releases in between. Thread: GUI.
class XcbKeyboard
{
public:
    /// Without the server's keyboard extension the layout is that of the system's settings.
    explicit XcbKeyboard(XcbConnection& connection);

    struct Meaning
    {
        std::int32_t key = 0;   ///< MKey; 0: it writes at most, or is part of a sequence
        std::u32string text;   ///< what it writes
    };
    /// @param state  the event's
    Meaning Press(xcb_keycode_t code, std::uint16_t state);
    /// MKey
    std::int32_t Release(xcb_keycode_t code, std::uint16_t state);
    /// Begins anew with sequences, when the keyboard goes elsewhere.
    void ForgetSequence();
    /// Of another layout, which is asked for with the next key: a change is told several times over.
    /// True: the event was for this.
    bool Handle(const xcb_generic_event_t& event);

    /// MModifier of an event's state.
    static std::uint8_t ModifiersOf(std::uint16_t state);

private:
    // Frees by a function of the table.
    template <typename Object>
    using Owned = std::unique_ptr<Object, void (*)(Object*)>;

    void SelectEvents();
    void Load();
    void LoadCompositions();
    void Update(std::uint16_t state);
    std::int32_t KeyOf(xcb_keycode_t code) const;
    std::u32string TextOf(xcb_keycode_t code, xkb_keysym_t symbol) const;

    XcbConnection& display;
    Owned<xkb_context> context;
    Owned<xkb_keymap> keymap;
    Owned<xkb_state> keys;
    Owned<xkb_compose_table> table;
    Owned<xkb_compose_state> composition;
    std::uint8_t firstEvent = 0;
    std::int32_t device = -1;
    bool isOutdated = false;
};
