// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <hwy/highway.h>

#include "foundation/vector/BiquadCascade.h"
#include "foundation/vector/InstructionSets.h"

// Time of a cascade per section, sample and channel over a pair of channels, against the plain form.
namespace
{
std::vector<MVector::CascadeTaps> Sections(std::int32_t count)
{
    std::vector<MVector::CascadeTaps> sections(static_cast<std::size_t>(count));
    double w = 0.01;
    for (MVector::CascadeTaps& section : sections)
    {
        const double radius = 1.0 - 0.3 * w;
        section.a1 = 2.0 * radius * std::cos(w);
        section.a2 = -radius * radius;
        section.b1 = -0.99 * section.a1;
        section.b2 = 0.98 * radius * radius;
        w *= 1.5;
        w = w > 2.5 ? 0.02 : w;
    }
    return sections;
}

std::vector<double> Noise(std::int32_t n)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> values(-1.0, 1.0);
    std::vector<double> pairs(static_cast<std::size_t>(2 * n));
    std::generate(pairs.begin(), pairs.end(), [&] { return values(random); });
    return pairs;
}

template <typename Run>
void Measure(benchmark::State& state, Run run)
{
    const auto sectionCount = static_cast<std::int32_t>(state.range(0));
    const auto n = static_cast<std::int32_t>(state.range(1));
    const std::vector<MVector::CascadeTaps> taps = Sections(sectionCount);
    std::vector<MVector::CascadeMemory> memory(taps.size());
    const std::vector<double> source = Noise(n);
    std::vector<double> pairs = source;
    for (auto _ : state)
    {
        std::copy(source.begin(), source.end(), pairs.begin());
        run(taps.data(), memory.data(), sectionCount, pairs.data(), n, MVector::CascadeDirection::Backward);
        benchmark::DoNotOptimize(pairs.data());
        benchmark::ClobberMemory();
    }
    state.counters["s/(section*sample)"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * sectionCount * n * 2,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void Sizes(benchmark::internal::Benchmark* bench)
{
    for (const int sections : { 1, 2, 4, 10, 20 })
        bench->Args({ sections, 512 });
    bench->Args({ 10, 64 });
    bench->Args({ 20, 64 });
}

void Plain(benchmark::State& state)
{
    Measure(state, MVector::CascadeRunPlain);
}

void Vector(benchmark::State& state, std::int64_t target)
{
    namespace Sets = MVector::InstructionSets;
    if ((Sets::Supported() & target) == 0)
    {
        state.SkipWithError("not on this processor");
        return;
    }
    Sets::Use(target);
    Measure(state, MVector::CascadeRun);
    Sets::Use(0);
}

BENCHMARK(Plain)->Apply(Sizes);
BENCHMARK_CAPTURE(Vector, baseline, HWY_SCALAR)->Apply(Sizes);
BENCHMARK_CAPTURE(Vector, SSE4, HWY_SSE4)->Apply(Sizes);
BENCHMARK_CAPTURE(Vector, AVX2, HWY_AVX2)->Apply(Sizes);
BENCHMARK_CAPTURE(Vector, AVX3, HWY_AVX3)->Apply(Sizes);
}   // namespace
