// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/CurvePainter.h"

#include <algorithm>
#include <cmath>

namespace
{
// A border that bends less, in pixels, is taken as straight.
constexpr float LeastBend = 1.0f / 32;

// By how much pieces of a border overlap, in phases: more than rounding takes away.
constexpr float Overlap = 1.0f / 64;

// Farther than any screen, and still exact to a hundredth of a pixel in single precision.
constexpr double FarthestPixel = 30000;

// Comparisons that processors have an instruction for.
constexpr float Smaller(float a, float b)
{
    return a < b ? a : b;
}
constexpr float Larger(float a, float b)
{
    return a > b ? a : b;
}
float Sound(double height)
{
    return static_cast<float>(std::isfinite(height) ? std::clamp(height, -FarthestPixel, FarthestPixel) : 0);
}

std::int32_t RowOf(float height)
{
    const auto towardsZero = static_cast<std::int32_t>(height);   // heights are Sound
    return towardsZero - (static_cast<float>(towardsZero) > height ? 1 : 0);
}

/// The integral of clamp(z, 0, 1) up to z.
float RampArea(float z)
{
    const float part = Smaller(Larger(z, 0), 1);
    return 0.5f * part * part + Larger(z - 1, 0);
}

std::uint8_t ByteOf(float share)
{
    const float level = share * 255 + 0.5f;
    return static_cast<std::uint8_t>(std::clamp(static_cast<std::int32_t>(level), 0, 255));
}
}   // namespace

/// A line across one column, and how much of each of its pixels lies below the line.
class CurvePainter::Edge
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

private:
    // Below, a pixel's coverage differs from that of a level line by less than a byte can tell.
    static constexpr float FlatSlope = 1.0f / 256;

    float from;
    float to;
    float top;
    float bottom;
    float inverse;   // of the slope; 0: flat
};

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
    sines.resize(line.size() - 1);
    for (std::size_t i = 0; i < slopes.size(); ++i)
    {
        slopes[i] = line[i + 1] - line[i];
        roots[i] = std::sqrt(1 + slopes[i] * slopes[i]);
        sines[i] = slopes[i] / roots[i];
    }
}

// What a disc of the radius, carried along the curve, reaches at each place x. The disc whose centre lies at
// x + d reaches y(x + d) - sqrt(r^2 - d^2); the least of that is found where its slope is 0 or turns from
// below to above 0:
// - on a segment of slope s, with sine = s / sqrt(1 + s^2), at d = -r sine, where it is y(x) - r sqrt(1 +
// s^2);
//   d lies on the segment for x from its begin to its end, both moved by r sine;
// - at a corner, for x between the moved end of one segment and the moved begin of the next, if those come in
//   this order: the disc itself.
// So each place meets one or two candidates. The lower border is the same in a mirror.
void CurvePainter::FindBorder(const Range& range, float radius, float side, std::vector<float>& border) const
{
    const auto count = static_cast<std::int32_t>(Phases) * range.count + 1;
    const std::int32_t margin = (static_cast<std::int32_t>(line.size()) - 1 - range.count) / 2;
    border.assign(static_cast<std::size_t>(count), side * static_cast<float>(FarthestPixel));
    float* const places = border.data();
    constexpr auto phases = static_cast<float>(Phases);
    // All is computed from the segment's begin, so that it comes out alike wherever the columns begin.
    std::int32_t origin = -margin * static_cast<std::int32_t>(Phases);
    const auto reach = [&](float from, float to, auto&& heightAt)
    {
        // Rounded outward: where pieces meet both are right.
        const std::int32_t first = std::max(0, origin + RowOf(from * phases + 1 - Overlap));
        const std::int32_t last = std::min(count - 1, origin + RowOf(to * phases + Overlap));
        for (std::int32_t i = first; i <= last; ++i)
        {
            const float height = heightAt(static_cast<float>(i - origin) / phases);
            places[i] = side > 0 ? Smaller(places[i], height) : Larger(places[i], height);
        }
    };
    const float offset = side * radius;
    for (std::size_t j = 0; j < slopes.size(); ++j, origin += static_cast<std::int32_t>(Phases))
    {
        const float height = line[j];
        const float slope = slopes[j];
        const float thick = offset * roots[j];
        const float moved = offset * sines[j];
        reach(moved, moved + 1, [=](float x) { return height + x * slope - thick; });
        const float movedBefore = j > 0 ? offset * sines[j - 1] : moved;
        if (movedBefore < moved)
            reach(movedBefore, moved,
                  [=](float x) { return height - side * std::sqrt(Larger(radius * radius - x * x, 0)); });
    }
}

