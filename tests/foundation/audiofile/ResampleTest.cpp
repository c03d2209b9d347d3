// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/text/MException.h"
#include "tests/ErrorOf.h"
#include "tests/Signals.h"

namespace
{
AudioSampleBuffer Buffer(const Signals::Channels& channels, double sampleRate)
{
    AudioSampleBuffer buffer;
    buffer.Allocate(static_cast<int>(channels.size()), static_cast<int>(channels[0].size()));
    buffer.sampleRate = sampleRate;
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        std::copy(channels[channel].begin(), channels[channel].end(), buffer.channelData[channel]);
    return buffer;
}

TEST(Resample, FollowsTheSplineThroughFourSamples)
{
    struct Row
    {
        double from;
        double to;
        std::size_t frames;
    };
    for (const Row& row : { Row{ 44100, 48000, 3001 }, Row{ 48000, 44100, 3001 }, Row{ 96000, 48000, 2000 },
                            Row{ 8000, 192000, 20000 }, Row{ 44100, 44101, 600 }, Row{ 48000, 11025, 5 },
                            Row{ 8000, 48000, 2 } })
    {
        SCOPED_TRACE(row.from);
        const Signals::Channels source = Signals::NoiseChannels(2, row.frames, 4711);
        AudioSampleBuffer buffer = Buffer(source, row.from);
        buffer.bitsPerSample = 24;
        buffer.scale = 0.5f;
        buffer.isFloatSource = true;
        std::vector<double> fractions;
        Resample(buffer, row.to,
                 { [&](double fraction)
                   {
                       fractions.push_back(fraction);
                       return true;
                   } });

        const auto count = static_cast<int>(row.frames);
        const double step = row.from / row.to;
        ASSERT_EQ(buffer.frames, static_cast<int>(count / step));
        EXPECT_EQ(buffer.sampleRate, row.to);
        EXPECT_EQ(buffer.bitsPerSample, 24);
        EXPECT_EQ(buffer.scale, 0.5f);
        EXPECT_TRUE(buffer.isFloatSource);
        ASSERT_EQ(fractions.size(), static_cast<std::size_t>(buffer.frames / (256 * 512) + 1));
        EXPECT_EQ(fractions.front(), 0.0);
        EXPECT_NEAR(fractions.back(), 1.0 - 256.0 * 512.0 / buffer.frames,
                    buffer.frames > 256 * 512 ? 0.3 : 1e9);
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            const auto at = [&](int index)
            {
                return index < 0 || index >= count ? 0.0 : source[channel][static_cast<std::size_t>(index)];
            };
            for (int n = 0; n < buffer.frames; ++n)
            {
                const double position = n * step;
                const double t = position - std::floor(position);
                const int i = std::min(static_cast<int>(position), count - 2);
                const double x0 = at(i - 1), x1 = at(i), x2 = at(i + 1), x3 = at(i + 2);
                const double expected =
                    0.5 * (2 * x1 + (x2 - x0) * t + (2 * x0 - 5 * x1 + 4 * x2 - x3) * t * t +
                           (3 * x1 - x0 - 3 * x2 + x3) * t * t * t);
                ASSERT_NEAR(buffer.channelData[channel][n], expected, 2e-6) << "frame " << n;
            }
        }
    }
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

    const float* before = compact.channelData[0];
    Resample(compact, 48000);
    EXPECT_EQ(compact.channelData[0], before);   // its own rate

    AudioSampleBuffer single = Buffer({ { 0.25f } }, 8000);
    Resample(single, 48000);
    ASSERT_EQ(single.frames, 6);
    for (int n = 0; n < 6; ++n)
        EXPECT_EQ(single.channelData[0][n], 0.25f);
    AudioSampleBuffer empty = Buffer({ {} }, 8000);
    Resample(empty, 48000);
    EXPECT_EQ(empty.frames, 0);
}

TEST(Resample, RefusesWhatWouldNotEnd)
{
    for (const double rate : { 1e12, -48000.0, std::numeric_limits<double>::quiet_NaN() })
    {
        AudioSampleBuffer buffer = Buffer({ std::vector<float>(100) }, 8000);
        EXPECT_EQ(ErrorOf([&] { Resample(buffer, rate); }), "The audio is too long to be resampled.") << rate;
    }
    AudioSampleBuffer buffer = Buffer({ std::vector<float>(100) }, 8000);
    EXPECT_EQ(ErrorOf(
                  [&]
                  {
                      Resample(buffer, 48000,
                               { [](double)
                                 {
                                     return false;
                                 } });
                  }),
              "Cancelled.");
}
}   // namespace
