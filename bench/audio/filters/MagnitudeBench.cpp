// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <vector>

#include <benchmark/benchmark.h>

#include "audio/filters/FilterMagnitudes.h"

// The curve of the FFT mode, 16384 points, against the evaluation of one frequency after the other.
namespace
{
constexpr std::int32_t PointCount = 16384;

std::vector<MAudioFilters::Filter<double>> Sections(std::int32_t count)
{
    std::vector<MAudioFilters::Filter<double>> sections(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < sections.size(); ++i)
        sections[i].Set(static_cast<std::int32_t>(i % 3), 2.0, 30.0 * std::pow(1.02, static_cast<double>(i)),
                        48000.0, 2.0);
    return sections;
}

void Grid(benchmark::State& state)
{
    const auto count = static_cast<std::int32_t>(state.range(0));
    const auto sections = Sections(count);
    MAudioFilters::MagnitudeGrid grid;
    grid.Prepare(PointCount, count);
    for (auto _ : state)
        benchmark::DoNotOptimize(grid.EvaluateAll(sections.data(), count));
}

void PointByPoint(benchmark::State& state)
{
    const auto count = static_cast<std::int32_t>(state.range(0));
    const auto sections = Sections(count);
    std::vector<double> magnitudes(PointCount);
    for (auto _ : state)
    {
        for (std::size_t k = 0; k < PointCount; ++k)
            magnitudes[k] = MAudioFilters::MagnitudeOfList(
                sections.data(), count, static_cast<double>(k) * 48000.0 / (2 * PointCount));
        benchmark::DoNotOptimize(magnitudes.data());
    }
}

BENCHMARK(Grid)->Arg(10)->Arg(40)->Arg(340)->Unit(benchmark::kMillisecond);
BENCHMARK(PointByPoint)->Arg(10)->Arg(340)->Unit(benchmark::kMillisecond);
}   // namespace
