// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/CurvePainter.h"

#include <algorithm>
#include <cmath>

namespace
{
// Farther than any screen, and still exact to a hundredth of a pixel in single precision.
constexpr double FarthestPixel = 30000;

float Sound(double height)
{
    return static_cast<float>(std::isfinite(height) ? std::clamp(height, -FarthestPixel, FarthestPixel) : 0);
}

std::int32_t RowOf(float height)
{
    return static_cast<std::int32_t>(std::floor(height));
}

/// The integral of clamp(z, 0, 1) up to z.
float RampArea(float z)
{
    const float part = std::clamp(z, 0.0f, 1.0f);
    return 0.5f * part * part + std::max(z - 1, 0.0f);
}

/// A line across one column, and how much of each of its pixels lies below the line.
class Edge
{
public:
    Edge(float left, float right)
        : from(left), to(right), top(std::min(left, right)), bottom(std::max(left, right)),
          inverse(bottom - top < FlatSlope ? 0 : 1 / (right - left))
    {
    }

    /// 0 to 1. The part of a pixel's column below the line, averaged over the column: with the line's
    /// distance to the pixel's lower edge going evenly from one value to another, the mean of the clamped
    /// distance is a difference of RampArea over the distance.
    float Below(std::int32_t row) const
    {
        const auto lowerEdge = static_cast<float>(row + 1);
        if (lowerEdge <= top)
            return 0;
        if (lowerEdge - 1 >= bottom)
            return 1;
        if (inverse == 0)
            return std::clamp(lowerEdge - (top + bottom) * 0.5f, 0.0f, 1.0f);
        return (RampArea(lowerEdge - from) - RampArea(lowerEdge - to)) * inverse;
    }
    float Top() const { return top; }
    float Bottom() const { return bottom; }

private:
    // Below, a pixel's coverage differs from that of a level line by less than a byte can tell.
    static constexpr float FlatSlope = 1.0f / 256;

    float from;
    float to;
    float top;
    float bottom;
    float inverse;   // of the slope; 0: flat
};

std::uint8_t ByteOf(float share)
{
    return static_cast<std::uint8_t>(std::clamp(share, 0.0f, 1.0f) * 255 + 0.5f);
}

float Between(const Edge& upper, const Edge& lower, std::int32_t row)
{
    return upper.Below(row) - lower.Below(row);
}

/// Between a line and a level that it may cross.
float BetweenLevel(float left, float right, float level, std::int32_t row)
{
    const Edge base(level, level);
    const auto part = [&](float a, float b)
    {
        const Edge edge(a, b);
        return std::abs(Between(edge, base, row));
    };
    if ((left < level) == (right < level))
        return part(left, right);
    const float crossing = (level - left) / (right - left);
    return crossing * part(left, level) + (1 - crossing) * part(level, right);
}
}   // namespace

std::int32_t CurvePainter::Margin(double width)
{
    return static_cast<std::int32_t>(std::ceil(std::clamp(width, 0.0, MostWidth) / 2)) + 1;
}

CurvePainter::Range CurvePainter::Seen(const MDrawer& drawer, std::int32_t left, std::size_t edgeCount)
{
    if (edgeCount < 2)
        return {};
    const MRectangle clip = drawer.GetClip();
    const std::int32_t last = left + static_cast<std::int32_t>(edgeCount) - 2;
    Range range{ .left = std::max(left, clip.left), .top = clip.top, .bottom = clip.bottom };
    range.first = range.left - left;
    range.count = clip.IsEmpty() ? 0 : std::max(0, std::min(last, clip.right) - range.left + 1);
    return range;
}

