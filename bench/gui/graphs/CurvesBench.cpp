// SPDX-License-Identifier: GPL-3.0-or-later
// What curves cost, as wide as the window at 100 % and 200 %, smooth and as ragged as a spectrum; with the
// same shapes as polygons for comparison.
#include <cmath>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "gui/controls/MWindows.h"
#include "gui/graphs/CurvePainter.h"
#include "gui/graphs/MAxisRendererFrequencyLog.h"
#include "gui/graphs/MAxisRendererNumbers.h"
#include "gui/graphs/MFunctionGraphT.h"
#include "gui/painting/MDrawerToMBitmap.h"
#include "gui/platform/HeadlessWindowSystem.h"
#include "tests/gui/PlainStyle.h"

namespace
{
struct Picture
{
    explicit Picture(std::int64_t percent, bool ragged)
        : scale(static_cast<double>(percent) / 100),
          bitmap(static_cast<std::int32_t>(800 * scale), static_cast<std::int32_t>(560 * scale)),
          painter(bitmap), drawer(painter)
    {
        drawer.FillRectangle(bitmap.Bounds(), MColor(12, 15, 18));
        std::mt19937 random(5);
        std::uniform_real_distribution<double> noise(-20 * scale, 20 * scale);
        const double middle = bitmap.Height() * 0.4;
        for (std::int32_t x = 0; x <= bitmap.Width(); ++x)
            edges.push_back(middle * (1 + 0.4 * std::sin(x * 0.02) + 0.01 * std::sin(x * 0.9)) +
                            (ragged ? noise(random) : 0));
        for (std::size_t x = 0; x < edges.size(); ++x)
            points.push_back({ static_cast<double>(x), edges[x] });
    }
    std::vector<CurvePainter::Stroke> Strokes() const
    {
        return { { 5 * scale, MColor(12, 15, 18, 190) },
                 { 4 * scale, MColor(0, 64, 172) },
                 { 1.5 * scale, MColor(110, 168, 255) } };
    }

    double scale;
    MBitmap bitmap;
    MDrawerToMBitmap painter;
    MDrawer& drawer;
    std::vector<double> edges;
    std::vector<MPointF> points;
    CurvePainter curves;
};

void FilledCurve(benchmark::State& state)
{
    Picture picture(state.range(0), state.range(1) != 0);
    for (auto _ : state)
    {
        picture.curves.Fill(picture.drawer, 0, picture.edges, picture.bitmap.Height(), MColor(0, 172, 0, 51));
        benchmark::ClobberMemory();
    }
}

void FilledPolygon(benchmark::State& state)
{
    Picture picture(state.range(0), state.range(1) != 0);
    std::vector<MPointF> closed = picture.points;
    closed.push_back({ closed.back().x, static_cast<double>(picture.bitmap.Height()) });
    closed.push_back({ 0, static_cast<double>(picture.bitmap.Height()) });
    for (auto _ : state)
    {
        picture.drawer.FillPolygon(closed, MColor(0, 172, 0, 51));
        benchmark::ClobberMemory();
    }
}

void Ribbon(benchmark::State& state)
{
    Picture picture(state.range(0), state.range(1) != 0);
    const std::vector<CurvePainter::Stroke> strokes = picture.Strokes();
    for (auto _ : state)
    {
        picture.curves.Ribbon(picture.drawer, 0, picture.edges, strokes);
        benchmark::ClobberMemory();
    }
}

void RibbonOfPolygons(benchmark::State& state)
{
    Picture picture(state.range(0), state.range(1) != 0);
    const std::vector<CurvePainter::Stroke> strokes = picture.Strokes();
    for (auto _ : state)
    {
        for (const CurvePainter::Stroke& stroke : strokes)
            picture.drawer.PolyLine(picture.points, stroke.width, stroke.color);
        benchmark::ClobberMemory();
    }
}

class ScaledStyle : public PlainStyle
{
public:
    explicit ScaledStyle(double wanted) : scale(wanted) {}
    double GetScale() const override { return scale; }

private:
    double scale;
};

class Function : public MGraph
{
public:
    void ComputeValues(std::span<const double> x, std::span<double> y) const
    {
        for (std::size_t i = 0; i < x.size(); ++i)
            y[i] = 0.5 + 0.2 * std::sin(x[i] * 16 + shift);
    }

    double shift = 0;
};

// What a second has thirty of: the graph's rectangle with its grid and curves, two meters' bars.
void Repaint(benchmark::State& state)
{
    const double scale = static_cast<double>(state.range(0)) / 100;
    auto system = std::make_unique<HeadlessWindowSystem>(MSize{ 4000, 3000 });
    HeadlessWindowSystem& screen = *system;
    MWindows windows(std::move(system));
    windows.SetStyle(std::make_unique<ScaledStyle>(scale));
    MWindow window;
    window.SetSize(static_cast<std::int32_t>(800 * scale), static_cast<std::int32_t>(560 * scale));
    auto& editor = window.Make<MGraphEditor>();
    editor.SetSize(window.Width(), window.Height());
    editor.SetAxis(std::make_shared<MAxisRendererFrequencyLog>(1.3010299956639813, 4.301029995663981),
                   std::make_shared<MAxisRendererVolumedBValues>(-24, 24, 6));
    MFunctionGraphT<Function> graphs[5];
    for (std::size_t i = 0; i < static_cast<std::size_t>(state.range(1)); ++i)
    {
        graphs[i].shift = static_cast<double>(i);
        graphs[i].strokes = { { 4, MColor(0, 64, 172) }, { 1.5, MColor(110, 168, 255) } };
        graphs[i].drawFill = i == 0;
        editor.AddGraph(graphs[i]);
    }
    window.Open(MWindowSystem::Kind::Normal);
    for (auto _ : state)
    {
        editor.Invalidate(editor.GraphRectangle());
        for (const std::int32_t meter : { 6, 14 })
            window.InvalidateArea(MRectangle::OfSize(600, meter, static_cast<std::int32_t>(180 * scale), 4));
        benchmark::DoNotOptimize(screen.Look(window).Row(0));
    }
}
BENCHMARK(Repaint)
    ->ArgNames({ "percent", "curves" })
    ->ArgsProduct({ { 100, 200 }, { 1, 5 } })
    ->Unit(benchmark::kMicrosecond);

void Sizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({ "percent", "ragged" })->ArgsProduct({ { 100, 200 }, { 0, 1 } });
    bench->Unit(benchmark::kMicrosecond);
}
BENCHMARK(FilledCurve)->Apply(Sizes);
BENCHMARK(FilledPolygon)->Apply(Sizes);
BENCHMARK(Ribbon)->Apply(Sizes);
BENCHMARK(RibbonOfPolygons)->Apply(Sizes);
}   // namespace
