// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbKeyboard.h"

#include <clocale>

#include "foundation/text/MString.h"
#include "gui/controls/MControlEvent.h"
#include "gui/platform/XcbKeyCodes.h"

namespace
{
std::u32string FromUTF8(const std::string& bytes)
{
    const MString text = MString::FromUTF8(bytes);
    std::u32string characters;
    for (int i = 0; i < text.Length(); ++i)
    {
        const char32_t first = text[i];
        const bool isPair = first >= 0xD800 && first < 0xDC00 && i + 1 < text.Length();
        characters += isPair ? 0x10000 + ((first - 0xD800) << 10) + (text[++i] - 0xDC00u) : first;
    }
    return characters;
}

bool IsWritten(char32_t character)
{
    return character >= 0x20 && (character < 0x7F || character >= 0xA0);
}

// As the C library would choose it; hosts don't always ask it to.
const char* Language()
{
    for (const char* name : { "LC_ALL", "LC_CTYPE", "LANG" })
        if (const char* value = std::getenv(name); value != nullptr && *value != 0)
            return value;
    return "C";
}
}   // namespace

XcbKeyboard::XcbKeyboard(XcbConnection& connection)
    : display(connection),
      context(display->xkb_context_new(XKB_CONTEXT_NO_FLAGS), display->xkb_context_unref),
      keymap(nullptr, display->xkb_keymap_unref), keys(nullptr, display->xkb_state_unref),
      table(nullptr, display->xkb_compose_table_unref), composition(nullptr, display->xkb_compose_state_unref)
{
    const BrokenPipeGuard guard;
    const int hasExtension = display->xkb_x11_setup_xkb_extension(
        display, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
        XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstEvent, nullptr);
    if (hasExtension != 0)
        device = display->xkb_x11_get_core_keyboard_device_id(display);
    if (device >= 0)
        SelectEvents();
    Load();
    LoadCompositions();
}

// Changes of the layout alone: which keys are held stands in each key's event, so that typing in other
// programs doesn't wake this one.
void XcbKeyboard::SelectEvents()
{
    constexpr std::uint16_t what = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t parts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                    XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                    XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    const auto keyboard = static_cast<xcb_xkb_device_spec_t>(device);
    display->xcb_xkb_select_events(display, keyboard, what, 0, what, parts, parts, nullptr);
    constexpr std::uint32_t repeat = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    display.Await(display->xcb_xkb_per_client_flags_reply,
                  display->xcb_xkb_per_client_flags(display, keyboard, repeat, repeat, 0, 0, 0));
}

