// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/stylebuilder/FaceDrawing.h"

#include <algorithm>

void DrawFace(MBitmap& bitmap, const StyleScale& scale, const MRectangle& area, const FaceLook& look)
{
    MDrawerToMBitmap painter(bitmap);
    MDrawer& drawer = painter;
    const double radius = look.radius * scale.Factor();
    if (look.edge.Alpha() == 0)
        return drawer.FillRoundRectangle(area, radius, look.fill, MColorOp::Overlay);
    // The whole in the edge's colour and the inside above it: what both cover partly is mixed once.
    const std::int32_t hairline = scale.Hairline();
    const double half = radius > 0 ? hairline / 2.0 : 0;
    drawer.FillRoundRectangle(area, radius + half, look.edge, MColorOp::Overlay);
    drawer.FillRoundRectangle(area.Inset(hairline, hairline), std::max(0.0, radius - half), look.fill,
                              MColorOp::Overlay);
}

void DrawLamp(MBitmap& bitmap, const StyleScale& scale, const MRectangle& area, MColor color)
{
    MDrawerToMBitmap painter(bitmap);
    MDrawer& drawer = painter;
    const std::int32_t inset = scale.Pixels(4);
    const std::int32_t bottom = area.bottom - scale.Pixels(2);
    drawer.FillRoundRectangle({ area.left + inset, bottom - scale.Pixels(2) + 1, area.right - inset, bottom },
                              scale.Factor(), color, MColorOp::Overlay);
}

MBitmap FaceImage(const StyleScale& scale, const FaceLook& look)
{
    const std::int32_t least = 2 * scale.PixelsAbove(look.cap) + 1;
    MBitmap image(least, std::max(least, scale.Pixels(look.height)));
    DrawFace(image, scale, image.Bounds(), look);
    if (look.lamp.Alpha() > 0)
        DrawLamp(image, scale, image.Bounds(), look.lamp);
    return image;
}
