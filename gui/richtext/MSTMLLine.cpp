// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTMLLine.h"

MSTMLObject::Size MSTMLLine::NaturalSize() const
{
    return { .width = 1 + 2 * Owner().Pixels(format.acrossSpace),
             .height = Owner().LinePixels(format.size) + 2 * Owner().Pixels(format.downSpace) };
}

void MSTMLLine::Paint(MDrawer& drawer, const MRectangle& area)
{
    const MRectangle line = area.Inset(Owner().Pixels(format.acrossSpace), Owner().Pixels(format.downSpace));
    const auto alpha = static_cast<std::uint8_t>(format.alpha * Format().style.alpha / 255);
    if (!line.IsEmpty())
        drawer.FillRectangle(line, ColorOr(format.color, alpha));
}