void CurvePainter::PrepareLine(const Range& range, std::span<const double> edges, std::int32_t margin)
{
    const auto given = static_cast<std::int32_t>(edges.size());
    const std::int32_t count = range.count + 1 + 2 * margin;
    const double firstSlope = edges[1] - edges[0];
    const double lastSlope = edges[edges.size() - 1] - edges[edges.size() - 2];
    line.resize(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i)
    {
        const std::int32_t at = range.first - margin + i;
        double height = 0;
        if (at < 0)
            height = edges.front() + at * firstSlope;
        else if (at >= given)
            height = edges.back() + (at - given + 1) * lastSlope;
        else
            height = edges[static_cast<std::size_t>(at)];
        line[static_cast<std::size_t>(i)] = Sound(height);
    }
    slopes.resize(line.size() - 1);
    roots.resize(line.size() - 1);
    for (std::size_t i = 0; i < slopes.size(); ++i)
    {
        slopes[i] = line[i + 1] - line[i];
        roots[i] = std::sqrt(1 + slopes[i] * slopes[i]);
    }
}

// What a disc of half the width, carried along the curve, reaches at the columns' edges: the farthest of all
// the discs whose centres lie on the segments around. On a segment y(d) = y0 + s d that is y0 -+ r sqrt(1 +
// s^2), touched at d = -+ r s / sqrt(1 + s^2), where that lies on the segment; at a corner at distance d it
// is the disc itself, -+ sqrt(r^2 - d^2).
void CurvePainter::FindOffsets(const Range& range, double width, std::vector<float>& upper,
                               std::vector<float>& lower)
{
    const auto count = static_cast<std::size_t>(range.count) + 1;
    const std::size_t margin = (line.size() - count) / 2;
    const auto radius = static_cast<float>(std::clamp(width, 0.0, MostWidth) / 2);
    const auto reach = static_cast<std::ptrdiff_t>(std::ceil(radius));
    upper.assign(line.begin() + static_cast<std::ptrdiff_t>(margin),
                 line.begin() + static_cast<std::ptrdiff_t>(margin + count));
    lower = upper;
    float* const up = upper.data();
    float* const low = lower.data();
    for (std::ptrdiff_t d = -reach; d <= reach; ++d)
    {
        const auto distance = static_cast<float>(d);
        const float* const at = line.data() + static_cast<std::ptrdiff_t>(margin) + d;
        if (std::abs(distance) < radius)
        {
            const float height = std::sqrt(radius * radius - distance * distance);
            for (std::size_t i = 0; i < count; ++i)
            {
                up[i] = std::min(up[i], at[i] - height);
                low[i] = std::max(low[i], at[i] + height);
            }
        }
        if (d == reach)
            break;
        const float* const slope = slopes.data() + static_cast<std::ptrdiff_t>(margin) + d;
        const float* const root = roots.data() + static_cast<std::ptrdiff_t>(margin) + d;
        for (std::size_t i = 0; i < count; ++i)
        {
            const float touch = radius * slope[i] / root[i];
            const float height = at[i] - distance * slope[i];
            const float thick = radius * root[i];
            const bool touchesAbove = -touch >= distance && -touch <= distance + 1;
            const bool touchesBelow = touch >= distance && touch <= distance + 1;
            up[i] = std::min(up[i], touchesAbove ? height - thick : up[i]);
            low[i] = std::max(low[i], touchesBelow ? height + thick : low[i]);
        }
    }
}

void CurvePainter::SpanStrokes(const Range& range, std::size_t layerCount)
{
    spans.resize(static_cast<std::size_t>(range.count));
    std::size_t size = 0;
    for (std::size_t i = 0; i < spans.size(); ++i)
    {
        float top = uppers[0][i];
        float bottom = lowers[0][i];
        for (std::size_t layer = 0; layer < layerCount; ++layer)
        {
            top = std::min({ top, uppers[layer][i], uppers[layer][i + 1] });
            bottom = std::max({ bottom, lowers[layer][i], lowers[layer][i + 1] });
        }
        const std::int32_t first = std::max(RowOf(top), range.top);
        const std::int32_t last = std::min(RowOf(bottom), range.bottom);
        spans[i] = { first, std::max(0, last - first + 1) };
        size += static_cast<std::size_t>(spans[i].height) * layerCount;
    }
    coverage.resize(size);
}

