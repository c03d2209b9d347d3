// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/Saturation.h"

#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

#include "tests/foundation/vector/Targets.h"

namespace
{
TEST(Saturation, TheSineIsAccurateAndClipsBeyondOneInEveryInstructionSet)
{
    ForEveryTarget(
        []
        {
            std::vector<float> samples(4001);
            for (std::size_t i = 0; i < samples.size(); ++i)
                samples[i] = -2.0f + 0.001f * static_cast<float>(i);
            std::vector<float> sine = samples;
            MVector::SaturateInPlace(sine.data(), static_cast<std::int32_t>(sine.size()), 0.0f, 1.0f, 0.0f);
            for (std::size_t i = 0; i < samples.size(); ++i)
            {
                const double x = samples[i];
                const double exact =
                    std::copysign(std::sin(std::numbers::pi / 2 * std::min(std::abs(x), 1.0)), x);
                ASSERT_NEAR(sine[i], exact, 1e-7) << x;   // less than two roundings of 1
            }
        });
}

TEST(Saturation, ARampStartsAtItsStart)
{
    std::vector<float> samples(5, 2.0f);
    MVector::MultiplyRampInPlace(samples.data(), 4, 1.0, -0.25);
    EXPECT_EQ(samples, (std::vector<float>{ 2.0f, 1.5f, 1.0f, 0.5f, 2.0f }));
}
}   // namespace
