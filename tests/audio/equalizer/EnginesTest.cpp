// SPDX-License-Identifier: GPL-3.0-or-later
// What all engines share: the latency, what a reset forgets, what bad samples and filters do, and no
// allocation.
#include <limits>
#include <memory>

#include <gtest/gtest.h>

#include "audio/equalizer/FFTEngine.h"
#include "audio/equalizer/LinearPhaseEngine.h"
#include "audio/equalizer/NormalEngine.h"
#include "foundation/vector/Biquad.h"
#include "tests/AllocationCounter.h"
#include "tests/audio/equalizer/EngineTest.h"

namespace
{
using namespace EngineTest;
constexpr std::uint32_t Seed = 77;
constexpr std::size_t Latency = EqualizerGeometry::LatencySamples;

template <typename Engine>
void Give(Engine& engine, const Filters& sections)
{
    engine.SetFilters(sections.data(), static_cast<std::int32_t>(sections.size()));
}
void Give(FFTEngine& engine, const Filters& sections)
{
    FilterList list;   // large, but it's the main thread
    for (const auto& section : sections)
        list.filters[static_cast<std::size_t>(list.count++)] = section;
    engine.SetFilters(list, 1.0);
}
template <typename Engine>
void Settle(Engine&)
{
}
void Settle(FFTEngine& engine)
{
    engine.SettleFilters();
}

template <typename Engine>
class Engines : public ::testing::Test
{
protected:
    static constexpr bool InTheFrequencyDomain = std::is_same_v<Engine, FFTEngine>;

