// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <xkbcommon/xkbcommon.h>

/// The MKey of a key that bears a symbol; 0 for one that has none.
std::int32_t KeyOfSymbol(xkb_keysym_t symbol);
