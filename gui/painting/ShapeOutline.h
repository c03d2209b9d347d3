// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <ft2build.h>
#include FT_OUTLINE_H

#include "gui/painting/MBitmap.h"
#include "gui/painting/MColorOp.h"
#include "gui/painting/MFill.h"

/// A point between pixels: 0, 0 is the upper left corner of the first pixel, 0.5, 0.5 its middle.
struct MPointF
{
    double x = 0;
    double y = 0;
};

/// A shape with exact, anti-aliased edges: closed contours of lines and curves, filled where the winding
/// number isn't 0. Made anew for each shape; its memory is kept. Coordinates beyond 16000 pixels are moved
/// there; those that are no numbers count as 0. Thread: GUI.
class ShapeOutline
{
public:
    void Clear();
    /// Begins a contour; the one before is closed.
    void MoveTo(MPointF point);
    void LineTo(MPointF point);
    /// A cubic curve.
    void CurveTo(MPointF control1, MPointF control2, MPointF end);

    void AddPolygon(std::span<const MPointF> points);
    /// Clockwise, or the other way round to cut a hole into another shape.
    void AddRectangle(double left, double top, double right, double bottom, double radius = 0,
                      bool hole = false);
    void AddCircle(MPointF centre, double radius, bool hole = false);
    /// A part of a ring. Angles in degrees, 0 to the right, growing clockwise; ends are cut straight.
    void AddArc(MPointF centre, double radius, double thickness, double startDegrees, double sweepDegrees);
    /// A line of a thickness along the points, with round joins, and round or straight ends.
    void AddStroke(std::span<const MPointF> points, double thickness, bool closed = false,
                   bool roundEnds = false);

    bool IsEmpty() const { return points.empty(); }
    /// Fills it, as far as the bitmap's clip and `clip` go.
    void Fill(MBitmap& bitmap, const MRectangle& clip, const MFill& fill, MColorOp op);

private:
    void CloseContour();
    void Add(MPointF point, char tag);
    void ArcTo(MPointF centre, double radius, double startRadians, double sweepRadians);

    std::vector<FT_Vector> points;   // in 64ths of a pixel, up
    std::vector<char> tags;
    std::vector<short> ends;
    bool open = false;
};
