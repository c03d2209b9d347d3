// SPDX-License-Identifier: GPL-3.0-or-later
// What painting costs, at the editor's least size and at 200 %: fills, shapes, text.
#include <cmath>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include "foundation/streams/MStdFileStream.h"
#include "gui/painting/MDrawerToMBitmap.h"

namespace
{
const MColor ink(233, 235, 238);

struct Window
{
    explicit Window(std::int64_t percent)
        : scale(static_cast<double>(percent) / 100),
          bitmap(static_cast<std::int32_t>(800 * scale), static_cast<std::int32_t>(560 * scale)),
          painter(bitmap), drawer(painter)
    {
        drawer.FillRectangle(bitmap.Bounds(), MColor(12, 15, 18));
    }
    double Pixels() const { return static_cast<double>(bitmap.Width()) * bitmap.Height(); }

    double scale;
    MBitmap bitmap;
    MDrawerToMBitmap painter;
    MDrawer& drawer;
};

void PerPixel(benchmark::State& state, const Window& window)
{
    state.counters["ns/pixel"] = benchmark::Counter(
        window.Pixels() * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Memset(benchmark::State& state)
{
    Window window(state.range(0));
    for (auto _ : state)
    {
        std::memset(window.bitmap.Row(0), static_cast<int>(state.iterations() & 1),
                    static_cast<std::size_t>(window.Pixels()) * 4);
        benchmark::ClobberMemory();
    }
    PerPixel(state, window);
}
BENCHMARK(Memset)->Arg(100)->Arg(200);

void Fill(benchmark::State& state)
{
    Window window(state.range(1));
    const auto op = static_cast<MColorOp>(state.range(0));
    state.SetLabel(MEnumLabels<MColorOp>::Labels[state.range(0)]);
    for (auto _ : state)
    {
        window.drawer.FillRectangle(window.bitmap.Bounds(), MColor(100, 40, 200, 99), op);
        benchmark::ClobberMemory();
    }
    PerPixel(state, window);
}
BENCHMARK(Fill)
    ->ArgsProduct({ { 1, 2, 3, 4, 5, 6, 7, 9, 12, 14, 16 }, { 100 } })
    ->Args({ 3, 200 })
    ->Args({ 1, 200 });

// A curve as wide as the graph, and what lies below it.
std::vector<MPointF> Curve(const Window& window, bool closed)
{
    std::vector<MPointF> points;
    const std::int32_t width = window.bitmap.Width();
    const double middle = window.bitmap.Height() * 0.4;
    for (std::int32_t x = 0; x < width; ++x)
        points.push_back({ x + 0.5, middle * (1 + 0.4 * std::sin(x * 0.02) + 0.01 * std::sin(x * 0.9)) });
    if (closed)
    {
        points.push_back({ static_cast<double>(width), static_cast<double>(window.bitmap.Height()) });
        points.push_back({ 0, static_cast<double>(window.bitmap.Height()) });
    }
    return points;
}

void FilledCurve(benchmark::State& state)
{
    Window window(state.range(0));
    const std::vector<MPointF> points = Curve(window, true);
    for (auto _ : state)
    {
        window.drawer.FillPolygon(points, MColor(0, 172, 0, 51));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(FilledCurve)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);

// Casing below body below core.
void Ribbon(benchmark::State& state)
{
    Window window(state.range(0));
    const std::vector<MPointF> points = Curve(window, false);
    for (auto _ : state)
    {
        for (const double thickness : { 5.0, 3.0, 1.5 })
            window.drawer.PolyLine(points, thickness * window.scale, MColor(0, 64, 172, 200));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(Ribbon)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);

void RoundRectangles(benchmark::State& state)
{
    Window window(state.range(0));
    for (auto _ : state)
    {
        for (std::int32_t i = 0; i < 100; ++i)
            window.drawer.FillRoundRectangle(MRectangle::OfSize(i * 6, i * 3, 90, 22), 4 * window.scale,
                                             MFill::Down(MColor(50, 55, 60), MColor(40, 46, 53)));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(RoundRectangles)->Arg(100)->Unit(benchmark::kMicrosecond);

void Glyphs(benchmark::State& state)
{
    Window window(state.range(0));
    MStdFileStream file("/usr/share/fonts/opentype/inter/Inter-Medium.otf", MStdFileStream::ReadAccess);
    MFontDescriptor descriptor;
    descriptor.height = 11 * window.scale;
    descriptor.tabularDigits = true;
    MFont font(FontFace::Read(file), descriptor);
    const MString line = "Linear-phase, 252.5 Hz -5";   // 25 glyphs
    for (auto _ : state)
    {
        for (std::int32_t i = 0; i < 12; ++i)
            window.drawer.TextOut(10.3 * i, 20 + i * 30, line, font, ink);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(Glyphs)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);
}   // namespace
