// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/NormalEngine.h"

#include <limits>

#include <gtest/gtest.h>

#include "audio/equalizer/EqualizerGeometry.h"
#include "foundation/vector/Biquad.h"
#include "tests/audio/equalizer/EngineTest.h"

namespace
{
using namespace EngineTest;
constexpr std::uint32_t Seed = 77;
constexpr std::size_t Latency = EqualizerGeometry::LatencySamples;

TEST(NormalEngine, WithoutSectionsItIsAnExactDelayOfAnyChannels)
{
    for (const std::int32_t channelCount : { 1, 2, 5 })
    {
        const Channels input = NoiseChannels(static_cast<std::size_t>(channelCount), 70000, Seed);
        Channels output = input;
        NormalEngine engine;
        engine.Prepare(channelCount);
        const Filters sections = Sections(3, Seed);
        engine.SetFilters(sections.data(), 3);
        engine.SetEnabled(false);
        ProcessAll(engine, output, 5000, [](std::size_t) {});
        for (std::size_t channel = 0; channel < input.size(); ++channel)
        {
            for (std::size_t i = 0; i < 70000; ++i)
                ASSERT_EQ(output[channel][i], i < Latency ? 0.0f : input[channel][i - Latency]) << i;
        }
    }
}

TEST(NormalEngine, RunsTheSectionsOneAfterTheOtherAndKeepsTheirMemoryWhenTheyChange)
{
    const Channels input = NoiseChannels(3, 60000, Seed);
    Channels output = input;
    const Filters one = Sections(6, Seed);
    const Filters other = Sections(6, Seed + 1);
    NormalEngine engine;
    engine.Prepare(3);
    engine.SetFilters(one.data(), 6);
    std::size_t changedAt = 0;
    ProcessAll(engine, output, 700,
               [&](std::size_t position)
               {
                   if (position < 45000 || changedAt != 0)
                       return;
                   changedAt = position;
                   engine.SetFilters(other.data(), 6);
               });

    for (std::size_t channel = 0; channel < 3; ++channel)
    {
        std::vector<float> expected(Latency, 0.0f);
        expected.insert(expected.end(), input[channel].begin(), input[channel].end() - Latency);
        for (std::size_t i = 0; i < 6; ++i)
        {
            const auto taps = [i](const Filters& list)
            {
                return std::vector<double>{
                    list[i].b0, list[i].b1, list[i].b2, 1.0, -list[i].a1, -list[i].a2
                };
            };
            BiquadState* state = nullptr;
            BiquadCreate(&state, taps(one).data(), 1, 0);
            BiquadRun(expected.data(), expected.data(), static_cast<std::int32_t>(changedAt), state);
            BiquadSetTaps(taps(other).data(), state);
            BiquadRun(expected.data() + changedAt, expected.data() + changedAt,
                      static_cast<std::int32_t>(expected.size() - changedAt), state);
            BiquadFree(state);
        }
        // The single sections round to float between each other; low ones amplify that.
        const float tolerance = 1e-5f * PeakOf(expected);
        for (std::size_t i = 0; i < expected.size(); ++i)
            ASSERT_NEAR(output[channel][i], expected[i], tolerance) << "channel " << channel << " at " << i;
    }
}

TEST(NormalEngine, WhatIsNotFiniteIsTakenAsSilenceAndUnstableFiltersAreForgotten)
{
    Channels channels(1, std::vector<float>(120000, 0.25f));
    channels[0][100] = std::numeric_limits<float>::quiet_NaN();
    channels[0][200] = std::numeric_limits<float>::infinity();
    const Filters unstable = Unstable();
    Filters stable(1);
    stable[0].Set(MAudioFilters::HighShelf, 6.0, 5000.0, 48000.0, 0.7);
    NormalEngine engine;
    engine.Prepare(1);
    engine.SetFilters(stable.data(), 1);
    ProcessAll(engine, channels, 300,
               [&](std::size_t position)
               {
                   const bool between = position > 50000 && position < 70000;
                   engine.SetFilters((between ? unstable : stable).data(), 1);
               });
    for (std::size_t i = Latency + 100; i < 50000; ++i)
        ASSERT_LT(std::abs(channels[0][i]), 1.0f) << i;
    for (std::size_t i = 80000; i < 120000; ++i)
        ASSERT_NEAR(channels[0][i], 0.25f, 1e-4) << i;   // a shelf at high frequencies leaves 0 Hz alone
    engine.Reset();
    std::vector<float> silence(1000, 0.0f);
    float* pointers[1] = { silence.data() };
    engine.Process(pointers, pointers, 1000);
    EXPECT_LT(PeakOf(silence), 1e-14f);
}
}   // namespace
