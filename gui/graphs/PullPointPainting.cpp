// SPDX-License-Identifier: GPL-3.0-or-later
// How points look.
#include <algorithm>
#include <cmath>

#include "foundation/text/MStringFormat.h"
#include "gui/graphs/PullPointEditing.h"

namespace
{
// Units at 100 %.
constexpr double PlainRadius = 5;   // without an image
constexpr double RingGap = 3;   // around the point that is moved
constexpr double RingThickness = 1.5;
constexpr double BarThickness = 3;
constexpr double CapHeight = 7;
constexpr double CapWidth = 2;
constexpr double LeastHandle = 10;
constexpr double HandleOfWidth = 40;

constexpr std::int32_t DisabledAlpha = 51;   // of 256
constexpr std::int32_t DisabledRingAlpha = 128;
constexpr double DisabledNumber = 0.7;
constexpr std::int32_t HandleAlpha = 221;

MColor ShareOf(MColor color, std::int32_t share)
{
    return color.WithAlpha(static_cast<std::uint8_t>(color.Alpha() * share / 256));
}
}   // namespace

MString PullPointEditing::PointImage(std::int32_t index) const
{
    return Format("eqeqpoint{0}", index + 1);
}

MColor PullPointEditing::PointColor(const MDrawer& drawer, std::int32_t index) const
{
    constexpr std::int32_t bandColors = 10;
    return drawer.GetColor(static_cast<std::int32_t>(MStdColor::Band1) + index % bandColors);
}

void PullPointEditing::Paint(MGraphEditor& editor, MDrawer& drawer)
{
    const MSynchronizerGuard guard(lock);
    scale = drawer.GetScale();
    const MStyle* style = editor.Style();
    const MBitmap* first = style != nullptr ? style->FindBitmap(PointImage(0)) : nullptr;
    pointRadius =
        first != nullptr ? first->Width() / 2 : static_cast<std::int32_t>(std::lround(PlainRadius * scale));
    for (std::int32_t i = PointCount() - 1; i >= 0; --i)
    {
        const State point = GetPoint(i);
        const MPoint centre = PixelOf(point);
        if (!IsInView(centre))
            continue;
        const MColor ink = PointColor(drawer, i);
        if (point.enabled && point.hasWidth)
        {
            // Handles end at the graph; a point at its edge reaches over it.
            const MRectangle clip = drawer.GetClip();
            drawer.SetClip(clip.Intersection(editor.ClipRectangle()));
            PaintHandles(drawer, centre, point.width, ShareOf(ink, HandleAlpha));
            drawer.SetClip(clip);
        }
        const MBitmap* image = style != nullptr ? style->FindBitmap(PointImage(i)) : nullptr;
        // An image of even width has no middle pixel.
        const double half = image != nullptr && image->Width() % 2 == 0 ? 0 : 0.5;
        const MPointF middle{ centre.x + half, centre.y + half };
        const MColor shown = point.enabled ? ink : ShareOf(ink, DisabledAlpha);
        if (image != nullptr)
            drawer.BitBlt(centre.x - image->Width() / 2, centre.y - image->Height() / 2, *image,
                          image->Bounds(), shown.Alpha());
        else
            drawer.FillCircle(middle, pointRadius, shown);
        if (!point.enabled)
            drawer.Circle(middle, pointRadius - 0.5, 1, ShareOf(ink, DisabledRingAlpha));
        if (image == nullptr || !point.enabled)
            PaintNumber(drawer, i, centre, point.enabled);
        const bool isMoved = (dragPoint && dragIndex == i) || keyPoint == i || hoverIndex == i;
        if (isMoved)
            drawer.Circle(middle, pointRadius + RingGap * scale, RingThickness * scale,
                          drawer.GetColor(static_cast<std::int32_t>(MStdColor::Text)));
    }
    PaintText(editor, drawer);
}

void PullPointEditing::PaintNumber(MDrawer& drawer, std::int32_t index, MPoint centre, bool enabled) const
{
    const MColor quiet = drawer.GetColor(static_cast<std::int32_t>(MStdColor::Text2)).Faded(DisabledNumber);
    const MRectangle box{ centre.x - 2 * pointRadius, centre.y - pointRadius, centre.x + 2 * pointRadius,
                          centre.y + pointRadius };
    drawer.AlignedTextOut(box, MString::FromInt(index + 1),
                          drawer.GetFont(static_cast<std::int32_t>(MStdFont::Point)),
                          enabled ? MColor(255, 255, 255) : quiet, MPlacement::Middle);
}

void PullPointEditing::PaintHandles(MDrawer& drawer, MPoint centre, double width, MColor ink) const
{
    const auto pixels = [this](double units)
    {
        return std::max(1, static_cast<std::int32_t>(std::lround(units * scale)));
    };
    const std::int32_t x = centre.x;
    const std::int32_t y = centre.y;
    const std::int32_t reach = pointRadius + pixels(LeastHandle + HandleOfWidth * width);
    const std::int32_t bar = pixels(BarThickness);
    const std::int32_t cap = pixels(CapHeight);
    const std::int32_t capWidth = pixels(CapWidth);
    for (const bool isLeft : { true, false })
    {
        // From the point's edge to the cap, and the cap, so that no pixel is painted twice.
        const std::int32_t near = pointRadius + 1;
        const std::int32_t far = reach - capWidth;
        const MRectangle barPlace{ isLeft ? x - far : x + near, y - bar / 2, isLeft ? x - near : x + far,
                                   y - bar / 2 + bar - 1 };
        const std::int32_t capLeft = isLeft ? x - reach : x + far + 1;
        drawer.FillRectangle(barPlace, ink);
        drawer.FillRectangle(MRectangle::OfSize(capLeft, y - cap / 2, capWidth, cap), ink);
    }
}

void PullPointEditing::PaintText(MGraphEditor& editor, MDrawer& drawer) const
{
    if (!IsDragging() && keyPoint < 0)
        return;
    const std::int32_t index = dragPoint ? dragIndex : dragWidth ? widthIndex : keyPoint;
    const State point = GetPoint(index);
    MString text;
    if (dragWidth)
        text = widthFormat ? widthFormat(index) : Format("{0.1}%", point.width * 100);
    else
        text = format ? format(index) : editor.PointText(point.x, point.y);
    // At the point, which is at the pointer as long as no limit holds it.
    editor.PaintReadout(drawer, PixelOf(point).x, PixelOf(point).y, text);
}
