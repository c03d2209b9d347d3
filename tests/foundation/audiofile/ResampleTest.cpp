// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/text/MException.h"

namespace
{
AudioSampleBuffer Buffer(int channels, int frames, double sampleRate, auto&& value)
{
    AudioSampleBuffer buffer;
    buffer.Allocate(channels, frames);
    buffer.sampleRate = sampleRate;
    for (int channel = 0; channel < channels; ++channel)
        for (int frame = 0; frame < frames; ++frame)
            buffer.channelData[static_cast<std::size_t>(channel)][frame] =
                static_cast<float>(value(channel, frame));
    return buffer;
}

TEST(Resample, FollowsTheSplineThroughFourSamples)
{
    constexpr unsigned Seed = 4711;
    std::mt19937 random(Seed);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    struct Row
    {
        double from;
        double to;
        int frames;
    };
    for (const Row& row : { Row{ 44100, 48000, 3001 }, Row{ 48000, 44100, 3001 }, Row{ 96000, 48000, 2000 },
                            Row{ 8000, 192000, 100 }, Row{ 44100, 44101, 600 }, Row{ 48000, 11025, 2 } })
    {
        SCOPED_TRACE(row.from);
        AudioSampleBuffer buffer = Buffer(2, row.frames, row.from, [&](int, int) { return uniform(random); });
        std::vector<std::vector<double>> source(2);
        for (std::size_t channel = 0; channel < 2; ++channel)
            source[channel].assign(buffer.channelData[channel], buffer.channelData[channel] + row.frames);
        buffer.bitsPerSample = 24;
        Resample(buffer, row.to);

        const double step = row.from / row.to;
        ASSERT_EQ(buffer.frames, static_cast<int>(row.frames / step));
        EXPECT_EQ(buffer.sampleRate, row.to);
        EXPECT_EQ(buffer.bitsPerSample, 24);
        const auto at = [&](std::size_t channel, int index)
        {
            return index < 0 || index >= row.frames ? 0.0 : source[channel][static_cast<std::size_t>(index)];
        };
        for (std::size_t channel = 0; channel < 2; ++channel)
            for (int n = 0; n < buffer.frames; ++n)
            {
                const double position = n * step;
                const double t = position - std::floor(position);
                const int i = std::min(static_cast<int>(position), row.frames - 2);
                const double x0 = at(channel, i - 1), x1 = at(channel, i), x2 = at(channel, i + 1),
                             x3 = at(channel, i + 2);
                const double expected =
                    0.5 * (2 * x1 + (x2 - x0) * t + (2 * x0 - 5 * x1 + 4 * x2 - x3) * t * t +
                           (3 * x1 - x0 - 3 * x2 + x3) * t * t * t);
                ASSERT_NEAR(buffer.channelData[channel][n], expected, 2e-6)
                    << "frame " << n << ", seed " << Seed;
            }
    }
}

TEST(Resample, KeepsASineInPlace)
{
    const double hz = 440.0;
    AudioSampleBuffer buffer =
        Buffer(1, 44100, 44100,
               [&](int, int frame) { return std::sin(2 * std::numbers::pi * hz * frame / 44100.0); });
    Resample(buffer, 48000);
    ASSERT_EQ(buffer.frames, 48000);
    for (int n = 10; n < 47990; ++n)
        // Cubic error of (2 pi 440 / 44100)^3, about 2.5e-4 at its largest.
        ASSERT_NEAR(buffer.channelData[0][n], std::sin(2 * std::numbers::pi * hz * n / 48000.0), 3e-4) << n;
}

TEST(Resample, LeavesTheOwnRateAlone)
{
    AudioSampleBuffer buffer = Buffer(1, 10, 44100, [](int, int frame) { return frame; });
    const float* before = buffer.channelData[0];
    Resample(buffer, 44100);
    EXPECT_EQ(buffer.channelData[0], before);
    EXPECT_EQ(buffer.channelData[0][9], 9.0f);
}

TEST(Resample, ReadsCompactSamplesAndSingleFrames)
{
    std::vector<std::int16_t> samples(200);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>(100 * i);
    AudioSampleBuffer compact;
    compact.frames = 200;
    compact.sampleRate = 24000;
    compact.compact = 1;
    compact.externalData = true;
    compact.channelData[0] = reinterpret_cast<float*>(samples.data());
    Resample(compact, 48000);
    ASSERT_EQ(compact.frames, 400);
    EXPECT_EQ(compact.compact, 0);
    EXPECT_FALSE(compact.externalData);
    for (int n = 4; n < 390; ++n)
        ASSERT_NEAR(compact.channelData[0][n], 50.0 * n / 32767.0, 1e-6) << n;   // a line stays a line

    AudioSampleBuffer single = Buffer(1, 1, 8000, [](int, int) { return 0.25; });
    Resample(single, 48000);
    ASSERT_EQ(single.frames, 6);
    for (int n = 0; n < 6; ++n)
        EXPECT_EQ(single.channelData[0][n], 0.25f);

    AudioSampleBuffer empty = Buffer(1, 0, 8000, [](int, int) { return 0.0; });
    Resample(empty, 48000);
    EXPECT_EQ(empty.frames, 0);
}

TEST(Resample, RefusesWhatWouldNotEnd)
{
    for (const double rate : { 1e12, 0.0, -48000.0, std::numeric_limits<double>::quiet_NaN() })
    {
        AudioSampleBuffer buffer = Buffer(1, 100, 8000, [](int, int) { return 0.0; });
        if (rate == 0.0)
        {
            Resample(buffer, rate);
            EXPECT_EQ(buffer.frames, 0);
        }
        else
            EXPECT_THROW(Resample(buffer, rate), MException) << rate;
    }
}
}   // namespace
