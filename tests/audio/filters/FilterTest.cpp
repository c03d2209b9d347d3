// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/Filter.h"

#include <array>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/filters/Complex.h"
#include "audio/filters/FilterCascade.h"
#include "audio/filters/FilterMagnitudes.h"
#include "audio/filters/FilterTypes.h"

namespace
{
using MAudioFilters::Filter;
constexpr double SampleRate = 48000.0;

/// Gain in dB at a frequency, from the impulse response of the recursion that the coefficients promise.
template <typename T>
double MeasuredGainDb(const std::vector<Filter<T>>& sections, double frequency)
{
    std::vector<double> response(48000, 0.0);
    response[0] = 1.0;
    for (const Filter<T>& section : sections)
    {
        double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
        for (double& sample : response)
        {
            const double x = sample;
            sample = static_cast<double>(section.b0) * x + static_cast<double>(section.b1) * x1 +
                     static_cast<double>(section.b2) * x2 + static_cast<double>(section.a1) * y1 +
                     static_cast<double>(section.a2) * y2;
            x2 = x1;
            x1 = x;
            y2 = y1;
            y1 = sample;
        }
    }
    std::complex<double> sum = 0;
    for (std::size_t n = 0; n < response.size(); ++n)
        sum += response[n] *
               std::polar(1.0, -2.0 * std::numbers::pi * frequency / SampleRate * static_cast<double>(n));
    return 20.0 * std::log10(std::abs(sum));
}

Filter<double> Designed(std::int32_t type, double gain, double frequency, double q)
{
    Filter<double> section;
    section.Set(type, gain, frequency, SampleRate, q);
    return section;
}

struct ResponsePoint
{
    const char* what;
    std::int32_t type;
    double gain, frequency, q;
    double at, expectedDb;
};

TEST(Filter, EachTypeHasTheResponseOfItsName)
{
    using namespace MAudioFilters;
    const double half = -10.0 * std::log10(2.0);
    const ResponsePoint points[] = {
        { "peak at its centre", Peak, 9, 1000, 2, 1000, 9 },
        { "peak at 0 Hz", Peak, 9, 1000, 2, 0, 0 },
        { "peak at half the rate", Peak, -9, 1000, 2, 24000, 0 },
        { "peak without gain", Peak, 0, 1000, 2, 900, 0 },
        { "low shelf at 0 Hz", LowShelf, 6, 500, 0.7, 0, 6 },
        { "low shelf at its frequency", LowShelf, 6, 500, 0.7071, 500, 3 },
        { "low shelf at half the rate", LowShelf, 6, 500, 0.7, 24000, 0 },
        { "high shelf at 0 Hz", HighShelf, -6, 500, 0.7, 0, 0 },
        { "high shelf at half the rate", HighShelf, -6, 500, 0.7, 24000, -6 },
        { "low-pass at 0 Hz", LowPass, 0, 2000, 0.7071067811865476, 0, 0 },
        { "low-pass at its frequency", LowPass, 0, 2000, 0.7071067811865476, 2000, half },
        { "low-pass resonance is Q", LowPass, 0, 2000, 4, 2000, 20 * std::log10(4.0) },
        { "high-pass at its frequency", HighPass, 0, 2000, 0.7071067811865476, 2000, half },
        { "high-pass at half the rate", HighPass, 0, 2000, 0.7071067811865476, 24000, 0 },
        { "first-order low-pass at 0 Hz", LowPass6, 0, 1000, 1, 0, 0 },
        { "first-order low-pass at its frequency", LowPass6, 0, 200, 1, 200, half },
        { "first-order high-pass at half the rate", HighPass6, 0, 1000, 1, 24000, 0 },
        { "first-order high-pass at its frequency", HighPass6, 0, 200, 1, 200, half },
        { "band-pass at its centre", BandPass, 0, 3000, 5, 3000, 0 },
        { "notch far away", Notch, 0, 3000, 5, 100, 0 },
        { "all-pass somewhere", AllPass, 0, 3000, 5, 2500, 0 },
        { "first-order all-pass somewhere", AllPass6, 0, 3000, 5, 2500, 0 },
    };
    for (const ResponsePoint& point : points)
    {
        SCOPED_TRACE(point.what);
        const Filter<double> section = Designed(point.type, point.gain, point.frequency, point.q);
        const double measured = MeasuredGainDb<double>({ section }, point.at);
        // The first-order sections are matched by their pole only: 0.1 dB off at 200 Hz.
        const bool firstOrder = point.type == LowPass6 || point.type == HighPass6;
        EXPECT_NEAR(measured, point.expectedDb, firstOrder ? 0.1 : 0.001);
        EXPECT_NEAR(20.0 * std::log10(section.Magnitude(point.at)), measured, 1e-6);
    }
    EXPECT_LT(Designed(Notch, 0, 3000, 5).Magnitude(3000), 1e-12);
}

// Any band of a random state, harmonics included, at any rate there is.
struct AnyBand
{
    std::int32_t type;
    double gainDb, frequency, sampleRate, q;
};

AnyBand RandomBand(std::mt19937& random)
{
    constexpr double rates[] = { 8000,  11025, 16000, 22050, 24000,  32000,
                                 44100, 48000, 88200, 96000, 192000, 384000 };
    std::uniform_real_distribution<double> share(0.0, 1.0);
    AnyBand band;
    band.type = std::uniform_int_distribution<std::int32_t>(0, MAudioFilters::FilterTypeCount - 1)(random);
    const bool isShelf = band.type == MAudioFilters::LowShelf || band.type == MAudioFilters::HighShelf;
    band.gainDb = (isShelf ? 12.0 : 24.0) * (2.0 * share(random) - 1.0);   // shelves run twice
    band.frequency = 20.0 * std::pow(1000.0, share(random)) * (share(random) < 0.2 ? 16.0 : 1.0);
    band.sampleRate = rates[random() % std::size(rates)];
    band.q = 0.05 * std::pow(400.0, share(random));   // 0.05 to 20, as harmonics have it
    return band;
}

TEST(Filter, EveryBandIsStableAtEveryRateAndSoundsBelowItsTopAsAt96kHz)
{
    constexpr unsigned seed = 71;
    std::mt19937 random(seed);
    // What the fits reach, and a tenth more.
    constexpr double worstDb[] = { 2.6, 0.47, 2.6, 0.79, 2.9, 0.16, 0.58, 2.6, 1.48 };
    constexpr double averageDb[] = { 0.064, 0.024, 0.088, 0.03, 0.041, 0.0063, 0.083, 0.06, 0.0425 };
    std::array<double, MAudioFilters::AllPass> sumDb{}, compared{};
    for (int turn = 0; turn < 12000; ++turn)
    {
        const AnyBand band = RandomBand(random);
        SCOPED_TRACE(::testing::Message()
                     << "seed " << seed << ", type " << band.type << ", " << band.gainDb << " dB, "
                     << band.frequency << " Hz of " << band.sampleRate << ", Q " << band.q);
        Filter<double> section;
        section.Set(band.type, band.gainDb, band.frequency, band.sampleRate, band.q);
        ASSERT_LT(std::abs(section.a2), 1.0);
        ASSERT_LT(std::abs(section.a1), 1.0 - section.a2);
        ASSERT_EQ(section.generation, 1);
        // A resonant shelf rises above its gain by some Q; more in all would be a fault.
        const double highest = std::max(1.0, band.q) * 4.0 * std::pow(10.0, std::abs(band.gainDb) / 20.0);
        const bool isShelf = band.type == MAudioFilters::LowShelf || band.type == MAudioFilters::HighShelf;
        const bool isAllPass = band.type >= MAudioFilters::AllPass;
        Filter<double> usual;
        usual.Set(band.type, band.gainDb, band.frequency, 96000.0, band.q);
        const double usable = std::min(0.43 * band.sampleRate, 20000.0);
        for (double hertz = 20.0; hertz < 0.5 * band.sampleRate; hertz *= 1.13)
        {
            const double magnitude = section.Magnitude(hertz);
            ASSERT_LT(magnitude, highest) << hertz << " Hz";
            // Below, the formulas of the literature bend as they do; a resonance is a matter of a few Hz.
            if (band.frequency < 0.47 * band.sampleRate || band.frequency > 20000.0 ||
                (isShelf && band.q > 1.3) || isAllPass || hertz >= usable)
                continue;
            const auto level = [](double linear)
            {
                return std::max(20.0 * std::log10(linear), -40.0);   // nobody hears what is below
            };
            const auto type = static_cast<std::size_t>(band.type);
            const double deviationDb = std::abs(level(magnitude) - level(usual.Magnitude(hertz)));
            ASSERT_LT(deviationDb, worstDb[type]) << hertz << " Hz";
            sumDb[type] += deviationDb;
            ++compared[type];
        }
    }
    for (std::size_t type = 0; type < MAudioFilters::AllPass; ++type)
        EXPECT_LT(sumDb[type] / compared[type], averageDb[type]) << type;
}

TEST(Filter, ABandMovesAcrossTheTopOfItsRangeInSmallSteps)
{
    for (std::int32_t type = 0; type < MAudioFilters::Notch; ++type)
        for (const double q : { 0.3, 0.7, 2.0 })
        {
            Filter<double> previous;
            previous.Set(type, 6.0, 12000.0, 32000.0, q);
            for (double frequency = 12000.0; frequency < 20000.0; frequency *= 1.0005)
            {
                Filter<double> section;
                section.Set(type, 6.0, frequency, 32000.0, q);
                for (const double hertz : { 100.0, 1000.0, 4000.0, 8000.0, 12000.0 })
                    ASSERT_NEAR(std::max(section.Magnitude(hertz), 0.1),
                                std::max(previous.Magnitude(hertz), 0.1), 0.2)
                        << "type " << type << ", Q " << q << ", " << frequency << " Hz, at " << hertz;
                previous = section;
            }
        }
}

TEST(Filter, WhatIsNoFrequencyAndNoQPassesTheInput)
{
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    for (std::int32_t type = 0; type < MAudioFilters::FilterTypeCount; ++type)
        for (const AnyBand& bad : { AnyBand{ type, notANumber, 1000, 48000, 1 },
                                    { type, 3, notANumber, 48000, 1 },
                                    { type, 3, 0, 48000, 1 },
                                    { type, 3, -100, 48000, 1 },
                                    { type, 3, infinite, 48000, 1 },
                                    { type, 3, 1000, 0, 1 },
                                    { type, 3, 1000, 48000, 0 },
                                    { type, 3, 1000, 48000, -1 },
                                    { type, 3, 1000, 48000, notANumber } })
        {
            Filter<double> section;
            section.Set(type, bad.gainDb, bad.frequency, bad.sampleRate, bad.q);
            EXPECT_LT(std::abs(section.a2), 1.0) << type;
            EXPECT_LT(std::abs(section.a1), 1.0 - section.a2) << type;
            EXPECT_TRUE(std::isfinite(section.b0 + section.b1 + section.b2)) << type;
        }
}

TEST(Filter, FloatSectionsAreTheDoubleOnesRoundedAndEachDesignRaisesTheGeneration)
{
    for (std::int32_t type = 0; type < MAudioFilters::FilterTypeCount; ++type)
    {
        SCOPED_TRACE(type);
        Filter<double> exact = Designed(type, 3.0, 4000.0, 1.5);
        EXPECT_EQ(exact.generation, 1);
        exact.Set(type, 3.0, 4000.0, SampleRate, 1.5);
        EXPECT_EQ(exact.generation, 2);
        EXPECT_TRUE(exact.b0 != 0 && exact.a1 != 0) << "zeros breed denormals";
        if (type == MAudioFilters::LowPass6 || type == MAudioFilters::HighPass6 ||
            type == MAudioFilters::AllPass6)
            continue;
        Filter<float> rounded;
        rounded.Set(type, 3.0f, 4000.0f, 48000.0f, 1.5f);
        EXPECT_EQ(rounded.generation, 1);
        for (const auto& [single, full] : { std::pair{ rounded.b0, exact.b0 },
                                            { rounded.b1, exact.b1 },
                                            { rounded.b2, exact.b2 },
                                            { rounded.a1, exact.a1 },
                                            { rounded.a2, exact.a2 } })
            EXPECT_NEAR(single, full, 1.2e-7) << "coefficients below 2";
    }
}

TEST(Filter, RefusesWhatItHasNoFormulaFor)
{
    for (const std::int32_t type : { 5, 6, 10, 11, -1 })
    {
        Filter<double> section = Designed(MAudioFilters::Peak, 7.0, 3000.0, 2.0);
        const double before = section.b0;
        section.type = type;
        EXPECT_THROW(section.Update(1.0), MException) << type;
        EXPECT_EQ(section.b0, before);
        Filter<float> single;
        EXPECT_THROW(single.Set(type, 0.0f, 100.0f, 48000.0f, 1.0f), MException) << type;
    }
}

TEST(Complex, DividesOnBothBranchesAndRefusesZero)
{
    using MAudioFilters::Complex;
    for (const Complex& b :
         { Complex{ 3, 4 }, Complex{ 4, -3 }, Complex{ 0, 2 }, Complex{ -2, 0 }, Complex{ 1e200, 1e200 } })
    {
        const Complex a{ 1.5, -2.5 };
        const Complex back = a / b * b;
        EXPECT_NEAR(back.re, a.re, 1e-14);
        EXPECT_NEAR(back.im, a.im, 1e-14);
    }
    EXPECT_THROW(static_cast<void>(Complex{ 1, 1 } / Complex{ 0, 0 }), MException);
}

TEST(FilterCascade, IsAButterworthOfItsOrder)
{
    // |H|^2 = 1 / (1 + (tan(w/2) / tan(wc/2))^2n) under the bilinear transform.
    for (std::int32_t orderIndex = 1; orderIndex <= 10; ++orderIndex)
    {
        SCOPED_TRACE(orderIndex);
        MAudioFilters::FilterCascade low;
        MAudioFilters::FilterCascade high;
        low.SetLowPass(1000.0, SampleRate, orderIndex);
        high.SetHighPass(1000.0, SampleRate, orderIndex);
        ASSERT_EQ(low.count, orderIndex);
        ASSERT_EQ(high.count, orderIndex);
        EXPECT_GE(low.sections[0].q, low.sections[low.count - 1].q);
        for (const double frequency : { 300.0, 900.0, 1000.0, 1300.0, 2000.0 })
        {
            const double ratio = std::tan(std::numbers::pi * frequency / SampleRate) /
                                 std::tan(std::numbers::pi * 1000.0 / SampleRate);
            const double lowMagnitude = MAudioFilters::MagnitudeOfList(low.sections, low.count, frequency);
            const double highMagnitude = MAudioFilters::MagnitudeOfList(high.sections, high.count, frequency);
            EXPECT_NEAR(lowMagnitude * std::sqrt(1.0 + std::pow(ratio, 4 * orderIndex)), 1.0, 1e-9)
                << frequency;
            EXPECT_NEAR(highMagnitude * std::sqrt(1.0 + std::pow(ratio, -4 * orderIndex)), 1.0, 1e-9)
                << frequency;
        }
    }
    MAudioFilters::FilterCascade first;
    first.SetHighPass(100.0, SampleRate, 0);
    EXPECT_EQ(first.count, 1);
    EXPECT_EQ(first.sections[0].type, MAudioFilters::HighPass6);
    EXPECT_EQ(first.sections[0].q, 0.7071067811865476);
}

TEST(FilterCascade, DecimatorHasTheQsOfOrderEight)
{
    MAudioFilters::DecimatorCascade decimator;
    decimator.SetLowPass(5000.0f, 48000.0f);
    ASSERT_EQ(decimator.count, 4);
    const double qs[] = { 2.5629154477, 0.8999762231, 0.6013448869, 0.5097955791 };
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(decimator.sections[i].q, qs[i], 2.4e-7);   // float, below 4
    const std::vector<Filter<float>> sections(decimator.sections, decimator.sections + 4);
    EXPECT_NEAR(MeasuredGainDb(sections, 5000.0), -3.0103, 0.001);
    EXPECT_LT(MeasuredGainDb(sections, 10000.0), -48.0);
}

TEST(FilterCascade, LoudnessWeightingMatchesTheTableOfTheStandardAt48kHz)
{
    // ITU-R BS.1770-4, tables 1 and 2; the design formula follows them within 0.1 dB.
    Filter<double> first, second;
    const double tables[2][5] = { { 1.53512485958697, -2.69169618940638, 1.19839281085285, 1.69065929318241,
                                    -0.73248077421585 },
                                  { 1.0, -2.0, 1.0, 1.99004745483398, -0.99007225036621 } };
    for (Filter<double>* section : { &first, &second })
    {
        const auto& table = tables[section == &first ? 0 : 1];
        std::tie(section->b0, section->b1, section->b2, section->a1, section->a2) =
            std::tie(table[0], table[1], table[2], table[3], table[4]);
        section->sampleRate = SampleRate;
    }
    MAudioFilters::LoudnessWeighting weighting;
    weighting.Design(SampleRate);
    for (const double frequency : { 30.0, 100.0, 500.0, 1000.0, 2000.0, 4000.0, 10000.0 })
    {
        const double expected = first.Magnitude(frequency) * second.Magnitude(frequency);
        const double actual = weighting.shelf.Magnitude(frequency) * weighting.highPass.Magnitude(frequency);
        EXPECT_NEAR(20.0 * std::log10(actual / expected), 0.0, 0.1) << frequency;
    }
}

TEST(FilterTypes, StoredNamesOfBandsReadBackAndOthersReadAsPeak)
{
    for (std::int32_t type = 0; type < MAudioFilters::BandFilterTypeCount; ++type)
        EXPECT_EQ(
            MAudioFilters::FilterTypeFromStoredName(MString(MAudioFilters::PropertiesOf(type).storedName)),
            type);
    EXPECT_EQ(MAudioFilters::FilterTypeFromStoredName(MString("AllPass")), 0);
    EXPECT_EQ(MAudioFilters::FilterTypeFromStoredName(MString("")), 0);
    EXPECT_EQ(&MAudioFilters::PropertiesOf(11), &MAudioFilters::PropertiesOf(0));
    EXPECT_EQ(&MAudioFilters::PropertiesOf(-1), &MAudioFilters::PropertiesOf(0));
}
}   // namespace