void CurvePainter::SpanStrokes(const Range& range, std::size_t layerCount)
{
    spans.resize(static_cast<std::size_t>(range.count));
    std::size_t size = 0;
    for (std::size_t i = 0; i < spans.size(); ++i)
    {
        float top = uppers[0][i * Phases];
        float bottom = lowers[0][i * Phases];
        for (std::size_t layer = 0; layer < layerCount; ++layer)
            for (std::size_t phase = 0; phase <= Phases; ++phase)
            {
                top = Smaller(top, uppers[layer][i * Phases + phase]);
                bottom = Larger(bottom, lowers[layer][i * Phases + phase]);
            }
        const std::int32_t first = std::max(RowOf(top), range.top);
        const std::int32_t last = std::min(RowOf(bottom), range.bottom);
        spans[i] = { first, std::max(0, last - first + 1) };
        size += static_cast<std::size_t>(spans[i].height) * layerCount;
    }
    coverage.resize(size);
}

void CurvePainter::AddBorder(const float* places, const MColumnSpan& span, float sign)
{
    const float straight = (places[Phases] - places[0]) / Phases;
    float bend = 0;
    for (std::size_t i = 1; i < Phases; ++i)
        bend = Larger(bend, std::abs(places[i] - places[0] - straight * static_cast<float>(i)));
    if (bend <= LeastBend)
        return AddEdge(places[0], places[Phases], span, sign);
    for (std::size_t i = 0; i < Phases; ++i)
        AddEdge(places[i], places[i + 1], span, sign / Phases);
}

/// In the rows that the edge passes what lies below it; in the first row after those, what all further rows
/// have more.
void CurvePainter::AddEdge(float from, float to, const MColumnSpan& span, float weight)
{
    const std::int32_t end = span.top + span.height;
    const std::int32_t first = RowOf(Smaller(from, to));
    const std::int32_t last = RowOf(Larger(from, to));
    const std::int32_t full = std::clamp(last + 1, span.top, end);
    float* const rows = partial.data();
    if (first == last)
    {
        // Most edges pass one row, and leave it evenly.
        if (first >= span.top && first < end)
            rows[first - span.top] += (static_cast<float>(first + 1) - (from + to) * 0.5f) * weight;
    }
    else
    {
        const Edge edge(from, to);
        for (std::int32_t row = std::max(first, span.top); row < full; ++row)
            rows[row - span.top] += edge.Below(row) * weight;
    }
    steps[static_cast<std::size_t>(full - span.top)] += weight;
}

void CurvePainter::CoverStroke(const Range& range, std::size_t layer, std::size_t layerCount)
{
    const auto rows = static_cast<std::size_t>(range.bottom - range.top) + 2;
    partial.assign(rows, 0);
    steps.assign(rows, 0);
    std::uint8_t* bytes = coverage.data() + layer;
    for (std::size_t i = 0; i < static_cast<std::size_t>(range.count); ++i)
    {
        const MColumnSpan& span = spans[i];
        if (span.height == 0)
            continue;
        AddBorder(uppers[layer].data() + i * Phases, span, 1);
        AddBorder(lowers[layer].data() + i * Phases, span, -1);
        float full = 0;
        for (std::size_t row = 0; row < static_cast<std::size_t>(span.height); ++row, bytes += layerCount)
        {
            full += steps[row];
            *bytes = ByteOf(full + partial[row]);
            steps[row] = partial[row] = 0;
        }
        steps[static_cast<std::size_t>(span.height)] = 0;
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
    {
        const auto radius = static_cast<float>(std::clamp(strokes[layer].width, 0.0, MostWidth) / 2);
        FindBorder(range, radius, 1, uppers[layer]);
        FindBorder(range, radius, -1, lowers[layer]);
    }
    SpanStrokes(range, count);
    for (std::size_t layer = 0; layer < count; ++layer)
        CoverStroke(range, layer, count);
    drawer.CoverColumns(range.left, spans, coverage, std::span(colors, count));
}

/// Between a line and a level that it may cross.
float CurvePainter::BetweenLevel(float left, float right, float level, std::int32_t row)
{
    const Edge base(level, level);
    const auto part = [&](float a, float b)
    {
        const Edge edge(a, b);
        return std::abs(edge.Below(row) - base.Below(row));
    };
    if ((left < level) == (right < level))
        return part(left, right);
    const float crossing = (level - left) / (right - left);
    return crossing * part(left, level) + (1 - crossing) * part(level, right);
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
