// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/SoftSaturator.h"

#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

namespace
{
TEST(SoftSaturator, FollowsItsFormulaForAnyAmountAndCount)
{
    for (const double amount : { 1e-3, 0.37, 1.0 })
    {
        for (std::size_t count = 1; count < 40; ++count)
        {
            std::vector<float> samples(count + 1, 9.0f);
            for (std::size_t i = 0; i < count; ++i)
                samples[i] = -2.0f + 4.0f * static_cast<float>(i * 37 % 101) / 101.0f;
            const std::vector<float> input = samples;
            SoftSaturator saturator;
            saturator.SetAmount(amount);
            saturator.Process(samples.data(), static_cast<std::int32_t>(count));
            for (std::size_t i = 0; i < count; ++i)
            {
                const double x = input[i];
                const double v =
                    std::copysign(std::sin(std::numbers::pi / 2 * std::min(std::abs(x), 1.0)), x);
                const double expected = (v + 0.8 * (v - x) * (v - x)) * amount + x * (1.0 - amount);
                ASSERT_NEAR(samples[i], expected, 3e-7)
                    << "x = " << x;   // a few float roundings of values to 2
            }
            EXPECT_EQ(samples[count], 9.0f);
        }
    }
}

TEST(SoftSaturator, DoesNothingAtAmountsOfZero)
{
    for (const double amount : { 0.0, 1e-21, -1.0 })
    {
        SoftSaturator saturator;
        saturator.SetAmount(amount);
        EXPECT_FALSE(saturator.IsActive());
        float sample = 0.5f;
        saturator.Process(&sample, 1);
        EXPECT_EQ(sample, 0.5f);
    }
}
}   // namespace
