// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

#include "gui/painting/MDrawer.h"

/// Paints curves that have one height for each place on a horizontal axis. Each pixel's coverage is found
/// from the areas under straight lines, column by column, without a polygon: for the area below a curve it is
/// exact; a stroke is what a round brush sweeps, cut into lines at the columns' edges, so that flanks of
/// every slope and the sharpest peaks keep their width. Memory is kept from curve to curve. Thread: GUI.
class CurvePainter
{
public:
    /// A line along the curve.
    struct Stroke
    {
        double width = 1;   ///< pixels, up to MostWidth
        MColor color;
    };
    static constexpr std::size_t MostStrokes = 3;
    static constexpr double MostWidth = 64;

    /// What lies between the curve and a level.
    /// @param left  where the first column begins
    /// @param edges  the curve's heights at the columns' edges, in pixels down: one more than columns. Not
    /// finite ones count as 0
    /// @param base  the level, to the nearest edge between pixels
    void Fill(MDrawer& drawer, std::int32_t left, std::span<const double> edges, double base, MColor color);
    /// One to three strokes along the curve, the lowest first. Ends go on as straight lines.
    /// To paint the same pixels whatever the clip, edges have to reach Margin beyond it.
    void Ribbon(MDrawer& drawer, std::int32_t left, std::span<const double> edges,
                std::span<const Stroke> strokes);
    /// How many columns aside change what a stroke paints.
    static std::int32_t Margin(double width);

private:
    static constexpr std::size_t Phases = 4;

    // The columns that can be seen, of those given.
    struct Range
    {
        std::int32_t left = 0;
        std::int32_t first = 0;
        std::int32_t count = 0;
        std::int32_t top = 0;
        std::int32_t bottom = -1;
    };
    class Edge;

    static Range Seen(const MDrawer& drawer, std::int32_t left, std::size_t edgeCount);
    void PrepareLine(const Range& range, std::span<const double> edges, std::int32_t margin);
    /// @param side  1 the upper one, -1 the lower one
    void FindBorder(const Range& range, float radius, float side, std::vector<float>& border) const;
    void SpanStrokes(const Range& range, std::size_t layerCount);
    void AddBorder(const float* places, const MColumnSpan& span, float sign);
    void AddEdge(float from, float to, const MColumnSpan& span, float weight);
    static float BetweenLevel(float left, float right, float level, std::int32_t row);
    void CoverStroke(const Range& range, std::size_t layer, std::size_t layerCount);

    std::vector<float> line;   // of the columns seen, with margins
    std::vector<float> slopes;
    std::vector<float> roots;   // sqrt(1 + slope^2)
    std::vector<float> sines;   // slope / sqrt(1 + slope^2)
    std::vector<float> uppers[MostStrokes];   // borders: Phases places in each column, and the end
    std::vector<float> lowers[MostStrokes];
    std::vector<float> partial;   // of a column: the coverage where borders pass
    std::vector<float> steps;   // and what each row and all below it have more
    std::vector<MColumnSpan> spans;
    std::vector<MColumnSpan> solids;
    std::vector<std::uint8_t> coverage;
};
