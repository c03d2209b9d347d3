// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "audio/equalizer/EqualizerGeometry.h"
#include "audio/filters/Filter.h"

/// What the benchmarks of the engines share: stereo noise at 48 kHz, lists of bands, average and worst block.
namespace EngineBench
{
constexpr double SampleRate = 48000.0;
constexpr std::size_t Length = 48000;

inline std::vector<MAudioFilters::Filter<double>> Bands(std::int32_t count, double shift = 1.0)
{
    std::vector<MAudioFilters::Filter<double>> bands(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < bands.size(); ++i)
    {
        const double place = (static_cast<double>(i) + 0.5) / static_cast<double>(count);
        bands[i].Set(MAudioFilters::Peak, i % 2 == 0 ? 3.0 : -3.0, shift * 40.0 * std::pow(400.0, place),
                     SampleRate, 1.2);
    }
    return bands;
}

inline std::vector<float> Noise(std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> values(-1.0f, 1.0f);
    std::vector<float> noise(Length + 1024);
    std::generate(noise.begin(), noise.end(), [&] { return values(random); });
    return noise;
}

/// Stereo input that comes round, and output.
class Stereo
{
public:
    template <typename Engine>
    void Process(Engine& engine, std::int32_t frames)
    {
        const float* inputs[2] = { left.data() + position, right.data() + position };
        float* outputs[2] = { outLeft.data(), outRight.data() };
        engine.Process(inputs, outputs, frames);
        benchmark::DoNotOptimize(outLeft.data());
        benchmark::ClobberMemory();
        position = (position + static_cast<std::size_t>(frames)) % Length;
    }

private:
    std::vector<float> left = Noise(1);
    std::vector<float> right = Noise(2);
    std::vector<float> outLeft = std::vector<float>(1024 + Length);
    std::vector<float> outRight = outLeft;
    std::size_t position = 0;
};

/// Milliseconds of work for a second of audio, in blocks of `frames`.
template <typename Engine>
void Average(benchmark::State& state, Engine& engine, std::int32_t frames)
{
    Stereo stereo;
    for (std::int32_t warm = 0; warm < 80000; warm += frames)
        stereo.Process(engine, frames);
    for (auto _ : state)
        stereo.Process(engine, frames);
    const double seconds = static_cast<double>(state.iterations()) * frames / SampleRate;
    state.counters["ms_per_s"] =
        benchmark::Counter(seconds / 1000.0, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// The longest block of 64 within a hop, robust against the noise of the machine: the least time of each
/// block of the hop over many hops, then the largest of these. `before` is called before each block.
template <typename Engine, typename Before>
void WorstBlock(benchmark::State& state, Engine& engine, Before before)
{
    constexpr std::int32_t Frames = 64;
    constexpr std::size_t Blocks = EqualizerGeometry::HopSize / Frames;
    Stereo stereo;
    std::vector<double> least(Blocks, std::numeric_limits<double>::max());
    std::size_t hops = 0;
    for (auto _ : state)
    {
        for (std::size_t block = 0; block < Blocks; ++block)
        {
            before();
            const auto begin = std::chrono::steady_clock::now();
            stereo.Process(engine, Frames);
            const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - begin;
            if (hops >= 3)
                least[block] = std::min(least[block], time.count());
        }
        ++hops;
    }
    const double worst = *std::max_element(least.begin(), least.end());
    state.counters["worst_us"] = worst;
    state.counters["worst_%"] = 100.0 * worst / (1e6 * Frames / SampleRate);
    state.counters["at_block"] =
        static_cast<double>(std::max_element(least.begin(), least.end()) - least.begin());
}
}   // namespace EngineBench
