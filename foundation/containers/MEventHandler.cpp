// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MEventHandler.h"

bool MKeyboardShortcut::Accepts(const MOnKeyboardShortcutParams& params) const
{
    constexpr unsigned IgnoredModifiers = 7;
    if (keyCode != params.keyCode || keyType != params.keyType)
        return false;
    const unsigned pressed = params.modifiers & ~IgnoredModifiers;
    return allowsFurtherModifiers ? (modifiers & ~pressed) == 0 : modifiers == pressed;
}
