// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <vector>

#include "gui/painting/MBitmap.h"
#include "gui/painting/MColorOp.h"
#include "gui/painting/MFill.h"
#include "gui/painting/ShapeContours.h"

/// A shape with exact, anti-aliased edges: closed contours of lines, filled where the winding number isn't 0;
/// curves are made of lines that leave them by a fiftieth of a pixel at most. Made anew for each shape; its
/// memory is kept. Coordinates beyond 16000 pixels are moved there; those that are no numbers count as 0.
/// Thread: GUI.
class ShapeOutline
{
public:
    void Clear();
    /// Begins a contour; the one before is closed.
    void MoveTo(MPointF point);
    void LineTo(MPointF point);

    void AddPolygon(std::span<const MPointF> corners);
    /// Clockwise, or the other way round to cut a hole into another shape.
    void AddRectangle(double left, double top, double right, double bottom, double radius = 0,
                      bool hole = false);
    void AddCircle(MPointF centre, double radius, bool hole = false);
    /// A part of a ring. Angles in degrees, 0 to the right, growing clockwise; ends are cut straight.
    void AddArc(MPointF centre, double radius, double thickness, double startDegrees, double sweepDegrees);
    /// A line of a thickness along the points, with straight ends. Corners are mitred, sharp ones cut.
    void AddStroke(std::span<const MPointF> line, double thickness);

    /// Fills it, as far as the bitmap's clip and `clip` go.
    void Fill(MBitmap& bitmap, const MRectangle& clip, const MFill& fill, MColorOp op);

private:
    void ArcTo(MPointF centre, double radius, double startRadians, double sweepRadians);

    ShapeContours contours;
    std::deque<ShapeContours> parts;   // while it is cut, for each depth; places that stay
    std::vector<MPointF> line;   // of a stroke, without points that coincide
    std::vector<MPointF> offsets;   // of its sides

    friend class ShapeFiller;
};
