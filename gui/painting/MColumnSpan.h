// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Pixels of one column that lie one below the other.
struct MColumnSpan
{
    std::int32_t top = 0;
    std::int32_t height = 0;   ///< below 1: none
};
