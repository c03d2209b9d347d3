// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/FilterMagnitudes.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace
{
using MAudioFilters::Filter;
constexpr std::int32_t PointCount = 16384;
constexpr std::uint32_t Seed = 31;

std::vector<Filter<double>> RandomSections(std::int32_t count, double sampleRate)
{
    std::mt19937 random(Seed);
    std::uniform_real_distribution<double> position(std::log(20.0), std::log(20000.0));
    std::uniform_real_distribution<double> gain(-12.0, 12.0);
    std::uniform_real_distribution<double> logQ(std::log(0.05), std::log(20.0));
    std::vector<Filter<double>> sections(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < sections.size(); ++i)
        sections[i].Set(static_cast<std::int32_t>(i % 9), gain(random), std::exp(position(random)),
                        sampleRate, std::exp(logQ(random)));
    return sections;
}

/// Straight from the transfer function, in extended precision, with the exact angle of the grid point.
long double ExtendedMagnitude(const Filter<double>& s, std::int32_t k)
{
    const long double w = std::numbers::pi_v<long double> * k / PointCount;
    const std::complex<long double> z1 = std::polar(1.0L, -w);
    const std::complex<long double> z2 = std::polar(1.0L, -2.0L * w);
    const auto numerator = std::complex<long double>(s.b0) + z1 * static_cast<long double>(s.b1) +
                           z2 * static_cast<long double>(s.b2);
    const auto denominator = std::complex<long double>(1.0L) - z1 * static_cast<long double>(s.a1) -
                             z2 * static_cast<long double>(s.a2);
    return std::abs(numerator) / std::abs(denominator);
}

TEST(MagnitudeGrid, EqualsExtendedPrecisionAtEveryEdgeOfTheGrid)
{
    MAudioFilters::MagnitudeGrid grid;
    grid.Prepare(PointCount, 376);
    ASSERT_EQ(grid.PointCount(), PointCount);
    for (const double sampleRate : { 44100.0, 192000.0 })
    {
        for (const std::int32_t count : { 0, 1, 9, 45, 170 })
        {
            const std::vector<Filter<double>> sections = RandomSections(count, sampleRate);
            const double* actual = grid.EvaluateAll(sections.data(), count);
            for (std::int32_t k = 0; k < PointCount;
                 k += k < 50 || k > PointCount - 50 || std::abs(k - 8192) < 3 ? 1 : 61)
            {
                long double expected = 1.0L;
                for (const Filter<double>& section : sections)
                    expected *= ExtendedMagnitude(section, k);
                // High-passes at 0 Hz are differences of coefficients at the guard's size, where double has
                // no digits to keep; below 1e-12 only the absolute value counts.
                const auto wanted = static_cast<double>(expected);
                ASSERT_NEAR(actual[k], wanted, 1e-9 * wanted + 1e-12)
                    << "point " << k << ", sections " << count;
                const double hertz = std::max(k, 20) * sampleRate / (2.0 * PointCount);   // from 27 Hz
                const double ofList = MAudioFilters::MagnitudeOfList(sections.data(), count, hertz);
                ASSERT_TRUE(count > 9 || k < 20 || std::abs(ofList - wanted) < 1e-9 * wanted + 1e-12)
                    << ofList;
            }
        }
    }
}

TEST(MagnitudeGrid, SurvivesManySteepSections)
{
    // 220 high-passes: each squared denominator is around 1e-10 near 0 Hz, their product far below any
    // double.
    std::vector<Filter<double>> sections(220);
    for (Filter<double>& section : sections)
        section.Set(MAudioFilters::HighPass, 0.0, 20.0, 48000.0, 0.7071067811865476);
    MAudioFilters::MagnitudeGrid grid;
    grid.Prepare(PointCount, 376);
    const double* actual = grid.EvaluateAll(sections.data(), 220);
    for (std::int32_t k = 0; k < PointCount; ++k)
        ASSERT_TRUE(actual[k] >= 0.0 && actual[k] < 1.0001) << k << ": " << actual[k];
    EXPECT_NEAR(actual[PointCount - 1], 1.0, 1e-9);
}
}   // namespace
