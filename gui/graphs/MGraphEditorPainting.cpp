// SPDX-License-Identifier: GPL-3.0-or-later
// How a graph editor looks.
#include <algorithm>
#include <cmath>

#include "foundation/text/Boundary.h"
#include "gui/graphs/GraphSizes.h"
#include "gui/graphs/MAxisRendererList.h"
#include "gui/graphs/MGraphEditor.h"

namespace
{
// Shares of 256 of an alpha.
constexpr std::int32_t FrameAlpha = 150;
constexpr std::int32_t StrongAlpha = 120;
constexpr std::int32_t WeakAlpha = 50;
constexpr double ZeroShare = 1.3;   // of the grid's alpha, for the line at zero: 26 % of the text's colour
constexpr double PlainGridView = 0.1;   // what is zoomed as far as that has no round labels left
constexpr double ZoomRectangleFill = 0.1;
constexpr double CanvasShade =
    0.022;   // white at the top of a dark canvas, black at the bottom of a light one
constexpr std::int32_t MiddleGrey = 128;

// Units at 100 %.
constexpr double ReadoutHeight = 18;
constexpr double ReadoutBelow = 15;
constexpr double ReadoutPadding = 8;
constexpr double ReadoutRadius = 4;
constexpr double CursorTextHeight = 15;
constexpr double LeastCaptionSpace = 8;   // around captions beside the graph

MColor ShareOf(MColor color, std::int32_t share)
{
    return color.WithAlpha(static_cast<std::uint8_t>(color.Alpha() * share / 256));
}

MColor ColorOf(const MDrawer& drawer, MStdColor role)
{
    return drawer.GetColor(static_cast<std::int32_t>(role));
}

std::int32_t Pixels(const MDrawer& drawer, double units)
{
    return static_cast<std::int32_t>(std::floor(units * drawer.GetScale() + 0.5));
}
}   // namespace

/// One axis of the grid, while it is painted.
struct MGraphEditor::GridSide
{
    MDrawer& drawer;
    MRectangle area;   // of the graphs
    bool isHorizontal;

    std::int32_t Length() const { return isHorizontal ? area.Width() : area.Height(); }
    void Line(double viewPosition, MColor color) const
    {
        // Thin ones stay one pixel up to 250 %.
        const std::int32_t thick = drawer.GetScale() > 2.5 ? 2 : 1;
        const auto at = static_cast<std::int32_t>(std::floor(viewPosition * (Length() - 1) + 0.5));
        if (at < 0 || at > Length() - 1)
            return;
        const MRectangle line = isHorizontal
                                    ? MRectangle::OfSize(area.left + at, area.top, thick, area.Height())
                                    : MRectangle::OfSize(area.left, area.bottom - at, area.Width(), thick);
        drawer.FillRectangle(line.Intersection(area), color);
    }
    /// The strong lines and those between.
    void Lines(const std::vector<MAxisLabel>& labels, std::int32_t minorCount) const
    {
        const MColor grid = ColorOf(drawer, MStdColor::Grid);
        const double zeroAlpha = std::min(255.0, grid.Alpha() * ZeroShare);
        for (std::size_t i = 0; i < labels.size(); ++i)
        {
            Line(labels[i].viewPosition, labels[i].strong
                                             ? grid.WithAlpha(static_cast<std::uint8_t>(zeroAlpha))
                                             : ShareOf(grid, StrongAlpha));
            const double next = i + 1 < labels.size() ? labels[i + 1].viewPosition : 0;
            const double distance = labels[i].viewPosition - next;
            for (std::int32_t k = 1; k < minorCount && i + 1 < labels.size(); ++k)
                Line(next + distance * k / minorCount, ShareOf(grid, WeakAlpha));
        }
    }
    /// Even lines, where no renderer knows round values.
    void EvenLines(std::int32_t spacing, std::int32_t minorSpacing, std::int32_t minorCount) const
    {
        if (spacing <= 0 || minorSpacing <= 0 || minorCount <= 0)
            return;
        const MColor grid = ColorOf(drawer, MStdColor::Grid);
        const std::int32_t count = Length() / spacing * (spacing / minorSpacing) * minorCount;
        for (std::int32_t i = 0; i <= count && count > 0; ++i)
            Line(static_cast<double>(i) / count,
                 ShareOf(grid, i % minorCount == 0 ? StrongAlpha : WeakAlpha));
    }
};

void MGraphEditor::PaintGraph(MGraph& graph, MDrawer& drawer)
{
    const MRectangle clip = drawer.GetClip();
    try
    {
        graph.Paint(*this, drawer);
    }
    catch (...)
    {
        LogSystemException("MGraphEditor::PaintGraph");
    }
    drawer.SetClip(clip);
}

