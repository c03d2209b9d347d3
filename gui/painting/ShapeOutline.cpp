// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/ShapeOutline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>

#include FT_STROKER_H

#include "foundation/text/MException.h"
#include "gui/painting/FontLibrary.h"
#include "gui/painting/PixelLoops.h"

namespace
{
constexpr double farthest = 16000;

FT_Pos Fixed(double pixels)
{
    const double limited = std::isnan(pixels) ? 0.0 : std::clamp(pixels, -farthest, farthest);
    return std::lround(limited * 64);
}

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
    points.clear();
    tags.clear();
    ends.clear();
    open = false;
}

void ShapeOutline::Add(MPointF point, char tag)
{
    points.push_back({ Fixed(point.x), Fixed(-point.y) });
    tags.push_back(tag);
}

void ShapeOutline::CloseContour()
{
    if (open)
        ends.push_back(static_cast<short>(points.size() - 1));
    open = false;
}

void ShapeOutline::MoveTo(MPointF point)
{
    CloseContour();
    // FreeType counts the points of an outline in 16 bits.
    if (points.size() > std::numeric_limits<short>::max() - 8)
        throw MException("GDI operation error.", MErrorCode::Drawing);
    Add(point, FT_CURVE_TAG_ON);
    open = true;
}

void ShapeOutline::LineTo(MPointF point)
{
    Add(point, FT_CURVE_TAG_ON);
}

void ShapeOutline::CurveTo(MPointF control1, MPointF control2, MPointF end)
{
    Add(control1, FT_CURVE_TAG_CUBIC);
    Add(control2, FT_CURVE_TAG_CUBIC);
    Add(end, FT_CURVE_TAG_ON);
}

void ShapeOutline::AddPolygon(std::span<const MPointF> corners)
{
    if (corners.size() < 3)
        return;
    MoveTo(corners[0]);
    for (const MPointF& corner : corners.subspan(1))
        LineTo(corner);
    CloseContour();
}

/// By lines that leave the arc by a fiftieth of a pixel at most: FreeType's own way with curves leaves it by
/// several times that, which makes small discs visibly smaller.
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
    CloseContour();
}

void ShapeOutline::AddCircle(MPointF centre, double radius, bool hole)
{
    if (!(radius > 0))
        return;
    MoveTo({ centre.x + radius, centre.y });
    ArcTo(centre, radius, 0, hole ? -2 * std::numbers::pi : 2 * std::numbers::pi);
    CloseContour();
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
    CloseContour();
}

void ShapeOutline::AddStroke(std::span<const MPointF> line, double thickness, bool closed, bool roundEnds)
{
    if (line.size() < 2 || !(thickness > 0))
        return;
    FT_Stroker made = nullptr;
    Check(FT_Stroker_New(FontLibrary::Get(), &made));
    const std::unique_ptr<std::remove_pointer_t<FT_Stroker>, decltype(&FT_Stroker_Done)> stroker(
        made, &FT_Stroker_Done);
    FT_Stroker_Set(made, Fixed(thickness / 2), roundEnds ? FT_STROKER_LINECAP_ROUND : FT_STROKER_LINECAP_BUTT,
                   FT_STROKER_LINEJOIN_ROUND, 0);
    const auto fixed = [](MPointF point)
    {
        return FT_Vector{ Fixed(point.x), Fixed(-point.y) };
    };
    FT_Vector begin = fixed(line[0]);
    Check(FT_Stroker_BeginSubPath(made, &begin, closed ? 0 : 1));
    for (const MPointF& point : line.subspan(1))
    {
        FT_Vector to = fixed(point);
        Check(FT_Stroker_LineTo(made, &to));
    }
    Check(FT_Stroker_EndSubPath(made));

    FT_UInt pointCount = 0;
    FT_UInt contourCount = 0;
    Check(FT_Stroker_GetCounts(made, &pointCount, &contourCount));
    CloseContour();
    const std::size_t before = points.size();
    const std::size_t contoursBefore = ends.size();
    if (before + pointCount > static_cast<std::size_t>(std::numeric_limits<short>::max()))
        throw MException("GDI operation error.", MErrorCode::Drawing);
    points.resize(before + pointCount);
    tags.resize(before + pointCount);
    ends.resize(contoursBefore + contourCount);
    FT_Outline outline{};
    outline.points = points.data() + before;
    outline.tags = tags.data() + before;
    outline.contours = ends.data() + contoursBefore;
    FT_Stroker_Export(made, &outline);
    for (std::size_t i = contoursBefore; i < ends.size(); ++i)
        ends[i] = static_cast<short>(ends[i] + static_cast<short>(before));
}

void ShapeOutline::Fill(MBitmap& bitmap, const MRectangle& area, const MFill& fill, MColorOp op)
{
    CloseContour();
    const MRectangle clip = area.Intersection(bitmap.Clip());
    if (points.empty() || clip.IsEmpty() || op == MColorOp::None)
        return;
    FT_Outline outline{};
    outline.n_points = static_cast<short>(points.size());
    outline.n_contours = static_cast<short>(ends.size());
    outline.points = points.data();
    outline.tags = tags.data();
    outline.contours = ends.data();
    FT_BBox bounds;
    FT_Outline_Get_CBox(&outline, &bounds);
    SpanPainter painter(bitmap, clip, fill, op, bounds);
    FT_Raster_Params params{};
    params.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
    params.gray_spans = &SpanPainter::Paint;
    params.user = &painter;
    params.clip_box = { clip.left, -1 - clip.bottom, clip.right + 1, -clip.top };
    Check(FT_Outline_Render(FontLibrary::Get(), &outline, &params));
}