    Engines() : engine(std::make_unique<Engine>()) {}
    void Start(std::int32_t channelCount, const Filters& sections)
    {
        engine->Prepare(channelCount);
        Give(*engine, sections);
        Settle(*engine);
    }
    Channels Run(Channels channels, std::int32_t maxBlock = 900)
    {
        ProcessAll(*engine, channels, maxBlock);
        return channels;
    }
    std::unique_ptr<Engine> engine;
};
using AllEngines = ::testing::Types<NormalEngine, LinearPhaseEngine, FFTEngine>;
TYPED_TEST_SUITE(Engines, AllEngines);

TYPED_TEST(Engines, AreDelaysWhenDisabledOrWithoutSections)
{
    // Transforms in single precision: a few units of the last place.
    const double tolerance = this->InTheFrequencyDomain ? 2e-6 : 0.0;
    for (const std::int32_t channelCount : { 1, 2, 5 })
        for (const bool enabled : { true, false })
        {
            SCOPED_TRACE(channelCount);
            const Channels input = NoiseChannels(static_cast<std::size_t>(channelCount), 70000, Seed);
            this->Start(channelCount, enabled ? Filters() : Sections(3, Seed));
            this->engine->SetEnabled(enabled);
            this->engine->Reset();
            const Channels output = this->Run(input, 5000);
            for (std::size_t channel = 0; channel < input.size(); ++channel)
                EXPECT_LE(LargestDifference(output[channel], input[channel], 0, 70000, Latency), tolerance);
        }
}

TYPED_TEST(Engines, AResetForgetsAllButTheFiltersAndBadSamplesAreSilence)
{
    Channels input = NoiseChannels(3, 90000, Seed);
    input[2] = input[0];
    std::fill(input[0].begin() + 40000, input[0].begin() + 40100, 0.0f);
    this->Start(3, Sections(7, Seed));
    const Channels first = this->Run(input);
    EXPECT_GT(LargestDifference(first[1], input[1], 0, 90000, Latency), 0.01) << "it filters";
    for (std::size_t i = 40000; i < 40100; ++i)
        input[0][i] =
            i % 2 == 0 ? std::numeric_limits<float>::quiet_NaN() : -std::numeric_limits<float>::infinity();
    this->engine->Reset();
    const Channels again = this->Run(input, 300);
    for (const std::size_t channel : { 0u, 1u, 2u })
        EXPECT_LT(LargestDifference(again[channel], first[channel], 0, 90000), 1e-12)
            << "the way states were found may differ, no more; channel " << channel;
}

TYPED_TEST(Engines, RecoverFromUnstableFilters)
{
    Filters stable(1);
    stable[0].Set(MAudioFilters::HighShelf, 6.0, 5000.0, 48000.0, 0.7);   // forgets fast
    const Channels input = NoiseChannels(2, 180000, Seed);
    this->Start(2, Unstable());
    Channels output = input;
    ProcessAll(*this->engine, output, 300,
               [&](std::size_t position) { Give(*this->engine, position < 60000 ? Unstable() : stable); });
    this->Start(2, stable);
    const Channels expected = this->Run(input);
    // The linear-phase mode takes a list over at the end of a hop; the next one still holds a frame of the
    // old one.
    EXPECT_LT(LargestDifference(output[1], expected[1], 7 * 16384, 180000), 1e-4);
    Channels silence(2, std::vector<float>(2000));
    this->engine->Reset();
    EXPECT_LT(PeakOf(this->Run(silence)[1]), 1e-14f);
}

TYPED_TEST(Engines, DoNotAllocateInBlocksNorWhenTheirFiltersChange)
{
    EXPECT_TRUE(!AllocationCounter::IsCounting() || AllocationCounter::TakenByThisThread() > 0);
    this->Start(3, {});
    Channels channels = NoiseChannels(3, 70000, 3);
    float* pointers[3] = { channels[0].data(), channels[1].data(), channels[2].data() };
    const Filters lists[3] = { Sections(12, 1), {}, Sections(40, 2) };
    const std::int64_t before = AllocationCounter::TakenByThisThread();
    std::size_t block = 0;
    for (std::int32_t done = 0; done < 4 * 16384; ++block)
    {
        const std::int32_t n = block % 7 == 0 ? 4000 : static_cast<std::int32_t>(block % 7) * 64 - 1;
        if (block % 50 == 0)
        {
            Give(*this->engine, lists[block / 50 % 3]);
            this->engine->SetEnabled(block / 50 % 5 != 4);
        }
        this->engine->Process(pointers, pointers, n);
        done += n;
    }
    EXPECT_EQ(AllocationCounter::TakenByThisThread() - before, 0);
}

TEST(NormalEngine, RunsTheSectionsOneAfterTheOtherAndKeepsTheirMemoryWhenTheyChange)
{
    const Channels input = NoiseChannels(3, 60000, Seed);
    Channels output = input;
    const Filters lists[2] = { Sections(6, Seed), Sections(6, Seed + 1) };
    NormalEngine engine;
    engine.Prepare(3);
    // Each list from the block on in which it came, also while a chunk is half out.
    std::vector<std::size_t> changes;
    ProcessAll(engine, output, 700,
               [&](std::size_t position)
               {
                   if (changes.empty() || position > 40000)
                   {
                       Give(engine, lists[changes.size() % 2]);
                       changes.push_back(position);
                   }
               });
    changes.push_back(60000);
    for (std::size_t channel = 0; channel < 3; ++channel)
    {
        std::vector<float> expected(Latency, 0.0f);
        expected.insert(expected.end(), input[channel].begin(), input[channel].end() - Latency);
        for (std::size_t i = 0; i < 6; ++i)
        {
            BiquadState* state = nullptr;
            for (std::size_t change = 0; change + 1 < changes.size(); ++change)
            {
                const auto& section = lists[change % 2][i];
                const double taps[] = { section.b0, section.b1, section.b2, 1.0, -section.a1, -section.a2 };
                if (change == 0)
                    BiquadCreate(&state, taps, 1, 0);
                else
                    BiquadSetTaps(taps, state);
                float* samples = expected.data() + changes[change];
                BiquadRun(samples, samples, static_cast<std::int32_t>(changes[change + 1] - changes[change]),
                          state);
            }
            BiquadFree(state);
        }
        // The single sections round to float between each other; low ones amplify that.
        EXPECT_LT(LargestDifference(output[channel], expected, 0, 60000), 1e-5 * PeakOf(expected)) << channel;
    }
}
}   // namespace
