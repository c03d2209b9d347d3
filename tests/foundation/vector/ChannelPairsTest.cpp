// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/ChannelPairs.h"

#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/foundation/vector/Targets.h"

namespace
{
constexpr std::uint32_t Seed = 4;

template <typename T>
std::vector<T> Values(std::size_t count, std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<T> values(-1, 1);
    std::vector<T> result(count);
    std::generate(result.begin(), result.end(), [&] { return values(random); });
    return result;
}

// Each array has one element more than the operation is told of, which must stay.
TEST(ChannelPairs, WidenAndNarrowForEveryCountAndKeepTheirHandsOffTheNextElement)
{
    ForEveryTarget(
        []
        {
            for (std::size_t n = 0; n <= 21; ++n)
            {
                SCOPED_TRACE(n);
                const auto count = static_cast<std::int32_t>(n);
                const std::vector<float> a = Values<float>(n + 1, Seed);
                const std::vector<float> b = Values<float>(n + 1, Seed + 1);
                const std::vector<float> window = Values<float>(n + 1, Seed + 2);
                for (const bool mono : { false, true })
                {
                    std::vector<double> plain(2 * n + 2, 5.0);
                    std::vector<double> windowed = plain;
                    MVector::PairsFromFloats(a.data(), mono ? nullptr : b.data(), 0.25, plain.data(), count);
                    MVector::PairsFromFloatsTimes(a.data(), mono ? nullptr : b.data(), window.data(), 0.25,
                                                  windowed.data(), count);
                    std::vector<float> outA(n + 1, 6.0f);
                    std::vector<float> outB(n + 1, 6.0f);
                    MVector::PairsToFloats(plain.data(), 0.5f, outA.data(), mono ? nullptr : outB.data(),
                                           count);
                    for (std::size_t i = 0; i < n; ++i)
                    {
                        const double second = mono ? 0.0 : static_cast<double>(b[i]);
                        // Products of floats are exact in double, fused or not.
                        ASSERT_EQ(plain[2 * i], static_cast<double>(a[i]) + 0.25);
                        ASSERT_EQ(plain[2 * i + 1], second + 0.25);
                        ASSERT_EQ(windowed[2 * i],
                                  static_cast<double>(a[i]) * static_cast<double>(window[i]) + 0.25);
                        ASSERT_EQ(windowed[2 * i + 1], second * static_cast<double>(window[i]) + 0.25);
                        ASSERT_EQ(outA[i], static_cast<float>(plain[2 * i]) + 0.5f);
                        ASSERT_EQ(outB[i], mono ? 6.0f : static_cast<float>(plain[2 * i + 1]) + 0.5f);
                    }
                    ASSERT_EQ(plain[2 * n], 5.0);
                    ASSERT_EQ(windowed[2 * n + 1], 5.0);
                    ASSERT_EQ(outA[n], 6.0f);
                    ASSERT_EQ(outB[n], 6.0f);
                }
            }
        });
}

TEST(ChannelPairs, AddWithAndWithoutAWindow)
{
    ForEveryTarget(
        []
        {
            for (std::size_t n = 0; n <= 21; ++n)
            {
                const auto count = static_cast<std::int32_t>(n);
                const std::vector<double> source = Values<double>(2 * n + 2, Seed);
                const std::vector<double> start = Values<double>(2 * n + 2, Seed + 1);
                const std::vector<float> window = Values<float>(n + 1, Seed + 2);
                std::vector<double> sum = start;
                std::vector<double> weighted = start;
                MVector::PairsAdd(source.data(), sum.data(), count);
                MVector::PairsAddTimes(source.data(), window.data(), weighted.data(), count);
                for (std::size_t i = 0; i < 2 * n; ++i)
                {
                    ASSERT_EQ(sum[i], start[i] + source[i]);
                    // One rounding more or less, of values below 2.
                    ASSERT_NEAR(weighted[i], start[i] + source[i] * static_cast<double>(window[i / 2]),
                                4.5e-16);
                }
                ASSERT_EQ(sum[2 * n], start[2 * n]);
                ASSERT_EQ(weighted[2 * n], start[2 * n]);
            }
        });
}
}   // namespace
