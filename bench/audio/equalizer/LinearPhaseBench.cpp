// SPDX-License-Identifier: GPL-3.0-or-later
#include <memory>

#include "audio/equalizer/LinearPhaseEngine.h"
#include "audio/equalizer/PlainLinearPhase.h"
#include "bench/audio/equalizer/EngineBench.h"

namespace
{
using namespace EngineBench;

/// The plain form in stereo.
class PlainStereo
{
public:
    explicit PlainStereo(const std::vector<MAudioFilters::Filter<double>>& bands)
    {
        left.SetFilters(bands.data(), static_cast<std::int32_t>(bands.size()));
        right.SetFilters(bands.data(), static_cast<std::int32_t>(bands.size()));
    }
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
    {
        left.Process(inputs[0], outputs[0], frames);
        right.Process(inputs[1], outputs[1], frames);
    }

private:
    PlainLinearPhase left;
    PlainLinearPhase right;
};

std::unique_ptr<LinearPhaseEngine> Engine(std::int32_t sections)
{
    auto engine = std::make_unique<LinearPhaseEngine>();
    engine->Prepare(2);
    engine->SetFilters(Bands(sections).data(), sections);
    return engine;
}

void LinearPhaseAverage(benchmark::State& state)
{
    const auto engine = Engine(static_cast<std::int32_t>(state.range(0)));
    Average(state, *engine, static_cast<std::int32_t>(state.range(1)));
}

void PlainAverage(benchmark::State& state)
{
    PlainStereo plain(Bands(static_cast<std::int32_t>(state.range(0))));
    Average(state, plain, static_cast<std::int32_t>(state.range(1)));
}

void LinearPhaseWorst(benchmark::State& state)
{
    const auto engine = Engine(static_cast<std::int32_t>(state.range(0)));
    WorstBlock(state, *engine, [] {});
}

void PlainWorst(benchmark::State& state)
{
    PlainStereo plain(Bands(static_cast<std::int32_t>(state.range(0))));
    WorstBlock(state, plain, [] {});
}

void LinearPhaseWorstMoving(benchmark::State& state)
{
    const auto sections = static_cast<std::int32_t>(state.range(0));
    const auto engine = Engine(sections);
    // Three, so that a hop of 256 blocks never begins with the list that the last one began with.
    const std::vector<MAudioFilters::Filter<double>> lists[3] = { Bands(sections, 1.01),
                                                                  Bands(sections, 1.02),
                                                                  Bands(sections, 1.03) };
    std::size_t turn = 0;
    WorstBlock(state, *engine, [&] { engine->SetFilters(lists[++turn % 3].data(), sections); });
}

void LinearPhasePrepare(benchmark::State& state)
{
    LinearPhaseEngine engine;
    for (auto _ : state)
        engine.Prepare(2);
}

BENCHMARK(LinearPhaseAverage)
    ->ArgsProduct({ { 0, 4, 10, 40, 170 }, { 64, 1024 } })
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainAverage)->ArgsProduct({ { 4, 10 }, { 1024 } })->Unit(benchmark::kMicrosecond);
BENCHMARK(LinearPhaseWorst)
    ->Arg(4)
    ->Arg(10)
    ->Arg(40)
    ->Arg(170)
    ->Iterations(60)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(LinearPhaseWorstMoving)
    ->Arg(4)
    ->Arg(10)
    ->Arg(40)
    ->Arg(170)
    ->Iterations(60)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(PlainWorst)->Arg(10)->Iterations(8)->Unit(benchmark::kMillisecond);
BENCHMARK(LinearPhasePrepare)->Unit(benchmark::kMillisecond);
}   // namespace
