// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/stages/BypassFade.h"
#include "audio/stages/ChannelRouting.h"
#include "tests/Signals.h"

namespace
{
using namespace Signals;
constexpr std::size_t count = 600;
constexpr float untouched = -99.0f;

// An effect behind a routing, in blocks of changing lengths: it multiplies its channel i by i + 2, late by
// the latency.
class Routed
{
public:
    explicit Routed(const ChannelRouting::Setup& newSetup) : setup(newSetup)
    {
        routing.Prepare(setup);
        for (MSampleQueue& delay : delays)
            delay.PushZeros(setup.latency);
    }

    // Groups side by side, `groupStride` apart. `seen` gets what the effect finds in the groups behind the
    // first.
    Channels Run(const Channels& input, std::int32_t effectChannels)
    {
        Channels in = input;
        const auto places = static_cast<std::size_t>(setup.outputGroups * setup.groupStride);
        Channels out(places, std::vector<float>(count, untouched));
        seen.assign(static_cast<std::size_t>(setup.groupStride), {});
        for (std::size_t done = 0, turn = 0; done < count; ++turn)
        {
            const std::size_t n = std::min<std::size_t>(turn % 3 * 31 + 1, count - done);
            ChannelRouting::Channels inputs{};
            ChannelRouting::Channels outputs{};
            for (std::size_t place = 0; place < in.size(); ++place)
                inputs[place] = in[place].data() + done;
            for (std::size_t place = 0; place < out.size(); ++place)
                outputs[place] = out[place].data() + done;
            const auto length = static_cast<std::int32_t>(n);
            routing.Before(inputs, outputs, length);
            for (std::size_t channel = 0; channel < static_cast<std::size_t>(effectChannels); ++channel)
            {
                delays[channel].Delay(inputs[channel], outputs[channel], length);
                for (std::size_t i = 0; i < n; ++i)
                    outputs[channel][i] *= static_cast<float>(channel + 2);
            }
            for (std::size_t channel = 0; setup.inputGroups > 1 && channel < seen.size(); ++channel)
                if (const float* side = inputs[seen.size() + channel])
                    seen[channel].insert(seen[channel].end(), side, side + n);
            routing.After(inputs, outputs, length);
            done += n;
        }
        return out;
    }

    ChannelRouting routing;
    Channels seen;

private:
    ChannelRouting::Setup setup;
    std::array<MSampleQueue, 8> delays;
};

void ExpectLate(const std::vector<float>& output, const std::vector<float>& expected, std::int32_t latency)
{
    EXPECT_LE(LargestDifference(output, expected, 0, count, static_cast<std::size_t>(latency)), 1e-6);
}
}   // namespace

TEST(ChannelRouting, GivesTheEffectWhatItsModeSaysAndLeavesTheRestAsLate)
{
    using enum ChannelMode;
    for (std::int32_t number = 0; number < ChannelModeCount - 1; ++number)
        for (const std::int32_t latency : { 0, 100 })
        {
            const auto mode = static_cast<ChannelMode>(number);
            SCOPED_TRACE(testing::Message() << InfoOf(mode).longName << ", late by " << latency);
            Routed routed({ .mode = mode, .groupStride = 3, .inputGroups = 2, .latency = latency });
            // Each group has two channels in use.
            const Channels input = NoiseChannels(6, count, 5);
            const Channels output = routed.Run(input, InfoOf(mode).inputChannels);
            Channels expected(2, std::vector<float>(count));
            Channels side(2, std::vector<float>(count));
            for (std::size_t i = 0; i < count; ++i)
            {
                const auto form = [mode](float left, float right) -> std::array<float, 2>
                {
                    if (mode == Mid || mode == MidAndSide)
                        return { (left + right) / 2, (left - right) / 2 };
                    if (mode == Side)
                        return { (left - right) / 2, (left + right) / 2 };
                    if (mode == Right)
                        return { right, left };
                    return { left, mode == LeftAndInvertedRight ? -right : right };
                };
                const auto [first, second] = form(input[0][i], input[1][i]);
                const float a = 2 * first;
                const float b = InfoOf(mode).inputChannels > 1 ? 3 * second : second;
                const bool isMidSide = mode == Mid || mode == MidAndSide || mode == Side;
                expected[0][i] = isMidSide ? a + b : mode == Right ? b : a;
                expected[1][i] = isMidSide ? (mode == Side ? b - a : a - b) : mode == Right ? a : b;
                side[0][i] = form(input[3][i], input[4][i])[0];
                side[1][i] = form(input[3][i], input[4][i])[1];
            }
            for (const std::size_t channel : { 0u, 1u })
            {
                ExpectLate(output[channel], expected[channel], latency);
                EXPECT_EQ(LargestDifference(routed.seen[channel], side[channel], 0, count), 0.0)
                    << "the second input";
            }
            EXPECT_EQ(output[2], std::vector<float>(count, untouched));
            EXPECT_EQ(routed.seen[2], input[5]);

            ChannelMode found = Surround;
            EXPECT_TRUE(FindChannelMode(InfoOf(mode).longName, found));
            EXPECT_EQ(found, mode);
            EXPECT_FALSE(FindChannelMode("left", found));
        }
}

