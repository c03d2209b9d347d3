// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/LinearPhaseEngine.h"

#include <memory>

#include <gtest/gtest.h>

#include "audio/equalizer/PlainLinearPhase.h"
#include "tests/audio/equalizer/EngineTest.h"

namespace
{
using namespace EngineTest;
constexpr std::uint32_t Seed = 4711;

/// The plain form of all channels, behind the engine's interface.
class PlainChannels
{
public:
    explicit PlainChannels(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
            channels.push_back(std::make_unique<PlainLinearPhase>());
    }
    void Take(bool enabled, const Filters& sections)
    {
        for (auto& channel : channels)
        {
            channel->SetEnabled(enabled);
            channel->SetFilters(sections.data(), static_cast<std::int32_t>(sections.size()));
        }
    }
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
    {
        for (std::size_t i = 0; i < channels.size(); ++i)
            channels[i]->Process(inputs[i], outputs[i], frames);
    }

private:
    std::vector<std::unique_ptr<PlainLinearPhase>> channels;
};

struct Case
{
    const char* what;
    std::int32_t channelCount;
    std::int32_t sectionCount;
    std::int32_t maxBlock;
    double changesPerHop;   // of filters or the enable flag, at random times
    std::int32_t hops;
    bool anyCount;   // the number of sections changes too
};

void CompareWithPlain(const Case& known)
{
    SCOPED_TRACE(known.what);
    const auto channelCount = static_cast<std::size_t>(known.channelCount);
    const auto length = static_cast<std::size_t>(known.hops * EqualizerGeometry::HopSize) + 777;
    Channels actual = NoiseChannels(channelCount, length, Seed);
    Channels expected = actual;
    LinearPhaseEngine engine;
    engine.Prepare(known.channelCount);
    PlainChannels plain(channelCount);
    std::mt19937 random(Seed + 1);
    std::uniform_int_distribution<std::int32_t> blocks(0, known.maxBlock);
    std::uniform_real_distribution<double> chance(0.0, 1.0);
    std::uint32_t list = 0;
    bool enabled = true;
    Filters given;
    std::size_t position = 0;
    while (position < length)
    {
        const auto frames = std::min(blocks(random), static_cast<std::int32_t>(length - position));
        const bool change = chance(random) < known.changesPerHop * frames / EqualizerGeometry::HopSize;
        if (position == 0 || change)
        {
            if (list % 4 == 3)
                enabled = !enabled;
            std::int32_t count = known.sectionCount;
            if (known.anyCount)
                count = std::uniform_int_distribution<std::int32_t>(0, count)(random);
            const Filters sections = Sections(count, Seed + (list % 4 == 2 ? list - 1 : list));
            engine.SetEnabled(enabled);
            engine.SetFilters(sections.data(), count);
            given = sections;
            if (position == 0)
                plain.Take(enabled, given);
            ++list;
        }
        ProcessBlock(engine, actual, position, frames);
        // The plain form takes a list over where the engine does.
        constexpr std::size_t Hop = EqualizerGeometry::HopSize;
        constexpr std::size_t TakeOver = Hop - LinearPhaseEngine::TakeOverLead;
        for (const std::size_t end = position + static_cast<std::size_t>(frames); position < end;)
        {
            const std::size_t next = (position + Hop - TakeOver) / Hop * Hop + TakeOver;
            const std::size_t stop = std::min(next, end);
            ProcessBlock(plain, expected, position, static_cast<std::int32_t>(stop - position));
            position = stop;
            if (position == next)
                plain.Take(enabled, given);
        }
    }
    // The plain form rounds to float between its passes: a few units of the last place of the largest value,
    // as often as the forward pass may raise them.
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        EXPECT_LT(LargestDifference(actual[channel], expected[channel], 0, length),
                  1.5e-6 * PeakOf(expected[channel]) + 1e-12)
            << "channel " << channel;
}

TEST(ChunkTransition, CarriesAMemoryThroughAChunkOfSilence)
{
    for (const std::int32_t count : { 0, 1, 7, ChunkTransition::MaxSections })
    {
        SectionList list;
        list.Set(Sections(count, Seed).data(), count);
        ChunkTransition transition;
        transition.Prepare();
        EXPECT_FALSE(transition.HasWork());
        transition.Begin(list);
        for (std::int32_t left = count; left > 0; --left)
        {
            EXPECT_FALSE(transition.IsReady());
            const std::int64_t before = transition.CostLeft();
            const std::int64_t cost = transition.BuildNext();
            EXPECT_EQ(cost, before - transition.CostLeft());
        }
        EXPECT_TRUE(transition.IsReady() && !transition.HasWork());
        EXPECT_EQ(transition.CostLeft(), 0);
        std::vector<MVector::CascadeMemory> start(static_cast<std::size_t>(count) + 1);
        for (std::size_t i = 0; i < start.size(); ++i)
            start[i] = { { 1.0 / static_cast<double>(i + 1), -0.3 }, { 0.7, 0.01 * static_cast<double>(i) } };
        std::vector<MVector::CascadeMemory> carried = start;   // it is added to what is there
        carried.resize(static_cast<std::size_t>(MVector::StateTransition::PaddedCount(count)) + 1);
        transition.Apply(start.data(), carried.data());
        std::vector<MVector::CascadeMemory> run = start;
        std::vector<double> pairs(2 * LinearPhaseGeometry::ChunkSize);
        MVector::CascadeRun(list.Taps(), run.data(), count, pairs.data(), LinearPhaseGeometry::ChunkSize,
                            MVector::CascadeDirection::Forward);
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            for (const std::size_t channel : { 0u, 1u })
            {
                EXPECT_NEAR(carried[i].s1[channel], run[i].s1[channel] + start[i].s1[channel], 1e-9) << i;
                EXPECT_NEAR(carried[i].s2[channel], run[i].s2[channel] + start[i].s2[channel], 1e-9) << i;
            }
    }
    SectionList tooLong;
    tooLong.Set(Sections(ChunkTransition::MaxSections + 1, Seed).data(), ChunkTransition::MaxSections + 1);
    ChunkTransition transition;
    transition.Prepare();
    transition.Begin(tooLong);
    EXPECT_FALSE(transition.HasWork() || transition.IsReady());
}

TEST(LinearPhaseEngine, EqualsThePlainFormForAnyListsChannelsAndBlocks)
{
    const Case cases[] = {
        { "one section", 1, 1, 128, 0, 4, false },
        { "4 in stereo", 2, 4, 64, 0, 5, false },
        { "10 in mono, huge blocks", 1, 10, 40000, 0, 5, false },
        { "11 in five channels", 5, 11, 1000, 0, 3, false },
        { "changes now and then", 2, 6, 500, 0.7, 6, false },
        { "with other counts", 2, 9, 500, 0.7, 8, true },
        { "often", 1, 5, 400, 3.0, 6, false },
        { "at every block", 2, 3, 200, 1e9, 4, false },
        { "often with large blocks", 1, 8, 9000, 1.5, 8, true },
        { "many sections", 1, 60, 1000, 0.8, 4, true },
        { "beyond the map and back", 1, 230, 2000, 0.9, 4, true },
    };
    for (const Case& known : cases)
        CompareWithPlain(known);
}
}   // namespace
