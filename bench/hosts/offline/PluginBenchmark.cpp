// SPDX-License-Identifier: GPL-3.0-or-later
// The plug-in as a host sees it: the cost of a block, of an update, of making one.
#include <algorithm>
#include <chrono>
#include <random>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include "hosts/offline/OfflineHost.h"
#include "plugin/driver/PluginState.h"

namespace
{
constexpr double sampleRate = 48000;

void SetBands(OfflineHost& host, std::int32_t count, bool harmonics = false)
{
    for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
    {
        BandPoint& band = host.Effect().equalizer.Band(index);
        band.enabled = index < count;
        // With harmonics the longest lists that there are: each section of a shelf is doubled.
        band.type = harmonics || index == 1 ? MAudioFilters::LowShelf : MAudioFilters::Peak;
        band.x = 1.6 + 0.26 * index;
        band.y = index % 2 == 0 ? 5.0 : -4.0;
        band.harmonicsDepth = harmonics ? 0.999 : 0.0;
        band.harmonicsLinear = harmonics;
        if (harmonics)
        {
            band.x = 1.31 + 0.05 * index;
            band.y = 20.0;
            band.harmonicsDepth = 1.0;
        }
    }
    host.Effect().description.RequestUpdate();
}

struct Blocks
{
    explicit Blocks(std::int32_t frames)
        : left(static_cast<std::size_t>(frames)), right(left), out(left), other(left)
    {
        std::mt19937 generator(1);
        std::uniform_real_distribution<float> samples(-0.5f, 0.5f);
        for (std::size_t index = 0; index < left.size(); ++index)
        {
            left[index] = samples(generator);
            right[index] = samples(generator);
        }
    }
    void Run(OfflineHost& host)
    {
        float* inputs[8] = { left.data(), right.data() };
        float* outputs[8] = { out.data(), other.data() };
        host.Plugin().ProcessBlock(inputs, outputs, static_cast<std::int32_t>(left.size()), true);
        benchmark::DoNotOptimize(out.data());
    }
    std::vector<float> left, right, out, other;
};

// The third argument is the frames in a block. Reports milliseconds for a second of audio.
void MeasureAverage(benchmark::State& state, OfflineHost& host)
{
    Blocks blocks(static_cast<std::int32_t>(state.range(2)));
    // A whole hop an iteration, so that every iteration does the same work.
    const auto turns = static_cast<int>(16384 / state.range(2));
    for (auto _ : state)
        for (int turn = 0; turn < turns; ++turn)
            blocks.Run(host);
    state.counters["ms_per_s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * turns *
                               static_cast<double>(state.range(2)) / sampleRate / 1000,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Arguments: mode, bands, frames in a block.
void BlockAverage(benchmark::State& state)
{
    OfflineHost host;
    host.SetParameterById("mode", static_cast<double>(state.range(0)));
    SetBands(host, static_cast<std::int32_t>(state.range(1)));
    host.Prepare(sampleRate, 2);
    MeasureAverage(state, host);
}
BENCHMARK(BlockAverage)
    ->ArgNames({ "mode", "bands", "frames" })
    ->ArgsProduct({ { 0, 1, 2 }, { 0, 4, 10 }, { 64, 1024 } })
    ->Unit(benchmark::kMicrosecond);

// Upsampling around the effect. Arguments: factor, high quality, frames in a block.
void UpsampledBlockAverage(benchmark::State& state)
{
    OfflineHost host;
    SetBands(host, 4);
    host.Plugin().upsampling = static_cast<std::int32_t>(state.range(0));
    host.Plugin().highQualityUpsampling = state.range(1) != 0;
    host.Plugin().UpdateUpsamplingFactor();
    host.Prepare(sampleRate, 2);
    MeasureAverage(state, host);
}
BENCHMARK(UpsampledBlockAverage)
    ->ArgNames({ "factor", "high", "frames" })
    ->ArgsProduct({ { 1, 2, 4 }, { 0, 1 }, { 64, 1024 } })
    ->Unit(benchmark::kMicrosecond);

// A stereo pair, or a surround group of eight, through ten linear-phase bands.
void ChannelsBlockAverage(benchmark::State& state)
{
    constexpr std::int32_t frames = 512;
    const auto channels = static_cast<std::int32_t>(state.range(0));
    OfflineHost host;
    SetBands(host, 10);
    host.Prepare(sampleRate, channels);
    std::vector<std::vector<float>> buffers(16, Blocks(frames).left);
    float* inputs[8] = {};
    float* outputs[8] = {};
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(channels); ++channel)
    {
        inputs[channel] = buffers[channel].data();
        outputs[channel] = buffers[channel + 8].data();
    }
    for (auto _ : state)
        for (int turn = 0; turn < 32; ++turn)
            host.Plugin().ProcessBlock(inputs, outputs, frames, true);
    state.counters["ms_per_s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * 32 * frames / sampleRate / 1000,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(ChannelsBlockAverage)->ArgName("channels")->Arg(2)->Arg(8)->Unit(benchmark::kMicrosecond);

// The dearest of all blocks of 64 frames in a hop, as a share of the block's time. For each place in the
// hop the least of several turns counts: what another process stole isn't the plug-in's.
void WorstBlock(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::int32_t frames = 64;
    constexpr std::size_t places = 16384 / frames;
    const bool moving = state.range(2) != 0;
    OfflineHost host;
    host.SetParameterById("mode", static_cast<double>(state.range(0)));
    SetBands(host, static_cast<std::int32_t>(state.range(1)));
    host.Prepare(sampleRate, 2);
    Blocks blocks(frames);
    std::vector<double> least(places, 1e9);
    double value = 0;
    for (auto _ : state)
        for (std::size_t place = 0; place < places; ++place)
        {
            if (moving)
            {
                value = value < 0.9 ? value + 0.001 : 0.1;
                host.Plugin().SetParameter(10 + 2, value);
            }
            const Clock::time_point start = Clock::now();
            blocks.Run(host);
            least[place] =
                std::min(least[place], std::chrono::duration<double>(Clock::now() - start).count());
        }
    const double worst = *std::max_element(least.begin(), least.end());
    state.counters["worst_us"] = worst * 1e6;
    state.counters["percent"] = 100 * worst / (frames / sampleRate);
}
BENCHMARK(WorstBlock)
    ->ArgNames({ "mode", "bands", "moving" })
    ->ArgsProduct({ { 1 }, { 4, 10 }, { 0, 1 } })
    ->Args({ 2, 10, 0 })
    ->Args({ 0, 10, 0 })
    ->Iterations(12);

void Update(benchmark::State& state)
{
    OfflineHost host;
    host.SetParameterById("mode", static_cast<double>(state.range(0)));
    SetBands(host, 10, true);
    host.Prepare(sampleRate, 2);
    for (auto _ : state)
        host.Effect().Update();
    state.counters["sections"] = host.Effect().equalizer.filters.count;
}
BENCHMARK(Update)->ArgName("mode")->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

// The fixed cost of a block: one frame through the plain mode without bands.
void BlockOverhead(benchmark::State& state)
{
    OfflineHost host;
    host.SetParameterById("mode", 0);
    SetBands(host, 0);
    host.Prepare(sampleRate, 2);
    Blocks blocks(1);
    for (auto _ : state)
        blocks.Run(host);
}
BENCHMARK(BlockOverhead);

// Bytes on the heap that one more stereo instance takes, when others have made what all share.
void InstanceMemory(benchmark::State& state)
{
    OfflineHost first;
    first.Prepare(sampleRate, 2);
    Blocks blocks(512);
    blocks.Run(first);
    const auto held = []
    {
        const auto info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    double bytes = 0;
    for (auto _ : state)
    {
        const double before = held();
        OfflineHost host;
        host.Prepare(sampleRate, 2);
        blocks.Run(host);
        bytes = held() - before;
    }
    state.counters["MB"] = bytes / 1e6;
}
BENCHMARK(InstanceMemory)->Iterations(5)->Unit(benchmark::kMillisecond);

void MakeAndPrepare(benchmark::State& state)
{
    for (auto _ : state)
    {
        OfflineHost host;
        host.Prepare(sampleRate, 2);
        benchmark::DoNotOptimize(&host);
    }
}
BENCHMARK(MakeAndPrepare)->Unit(benchmark::kMillisecond);

void StateWithAnalyses(benchmark::State& state)
{
    OfflineHost host;
    host.Prepare(sampleRate, 2);
    AnalysisArray analysis;
    std::mt19937 generator(1);
    std::uniform_real_distribution<float> values(0, 1);
    for (float& value : analysis)
        value = values(generator);
    host.Effect().SetAnalysis(analysis, true);
    host.Effect().SetAnalysis(analysis, false);
    MMemoryStream written;
    WritePluginState(host.Plugin(), written);
    for (auto _ : state)
    {
        if (state.range(0) == 0)
        {
            MMemoryStream stream;
            WritePluginState(host.Plugin(), stream);
        }
        else
        {
            written.Seek(0, MStream::Begin);
            ReadPluginState(host.Plugin(), written);
        }
    }
}
BENCHMARK(StateWithAnalyses)->ArgName("load")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
}   // namespace
