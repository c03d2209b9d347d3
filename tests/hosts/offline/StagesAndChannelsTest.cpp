// SPDX-License-Identifier: GPL-3.0-or-later
// Upsampling, gain control and surround around the real effect.
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "foundation/text/MException.h"
#include "hosts/offline/OfflineHost.h"

namespace
{
using Wave = std::function<double(std::int32_t channel, double frame)>;

AudioSampleBuffer BufferOf(std::int32_t channels, std::int32_t frames, double rate, const Wave& wave)
{
    AudioSampleBuffer buffer;
    buffer.Allocate(channels, frames);
    buffer.sampleRate = rate;
    for (std::int32_t channel = 0; channel < channels; ++channel)
        for (std::int32_t frame = 0; frame < frames; ++frame)
            buffer.channelData[channel][frame] = static_cast<float>(wave(channel, frame));
    return buffer;
}

std::vector<std::vector<float>> Rendered(OfflineHost& host, const AudioSampleBuffer& input,
                                         std::int32_t block)
{
    std::vector<std::vector<float>> output(static_cast<std::size_t>(input.channels));
    host.Render(input, block,
                [&output](const float* const* channels, std::int32_t frames)
                {
                    for (std::size_t channel = 0; channel < output.size(); ++channel)
                        output[channel].insert(output[channel].end(), channels[channel],
                                               channels[channel] + frames);
                });
    return output;
}

void SetOneBand(OfflineHost& host, bool enabled, double gainDb = 6)
{
    for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
        host.Effect().equalizer.Band(index).enabled = enabled && index == 2;
    host.Effect().equalizer.Band(2).y = gainDb;
    host.Effect().description.RequestUpdate();
}

void Upsample(OfflineHost& host, std::int32_t factor, bool highQuality)
{
    host.Plugin().upsampling = factor;
    host.Plugin().highQualityUpsampling = highQuality;
    host.Plugin().UpdateUpsamplingFactor();
}

// Two sines that every rate's pass band holds.
double Tones(std::int32_t channel, double seconds)
{
    return 0.3 * std::sin(2 * std::numbers::pi * (440 + 100 * channel) * seconds) +
           0.1 * std::sin(2 * std::numbers::pi * 15000 * seconds);
}
}   // namespace

TEST(Upsampling, ReturnsTheInputInTimeInEveryMode)
{
    for (const double rate : { 44100.0, 96000.0 })
        for (const int mode : { 0, 1, 2 })
            for (const std::int32_t factor : { 2, 3, 4 })
            {
                SCOPED_TRACE(::testing::Message() << rate << " Hz, mode " << mode << ", x" << factor);
                OfflineHost host;
                host.SetParameterById("mode", mode);
                SetOneBand(host, false);
                Upsample(host, factor, true);
                host.Prepare(rate, 2);
                const AudioSampleBuffer input = BufferOf(2, 20000, rate,
                                                         [rate](std::int32_t channel, double frame)
                                                         { return Tones(channel, frame / rate); });
                const auto output = Rendered(host, input, 500);
                ASSERT_EQ(output[0].size(), 20000u);
                // The effect's 32768 samples are no whole number of the host's at a factor of 3: the third of
                // a sample that is reported too little comes on top.
                const double late = 32768.0 / factor - 32768 / factor;
                double worst = 0;
                for (std::size_t channel = 0; channel < 2; ++channel)
                    for (std::size_t frame = 4000; frame < 16000; ++frame)
                        worst = std::max(worst, std::fabs(output[channel][frame] -
                                                          Tones(static_cast<std::int32_t>(channel),
                                                                (static_cast<double>(frame) - late) / rate)));
                // Each way is 0.0003 dB low, as the window's sum of the taps is.
                EXPECT_LT(worst, 4e-5) << "-80 dB of the tones";
            }
}

TEST(Upsampling, ABandKeepsItsPlaceAndGain)
{
    for (const int mode : { 0, 1, 2 })
        for (const bool highQuality : { true, false })
        {
            constexpr double rate = 48000;
            OfflineHost host;
            host.SetParameterById("mode", mode);
            SetOneBand(host, true, 12);
            BandPoint& band = host.Effect().equalizer.Band(2);
            band.type = MAudioFilters::Peak;
            band.x = std::log10(3000.0);
            Upsample(host, 2, highQuality);
            host.Prepare(rate, 1);
            const AudioSampleBuffer input =
                BufferOf(1, 80000, rate,
                         [](std::int32_t, double frame)
                         { return 0.1 * std::sin(2 * std::numbers::pi * 3000 * frame / rate); });
            const auto output = Rendered(host, input, 512);
            double sum = 0;   // of squares, over whole periods of 16 samples
            for (std::size_t frame = 40000; frame < 56000; ++frame)
                sum += static_cast<double>(output[0][frame]) * static_cast<double>(output[0][frame]);
            // 0.02 dB: the low-pass of the linear-phase mode in plain quality has a Q of 0.73, above flat.
            EXPECT_NEAR(10 * std::log10(2 * sum / 16000 / 0.01), 12, 0.02) << mode << highQuality;
        }
}