TEST(ChannelRouting, LeavesMonoRoutesAlone)
{
    for (std::int32_t number = 0; number < ChannelModeCount; ++number)
        for (const int route : { 0, 1, 2 })
        {
            ChannelRouting routing;
            routing.Prepare({ .mode = static_cast<ChannelMode>(number), .width = route == 0 ? 1 : 2 });
            float samples[3] = { 1, 2, 3 };
            ChannelRouting::Channels inputs{ &samples[0], &samples[route == 1 ? 0 : 1] };
            ChannelRouting::Channels outputs{ &samples[2], &samples[route == 2 ? 2 : 1] };
            const auto before = std::pair(inputs, outputs);
            routing.Before(inputs, outputs, 1);
            EXPECT_EQ(std::pair(inputs, outputs), before);
            routing.After(inputs, outputs, 1);
            EXPECT_TRUE(samples[0] == 1 && samples[1] == 2 && samples[2] == 3) << number << " " << route;
        }
}

TEST(ChannelRouting, SurroundPacksTheEnabledChannelsAndDelaysTheOthers)
{
    for (const unsigned enabled : { 0b11111111u, 0b01101001u, 0b10u, 0u })
        for (const std::int32_t width : { 8, 6, 0 })
            for (const std::int32_t outputGroups : { 1, 2 })
            {
                SCOPED_TRACE(testing::Message() << enabled << " of " << width << " to " << outputGroups);
                ChannelRouting::Setup setup = { .mode = ChannelMode::Surround,
                                                .width = width,
                                                .groupStride = 8,
                                                .inputGroups = 3 - outputGroups,
                                                .outputGroups = outputGroups,
                                                .latency = 70 };
                std::vector<std::size_t> used;
                for (std::size_t channel = 0; channel < 8; ++channel)
                {
                    setup.enabled[channel] = (enabled >> channel & 1) != 0;
                    if (setup.enabled[channel] && channel < static_cast<std::size_t>(width))
                        used.push_back(channel);
                }
                Routed routed(setup);
                EXPECT_EQ(routed.routing.EnabledCount(), static_cast<std::int32_t>(used.size()));
                const Channels input =
                    NoiseChannels(static_cast<std::size_t>(8 * setup.inputGroups), count, 7);
                const Channels output = routed.Run(input, static_cast<std::int32_t>(used.size()));
                for (std::size_t channel = 0; channel < static_cast<std::size_t>(width); ++channel)
                {
                    const auto place = std::find(used.begin(), used.end(), channel) - used.begin();
                    const bool isUsed = setup.enabled[channel];
                    std::vector<float> expected = input[channel];
                    for (float& sample : expected)
                        sample *= isUsed ? static_cast<float>(place + 2) : 1.0f;
                    ExpectLate(output[channel], expected, 70);
                    if (outputGroups > 1)
                    {
                        EXPECT_EQ(output[8 + channel], std::vector<float>(count, isUsed ? untouched : 0.0f));
                    }
                    else if (isUsed)
                    {
                        EXPECT_EQ(routed.seen[static_cast<std::size_t>(place)], input[8 + channel]);
                    }
                }
            }
}

TEST(BypassFade, FollowsALineFromWhereverItIsInAnyBlocks)
{
    for (const double rate : { 48000.0, 1000.0, 1.0 })
    {
        SCOPED_TRACE(rate);
        std::mt19937 random(3);
        std::uint32_t seed = 0;
        BypassFade fade;
        fade.Prepare(rate, true);
        double share = 1.0;
        const double step = 1.0 / std::max(0.02 * rate, 1.0);
        bool bypassed = true;
        for (int block = 0; block < 400; ++block)
        {
            if (random() % 3 == 0)
                bypassed = !bypassed;
            const auto length = static_cast<std::int32_t>(random() % 700);
            fade.Begin(bypassed, length);
            // What isn't heard at all may be no number.
            const double target = bypassed ? 1.0 : 0.0;
            const bool stands = share == target;
            std::vector<float> processed = Noise(static_cast<std::size_t>(length) + 1, ++seed);
            std::vector<float> dry = Noise(static_cast<std::size_t>(length) + 1, ++seed);
            if (stands)
                (bypassed ? processed : dry).assign(dry.size(), std::nanf(""));
            std::vector<float> expected = processed;
            for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i)
            {
                if (stands)
                    expected[i] = bypassed ? dry[i] : processed[i];
                else
                    expected[i] = static_cast<float>((1.0 - share) * processed[i] + share * dry[i]);
                share = std::abs(target - share) < 1.0001 * step ? target
                                                                 : share + (target > share ? step : -step);
            }
            EXPECT_EQ(fade.IsHeard(), bypassed || share > 0 || (!stands && length > 0));
            fade.Apply(processed.data(), dry.data());
            for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i)
                ASSERT_NEAR(processed[i], expected[i], 1e-5) << block << " " << i;
            ASSERT_TRUE(processed.back() == expected.back() || std::isnan(expected.back()));
        }
    }
}

TEST(SampleQueue, HoldsAsManySamplesAsItIsTold)
{
    std::mt19937 random(5);
    MSampleQueue queue;
    std::deque<float> plain;
    for (int turn = 0; turn < 300; ++turn)
    {
        if (turn % 5 == 0)
        {
            const std::size_t length = random() % 100;
            queue.SetLength(static_cast<std::int32_t>(length));
            plain.insert(plain.end(), length > plain.size() ? length - plain.size() : 0, 0.0f);
            plain.erase(plain.begin(), plain.end() - static_cast<std::ptrdiff_t>(length));
        }
        std::vector<float> samples = Noise(random() % 150, static_cast<std::uint32_t>(turn));
        plain.insert(plain.end(), samples.begin(), samples.end());
        queue.Delay(samples.data(), samples.data(), static_cast<std::int32_t>(samples.size()));
        const auto end = plain.begin() + static_cast<std::ptrdiff_t>(samples.size());
        ASSERT_EQ(samples, std::vector<float>(plain.begin(), end)) << turn;
        plain.erase(plain.begin(), end);
    }
}
