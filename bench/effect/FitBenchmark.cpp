// SPDX-License-Identifier: GPL-3.0-or-later
// Latency of one fit on one core.
#include <array>
#include <cmath>
#include <random>

#include <benchmark/benchmark.h>

#include "effect/FilterDictionary.h"
#include "effect/FilterFitter.h"

namespace
{
constexpr double SampleRate = 48000.0;

// 0: a curve as two recordings differ, a few waves and some roughness. 1: noise, the hardest to prune.
std::array<float, 1024> Curve(std::int64_t kind)
{
    std::mt19937 random(7);
    std::normal_distribution<float> noise(0.0f, kind == 0 ? 1.0f : 12.0f);
    std::array<float, 1024> curve;
    for (std::size_t i = 0; i < curve.size(); ++i)
    {
        const auto x = static_cast<float>(i) / 1024.0f;
        const float waves =
            5.0f * std::sin(4.0f * x) + 3.0f * std::sin(17.0f * x + 1.0f) + 2.0f * std::cos(45.0f * x);
        curve[i] = (kind == 0 ? waves : 0.0f) + noise(random);
    }
    return curve;
}

void Fit(benchmark::State& state, MFAAlgorithm algorithm)
{
    const auto curve = Curve(state.range(1));
    FilterFitter fitter;
    fitter.Prepare(SampleRate);
    for (auto _ : state)
    {
        auto wanted = curve;
        std::vector<FittedFilter> results;
        fitter.Fit(wanted.data(), SampleRate, results, static_cast<std::int32_t>(state.range(0)), true,
                   algorithm, 20.0);
        benchmark::DoNotOptimize(results.data());
    }
}

void FitDefault(benchmark::State& state)
{
    Fit(state, MFADefault);
}

void FitOptimized(benchmark::State& state)
{
    Fit(state, MFAOptimized);
}

void DictionaryAtANewRate(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(FilterDictionary(SampleRate));
}

BENCHMARK(FitDefault)
    ->ArgNames({ "bands", "rough" })
    ->ArgsProduct({ { 1, 4, 10 }, { 0, 1 } })
    ->Unit(benchmark::kMillisecond);
BENCHMARK(FitOptimized)
    ->ArgNames({ "bands", "rough" })
    ->ArgsProduct({ { 4, 10 }, { 0, 1 } })
    ->Unit(benchmark::kMillisecond);
BENCHMARK(DictionaryAtANewRate)->Unit(benchmark::kMillisecond);
}   // namespace
