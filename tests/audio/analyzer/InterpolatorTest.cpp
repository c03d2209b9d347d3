// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/Interpolator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/Signals.h"

namespace
{
constexpr unsigned Seed = 99;

// In double, straight from the definition of the bell.
struct Bell
{
    explicit Bell(double width) : half(static_cast<int>(std::ceil(width)))
    {
        for (int k = -half; k <= half; ++k)
            weights.push_back(std::exp(-std::pow(2.0 * k / width, 2.0)));
        for (const double weight : weights)
            total += weight;
    }
    double Value(const std::vector<float>& source, int i, bool maximum) const
    {
        double sum = 0, largest = -std::numeric_limits<double>::max();
        for (int k = -half; k <= half; ++k)
        {
            const int index = std::clamp(i + k, 0, static_cast<int>(source.size()) - 1);
            const double product =
                weights[static_cast<std::size_t>(k + half)] * source[static_cast<std::size_t>(index)];
            sum += product / total;
            largest = std::max(largest, product);
        }
        return maximum ? largest : sum;
    }
    int half;
    std::vector<double> weights;
    double total = 0;
};

TEST(Interpolator, ConvolvesWithTheBellOnBothPaths)
{
    for (const int count : { 1024, 100, 1 })
        for (const double width : { 1.0, 3.0, 10.0, 10.4, 30.0, 31.0, 51.0, 205.0, 1024.0 })
        {
            SCOPED_TRACE(std::to_string(width) + " on " + std::to_string(count) + ", seed " +
                         std::to_string(Seed));
            const std::vector<float> source = Signals::Noise(static_cast<std::size_t>(count), Seed);
            const Bell bell(width);
            Interpolator interpolator;
            interpolator.SetWidth(width);
            ASSERT_EQ(interpolator.HalfLength(), bell.half);
            std::vector<float> direct(source.size()), again(source.size()), maximum(source.size());
            std::vector<float> fast = source;
            interpolator.Convolve(direct.data(), source.data(), count, false);
            interpolator.Convolve(fast.data(), fast.data(), count, true);   // in place
            interpolator.Convolve(again.data(), source.data(), count, true);   // with the spectrum kept
            interpolator.MaxFilter(maximum.data(), source.data(), count);
            for (int i = 0; i < count; ++i)
            {
                const auto index = static_cast<std::size_t>(i);
                const double expected = bell.Value(source, i, false);
                ASSERT_NEAR(direct[index], expected, 2e-6) << i;   // float sums of up to 2049 products
                ASSERT_NEAR(fast[index], expected, 2e-6) << i;
                ASSERT_EQ(again[index], fast[index]) << i;
                ASSERT_NEAR(maximum[index], bell.Value(source, i, true), 2e-6) << i;
            }
        }
}

TEST(Interpolator, KeepsItsKernelWhileTheHalfLengthStays)
{
    Interpolator interpolator;
    EXPECT_EQ(interpolator.HalfLength(), 1);
    interpolator.SetWidth(9.5);
    const std::vector<float> before = interpolator.Kernel();
    interpolator.SetWidth(10.0);
    EXPECT_EQ(interpolator.Kernel(), before);
    interpolator.SetWidth(10.1);
    EXPECT_EQ(interpolator.HalfLength(), 11);
    interpolator.Convolve(nullptr, nullptr, 0, true);
    interpolator.MaxFilter(nullptr, nullptr, 0);
    for (const double bad : { 0.0, -5.0, std::numeric_limits<double>::quiet_NaN() })
    {
        interpolator.SetWidth(bad);
        EXPECT_EQ(interpolator.HalfLength(), 1);
    }
}
}   // namespace
