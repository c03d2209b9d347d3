// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/SoftSaturator.h"

#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

TEST(SoftSaturator, FollowsItsFormulaForAnyAmountAndDoesNothingAtZero)
{
    for (const double amount : { 1e-3, 0.37, 1.0, 0.0, 1e-21, -1.0 })
    {
        SoftSaturator saturator;
        saturator.SetAmount(amount);
        EXPECT_EQ(saturator.IsActive(), amount >= 1e-3);
        for (double x = -2.0; x <= 2.0; x += 0.01)
        {
            float samples[] = { static_cast<float>(x), 9.0f };
            saturator.Process(samples, 1);
            const double v = std::copysign(std::sin(std::numbers::pi / 2 * std::min(std::abs(x), 1.0)), x);
            const double expected =
                saturator.IsActive() ? (v + 0.8 * (v - x) * (v - x)) * amount + x * (1.0 - amount) : x;
            ASSERT_NEAR(samples[0], expected, 4e-7) << x;   // a few float roundings of values to 2
            ASSERT_EQ(samples[1], 9.0f);
        }
    }
}
