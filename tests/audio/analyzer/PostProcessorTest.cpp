// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/PostProcessor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "audio/analyzer/Interpolator.h"
#include "audio/analyzer/SpectrumOperations.h"
#include "tests/Signals.h"

namespace
{
using Points = std::array<float, 1024>;

double Decibels(double ratio)
{
    return 20.0 * std::log10(ratio);
}

Points NoisePoints(std::uint32_t seed)
{
    Points points;
    const std::vector<float> noise = Signals::Noise(1024, seed);
    std::transform(noise.begin(), noise.end(), points.begin(),
                   [](float value) { return std::abs(value) + 1e-3f; });
    return points;
}

TEST(PostProcessor, TiltsAmplifiesSmoothsAndGroupsWhatItWasGiven)
{
    std::mt19937 random(7);
    for (std::uint32_t turn = 0; turn < 200; ++turn)
    {
        const auto often = [&random]
        {
            return random() % 3 != 0;
        };
        const double slope = std::array{ 3.0, -9.0, 0.00005, 0.0 }[random() % 4];
        const double gain = std::array{ -6.0, 12.5, 0.0 }[random() % 3];
        const std::int32_t bands = std::array{ 0, 3, 100 }[random() % 3];
        const std::int32_t viewType = static_cast<std::int32_t>(random() % 5) - 1;
        const bool maximized = random() % 2 == 0;
        Interpolator interpolator;
        interpolator.SetWidth(random() % 2 == 0 ? 12.0 : 1.0);   // a half length of 1 is no smoothing
        PostProcessor processor;
        processor.slope = often() ? &slope : nullptr;
        processor.gain = often() ? &gain : nullptr;
        processor.interpolator = often() ? &interpolator : nullptr;
        processor.maximizedSmoothing = often() ? &maximized : nullptr;
        processor.bands = often() ? &bands : nullptr;
        processor.viewType = often() ? &viewType : nullptr;
        Points actual = NoisePoints(turn);
        Points expected = actual;
        processor.Process(actual.data());

        for (std::size_t i = 0; i < 1024; ++i)
        {
            const double octaves = std::log2(1000.0) / 1024 * static_cast<double>(i);
            const double tilt =
                processor.slope == nullptr || std::abs(slope) < 0.0001 ? 0.0 : slope * octaves;
            expected[i] *=
                static_cast<float>(std::pow(10.0, (tilt + (processor.gain != nullptr ? gain : 0.0)) / 20.0));
        }
        if (processor.interpolator != nullptr && interpolator.HalfLength() > 1)
        {
            if (processor.maximizedSmoothing != nullptr && maximized)
                interpolator.MaxFilter(expected.data(), expected.data(), 1024);
            else
                interpolator.Convolve(expected.data(), expected.data(), 1024, true);
        }
        std::size_t count = processor.bands != nullptr ? static_cast<std::size_t>(bands) : 0;
        if (count == 0 && processor.viewType != nullptr)
            count = viewType == 1 ? 30 : viewType == 2 ? 10 : 0;
        for (std::size_t band = 0; band < count; ++band)
        {
            const auto from = expected.begin() + static_cast<std::ptrdiff_t>(1024 * band / count);
            const auto to = expected.begin() + static_cast<std::ptrdiff_t>(1024 * (band + 1) / count);
            std::fill(from, to, *std::max_element(from, to));
        }
        for (std::size_t i = 0; i < 1024; ++i)
            ASSERT_NEAR(Decibels(actual[i] / expected[i]), 0.0, 1e-3) << "turn " << turn << ", point " << i;
    }
}

TEST(PostProcessor, NormalizesToItsReference)
{
    const Points source = NoisePoints(1);
    bool normalize = false;
    float reference = 0.5f;
    PostProcessor processor;
    Points points = source;
    processor.Normalize(points.data());
    processor.normalize = &normalize;
    processor.Normalize(points.data());
    EXPECT_EQ(points, source);
    normalize = true;
    processor.Normalize(points.data());
    EXPECT_NEAR(*std::max_element(points.begin(), points.end()), 1.0f, 1e-6);
    points = source;
    processor.reference = &reference;
    processor.Normalize(points.data());
    EXPECT_NEAR(points[7], 2.0f * source[7], 1e-6);
    reference = 1e-6f;
    points = source;
    processor.Normalize(points.data());
    EXPECT_EQ(points, source);
}

TEST(SpectrumOperations, DeharmonizeFollowsItsProduct)
{
    std::vector<float> source(200);
    for (std::size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<float>(0.2 + 0.2 * std::sin(0.7 * static_cast<double>(i)));
    for (const double amount : { 0.0, 0.05, 0.5, 1.0 })
    {
        const double w = std::pow(1.0 - amount, 16.0);
        std::vector<double> expected(source.begin(), source.end());
        if (amount > 0)
            for (std::size_t h = 2; h <= 4; ++h)
                for (std::size_t i = 0; i < expected.size(); ++i)
                {
                    const std::size_t from = i == 0 ? expected.size() : 1 + (i - 1) * h;
                    const double product = from < source.size() ? expected[i] * source[from] * (1 - w) : 0.0;
                    expected[i] = product + expected[i] * w;
                }
        const double scale = *std::max_element(source.begin(), source.end()) /
                             *std::max_element(expected.begin(), expected.end());
        std::vector<float> actual = source;
        std::vector<float> scratch(source.size());
        SpectrumOperations::Deharmonize(actual.data(), 200, amount, scratch.data());
        for (std::size_t i = 0; i < actual.size(); ++i)
            ASSERT_NEAR(actual[i], scale * expected[i], 1e-6) << "amount " << amount << ", bin " << i;
    }
    std::vector<float> quiet(200, 1e-6f);
    SpectrumOperations::Deharmonize(quiet.data(), 200, 1.0, source.data());
    EXPECT_EQ(quiet, std::vector<float>(200, 1e-6f)) << "near silence nothing is scaled up";
}

TEST(SpectrumOperations, KeepPeaksLowersEverythingElse)
{
    //                          0  1  2  3  4  5  6  7  8  9  10 11 12 13
    const std::vector<float> x = { 9, 1, 2, 5, 3, 1, 4, 4, 1, 2, 6, 2, 1, 2, 3, 3, 2, 1, 8 };
    struct Row
    {
        double amount;
        double thresholdDb;
        std::set<std::size_t> peaks;
    };
    // 4 4 and 3 3 are no strict peaks, and the two outermost bins at each end never are.
    for (const Row& row : { Row{ 1.0, -40.0, { 3, 10 } }, Row{ 0.5, -4.0, { 10 } }, Row{ 1.0, 0.0, {} } })
    {
        std::vector<float> y = x;
        SpectrumOperations::KeepPeaks(y.data(), static_cast<std::int32_t>(y.size()), row.amount,
                                      row.thresholdDb);
        for (std::size_t i = 0; i < x.size(); ++i)
            EXPECT_NEAR(Decibels(y[i] / x[i]), row.peaks.count(i) != 0 ? 0.0 : -120.0 * row.amount, 1e-3)
                << i;
    }
}
}   // namespace
