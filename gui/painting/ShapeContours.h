// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

#include <ft2build.h>
#include FT_OUTLINE_H

/// A place between pixels: 0, 0 is the upper left corner of the first pixel, 0.5, 0.5 its middle.
struct MPointF
{
    double x = 0;
    double y = 0;
};

/// Closed polygons in the rasterizer's form: 64ths of a pixel, upwards.
class ShapeContours
{
public:
    void Clear();
    /// Begins a polygon, with its first point.
    void Begin(const FT_Vector& point);
    void Add(const FT_Vector& point) { points.push_back(point); }
    static FT_Vector Fixed(MPointF point);

    bool IsEmpty() const { return points.empty(); }
    std::size_t PointCount() const { return points.size(); }
    FT_BBox Bounds() const;
    /// What of it lies at one side of a vertical line, exactly: what both sides cover adds up to the whole.
    /// (Sutherland and Hodgman, Reentrant Polygon Clipping, 1974.)
    void CutInto(ShapeContours& part, FT_Pos x, bool right) const;
    /// For the rasterizer. As long as this isn't changed. Throws MException "GDI operation error." for more
    /// points than that can take.
    FT_Outline Outline();

private:
    std::vector<FT_Vector> points;
    std::vector<std::size_t> starts;
    std::vector<char> tags;
    std::vector<short> ends;
};