TEST(Upsampling, TheSameWorkTwiceIsTheSame)
{
    OfflineHost host;
    SetOneBand(host, true);
    std::mt19937 generator(5);
    std::uniform_real_distribution<double> samples(-0.5, 0.5);
    const AudioSampleBuffer input =
        BufferOf(2, 30000, 48000, [&](std::int32_t, double) { return samples(generator); });
    for (const bool highQuality : { true, false })
    {
        Upsample(host, 2, highQuality);
        host.Prepare(48000, 2);
        const auto first = Rendered(host, input, 512);
        host.Prepare(48000, 2);
        EXPECT_EQ(Rendered(host, input, 512), first);
        host.Prepare(48000, 2);
        EXPECT_EQ(Rendered(host, input, 77), first) << "whatever the blocks";
    }
}

TEST(GainControl, KeepsTheLoudnessOfTheInput)
{
    constexpr double rate = 48000;
    const AudioSampleBuffer input = BufferOf(
        2, 200000, rate, [](std::int32_t channel, double frame) { return Tones(channel, frame / rate); });
    for (const double gainDb : { -9.0, 9.0 })
    {
        OfflineHost host;
        SetOneBand(host, false);
        host.SetParameterById("gain", gainDb);
        host.Plugin().agc = 1;
        Upsample(host, 2, true);
        host.Prepare(rate, 2);
        const auto output = Rendered(host, input, 512);
        // Past the two seconds in which the gain may only fall.
        for (std::size_t frame = 150000; frame < 190000; ++frame)
            ASSERT_NEAR(output[0][frame], input.channelData[0][frame], 1e-3) << frame << " " << gainDb;
    }
}

TEST(Surround, ThreeToEightChannelsAreEqualizedLikeStereoOnes)
{
    std::mt19937 generator(9);
    std::uniform_real_distribution<double> samples(-0.5, 0.5);
    for (const std::int32_t channels : { 3, 6, 8 })
        for (const std::int32_t factor : { 1, 2 })
        {
            SCOPED_TRACE(::testing::Message() << channels << " channels, x" << factor);
            const AudioSampleBuffer input =
                BufferOf(channels, 40000, 48000, [&](std::int32_t, double) { return samples(generator); });
            OfflineHost wide;
            SetOneBand(wide, true);
            Upsample(wide, factor, true);
            wide.Prepare(48000, channels);
            const auto output = Rendered(wide, input, 512);
            for (std::int32_t channel = 0; channel < channels; ++channel)
            {
                OfflineHost single;
                SetOneBand(single, true);
                Upsample(single, factor, true);
                single.Prepare(48000, 1);
                const AudioSampleBuffer alone = BufferOf(
                    1, 40000, 48000,
                    [&](std::int32_t, double frame)
                    { return static_cast<double>(input.channelData[channel][static_cast<int>(frame)]); });
                EXPECT_EQ(Rendered(single, alone, 512)[0], output[static_cast<std::size_t>(channel)])
                    << channel;
            }
            // The same object serves stereo again.
            wide.Prepare(48000, 2);
            EXPECT_EQ(wide.Plugin().channelMode, ChannelMode::LeftAndRight);
        }
    OfflineHost host;
    EXPECT_THROW(host.Prepare(48000, 9), MException);
    EXPECT_THROW(host.Prepare(48000, 0), MException);
}

TEST(Surround, ASwitchedOffChannelPassesInTime)
{
    std::mt19937 generator(2);
    std::uniform_real_distribution<double> samples(-0.5, 0.5);
    const AudioSampleBuffer input =
        BufferOf(6, 40000, 48000, [&](std::int32_t, double) { return samples(generator); });
    OfflineHost host;
    SetOneBand(host, true);
    host.Plugin().enabledChannels[3] = false;
    host.Prepare(48000, 6);
    const auto output = Rendered(host, input, 512);
    OfflineHost idle;
    idle.Plugin().enabledChannels = {};
    idle.Prepare(48000, 6);
    const auto untouched = Rendered(idle, input, 512);
    EXPECT_EQ(untouched[3], output[3]) << "nor is anything to be done with all of them off";
    EXPECT_NEAR(untouched[0][777], input.channelData[0][777], 2e-15);
    for (const std::size_t channel : { 3u, 4u })
    {
        double worst = 0;
        for (std::size_t frame = 0; frame < 40000; ++frame)
            worst = std::max(worst, static_cast<double>(std::fabs(output[channel][frame] -
                                                                  input.channelData[channel][frame])));
        if (channel == 3)
            EXPECT_LE(worst, 2e-15) << "delayed and nothing else";
        else
            EXPECT_GT(worst, 0.01) << "equalized";
    }
}
