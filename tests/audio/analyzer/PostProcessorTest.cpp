// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/PostProcessor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "audio/analyzer/Interpolator.h"
#include "audio/analyzer/SpectrumOperations.h"

namespace
{
using Points = std::array<float, 1024>;

Points Ramp()
{
    Points points;
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = 0.001f * static_cast<float>(i + 1);
    return points;
}

double Decibels(double ratio)
{
    return 20.0 * std::log10(ratio);
}

TEST(PostProcessor, TiltsAround20HzAndAddsGain)
{
    for (const double slope : { 3.0, -9.0, 0.00005, 0.0 })
    {
        const double gain = -6.0;
        PostProcessor processor;
        processor.slope = &slope;
        processor.gain = &gain;
        Points points = Ramp();
        processor.Process(points.data());
        const double used = std::abs(slope) < 0.0001 ? 0.0 : slope;
        for (const std::size_t i : { 0u, 1u, 512u, 1023u })
            EXPECT_NEAR(Decibels(points[i] / Ramp()[i]),
                        gain + used * 0.0097322265625 * static_cast<double>(i), 1e-4)
                << "slope " << slope << ", point " << i;
    }
}

TEST(PostProcessor, ShowsTheLargestValueOfEachBand)
{
    const std::int32_t noBands = 0, threeBands = 3;
    struct Row
    {
        const std::int32_t* bands;
        std::int32_t viewType;
        std::size_t segments;
    };
    for (const Row& row :
         { Row{ nullptr, 1, 30 }, Row{ nullptr, 2, 10 }, Row{ &noBands, 2, 10 }, Row{ &threeBands, 2, 3 },
           Row{ nullptr, 0, 1024 }, Row{ nullptr, 77, 1024 }, Row{ nullptr, -1, 1024 } })
    {
        PostProcessor processor;
        processor.bands = row.bands;
        processor.viewType = &row.viewType;
        Points points = Ramp();
        processor.Process(points.data());
        EXPECT_EQ(std::set<float>(points.begin(), points.end()).size(), row.segments);
        EXPECT_EQ(points[1023], Ramp()[1023]);
        for (std::size_t i = 0; i < points.size(); ++i)
            ASSERT_GE(points[i], Ramp()[i]);
        EXPECT_LE(std::count(points.begin(), points.end(), points[500]),
                  static_cast<std::ptrdiff_t>(1024 / row.segments + 1));
    }
}

TEST(PostProcessor, SmoothsWithTheKernelOfItsOwner)
{
    Interpolator interpolator;
    PostProcessor processor;
    processor.interpolator = &interpolator;
    Points single{};
    single[300] = 1.0f;
    Points points = single;
    processor.Process(points.data());
    EXPECT_EQ(points, single);   // a half length of 1 is no smoothing

    interpolator.SetWidth(12.0);
    processor.Process(points.data());
    EXPECT_NEAR(points[300], interpolator.Kernel()[12], 1e-6);
    const bool maximized = true;
    processor.maximizedSmoothing = &maximized;
    points = single;
    processor.Process(points.data());
    EXPECT_NEAR(points[300], 1.0f, 1e-6);
    EXPECT_NEAR(points[306], std::exp(-1.0f), 1e-6);
}

TEST(PostProcessor, NormalizesToItsReference)
{
    bool normalize = false;
    float reference = 0.5f;
    PostProcessor processor;
    Points points = Ramp();
    processor.Normalize(points.data());
    processor.normalize = &normalize;
    processor.Normalize(points.data());
    EXPECT_EQ(points, Ramp());
    normalize = true;
    processor.Normalize(points.data());
    EXPECT_NEAR(points[1023], 1.0f, 1e-6);
    points = Ramp();
    processor.reference = &reference;
    processor.Normalize(points.data());
    EXPECT_NEAR(points[0], 0.002f, 1e-7);
    reference = 1e-6f;
    points = Ramp();
    processor.Normalize(points.data());
    EXPECT_EQ(points, Ramp());
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
