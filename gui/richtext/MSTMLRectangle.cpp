// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTMLRectangle.h"

MSTMLObject::Size MSTMLRectangle::NaturalSize() const
{
    constexpr double units = 8;   // as high as a capital of a text
    return { .width = Owner().Pixels(units), .height = Owner().Pixels(units) };
}

void MSTMLRectangle::Paint(MDrawer& drawer, const MRectangle& area)
{
    drawer.FillRectangle(area, ColorOr(color, Format().style.alpha));
    if (borderColor)
        drawer.Rectangle(area, Owner().ColorOf(*borderColor, Format().style.alpha), MColorOp::Alphablend,
                         Owner().LinePixels(1));
}
