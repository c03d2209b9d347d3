// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "audio/analyzer/BlockProcessors.h"

namespace
{
constexpr std::int32_t FrameSize = 16;
using Spectrum = std::array<float, FrameSize / 2>;

Spectrum Filled(double value)
{
    Spectrum spectrum;
    for (std::size_t i = 0; i < spectrum.size(); ++i)
        spectrum[i] = static_cast<float>(value + 0.25 * static_cast<double>(i));
    return spectrum;
}

void Feed(BlockProcessor& processor, double value)
{
    processor.Process(Filled(value).data());
}

// The bins must keep the step of Filled, so one number tells the whole spectrum.
double Read(const BlockProcessor& processor)
{
    Spectrum out;
    processor.Get(out.data());
    for (std::size_t i = 0; i < out.size(); ++i)
        EXPECT_NEAR(out[i], out[0] + 0.25f * static_cast<float>(i), 1e-4) << "bin " << i;
    return out[0];
}

double ReadFlat(const BlockProcessor& processor)
{
    Spectrum out;
    processor.Get(out.data());
    for (const float value : out)
        EXPECT_EQ(value, out[0]);
    return out[0];
}

TEST(BlockProcessors, AverageCoversTheLastFramesOrThoseThatThereWere)
{
    for (const std::int32_t length : { 1, 2, 3, 7 })
    {
        SCOPED_TRACE(length);
        BlockProcessorAverage average;
        average.Init(length, FrameSize, 10.0);
        EXPECT_EQ(ReadFlat(average), BlockProcessor::SilentLogarithm);
        std::vector<double> fed;
        for (int frame = 0; frame < 20; ++frame)
        {
            fed.push_back(-3.0 * frame + 0.5 * (frame % 4));
            Feed(average, fed.back());
            const auto count = std::min<std::size_t>(fed.size(), static_cast<std::size_t>(length));
            double expected = 0;
            for (std::size_t i = fed.size() - count; i < fed.size(); ++i)
                expected += fed[i] / static_cast<double>(count);
            ASSERT_NEAR(Read(average), expected, 1e-4) << "frame " << frame;   // float sums of up to 400
        }
        average.Reset();
        EXPECT_EQ(ReadFlat(average), BlockProcessor::SilentLogarithm);
    }
}

TEST(BlockProcessors, InfiniteAverageNeverForgets)
{
    BlockProcessorAverageInfinite average;
    average.Init(3, FrameSize, 10.0);
    EXPECT_EQ(ReadFlat(average), BlockProcessor::SilentLogarithm);
    double sum = 0;
    for (int frame = 1; frame <= 50; ++frame)
    {
        sum += -0.5 * frame;
        Feed(average, -0.5 * frame);
        ASSERT_NEAR(Read(average), sum / frame, 1e-4);
    }
    average.Reset();
    EXPECT_EQ(ReadFlat(average), BlockProcessor::SilentLogarithm);
}

TEST(BlockProcessors, MaximumFallsByOneASecond)
{
    for (const double framesPerSecond : { 10.0, 43.06640625, 172.0 })
    {
        SCOPED_TRACE(framesPerSecond);
        BlockProcessorMaximum maximum;
        BlockProcessorMaximumInfinite infinite;
        for (BlockProcessorMaximumInfinite* processor :
             { static_cast<BlockProcessorMaximumInfinite*>(&maximum), &infinite })
        {
            processor->Init(5, FrameSize, framesPerSecond);
            EXPECT_EQ(ReadFlat(*processor), -400.0);
            Feed(*processor, 0.0);
        }
        const int second = static_cast<int>(framesPerSecond);
        for (int frame = 0; frame < second; ++frame)
        {
            Feed(maximum, -23.02585);
            Feed(infinite, -23.02585);
        }
        EXPECT_NEAR(Read(maximum), -second / framesPerSecond, 1e-3);
        EXPECT_NEAR(Read(infinite), 0.0, 1e-6);
        Feed(maximum, 2.0);
        EXPECT_NEAR(Read(maximum), 2.0, 1e-6);
        maximum.Reset();
        EXPECT_EQ(ReadFlat(maximum), -400.0);
    }
}

TEST(BlockProcessors, KeepWhatFitsWhenInitialisedAgain)
{
    BlockProcessorAverage average;
    BlockProcessorAverageInfinite averageInfinite;
    BlockProcessorMaximum maximum;
    BlockProcessorMaximumInfinite maximumInfinite;
    struct Row
    {
        BlockProcessor& processor;
        bool dependsOnLength;
        double empty;
    };
    const Row rows[] = { { average, true, -23.02585 },
                         { averageInfinite, false, -23.02585 },
                         { maximum, false, -400.0 },
                         { maximumInfinite, false, -400.0 } };
    for (const Row& row : rows)
    {
        row.processor.Init(4, FrameSize, 10.0);
        Feed(row.processor, -2.0);
        row.processor.Init(4, FrameSize, 20.0);
        EXPECT_NEAR(Read(row.processor), -2.0, 1e-6);
        row.processor.Init(5, FrameSize, 20.0);
        EXPECT_NEAR(row.dependsOnLength ? ReadFlat(row.processor) : Read(row.processor),
                    row.dependsOnLength ? row.empty : -2.0, 1e-5);
        row.processor.Init(5, FrameSize / 2, 20.0);
        std::array<float, FrameSize / 4> half;
        row.processor.Get(half.data());
        EXPECT_NEAR(half[3], row.empty, 1e-5);
    }
}

TEST(BlockProcessors, AverageStaysWithinItsMemory)
{
    BlockProcessorAverage average;
    average.Init(0x7FFFFFFF, 1 << 18, 1e6);   // 2^31 frames of half a megabyte
    const std::vector<float> spectrum(1 << 17, -1.0f);
    std::vector<float> out(1 << 17);
    for (int frame = 0; frame < 3; ++frame)
        average.Process(spectrum.data());
    average.Get(out.data());
    EXPECT_NEAR(out[77], -1.0f, 1e-6);
}
}   // namespace
