// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/ChannelPairs.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/Signals.h"
#include "tests/foundation/vector/Targets.h"

namespace
{
// Each array has one pair more than the operation is told of, which must stay.
TEST(ChannelPairs, AreMadeTakenApartAndAddedForEveryCount)
{
    ForEveryTarget(
        []
        {
            for (std::size_t n = 0; n <= 21; ++n)
            {
                SCOPED_TRACE(n);
                const auto count = static_cast<std::int32_t>(n);
                const std::vector<float> a = Signals::Noise(n + 1, 4);
                const std::vector<float> b = Signals::Noise(n + 1, 5);
                const std::vector<float> window = Signals::Noise(n + 1, 6);
                for (const bool mono : { false, true })
                {
                    const float* second = mono ? nullptr : b.data();
                    std::vector<double> plain(2 * n + 2, 5.0);
                    std::vector<double> windowed = plain;
                    std::vector<float> outA(n + 1, 6.0f);
                    std::vector<float> outB(n + 1, 6.0f);
                    MVector::PairsFromFloats(a.data(), second, 0.25, plain.data(), count);
                    MVector::PairsFromFloatsTimes(a.data(), second, window.data(), 0.25, windowed.data(),
                                                  count);
                    MVector::PairsToFloats(plain.data(), 0.5f, outA.data(), mono ? nullptr : outB.data(),
                                           count);
                    std::vector<double> sum = plain;
                    std::vector<double> weighted = plain;
                    MVector::PairsAdd(windowed.data(), sum.data(), count);
                    MVector::PairsAddTimes(windowed.data(), window.data(), weighted.data(), count);
                    for (std::size_t i = 0; i < 2 * n + 2; ++i)
                    {
                        const bool isSecond = i % 2 == 1;
                        const double value =
                            isSecond ? (mono ? 0.0 : double{ b[i / 2] }) : double{ a[i / 2] };
                        const double weight = window[i / 2];
                        // Products of floats are exact in double, fused or not.
                        ASSERT_EQ(plain[i], i < 2 * n ? value + 0.25 : 5.0);
                        ASSERT_EQ(windowed[i], i < 2 * n ? value * weight + 0.25 : 5.0);
                        const float narrow = isSecond ? outB[i / 2] : outA[i / 2];
                        const bool isWritten = i < 2 * n && !(isSecond && mono);
                        ASSERT_EQ(narrow, isWritten ? static_cast<float>(plain[i]) + 0.5f : 6.0f);
                        ASSERT_EQ(sum[i], i < 2 * n ? plain[i] + windowed[i] : 5.0);
                        // One rounding more or less, of values below 4.
                        ASSERT_NEAR(weighted[i], i < 2 * n ? plain[i] + windowed[i] * weight : 5.0, 9e-16);
                    }
                }
            }
        });
}
}   // namespace
