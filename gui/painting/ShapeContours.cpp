// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/ShapeContours.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "foundation/text/MException.h"

void ShapeContours::Clear()
{
    points.clear();
    starts.clear();
}

void ShapeContours::Begin(const FT_Vector& point)
{
    starts.push_back(points.size());
    points.push_back(point);
}

FT_Vector ShapeContours::Fixed(MPointF point)
{
    static constexpr double farthest = 16000;
    const auto fixed = [](double pixels)
    {
        return std::isnan(pixels) ? 0 : std::lround(std::clamp(pixels, -farthest, farthest) * 64);
    };
    return { fixed(point.x), fixed(-point.y) };
}

FT_BBox ShapeContours::Bounds() const
{
    FT_BBox bounds{ points[0].x, points[0].y, points[0].x, points[0].y };
    for (const FT_Vector& point : points)
    {
        bounds.xMin = std::min(bounds.xMin, point.x);
        bounds.yMin = std::min(bounds.yMin, point.y);
        bounds.xMax = std::max(bounds.xMax, point.x);
        bounds.yMax = std::max(bounds.yMax, point.y);
    }
    return bounds;
}

void ShapeContours::CutInto(ShapeContours& part, FT_Pos x, bool right) const
{
    part.Clear();
    const auto keeps = [x, right](const FT_Vector& point)
    {
        return right ? point.x >= x : point.x <= x;
    };
    for (std::size_t contour = 0; contour < starts.size(); ++contour)
    {
        const std::size_t first = starts[contour];
        const std::size_t end = contour + 1 < starts.size() ? starts[contour + 1] : points.size();
        const std::size_t before = part.points.size();
        FT_Vector from = points[end - 1];
        bool fromKept = keeps(from);
        for (std::size_t i = first; i < end; ++i)
        {
            const FT_Vector& to = points[i];
            const bool toKept = keeps(to);
            if (toKept != fromKept)
            {
                // The same for both sides, whichever way the edge is walked.
                const FT_Vector& low = from.x < to.x ? from : to;
                const FT_Vector& high = from.x < to.x ? to : from;
                part.points.push_back({ x, low.y + (high.y - low.y) * (x - low.x) / (high.x - low.x) });
            }
            if (toKept)
                part.points.push_back(to);
            from = to;
            fromKept = toKept;
        }
        if (part.points.size() > before)
            part.starts.push_back(before);
    }
}

FT_Outline ShapeContours::Outline()
{
    constexpr std::size_t most = std::numeric_limits<short>::max();
    if (points.size() > most)
        throw MException("GDI operation error.", MErrorCode::Drawing);
    tags.assign(points.size(), FT_CURVE_TAG_ON);
    ends.clear();
    for (std::size_t contour = 1; contour < starts.size(); ++contour)
        ends.push_back(static_cast<short>(starts[contour] - 1));
    ends.push_back(static_cast<short>(points.size() - 1));
    FT_Outline outline{};
    outline.n_points = static_cast<short>(points.size());
    outline.n_contours = static_cast<short>(ends.size());
    outline.points = points.data();
    outline.tags = tags.data();
    outline.contours = ends.data();
    return outline;
}