void XcbKeyboard::Load()
{
    isOutdated = false;
    const BrokenPipeGuard guard;
    xkb_keymap* fresh = nullptr;
    if (device >= 0)
        fresh = display->xkb_x11_keymap_new_from_device(context.get(), display, device,
                                                        XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (fresh == nullptr && !keymap)
        fresh = display->xkb_keymap_new_from_names(context.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (fresh == nullptr)
        return;
    keymap.reset(fresh);
    keys.reset(display->xkb_state_new(fresh));
}

void XcbKeyboard::LoadCompositions()
{
    if (!context)
        return;
    table.reset(
        display->xkb_compose_table_new_from_locale(context.get(), Language(), XKB_COMPOSE_COMPILE_NO_FLAGS));
    if (table)
        composition.reset(display->xkb_compose_state_new(table.get(), XKB_COMPOSE_STATE_NO_FLAGS));
}

bool XcbKeyboard::Handle(const xcb_generic_event_t& event)
{
    if (firstEvent == 0 || (event.response_type & 0x7F) != firstEvent)
        return false;
    isOutdated = true;
    return true;
}

void XcbKeyboard::ForgetSequence()
{
    if (composition)
        display->xkb_compose_state_reset(composition.get());
}

// An event's state holds the eight core modifiers and in bits 13 and 14 the layout.
void XcbKeyboard::Update(std::uint16_t state)
{
    if (isOutdated)
        Load();
    if (keys)
        display->xkb_state_update_mask(keys.get(), state & 0xFFu, 0, 0, 0, 0, (state >> 13) & 3u);
}

// By what stands on the key without modifiers: Ctrl+1 stays that where digits want Shift. A layout without
// Latin letters is passed over, so that Ctrl+C can be had in all of them.
std::int32_t XcbKeyboard::KeyOf(xcb_keycode_t code) const
{
    // The keypad's keys mean digits or ways by NumLock.
    const xkb_keysym_t now = display->xkb_state_key_get_one_sym(keys.get(), code);
    if (now >= XKB_KEY_KP_Space && now <= XKB_KEY_KP_9)
        return KeyOfSymbol(now);
    const xkb_layout_index_t own = display->xkb_state_key_get_layout(keys.get(), code);
    const xkb_layout_index_t count = display->xkb_keymap_num_layouts_for_key(keymap.get(), code);
    for (xkb_layout_index_t i = 0; i <= count; ++i)
    {
        const xkb_layout_index_t layout = i == 0 ? own : i - 1;
        for (xkb_level_index_t level = 0; level < 2; ++level)
        {
            const xkb_keysym_t* symbols = nullptr;
            const int symbolCount =
                display->xkb_keymap_key_get_syms_by_level(keymap.get(), code, layout, level, &symbols);
            if (symbolCount != 1)
                continue;
            const std::int32_t key = KeyOfSymbol(symbols[0]);
            const bool isDigit = key >= '0' && key <= '9';
            if (key != 0 && (level == 0 || isDigit))
                return key;
        }
    }
    return 0;
}

XcbKeyboard::Meaning XcbKeyboard::Press(xcb_keycode_t code, std::uint16_t state)
{
    Update(state);
    if (!keys)
        return {};
    const xkb_keysym_t symbol = display->xkb_state_key_get_one_sym(keys.get(), code);
    if (composition &&
        display->xkb_compose_state_feed(composition.get(), symbol) == XKB_COMPOSE_FEED_ACCEPTED)
        switch (display->xkb_compose_state_get_status(composition.get()))
        {
        case XKB_COMPOSE_COMPOSING:
        case XKB_COMPOSE_CANCELLED:
            return {};
        case XKB_COMPOSE_COMPOSED:
        {
            char bytes[64] = {};
            display->xkb_compose_state_get_utf8(composition.get(), bytes, sizeof(bytes));
            return { 0, FromUTF8(bytes) };
        }
        default:
            break;
        }
    return { KeyOf(code), TextOf(code, symbol) };
}

std::u32string XcbKeyboard::TextOf(xcb_keycode_t code, xkb_keysym_t symbol) const
{
    // Held, and not used up by the layout to reach this symbol: a command rather than a text.
    for (const char* modifier : { XKB_MOD_NAME_CTRL, XKB_MOD_NAME_ALT })
    {
        const bool isHeld =
            display->xkb_state_mod_name_is_active(keys.get(), modifier, XKB_STATE_MODS_EFFECTIVE) > 0;
        const xkb_mod_index_t index = display->xkb_keymap_mod_get_index(keymap.get(), modifier);
        if (isHeld &&
            display->xkb_state_mod_index_is_consumed2(keys.get(), code, index, XKB_CONSUMED_MODE_GTK) <= 0)
            return {};
    }
    const char32_t character = display->xkb_keysym_to_utf32(symbol);
    return IsWritten(character) ? std::u32string(1, character) : std::u32string();
}

std::int32_t XcbKeyboard::Release(xcb_keycode_t code, std::uint16_t state)
{
    Update(state);
    if (!keys)
        return 0;
    return KeyOf(code);
}

std::uint8_t XcbKeyboard::ModifiersOf(std::uint16_t state)
{
    struct Pair
    {
        std::uint16_t mask;
        std::uint8_t modifier;
    };
    static constexpr Pair pairs[] = {
        { XCB_BUTTON_MASK_1, ModifierLeftButton },
        { XCB_BUTTON_MASK_2, ModifierMiddleButton },
        { XCB_BUTTON_MASK_3, ModifierRightButton },
        { XCB_MOD_MASK_CONTROL, ModifierCtrl },
        { XCB_MOD_MASK_1, ModifierAlt },
        { XCB_MOD_MASK_SHIFT, ModifierShift },
    };
    std::uint8_t modifiers = 0;
    for (const Pair& pair : pairs)
        if ((state & pair.mask) != 0)
            modifiers |= pair.modifier;
    return modifiers;
}
