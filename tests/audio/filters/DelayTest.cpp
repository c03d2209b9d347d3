// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/Delay.h"

#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace
{
using MAudioFilters::Delay;

std::vector<float> Feed(Delay<float>& delay, std::vector<float> samples)
{
    delay.Process(samples.data(), samples.data(), static_cast<std::int32_t>(samples.size()));
    return samples;
}

/// A line of this length that holds 0, 1, 2 ..., oldest first, and whose write position isn't 0.
Delay<float> Filled(std::int32_t length)
{
    Delay<float> delay;
    delay.SetLength(length);
    std::vector<float> samples(static_cast<std::size_t>(length) + 2);
    std::iota(samples.begin(), samples.end(), -2.0f);
    Feed(delay, samples);
    return delay;
}

TEST(Delay, DelaysByItsLength)
{
    Delay<float> delay;
    EXPECT_EQ(Feed(delay, { 5 }), (std::vector<float>{ 5 }));
    EXPECT_EQ(delay.SetLength(3), 1);
    EXPECT_EQ(Feed(delay, { 1, 2, 3, 4 }), (std::vector<float>{ 0, 0, 0, 1 }));
    EXPECT_EQ(Feed(delay, { 5, 6, 7, 8 }), (std::vector<float>{ 2, 3, 4, 5 }));
    delay.Clear();
    EXPECT_EQ(Feed(delay, { 9, 9, 9, 9 }), (std::vector<float>{ 0, 0, 0, 9 }));
}

TEST(Delay, ResizingStretchesTheContent)
{
    struct Case
    {
        std::int32_t before, after;
        std::vector<float> content;
    };
    for (const Case& known :
         { Case{ 5, 9, { 0, 0.5f, 1, 1.5f, 2, 2.5f, 3, 3.5f, 4 } }, Case{ 9, 5, { 0, 2, 4, 6, 8 } },
           Case{ 4, 3, { 0, 1.5f, 3 } }, Case{ 1, 3, { 0, 0, 0 } }, Case{ 3, 1, { 2 } } })
    {
        Delay<float> delay = Filled(known.before);
        EXPECT_EQ(delay.SetLength(known.after), 1);
        const std::vector<float> out = Feed(delay, std::vector<float>(known.content.size(), 0.0f));
        for (std::size_t i = 0; i < out.size(); ++i)
            EXPECT_NEAR(out[i], known.content[i], 1e-5)
                << known.before << " to " << known.after << " at " << i;
    }
}

TEST(Delay, GrowingLongLinesReachesTheLastSampleExactly)
{
    Delay<float> delay = Filled(1000);
    delay.SetLength(70001);
    const std::vector<float> out = Feed(delay, std::vector<float>(70001, 0.0f));
    EXPECT_EQ(out.front(), 0.0f);
    EXPECT_EQ(out.back(), 999.0f);
    for (std::size_t i = 1; i < out.size(); ++i)
        ASSERT_GE(out[i], out[i - 1]) << i;
}

TEST(Delay, LengthsBelowOneActAsOneAndEqualLengthsChangeNothing)
{
    Delay<float> delay;
    EXPECT_EQ(delay.SetLength(0), 1);
    EXPECT_EQ(delay.Length(), 1);
    EXPECT_EQ(delay.SetLength(1), 0);
    EXPECT_EQ(delay.SetLength(-7), 0);
}
}   // namespace
