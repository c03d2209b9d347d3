// SPDX-License-Identifier: GPL-3.0-or-later
// The stages around an effect, in milliseconds for a second of stereo audio.
#include <algorithm>
#include <chrono>
#include <random>

#include <benchmark/benchmark.h>

#include "audio/stages/MAutomaticGainControl.h"
#include "audio/stages/MUpsampler.h"

namespace
{
std::vector<float> Noise(std::int32_t count)
{
    std::mt19937 generator(1);
    std::uniform_real_distribution<float> samples(-0.5f, 0.5f);
    std::vector<float> noise(static_cast<std::size_t>(count));
    for (float& sample : noise)
        sample = samples(generator);
    return noise;
}

struct Pair
{
    explicit Pair(const MUpsampler::Setup& setup)
    {
        left.Init(setup);
        right.Init(setup);
    }
    // Both channels up, across a bare copy in place of the effect, and down.
    void Run(const std::vector<float>& input, std::vector<float>& output)
    {
        const auto frames = static_cast<std::int32_t>(input.size());
        for (MUpsampler* upsampler : { &left, &right })
        {
            upsampler->Up(input.data(), frames);
            std::copy_n(upsampler->UpSamples(), upsampler->CurrentSetup().factor * frames,
                        upsampler->DownSamples());
            upsampler->Down(output.data(), frames);
        }
    }
    MUpsampler left, right;
};

benchmark::Counter MillisecondsPerSecond(std::int64_t blocks, std::int32_t frames, double rate)
{
    return { static_cast<double>(blocks) * frames / rate / 1000,
             benchmark::Counter::kIsRate | benchmark::Counter::kInvert };
}

// Arguments: rate, factor, high quality, frames in a block.
void Upsampling(benchmark::State& state)
{
    const auto rate = static_cast<double>(state.range(0));
    const auto frames = static_cast<std::int32_t>(state.range(3));
    Pair pair({ rate, static_cast<std::int32_t>(state.range(1)), state.range(2) != 0 });
    const std::vector<float> input = Noise(frames);
    std::vector<float> output(input.size());
    for (auto _ : state)
    {
        pair.Run(input, output);
        benchmark::DoNotOptimize(output.data());
    }
    state.counters["ms_per_s"] = MillisecondsPerSecond(state.iterations(), frames, rate);
}
BENCHMARK(Upsampling)
    ->ArgNames({ "rate", "factor", "high", "frames" })
    ->ArgsProduct({ { 48000 }, { 2, 3, 4 }, { 0, 1 }, { 64, 512 } })
    ->ArgsProduct({ { 96000 }, { 2, 4 }, { 0, 1 }, { 64, 512 } })
    ->Unit(benchmark::kMicrosecond);

// The dearest block of 64 frames in a stretch that all hops divide. For each place the least of several turns
// counts: what another process stole isn't the filter's.
void WorstUpsampledBlock(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    const auto rate = static_cast<double>(state.range(0));
    constexpr std::int32_t frames = 64;
    Pair pair({ rate, static_cast<std::int32_t>(state.range(1)), true });
    const std::vector<float> input = Noise(frames);
    std::vector<float> output(input.size());
    std::vector<double> least(64, 1e9);
    for (auto _ : state)
        for (double& place : least)
        {
            const Clock::time_point start = Clock::now();
            pair.Run(input, output);
            place = std::min(place, std::chrono::duration<double>(Clock::now() - start).count());
        }
    const double worst = *std::max_element(least.begin(), least.end());
    state.counters["worst_us"] = worst * 1e6;
    state.counters["percent"] = 100 * worst / (frames / rate);
}
BENCHMARK(WorstUpsampledBlock)
    ->ArgNames({ "rate", "factor" })
    ->Args({ 48000, 2 })
    ->Args({ 96000, 4 })
    ->Iterations(50);

void GainControl(benchmark::State& state)
{
    constexpr double rate = 48000;
    const auto frames = static_cast<std::int32_t>(state.range(0));
    MAutomaticGainControl control;
    control.Init(rate, 2, 32768);
    const std::vector<float> noise = Noise(frames);
    std::vector<float> left = noise, right = noise;
    float* channels[] = { left.data(), right.data() };
    for (auto _ : state)
    {
        std::copy(noise.begin(), noise.end(), left.begin());
        std::copy(noise.begin(), noise.end(), right.begin());
        control.MeasureInput(channels, frames, 2);
        control.Process(channels, frames, 2);
        benchmark::DoNotOptimize(left.data());
    }
    state.counters["ms_per_s"] = MillisecondsPerSecond(state.iterations(), frames, rate);
}
BENCHMARK(GainControl)->ArgName("frames")->Arg(64)->Arg(512)->Unit(benchmark::kMicrosecond);
}   // namespace