void MGraphEditor::Paint(MDrawer& drawer)
{
    const MSyncGuard guard(&lock, MERWLock::Read);
    PaintBackground(drawer);
    if (graphRectangle.IsEmpty())
        return;
    if (frame)
        PaintFrame(drawer);
    PaintGrid(drawer, true);
    PaintGrid(drawer, false);
    PaintRightAxis(drawer);
    PaintGraphs(drawer, false);
    PaintGraphs(drawer, true);
    PaintCursorValue(drawer);
    PaintZoomRectangle(drawer);
}

void MGraphEditor::PaintBackground(MDrawer& drawer)
{
    const MRectangle all = OwnRectangle();
    const MRectangle clip = drawer.GetClip();
    const MColor canvas = ColorOf(drawer, MStdColor::Canvas);
    const std::int32_t radius = Pixels(drawer, GraphSizes::CornerRadius);
    // Most repaints don't touch the edge, which is dear, or only the graphs.
    if (all.Inset(radius, radius).Intersection(clip) != clip)
    {
        drawer.FillRoundRectangle(all, radius, canvas);
        const double thick = drawer.GetScale() <= 1.5 ? 1 : drawer.GetScale() <= 2.5 ? 2 : 3;
        drawer.RoundRectangle(all, radius, thick, ColorOf(drawer, MStdColor::CanvasEdge));
    }
    else if (graphRectangle.Intersection(clip) != clip)
        drawer.FillRectangle(clip, canvas);
    const bool isDark = canvas.Green() < MiddleGrey;
    const MColor shade = canvas.Mixed(isDark ? MColor(255, 255, 255) : MColor(0, 0, 0), CanvasShade);
    if (!graphRectangle.IsEmpty())
        drawer.FillRectangleGradient(graphRectangle,
                                     isDark ? MFill::Down(shade, canvas) : MFill::Down(canvas, shade));
}

void MGraphEditor::PaintFrame(MDrawer& drawer) const
{
    const MColor color = ShareOf(ColorOf(drawer, MStdColor::LineStrong), FrameAlpha);
    const MRectangle& area = graphRectangle;
    if (labelsX)
        drawer.FillRectangle({ area.left, area.bottom + 1, area.right, area.bottom + 1 }, color);
    if (labelsY)
        drawer.FillRectangle({ area.left - 1, area.top, area.left - 1, area.bottom }, color);
}

void MGraphEditor::PaintGrid(MDrawer& drawer, bool isHorizontal) const
{
    const GridSide side{ drawer, graphRectangle, isHorizontal };
    const MAxisRenderer* axis = isHorizontal ? axisX.get() : axisY.get();
    const double from = isHorizontal ? ViewX0() : ViewY0();
    const double to = isHorizontal ? ViewX1() : ViewY1();
    const bool hasLabels = isHorizontal ? labelsX : labelsY;
    const std::int32_t minorCount = isHorizontal ? gridMinorCountX : gridMinorCountY;
    const MRectangle captions =
        isHorizontal
            ? MRectangle{ graphRectangle.left, graphRectangle.bottom + 1, graphRectangle.right, Height() - 1 }
            : MRectangle{ 0, graphRectangle.top, graphRectangle.left - 1, graphRectangle.bottom };
    MAxisRenderer::Options options;
    options.gap = Pixels(drawer, GraphSizes::LabelGap);
    options.paints = hasLabels;
    options.isMirrored = !isHorizontal;
    std::vector<MAxisLabel> labels;
    if (axis != nullptr && to - from > PlainGridView)
    {
        axis->Render(drawer, captions, isHorizontal, labels, options, from, to);
        side.Lines(labels, minorCount);
        return;
    }
    const std::int32_t spacing = Pixels(drawer, gridSpacing);
    side.EvenLines(spacing, Pixels(drawer, gridMinorSpacing), minorCount);
    if (!hasLabels || spacing <= 0)
        return;
    const double low = isHorizontal ? XMin() : YMin();
    const double range = isHorizontal ? XMax() - low : YMax() - low;
    MAxisRendererList plain;
    MFont& face = drawer.GetFont(static_cast<std::int32_t>(MStdFont::Axis));
    const auto add = [&](double share)
    {
        MString text =
            ValueText(isHorizontal ? formatX : formatY, low + range * (from + share * (to - from)));
        // Beside the graph there is no room for more than the number.
        if (!isHorizontal && face.Width(text) > captions.Width() - Pixels(drawer, LeastCaptionSpace))
            text = text.SubString(0, std::max(0, text.Find(u' ')));
        plain.AddLabel(text, share);
    };
    const std::int32_t last = side.Length() - 1;
    for (std::int32_t at = 0; at < last; at += spacing)
        add(static_cast<double>(at) / last);
    add(1);
    options.subdivides = false;
    plain.Render(drawer, captions, isHorizontal, labels, options, 0, 1);
}

