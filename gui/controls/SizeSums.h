// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>

#include "gui/controls/LayoutOptions.h"

/// What the layouts of a control need together, gathered from the outermost to the innermost.
struct SizeSums
{
    struct Direction
    {
        std::int32_t used = 0;   ///< by strips so far
        std::int32_t remain = 0;   ///< that the rest needs at least
    };

    Direction& Along(Axis axis) { return axis == Axis::X ? x : y; }
    /// A strip takes its thickness from what the rest has.
    void Take(Axis axis, std::int32_t pixels)
    {
        Direction& direction = Along(axis);
        direction.used += pixels;
        direction.remain = std::max(0, direction.remain - pixels);
    }
    void Need(Axis axis, std::int32_t pixels) { Along(axis).remain = std::max(Along(axis).remain, pixels); }

    Direction x;
    Direction y;
};
