// SPDX-License-Identifier: GPL-3.0-or-later
// The analyzer's share of the audio thread (one frame), of the display (one read), and of measuring a whole
// file, in seconds of audio for each second of work ("realtime").
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "audio/analyzer/Interpolator.h"
#include "audio/analyzer/MSpectralAnalyzer.h"

namespace
{
constexpr double SampleRate = 48000.0;

std::vector<float> Noise(std::size_t count)
{
    std::mt19937 random(1);
    std::normal_distribution<float> normal(0.0f, 0.1f);
    std::vector<float> samples(count);
    for (float& sample : samples)
        sample = normal(random);
    return samples;
}

struct Measurement
{
    Measurement(std::int32_t frameSize, bool superResolution)
    {
        analyzer.Setup(SampleRate, frameSize, 20000, 0);
        AnalyzerClientParameters parameters;
        parameters.averageLength = 1.0;
        parameters.superResolution = superResolution;
        parameters.processors = { false, true, false, false };
        analyzer.ConfigureClient(client, parameters);
    }
    MSpectralAnalyzer analyzer;
    AnalyzerClient client;
};

// As the file analysis feeds: blocks of 2048 frames into an average since the start.
void Measure(benchmark::State& state)
{
    const std::vector<float> samples = Noise(48000 * 10);
    Measurement measurement(static_cast<std::int32_t>(state.range(0)), state.range(1) != 0);
    for (auto _ : state)
        for (std::size_t position = 0; position < samples.size(); position += 2048)
            measurement.analyzer.Analyse(
                measurement.client, samples.data() + position,
                static_cast<std::int32_t>(std::min<std::size_t>(2048, samples.size() - position)));
    state.counters["realtime"] =
        benchmark::Counter(10, benchmark::Counter::kIsIterationInvariantRate, benchmark::Counter::kIs1000);
}

void ReadSpectrum(benchmark::State& state)
{
    const std::vector<float> samples = Noise(48000);
    Measurement measurement(static_cast<std::int32_t>(state.range(0)), state.range(1) != 0);
    measurement.analyzer.Analyse(measurement.client, samples.data(), 48000);
    std::array<float, 1024> points;
    for (auto _ : state)
    {
        measurement.analyzer.GetSpectrum(measurement.client, points.data(), ProcessorAverageInfinite, 0.0);
        benchmark::DoNotOptimize(points);
    }
}

void Smooth(benchmark::State& state)
{
    std::vector<float> points = Noise(1024);
    Interpolator interpolator;
    interpolator.SetWidth(static_cast<double>(state.range(0)));
    for (auto _ : state)
    {
        interpolator.Convolve(points.data(), points.data(), 1024, state.range(1) != 0);
        benchmark::DoNotOptimize(points.data());
    }
}

BENCHMARK(Measure)
    ->ArgNames({ "size", "super" })
    ->Args({ 4096, 0 })
    ->Args({ 16384, 0 })
    ->Args({ 2048, 1 })
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ReadSpectrum)
    ->ArgNames({ "size", "super" })
    ->Args({ 4096, 0 })
    ->Args({ 262144, 0 })
    ->Args({ 2048, 1 })
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth)
    ->ArgNames({ "width", "fft" })
    ->ArgsProduct({ { 10, 30, 31, 51, 205 }, { 0, 1 } })
    ->Unit(benchmark::kMicrosecond);
}   // namespace
