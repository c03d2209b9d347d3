// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/FFTEngine.h"

#include <chrono>
#include <limits>
#include <memory>

#include <gtest/gtest.h>

#include "audio/fft/MAudioFFTProcessor.h"
#include "foundation/vector/VectorOperations.h"
#include "tests/audio/equalizer/Signals.h"

namespace
{
using namespace EngineTest;
constexpr std::uint32_t Seed = 5;
constexpr std::int32_t Length = EqualizerGeometry::FrameSize;

/// The mode as it is told: a spectral processor that multiplies its packed spectrum.
class PlainFFT : public MAudioFFTProcessor
{
public:
    explicit PlainFFT(const float* newCurve) : curve(newCurve)
    {
        SetFrameSize(Length);
        SetOverlap(16);
        Update();
        SetStartOffset(Length - FFTEngine::HopSize);
    }

protected:
    void ProcessSpectrum(std::int32_t size, float* spectrum) override
    {
        MVector::Multiply(spectrum, curve, spectrum, size);
    }

private:
    const float* curve;
};

/// A smooth curve from 0 to 2 over the bins, each value twice.
std::vector<float> Curve()
{
    std::vector<float> curve(Length);
    for (std::size_t i = 0; i < curve.size(); ++i)
        curve[i] = 1.0f + std::sin(0.001f * static_cast<float>(i / 2));
    return curve;
}

void ProcessAll(FFTEngine& engine, Channels& channels, std::int32_t maxBlock)
{
    std::mt19937 random(Seed);
    std::uniform_int_distribution<std::int32_t> lengths(0, maxBlock);
    for (std::size_t position = 0; position < channels[0].size();)
    {
        const std::int32_t n =
            std::min(lengths(random), static_cast<std::int32_t>(channels[0].size() - position));
        ProcessBlock(engine, channels, position, n);
        position += static_cast<std::size_t>(n);
    }
}

TEST(FFTEngine, EqualsTheSpectralProcessorInItsFirstChannelAndAlmostInTheOthers)
{
    const std::vector<float> curve = Curve();
    const Channels input = Noise(3, 100000, Seed);
    Channels output = input;
    FFTEngine engine;
    engine.Prepare(3);
    engine.SetGainCurve(curve.data());
    ProcessAll(engine, output, 3000);
    for (std::size_t channel = 0; channel < 3; ++channel)
    {
        PlainFFT plain(curve.data());
        std::vector<float> expected = input[channel];
        plain.Process(expected.data(), expected.data(), static_cast<std::int32_t>(expected.size()));
        // Float transforms. Frames at other times wrap another part of the curve's impulse response, whose
        // far end is about 1e-4 of its peak.
        const double tolerance = channel == 0 ? 3e-6 : 1e-3;
        for (std::size_t i = 0; i < expected.size(); ++i)
            ASSERT_NEAR(output[channel][i], expected[i], tolerance) << "channel " << channel << " at " << i;
    }
}

TEST(FFTEngine, IsADelayWithoutACurveOrDisabledFromTheFirstSampleOn)
{
    const std::vector<float> curve = Curve();
    for (const bool withCurve : { false, true })
    {
        const Channels input = Noise(2, 90000, Seed);
        Channels output = input;
        FFTEngine engine;
        engine.Prepare(2);
        engine.SetGainCurve(withCurve ? curve.data() : nullptr);
        engine.SetEnabled(!withCurve);
        ProcessAll(engine, output, 400);
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            for (std::size_t i = 0; i < 90000; ++i)
                ASSERT_NEAR(output[channel][i], i < 32768 ? 0.0f : input[channel][i - 32768], 2e-6) << i;
        }
    }
}

TEST(FFTEngine, WhatIsNotFiniteIsTakenAsSilenceAndAResetIsSilent)
{
    Channels dirty = Noise(2, 80000, Seed);
    Channels clean = dirty;
    clean[1][1000] = 0.0f;
    dirty[1][1000] = std::numeric_limits<float>::quiet_NaN();
    FFTEngine engine;
    engine.Prepare(2);
    ProcessAll(engine, clean, 500);
    engine.Reset();
    ProcessAll(engine, dirty, 500);
    EXPECT_EQ(dirty, clean);
}
}   // namespace
