// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/ShapeOutline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include <ft2build.h>
#include FT_OUTLINE_H

#include "foundation/text/MException.h"
#include "gui/painting/FontLibrary.h"
#include "gui/painting/PixelLoops.h"

namespace
{
void Check(FT_Error error)
{
    if (error != 0)
        throw MException("GDI operation error.", MErrorCode::Drawing);
}

/// Takes the spans of a shape and puts them on the bitmap.
class SpanPainter
{
public:
    SpanPainter(MBitmap& target, const MRectangle& area, const MFill& usedFill, MColorOp usedOp,
                const FT_BBox& bounds)
        : bitmap(target), clip(area), fill(usedFill),
          op(usedOp == MColorOp::Copy ? MColorOp::Alphablend : usedOp)
    {
        const bool down = fill.direction == MFill::Direction::Down;
        start = static_cast<double>(down ? -bounds.yMax : bounds.xMin) / 64;
        length = static_cast<double>(down ? bounds.yMax - bounds.yMin : bounds.xMax - bounds.xMin) / 64;
    }

    static void Paint(int y, int count, const FT_Span* spans, void* user)
    {
        static_cast<SpanPainter*>(user)->PaintRow(-1 - y, { spans, static_cast<std::size_t>(count) });
    }

private:
    void PaintRow(std::int32_t y, std::span<const FT_Span> spans)
    {
        if (y < clip.top || y > clip.bottom)
            return;
        const MColor rowColor = fill.direction == MFill::Direction::Down ? ColorAt(y) : fill.from;
        for (const FT_Span& span : spans)
        {
            const std::int32_t left = std::max<std::int32_t>(span.x, clip.left);
            const std::int32_t right = std::min<std::int32_t>(span.x + span.len - 1, clip.right);
            if (right < left || span.coverage == 0)
                continue;
            if (fill.direction != MFill::Direction::Right)
                PaintSpan(bitmap.Row(y) + left, right - left + 1, rowColor, span.coverage);
            else
                for (std::int32_t x = left; x <= right; ++x)
                    PaintSpan(bitmap.Row(y) + x, 1, ColorAt(x), span.coverage);
        }
    }

    void PaintSpan(std::uint32_t* pixels, std::int32_t count, MColor color, std::uint32_t coverage) const
    {
        constexpr std::int32_t shortSpan = 6;   // not worth a loop
        const std::uint32_t alpha = Pixels::Share(color.Alpha(), coverage);
        if (op == MColorOp::Alphablend && count <= shortSpan)
            for (std::int32_t i = 0; i < count; ++i)
                pixels[i] = Pixels::Alphablended(pixels[i], color.value, alpha);
        else
            Pixels::Fill({ .first = pixels, .stride = 0, .width = count, .height = 1 },
                         color.WithAlpha(static_cast<std::uint8_t>(alpha)), op);
    }

    MColor ColorAt(std::int32_t place) const
    {
        return fill.from.Mixed(fill.to, std::clamp((place + 0.5 - start) / length, 0.0, 1.0));
    }

    MBitmap& bitmap;
    MRectangle clip;
    const MFill& fill;
    MColorOp op;
    double start = 0;
    double length = 0;
};
}   // namespace

void ShapeOutline::Clear()
{
    contours.Clear();
}

void ShapeOutline::MoveTo(MPointF point)
{
    contours.Begin(ShapeContours::Fixed(point));
}

void ShapeOutline::LineTo(MPointF point)
{
    contours.Add(ShapeContours::Fixed(point));
}

void ShapeOutline::AddPolygon(std::span<const MPointF> corners)
{
    if (corners.size() < 3)
        return;
    MoveTo(corners[0]);
    for (const MPointF& corner : corners.subspan(1))
        LineTo(corner);
}

/// FreeType's own way with curves leaves them by several times as much, which makes small discs visibly
/// smaller.
void ShapeOutline::ArcTo(MPointF centre, double radius, double start, double sweep)
{
    constexpr double tolerance = 0.02;
    const double step = 2 * std::acos(1 - tolerance / std::max(radius, 2 * tolerance));
    const int pieces = std::clamp(static_cast<int>(std::ceil(std::abs(sweep) / step)), 1, 1024);
    for (int piece = 1; piece <= pieces; ++piece)
    {
        const double angle = start + sweep * piece / pieces;
        LineTo({ centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle) });
    }
}

void ShapeOutline::AddRectangle(double left, double top, double right, double bottom, double radius,
                                bool hole)
{
    if (!(right > left) || !(bottom > top))
        return;
    constexpr double quarter = std::numbers::pi / 2;
    const double r = std::clamp(radius, 0.0, std::min(right - left, bottom - top) / 2);
    struct Corner
    {
        MPointF centre;
        double start;   // of the arc, clockwise
    };
    const std::array<Corner, 4> corners{ { { { right - r, top + r }, -quarter },
                                           { { right - r, bottom - r }, 0 },
                                           { { left + r, bottom - r }, quarter },
                                           { { left + r, top + r }, 2 * quarter } } };
    for (std::size_t i = 0; i < corners.size(); ++i)
    {
        const Corner& corner = corners[hole ? 3 - i : i];
        const double start = hole ? corner.start + quarter : corner.start;
        const MPointF from{ corner.centre.x + r * std::cos(start), corner.centre.y + r * std::sin(start) };
        if (i == 0)
            MoveTo(from);
        else
            LineTo(from);
        if (r > 0)
            ArcTo(corner.centre, r, start, hole ? -quarter : quarter);
    }
}

