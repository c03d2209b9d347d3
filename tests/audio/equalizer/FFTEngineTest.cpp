// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/FFTEngine.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include "foundation/vector/FFT.h"
#include "tests/audio/equalizer/EngineTest.h"

namespace
{
using namespace EngineTest;
constexpr std::uint32_t Seed = 5;
constexpr std::int32_t Length = EqualizerGeometry::FrameSize;
constexpr std::int32_t Hop = FFTEngine::HopSize;

FilterList List(const Filters& sections)
{
    FilterList list;
    for (const auto& section : sections)
        list.filters[static_cast<std::size_t>(list.count++)] = section;
    return list;
}

/// The mode by its definition: one frame after the other, all its steps at once. `listAt` answers the list of
/// the frame that is complete at a sample.
template <typename ListAt>
std::vector<float> Plain(const std::vector<float>& input, double wet, ListAt listAt)
{
    std::vector<double> output(input.size() + 2 * Length);
    MFFT fft(15, FFTDivideInverse);
    std::vector<float> frame(Length);
    for (std::int32_t end = 0; end <= static_cast<std::int32_t>(input.size()); end += Hop)
    {
        std::fill(frame.begin(), frame.end(), 0.0f);
        for (std::int32_t i = 0; i < FFTEngine::WindowSize; ++i)
        {
            const std::int32_t at = end - FFTEngine::WindowSize + i;
            const double sine = std::sin(std::numbers::pi * (i + 0.5) / FFTEngine::WindowSize);
            if (at >= 0)
                frame[static_cast<std::size_t>(i)] =
                    static_cast<float>(input[static_cast<std::size_t>(at)] * sine * sine / 7.5);
        }
        fft.Forward(frame.data());
        const FilterList& list = listAt(end);
        for (std::size_t i = 0; i < frame.size(); ++i)
        {
            const double hertz = i == 1 ? 0.0 : static_cast<double>(i / 2) * 48000.0 / Length;
            const double magnitude = MAudioFilters::MagnitudeOfList(list.filters.data(), list.count, hertz);
            frame[i] = static_cast<float>(frame[i] * (wet * magnitude + 1.0 - wet));
        }
        fft.Inverse(frame.data());
        for (std::int32_t i = 0; i < Length; ++i)
            output[static_cast<std::size_t>(end + Hop + i)] += frame[static_cast<std::size_t>(i)];
    }
    return { output.begin(), output.begin() + static_cast<std::ptrdiff_t>(input.size()) };
}

TEST(FFTEngine, MultipliesFramesOfAllChannelsByTheGainsOfTheHopBefore)
{
    constexpr std::size_t count = 60000;
    const FilterList lists[3] = { List(Sections(4, 1)), List(Sections(7, 2)), List({}) };
    for (const std::int32_t channelCount : { 1, 3, 8 })
    {
        SCOPED_TRACE(channelCount);
        const double wet = channelCount == 3 ? 0.3 : 1.0;
        Channels channels = NoiseChannels(static_cast<std::size_t>(channelCount), count, Seed);
        channels.back() = channels.front();
        const Channels input = channels;
        FFTEngine engine;
        engine.Prepare(channelCount);
        engine.SetFilters(lists[0], wet);
        engine.SettleFilters();
        // The list that each frame ought to have, by the hop at whose end it is complete.
        std::vector<const FilterList*> latched(count / Hop + 2, &lists[0]);
        std::size_t turn = 0;
        ProcessAll(engine, channels, 700,
                   [&](std::size_t position)
                   {
                       const FilterList& list = lists[++turn / 5 % 3];
                       engine.SetFilters(list, wet);
                       // Taken at the next hop, evaluated in it, and the gains of the frame at its end.
                       for (std::size_t later = position / Hop + 2; later < latched.size(); ++later)
                           latched[later] = &list;
                   });
        for (const std::size_t channel : { std::size_t{ 0 }, input.size() - 1 })
        {
            const std::vector<float> expected =
                Plain(input[channel], wet,
                      [&](std::int32_t end) -> const FilterList&
                      { return *latched[static_cast<std::size_t>(end / Hop)]; });
            // Transforms in single precision: a few units of the last place of the largest value.
            EXPECT_LT(LargestDifference(channels[channel], expected, 0, count), 1e-6 * 4 * PeakOf(expected));
        }
        EXPECT_EQ(channels.front(), channels.back()) << "the same input, to the last bit the same output";
    }
}

TEST(FFTEngine, IsADelayWhenDisabledAndAResetForgetsAllButTheFilters)
{
    const Channels input = NoiseChannels(2, 90000, Seed);
    FFTEngine engine;
    engine.Prepare(2);
    engine.SetFilters(List(Sections(5, 1)), 1.0);
    engine.SettleFilters();
    Channels filtered = input;
    ProcessAll(engine, filtered, 500);
    engine.Reset();
    Channels again = input;
    ProcessAll(engine, again, 400);
    EXPECT_EQ(again, filtered);
    engine.SetEnabled(false);
    engine.Reset();
    Channels delayed = input;
    ProcessAll(engine, delayed, 400);
    EXPECT_LT(LargestDifference(delayed[1], input[1], 0, 90000, Length), 2e-6);
    FFTEngine fresh;
    fresh.Prepare(2);
    Channels passed = input;
    ProcessAll(fresh, passed, 3000);
    EXPECT_LT(LargestDifference(passed[0], input[0], 0, 90000, Length), 2e-6) << "without any list";
}
}   // namespace
