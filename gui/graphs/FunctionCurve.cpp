// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/FunctionCurve.h"

#include <algorithm>
#include <cmath>

namespace
{
/// All graphs are painted one after the other, and share the painter's memory.
CurvePainter& SharedPainter()
{
    static CurvePainter painter;
    return painter;
}

double WidestStroke(const CurveLook& look, double scale)
{
    double widest = 1 + scale;
    for (const CurveStroke& stroke : look.strokes)
        widest = std::max(widest, stroke.width * scale);
    return widest;
}
}   // namespace

bool FunctionCurve::Begin(const MGraphEditor& editor, MDrawer& drawer, const GraphMapping& mapping,
                          const CurveLook& look)
{
    const MRectangle& area = editor.GraphRectangle();
    if (area.IsEmpty())
        return false;
    drawer.SetClip(drawer.GetClip().Intersection(area));
    const MRectangle clip = drawer.GetClip();
    if (clip.IsEmpty())
        return false;
    // A stroke's pixels depend on columns beside them; with those, every clip gives the same picture.
    const std::int32_t margin = CurvePainter::Margin(WidestStroke(look, drawer.GetScale()));
    left = std::max(area.left, clip.left - margin);
    const std::int32_t end = std::min(area.right, clip.right + margin) + 1;
    x.resize(static_cast<std::size_t>(end - left) + 1);
    y.assign(x.size(), 0);
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = mapping.x.Limited(mapping.x.ValueOf(left + static_cast<double>(i) - 0.5));
    return true;
}

void FunctionCurve::Finish(const MGraphEditor& editor, MDrawer& drawer, const GraphMapping& mapping,
                           const CurveLook& look, MColor color)
{
    const MRectangle& area = editor.GraphRectangle();
    heights.resize(y.size());
    for (std::size_t i = 0; i < y.size(); ++i)
        heights[i] = mapping.y.PlaceOf(mapping.y.Limited(y[i])) + 0.5;
    CurvePainter& painter = SharedPainter();
    if (look.drawFill)
    {
        // The base's own pixels belong to the area.
        const std::int32_t base = mapping.y.PixelOf(look.baseLevel);
        const std::int32_t edge = base <= area.top ? area.top : std::min(base, area.bottom) + 1;
        const std::int32_t alpha = (color.Alpha() + 1) * look.fillAlpha / 256;
        painter.Fill(drawer, left, heights, edge,
                     color.WithAlpha(static_cast<std::uint8_t>(std::min(alpha, 255))));
    }
    if (!look.drawLine)
        return;
    const double scale = drawer.GetScale();
    std::vector<CurvePainter::Stroke> strokes;
    for (const CurveStroke& stroke : look.strokes)
        strokes.push_back({ stroke.width * scale, stroke.color.Alpha() != 0 ? stroke.color : color });
    if (strokes.empty())
    {
        const double thickness = std::max(1.0, std::round(scale));
        strokes.push_back({ look.thick ? thickness + 1 : thickness, color });
        if (look.thick)
            for (double& height : heights)
                height += 0.5;
    }
    painter.Ribbon(drawer, left, heights, strokes);
}