void MGraphEditor::PaintRightAxis(MDrawer& drawer) const
{
    if (axisRight == nullptr)
        return;
    MAxisRenderer::Options options;
    options.gap = Pixels(drawer, GraphSizes::LabelGap);
    std::vector<MAxisLabel> labels;
    axisRight->Render(drawer,
                      { graphRectangle.right + 1, graphRectangle.top, Width() - 1, graphRectangle.bottom },
                      false, labels, options, ViewY0(), ViewY1());
}

void MGraphEditor::PaintGraphs(MDrawer& drawer, bool onTop)
{
    for (auto graph = graphs.rbegin(); graph != graphs.rend(); ++graph)
        if ((*graph)->TestFlag(MGraph::Visible) && !(*graph)->TestFlag(MGraph::HasOverlay) &&
            (*graph)->TestFlag(MGraph::OnTop) == onTop)
            PaintGraph(**graph, drawer);
}

MRectangle MGraphEditor::CursorValueRectangle() const
{
    const std::int32_t height = PixelsOf(static_cast<std::int32_t>(CursorTextHeight));
    const std::int32_t middle = graphRectangle.top / 2;
    return MRectangle::OfSize(graphRectangle.left + graphRectangle.Width() / 2, middle - height / 2,
                              graphRectangle.Width() - graphRectangle.Width() / 2, height);
}

void MGraphEditor::PaintCursorValue(MDrawer& drawer) const
{
    if (!showCursorValue || !IsHovered() || !graphRectangle.Contains(pointer.x, pointer.y))
        return;
    const double x = XMin() + (XMax() - XMin()) * ViewAtX(pointer.x);
    const double y = YMin() + (YMax() - YMin()) * ViewAtY(pointer.y);
    drawer.AlignedTextOut(CursorValueRectangle(), PointText(x, y),
                          drawer.GetFont(static_cast<std::int32_t>(MStdFont::Axis)),
                          ColorOf(drawer, MStdColor::Text2), MPlacement::End);
}

MRectangle MGraphEditor::ZoomRectangle() const
{
    const auto pixelX = [this](double view)
    {
        return graphRectangle.left +
               static_cast<std::int32_t>(
                   std::floor((view - ViewX0()) / zoomerX->PartSize() * (graphRectangle.Width() - 1) + 0.5));
    };
    const auto pixelY = [this](double view)
    {
        return graphRectangle.bottom -
               static_cast<std::int32_t>(
                   std::floor((view - ViewY0()) / zoomerY->PartSize() * (graphRectangle.Height() - 1) + 0.5));
    };
    const auto [left, right] = std::minmax({ pixelX(dragView[0]), pixelX(dragEnd[0]) });
    const auto [top, bottom] = std::minmax({ pixelY(dragView[1]), pixelY(dragEnd[1]) });
    return { left, top, right, bottom };
}

void MGraphEditor::PaintZoomRectangle(MDrawer& drawer) const
{
    if (!zoomRectangleActive)
        return;
    const MColor accent = ColorOf(drawer, MStdColor::Accent);
    drawer.FillRectangle(ZoomRectangle(), accent.Faded(ZoomRectangleFill));
    drawer.Rectangle(ZoomRectangle(), accent);
}

void MGraphEditor::PaintReadout(MDrawer& drawer, std::int32_t x, std::int32_t y, const MString& text) const
{
    MFont& face = drawer.GetFont(static_cast<std::int32_t>(MStdFont::Value));
    const std::int32_t width =
        static_cast<std::int32_t>(std::ceil(face.Width(text))) + 2 * Pixels(drawer, ReadoutPadding);
    const std::int32_t height = Pixels(drawer, ReadoutHeight);
    const std::int32_t away = Pixels(drawer, ReadoutBelow);
    const std::int32_t top = y + away + height <= graphRectangle.bottom ? y + away : y - away - height;
    const std::int32_t left = std::clamp(x - width / 2, graphRectangle.left,
                                         std::max(graphRectangle.left, graphRectangle.right + 1 - width));
    const MRectangle box = MRectangle::OfSize(left, top, width, height);
    const double radius = ReadoutRadius * drawer.GetScale();
    drawer.FillRoundRectangle(box, radius, ColorOf(drawer, MStdColor::Tooltip));
    drawer.RoundRectangle(box, radius, 1, ColorOf(drawer, MStdColor::TooltipEdge));
    drawer.AlignedTextOut(box, text, face, ColorOf(drawer, MStdColor::Text), MPlacement::Middle);
}