void ShapeOutline::AddCircle(MPointF centre, double radius, bool hole)
{
    if (!(radius > 0))
        return;
    MoveTo({ centre.x + radius, centre.y });
    ArcTo(centre, radius, 0, hole ? -2 * std::numbers::pi : 2 * std::numbers::pi);
}

void ShapeOutline::AddArc(MPointF centre, double radius, double thickness, double startDegrees,
                          double sweepDegrees)
{
    const double outer = radius + thickness / 2;
    const double inner = std::max(0.0, radius - thickness / 2);
    const double start = startDegrees * std::numbers::pi / 180;
    const double sweep = std::clamp(sweepDegrees, -360.0, 360.0) * std::numbers::pi / 180;
    if (!(outer > 0) || sweep == 0)
        return;
    const auto at = [centre](double r, double angle)
    {
        return MPointF{ centre.x + r * std::cos(angle), centre.y + r * std::sin(angle) };
    };
    MoveTo(at(outer, start));
    ArcTo(centre, outer, start, sweep);
    LineTo(at(inner, start + sweep));
    if (inner > 0)
        ArcTo(centre, inner, start + sweep, -sweep);
}

void ShapeOutline::AddStroke(std::span<const MPointF> given, double thickness)
{
    constexpr double leastStep = 1e-3;   // pixels; shorter ones have no direction to speak of
    line.clear();
    for (const MPointF& point : given)
        if (std::isfinite(point.x) && std::isfinite(point.y) &&
            (line.empty() ||
             std::abs(point.x - line.back().x) + std::abs(point.y - line.back().y) > leastStep))
            line.push_back(point);
    if (line.size() < 2 || !(thickness > 0))
        return;

    // Along one side and back along the other. Where the line bends, the offset is that of the mitre; its
    // length is limited, and so are corners that are sharper than the line is thick.
    constexpr double longestMitre = 1.6;   // half thicknesses
    const double half = thickness / 2;
    const auto direction = [this](std::size_t from)
    {
        const double dx = line[from + 1].x - line[from].x;
        const double dy = line[from + 1].y - line[from].y;
        const double length = std::sqrt(dx * dx + dy * dy);
        return MPointF{ dx / length, dy / length };
    };
    offsets.clear();
    MPointF in = direction(0);
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        const MPointF out = i + 1 < line.size() ? direction(i) : in;
        const MPointF normal{ -(in.y + out.y), in.x + out.x };
        const double square =
            normal.x * normal.x + normal.y * normal.y;   // 4 on a straight line, 0 at a turn
        const double mitre = std::min(2 / square, longestMitre / std::sqrt(square)) * half;
        const bool turns = square < 1e-6;
        offsets.push_back(turns ? MPointF{ -in.y * half, in.x * half }
                                : MPointF{ normal.x * mitre, normal.y * mitre });
        in = out;
    }
    MoveTo({ line[0].x + offsets[0].x, line[0].y + offsets[0].y });
    for (std::size_t i = 1; i < line.size(); ++i)
        LineTo({ line[i].x + offsets[i].x, line[i].y + offsets[i].y });
    for (std::size_t i = line.size(); i-- > 0;)
        LineTo({ line[i].x - offsets[i].x, line[i].y - offsets[i].y });
}

/// Fills what is wide and has many edges in parts: the rasterizer keeps a row's edges in a list that it
/// searches from the start.
class ShapeFiller
{
public:
    ShapeFiller(ShapeOutline& filledShape, SpanPainter& usedPainter)
        : shape(filledShape), painter(usedPainter)
    {
    }

    void Fill(ShapeContours& contours, const MRectangle& clip, std::size_t depth)
    {
        constexpr std::int32_t narrow = 256;
        constexpr std::size_t few = 64;
        if (contours.IsEmpty() || clip.IsEmpty())
            return;
        if (clip.Width() <= narrow || contours.PointCount() <= few)
            return Render(contours, clip);
        if (shape.parts.size() <= depth)
            shape.parts.resize(depth + 1);
        const std::int32_t middle = clip.left + clip.Width() / 2;
        for (const bool right : { false, true })
        {
            const MRectangle side = right ? MRectangle{ middle, clip.top, clip.right, clip.bottom }
                                          : MRectangle{ clip.left, clip.top, middle - 1, clip.bottom };
            contours.CutInto(shape.parts[depth], FT_Pos{ middle } * 64, right);
            Fill(shape.parts[depth], side, depth + 1);
        }
    }

private:
    void Render(ShapeContours& contours, const MRectangle& clip)
    {
        FT_Outline outline = contours.Outline();
        FT_Raster_Params params{};
        params.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
        params.gray_spans = &SpanPainter::Paint;
        params.user = &painter;
        params.clip_box = { clip.left, -1 - clip.bottom, clip.right + 1, -clip.top };
        Check(FT_Outline_Render(FontLibrary::Get(), &outline, &params));
    }

    ShapeOutline& shape;
    SpanPainter& painter;
};

void ShapeOutline::Fill(MBitmap& bitmap, const MRectangle& area, const MFill& fill, MColorOp op)
{
    MRectangle clip = area.Intersection(bitmap.Clip());
    if (contours.IsEmpty() || clip.IsEmpty() || op == MColorOp::None)
        return;
    const FT_BBox bounds = contours.Bounds();
    SpanPainter painter(bitmap, clip, fill, op, bounds);
    clip.left = std::max(clip.left, static_cast<std::int32_t>(bounds.xMin >> 6));
    clip.right = std::min(clip.right, static_cast<std::int32_t>(bounds.xMax >> 6));
    ShapeFiller(*this, painter).Fill(contours, clip, 0);
}
