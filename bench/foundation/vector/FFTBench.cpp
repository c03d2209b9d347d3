// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "foundation/vector/FFT.h"
#include "foundation/vector/SpectralFrame.h"
#include "foundation/vector/VectorOperations.h"

// Transforms of one length, and a whole frame of the equalizer both ways round.
namespace
{
void Forward(benchmark::State& state)
{
    const auto order = static_cast<std::int32_t>(state.range(0));
    MFFT transform(order, FFTNoScaling);
    std::vector<float> values(std::size_t{ 1 } << order, 0.0f);
    for (auto _ : state)
        transform.Forward(values.data());
}

void Inverse(benchmark::State& state)
{
    const auto order = static_cast<std::int32_t>(state.range(0));
    MFFT transform(order, FFTNoScaling);
    std::vector<float> values(std::size_t{ 1 } << order, 0.0f);
    for (auto _ : state)
        transform.Inverse(values.data());
}

void PackedFrame(benchmark::State& state)
{
    constexpr std::int32_t Length = SpectralFrame::Length;
    MFFT transform(15, FFTNoScaling);
    const std::vector<float> ones(Length, 1.0f);
    std::vector<float> samples(Length, 0.5f);
    std::vector<float> frame(Length);
    std::vector<float> sum(Length);
    for (auto _ : state)
    {
        MVector::Multiply(samples.data(), ones.data(), frame.data(), Length);
        transform.Forward(frame.data());
        MVector::AddConstantInPlace(1e-15f, frame.data(), Length);
        MVector::Multiply(frame.data(), ones.data(), frame.data(), Length);
        transform.Inverse(frame.data());
        MVector::AddScaled(sum.data(), frame.data(), Length, 1e-6f);
    }
}

void UnpackedFrame(benchmark::State& state)
{
    constexpr std::int32_t Length = SpectralFrame::Length;
    const std::vector<float> ones(Length, 1.0f);
    std::vector<float> samples(Length, 0.5f);
    std::vector<float> sum(Length);
    SpectralFrame frame;
    for (auto _ : state)
    {
        frame.Load(samples.data(), ones.data(), 0, Length);
        frame.Process(ones.data());
        frame.Unload(0, 1e-6f, sum.data(), Length, false);
    }
}

/// The first use of every length: run it alone, plans are kept.
void AllPlans(benchmark::State& state)
{
    for (auto _ : state)
    {
        for (std::int32_t order = 1; order <= 18; ++order)
            benchmark::DoNotOptimize(MFFT(order, FFTNoScaling).IsEmpty());
    }
}

BENCHMARK(AllPlans)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Forward)->DenseRange(10, 18)->Unit(benchmark::kMicrosecond);
BENCHMARK(Inverse)->DenseRange(10, 18)->Unit(benchmark::kMicrosecond);
BENCHMARK(PackedFrame)->Unit(benchmark::kMicrosecond);
BENCHMARK(UnpackedFrame)->Unit(benchmark::kMicrosecond);
}   // namespace
