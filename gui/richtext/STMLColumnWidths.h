// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

/// What a cell asks for, in pixels.
struct STMLColumn
{
    std::int32_t minimal = 0;   ///< below which words are broken
    std::int32_t wanted = 0;   ///< of a cell that states its width or takes its content's
    bool shares = false;   ///< takes an equal part of what the others leave
};

/// The widths of a row's cells: none negative, with a sum of `room` at most, and all of it where a cell
/// shares. When it isn't enough, cells that want more than they need give that first, then those that share
/// go down to an equal part of the row, then all lose alike.
std::vector<std::int32_t> DistributeColumns(const std::vector<STMLColumn>& columns, std::int32_t room);
