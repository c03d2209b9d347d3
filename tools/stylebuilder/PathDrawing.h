// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "gui/painting/MBitmap.h"
#include "gui/painting/ShapeContours.h"

/// One shape of a drawing, in the units of its box.
struct PathShape
{
    enum class Kind
    {
        Line,
        Ring,
        Arc,
        Disc,
        Frame,
        Box,
        Polygon
    };
    Kind kind = Kind::Line;
    std::vector<MPointF> points;
    double stroke = 0;   ///< 0: the drawing's own
    double values[3]{};   ///< radius and angles, or size and radius
};

/// What a file of paths holds under one name. See resources/style/icons.txt for its words.
struct PathDrawing
{
    enum class Kind
    {
        Icon,
        Picture,
        Cursor
    };
    Kind kind = Kind::Icon;
    std::string name;
    double first = 14;   ///< an icon's usual size, a picture's width, a cursor's hot spot
    double second = 0;   ///< an icon's stroke at 14, a picture's height, a cursor's hot spot
    std::vector<PathShape> shapes;
};

/// Throws MException "{0}:{1}: ..." with the path and line for anything that is no description.
std::vector<PathDrawing> ReadPathDrawings(const std::string& path);

/// Draws it onto a transparent bitmap, its box from 0, 0.
/// @param unit    pixels
/// @param stroke  in units, of lines that have none of their own
/// @param spread  in units, added round everything: for a dark line behind
void DrawPaths(MBitmap& bitmap, const PathDrawing& drawing, double unit, double stroke, MColor color,
               double spread = 0);
