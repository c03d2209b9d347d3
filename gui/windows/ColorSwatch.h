// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>

#include "gui/controls/MStyle.h"

/// A colour as a field: squares behind it show how much of them it lets through.
inline void PaintColorSwatch(MDrawer& drawer, const MStyle& style, const MRectangle& area, MColor color)
{
    constexpr double SquareUnits = 5;
    const MColor light(204, 204, 204);
    const MColor dark(128, 128, 128);
    const std::int32_t square = std::max(1, style.Pixels(SquareUnits));
    drawer.FillRectangle(area, light);
    for (std::int32_t y = 0; color.Alpha() != 255 && y < area.Height(); y += square)
        for (std::int32_t x = (y / square % 2) * square; x < area.Width(); x += 2 * square)
            drawer.FillRectangle(
                MRectangle::OfSize(area.left + x, area.top + y, square, square).Intersection(area), dark);
    drawer.FillRectangle(area, color);
    drawer.Rectangle(area, style.GetColor(MStdColor::FieldEdge), MColorOp::Alphablend, style.Hairline());
}
