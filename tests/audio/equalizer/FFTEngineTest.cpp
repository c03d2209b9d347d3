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

/// A list and the gains that it means, of each value of a packed spectrum.
struct Curve
{
    Curve(const Filters& sections, double wet)
    {
        for (const auto& section : sections)
            list.filters[static_cast<std::size_t>(list.count++)] = section;
        for (std::size_t i = 0; i < Length; i += 2)
        {
            const double hertz = static_cast<double>(i / 2) * 48000.0 / Length;
            const double magnitude = MAudioFilters::MagnitudeOfList(list.filters.data(), list.count, hertz);
            gains.insert(gains.end(), 2, wet * magnitude + 1.0 - wet);
        }
    }
    FilterList list;
    std::vector<double> gains;
};

/// The mode by its definition: one frame after the other, all its steps at once. `curves` are those of the
/// frames, by the hop at whose end each is complete.
std::vector<float> Plain(const std::vector<float>& input, const std::vector<const Curve*>& curves)
{
    std::vector<float> output(input.size() + 2 * Length);
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
        const Curve& curve = *curves[static_cast<std::size_t>(end / Hop)];
        for (std::size_t i = 0; i < frame.size(); ++i)
            frame[i] = static_cast<float>(frame[i] * curve.gains[i]);
        fft.Inverse(frame.data());
        for (std::int32_t i = 0; i < Length; ++i)
            output[static_cast<std::size_t>(end + Hop + i)] += frame[static_cast<std::size_t>(i)];
    }
    output.resize(input.size());
    return output;
}

TEST(FFTEngine, MultipliesFramesOfAllChannelsByTheGainsOfTheHopBefore)
{
    constexpr std::size_t count = 50000;
    for (const std::int32_t channelCount : { 1, 3, 8 })
    {
        SCOPED_TRACE(channelCount);
        const double wet = channelCount == 3 ? 0.3 : 1.0;
        const Curve curves[3] = { { Sections(4, 1), wet }, { Sections(7, 2), wet }, { {}, wet } };
        Channels channels = NoiseChannels(static_cast<std::size_t>(channelCount), count, Seed);
        channels.back() = channels.front();
        const std::vector<float> input = channels.front();
        FFTEngine engine;
        engine.Prepare(channelCount);
        engine.SetFilters(curves[0].list, wet);
        engine.SettleFilters();
        std::vector<const Curve*> latched(count / Hop + 2, &curves[0]);
        std::size_t turn = 0;
        ProcessAll(engine, channels, 700,
                   [&](std::size_t position)
                   {
                       const Curve& curve = curves[++turn / 5 % 3];
                       engine.SetFilters(curve.list, wet);
                       // Taken at the next hop, evaluated in it, and the gains of the frame at its end.
                       for (std::size_t later = position / Hop + 2; later < latched.size(); ++later)
                           latched[later] = &curve;
                   });
        const std::vector<float> expected = Plain(input, latched);
        // Transforms in single precision: a few units of the last place of the largest value.
        EXPECT_LT(LargestDifference(channels.front(), expected, 0, count), 1e-6 * 4 * PeakOf(expected));
        EXPECT_EQ(channels.front(), channels.back()) << "the same input, to the last bit the same output";
    }
}
}   // namespace