void CurvePainter::CoverStroke(const Range& range, std::size_t layer, std::size_t layerCount)
{
    std::uint8_t* bytes = coverage.data() + layer;
    const std::vector<float>& upper = uppers[layer];
    const std::vector<float>& lower = lowers[layer];
    for (std::size_t i = 0; i < static_cast<std::size_t>(range.count); ++i)
    {
        const Edge above(upper[i], upper[i + 1]);
        const Edge below(lower[i], lower[i + 1]);
        std::int32_t row = spans[i].top;
        const std::int32_t end = row + spans[i].height;
        const auto fill = [&](std::int32_t until, std::uint8_t value)
        {
            for (const std::int32_t last = std::min(until, end); row < last; ++row, bytes += layerCount)
                *bytes = value;
        };
        const auto compute = [&](std::int32_t until)
        {
            for (const std::int32_t last = std::min(until, end); row < last; ++row, bytes += layerCount)
                *bytes = ByteOf(Between(above, below, row));
        };
        // Only the rows that the two edges pass have to be computed.
        fill(RowOf(above.Top()), 0);
        compute(RowOf(above.Bottom()) + 1);
        fill(RowOf(below.Top()), 255);
        compute(RowOf(below.Bottom()) + 1);
        fill(end, 0);
    }
}

void CurvePainter::Ribbon(MDrawer& drawer, std::int32_t left, std::span<const double> edges,
                          std::span<const Stroke> strokes)
{
    const std::size_t count = std::min(strokes.size(), MostStrokes);
    const Range range = Seen(drawer, left, edges.size());
    if (range.count == 0 || count == 0)
        return;
    double widest = 0;
    MColor colors[MostStrokes];
    for (std::size_t layer = 0; layer < count; ++layer)
    {
        widest = std::max(widest, strokes[layer].width);
        colors[layer] = strokes[layer].color;
    }
    PrepareLine(range, edges, Margin(widest));
    for (std::size_t layer = 0; layer < count; ++layer)
        FindOffsets(range, strokes[layer].width, uppers[layer], lowers[layer]);
    SpanStrokes(range, count);
    for (std::size_t layer = 0; layer < count; ++layer)
        CoverStroke(range, layer, count);
    drawer.CoverColumns(range.left, spans, coverage, std::span(colors, count));
}

void CurvePainter::Fill(MDrawer& drawer, std::int32_t left, std::span<const double> edges, double base,
                        MColor color)
{
    const Range range = Seen(drawer, left, edges.size());
    if (range.count == 0)
        return;
    const std::int32_t level = RowOf(Sound(base) + 0.5f);
    spans.resize(static_cast<std::size_t>(range.count));
    solids.resize(spans.size());
    coverage.clear();
    for (std::size_t i = 0; i < spans.size(); ++i)
    {
        const float from = Sound(edges[static_cast<std::size_t>(range.first) + i]);
        const float to = Sound(edges[static_cast<std::size_t>(range.first) + i + 1]);
        // Rows that the line passes are covered in part; all from there to the level is full.
        const std::int32_t first = RowOf(std::min(from, to));
        const std::int32_t end = RowOf(std::max(from, to)) + 1;
        solids[i] = end <= level ? MColumnSpan{ end, level - end } : MColumnSpan{ level, first - level };
        const std::int32_t top = std::max(first, range.top);
        spans[i] = { top, std::max(0, std::min(end, range.bottom + 1) - top) };
        for (std::int32_t row = top; row < top + spans[i].height; ++row)
            coverage.push_back(ByteOf(BetweenLevel(from, to, static_cast<float>(level), row)));
    }
    drawer.FillColumns(range.left, solids, color);
    drawer.CoverColumns(range.left, spans, coverage, std::span(&color, 1));
}
