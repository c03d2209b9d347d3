// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbKeyCodes.h"

#include <algorithm>
#include <iterator>

#include <xkbcommon/xkbcommon-keysyms.h>

#include "gui/controls/MControlEvent.h"

namespace
{
struct Pair
{
    xkb_keysym_t symbol;
    std::int32_t key;
};

// The keypad's own keys have codes of their own only where the main block has no such key.
constexpr Pair Pairs[] = {
    { XKB_KEY_BackSpace, MKey::Backspace },
    { XKB_KEY_Tab, MKey::Tab },
    { XKB_KEY_ISO_Left_Tab, MKey::Tab },
    { XKB_KEY_KP_Tab, MKey::Tab },
    { XKB_KEY_Return, MKey::Enter },
    { XKB_KEY_KP_Enter, MKey::Enter },
    { XKB_KEY_Pause, MKey::Pause },
    { XKB_KEY_Escape, MKey::Escape },
    { XKB_KEY_space, MKey::Space },
    { XKB_KEY_KP_Space, MKey::Space },
    { XKB_KEY_Page_Up, MKey::PageUp },
    { XKB_KEY_KP_Page_Up, MKey::PageUp },
    { XKB_KEY_Page_Down, MKey::PageDown },
    { XKB_KEY_KP_Page_Down, MKey::PageDown },
    { XKB_KEY_End, MKey::End },
    { XKB_KEY_KP_End, MKey::End },
    { XKB_KEY_Home, MKey::Home },
    { XKB_KEY_KP_Home, MKey::Home },
    { XKB_KEY_Left, MKey::Left },
    { XKB_KEY_KP_Left, MKey::Left },
    { XKB_KEY_Up, MKey::Up },
    { XKB_KEY_KP_Up, MKey::Up },
    { XKB_KEY_Right, MKey::Right },
    { XKB_KEY_KP_Right, MKey::Right },
    { XKB_KEY_Down, MKey::Down },
    { XKB_KEY_KP_Down, MKey::Down },
    { XKB_KEY_Insert, MKey::Insert },
    { XKB_KEY_KP_Insert, MKey::Insert },
    { XKB_KEY_Delete, MKey::Delete },
    { XKB_KEY_KP_Delete, MKey::Delete },
    { XKB_KEY_Menu, MKey::Menu },
    { XKB_KEY_KP_Multiply, 0x6A },
    { XKB_KEY_KP_Add, 0x6B },
    { XKB_KEY_KP_Subtract, 0x6D },
    { XKB_KEY_KP_Decimal, 0x6E },
    { XKB_KEY_KP_Divide, 0x6F },
    { XKB_KEY_semicolon, 0xBA },
    { XKB_KEY_equal, 0xBB },
    { XKB_KEY_plus, 0xBB },
    { XKB_KEY_comma, 0xBC },
    { XKB_KEY_minus, 0xBD },
    { XKB_KEY_period, 0xBE },
    { XKB_KEY_slash, 0xBF },
    { XKB_KEY_grave, 0xC0 },
    { XKB_KEY_bracketleft, 0xDB },
    { XKB_KEY_backslash, 0xDC },
    { XKB_KEY_bracketright, 0xDD },
    { XKB_KEY_apostrophe, 0xDE },
};
}   // namespace

std::int32_t KeyOfSymbol(xkb_keysym_t symbol)
{
    const auto within = [symbol](xkb_keysym_t first, xkb_keysym_t last)
    {
        return symbol >= first && symbol <= last;
    };
    const auto from = [symbol](xkb_keysym_t first, std::int32_t key)
    {
        return key + static_cast<std::int32_t>(symbol - first);
    };
    if (within(XKB_KEY_a, XKB_KEY_z))
        return from(XKB_KEY_a, 'A');
    if (within(XKB_KEY_A, XKB_KEY_Z))
        return from(XKB_KEY_A, 'A');
    if (within(XKB_KEY_0, XKB_KEY_9))
        return from(XKB_KEY_0, '0');
    if (within(XKB_KEY_KP_0, XKB_KEY_KP_9))
        return from(XKB_KEY_KP_0, '0');
    if (within(XKB_KEY_F1, XKB_KEY_F24))
        return from(XKB_KEY_F1, MKey::F1);
    const Pair* found = std::find_if(std::begin(Pairs), std::end(Pairs),
                                     [symbol](const Pair& pair) { return pair.symbol == symbol; });
    return found != std::end(Pairs) ? found->key : 0;
}
