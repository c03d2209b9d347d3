// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/painting/MColor.h"

/// What a shape is filled with: a colour, or a gradient over the shape's bounds.
struct MFill
{
    enum class Direction
    {
        Solid,
        Down,   ///< from the top to the bottom
        Right
    };

    MFill(MColor color) : from(color), to(color) {}   // NOLINT: a colour is a fill
    MFill(MColor first, MColor last, Direction along) : from(first), to(last), direction(along) {}
    static MFill Down(MColor top, MColor bottom) { return { top, bottom, Direction::Down }; }
    static MFill Right(MColor left, MColor right) { return { left, right, Direction::Right }; }

    MColor from;
    MColor to;
    Direction direction = Direction::Solid;
};
