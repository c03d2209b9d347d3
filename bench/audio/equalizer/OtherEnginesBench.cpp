// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/FFTEngine.h"
#include "audio/equalizer/NormalEngine.h"
#include "audio/equalizer/SoftSaturator.h"
#include "audio/fft/MAudioFFTProcessor.h"
#include "bench/audio/equalizer/EngineBench.h"
#include "foundation/vector/Biquad.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
using namespace EngineBench;

const std::vector<float>& Curve()
{
    static const std::vector<float> curve(32768, 0.7f);
    return curve;
}

FilterList List(std::int32_t sections, double shift = 1.0)
{
    FilterList list;
    for (const MAudioFilters::Filter<double>& band : Bands(sections, shift))
        list.filters[static_cast<std::size_t>(list.count++)] = band;
    return list;
}

/// Spectral processors in stereo that multiply their packed spectra.
class PlainFFTStereo
{
public:
    PlainFFTStereo()
    {
        for (Multiplier* channel : { &left, &right })
        {
            channel->SetFrameSize(32768);
            channel->SetOverlap(16);
            channel->Update();
        }
    }
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
    {
        left.Process(outputs[0], inputs[0], frames);
        right.Process(outputs[1], inputs[1], frames);
    }

private:
    class Multiplier : public MAudioFFTProcessor
    {
    protected:
        void ProcessSpectrum(std::int32_t size, float* spectrum) override
        {
            MVector::Multiply(spectrum, Curve().data(), spectrum, size);
        }
    };
    Multiplier left;
    Multiplier right;
};

/// Section after section through the single runner, as a list is told to run.
class BiquadStereo
{
public:
    explicit BiquadStereo(std::int32_t sections)
    {
        for (const MAudioFilters::Filter<double>& band : Bands(sections))
        {
            const double taps[6] = { band.b0, band.b1, band.b2, 1.0, -band.a1, -band.a2 };
            for (auto& channel : states)
                BiquadCreate(&channel.emplace_back(nullptr), taps, 1, 0);
        }
    }
    BiquadStereo(const BiquadStereo&) = delete;
    BiquadStereo& operator=(const BiquadStereo&) = delete;
    ~BiquadStereo()
    {
        for (auto& channel : states)
        {
            for (BiquadState* state : channel)
                BiquadFree(state);
        }
    }
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
    {
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            MVector::Copy(inputs[channel], outputs[channel], frames);
            for (BiquadState* state : states[channel])
            {
                BiquadRun(outputs[channel], outputs[channel], frames, state);
                MVector::AddConstantInPlace(1e-15f, outputs[channel], frames);
            }
        }
    }

private:
    std::vector<BiquadState*> states[2];
};

void NormalAverage(benchmark::State& state)
{
    const auto sections = static_cast<std::int32_t>(state.range(0));
    NormalEngine engine;
    engine.Prepare(2);
    engine.SetFilters(Bands(sections).data(), sections);
    Average(state, engine, static_cast<std::int32_t>(state.range(1)));
}

void PlainNormalAverage(benchmark::State& state)
{
    BiquadStereo engine(static_cast<std::int32_t>(state.range(0)));
    Average(state, engine, static_cast<std::int32_t>(state.range(1)));
}

void FFTAverage(benchmark::State& state)
{
    FFTEngine engine;
    engine.Prepare(2);
    engine.SetFilters(List(10), 1.0);
    Average(state, engine, static_cast<std::int32_t>(state.range(0)));
}

void PlainFFTAverage(benchmark::State& state)
{
    PlainFFTStereo engine;
    Average(state, engine, static_cast<std::int32_t>(state.range(0)));
}

void FFTWorst(benchmark::State& state)
{
    FFTEngine engine;
    engine.Prepare(2);
    engine.SetFilters(List(10), 1.0);
    WorstBlock(state, engine, [] {});
}

void FFTWorstMoving(benchmark::State& state)
{
    const auto sections = static_cast<std::int32_t>(state.range(0));
    FFTEngine engine;
    engine.Prepare(2);
    const FilterList lists[3] = { List(sections, 1.01), List(sections, 1.02), List(sections, 1.03) };
    std::size_t turn = 0;
    WorstBlock(state, engine, [&] { engine.SetFilters(lists[++turn % 3], 1.0); });
}

void FFTPrepare(benchmark::State& state)
{
    for (auto _ : state)
    {
        FFTEngine engine;
        engine.Prepare(2);
    }
}

void Saturator(benchmark::State& state)
{
    SoftSaturator saturator;
    saturator.SetAmount(0.5);
    std::vector<float> samples = Noise(3);
    for (auto _ : state)
        saturator.Process(samples.data(), 1024);
    state.SetItemsProcessed(state.iterations() * 1024);
}

BENCHMARK(NormalAverage)->ArgsProduct({ { 0, 8, 20 }, { 64, 1024 } })->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainNormalAverage)->ArgsProduct({ { 20 }, { 64, 1024 } })->Unit(benchmark::kMicrosecond);
BENCHMARK(FFTAverage)->Arg(64)->Arg(1024)->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainFFTAverage)->Arg(64)->Arg(1024)->Unit(benchmark::kMicrosecond);
BENCHMARK(FFTWorst)->Iterations(60)->Unit(benchmark::kMillisecond);
BENCHMARK(FFTWorstMoving)->Arg(4)->Arg(10)->Arg(340)->Iterations(60)->Unit(benchmark::kMillisecond);
BENCHMARK(FFTPrepare)->Unit(benchmark::kMillisecond);
BENCHMARK(Saturator);
}   // namespace
