// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/Filter.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/filters/Complex.h"
#include "audio/filters/FilterCascade.h"
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

TEST(Filter, FloatSectionsAreTheDoubleOnesRounded)
{
    for (const std::int32_t type : { 0, 1, 2, 3, 4, 7, 8, 9 })
    {
        SCOPED_TRACE(type);
        Filter<float> rounded;
        rounded.Set(type, 3.0f, 4000.0f, 48000.0f, 1.5f);
        const Filter<double> exact = Designed(type, 3.0, 4000.0, 1.5);
        EXPECT_EQ(rounded.generation, 1);
        for (const auto& [single, full] : { std::pair{ rounded.b0, exact.b0 },
                                            { rounded.b1, exact.b1 },
                                            { rounded.b2, exact.b2 },
                                            { rounded.a1, exact.a1 },
                                            { rounded.a2, exact.a2 } })
            EXPECT_NEAR(single, full, 1.2e-7) << "coefficients below 2";
    }
}

TEST(Filter, EveryDesignRaisesTheGenerationOnceAndNoCoefficientIsAnExactZero)
{
    for (std::int32_t type = 0; type < MAudioFilters::FilterTypeCount; ++type)
    {
        SCOPED_TRACE(type);
        Filter<double> section = Designed(type, 0.0, 1000.0, 1.0);
        EXPECT_EQ(section.generation, 1);
        section.Set(type, 0.0, 1000.0, SampleRate, 1.0);
        EXPECT_EQ(section.generation, 2);
    }
    const Filter<double> bandPass = Designed(MAudioFilters::BandPass, 0.0, 1000.0, 1.0);
    EXPECT_EQ(bandPass.b1, 1.0000000036274937e-15);
    EXPECT_EQ(bandPass.b1, static_cast<double>(1e-15f));
    const Filter<double> allPass = Designed(MAudioFilters::AllPass6, 0.0, 1000.0, 1.0);
    EXPECT_EQ(allPass.b0, allPass.a1);
    EXPECT_EQ(allPass.b1, -0.999999999999999);
    EXPECT_EQ(allPass.b2, 0.0);
}

TEST(Filter, FirstOrderDesignsLeaveTheSecondOrderFieldsAlone)
{
    for (const std::int32_t type : { 5, 6, 10 })
    {
        Filter<double> section = Designed(MAudioFilters::Peak, 7.0, 3000.0, 2.0);
        const double cosW = section.cosW;
        const double alpha = section.alpha;
        section.Set(type, 1.0, 500.0, SampleRate, 1.0);
        EXPECT_EQ(section.cosW, cosW);
        EXPECT_EQ(section.alpha, alpha);
        EXPECT_EQ(section.gain, 7.0);
        EXPECT_EQ(section.frequency, 500.0);
        EXPECT_EQ(section.generation, 2);
    }
}

template <typename T>
void ExpectRefusal(Filter<T>& section, bool bySet)
{
    const T before = section.b0;
    const std::int32_t generation = section.generation;
    try
    {
        if (bySet)
            section.Set(section.type, T(0), T(100), T(48000), T(1));
        else
            section.Update(1.0);
        ADD_FAILURE() << "type " << section.type << " was accepted";
    }
    catch (const MException& refusal)
    {
        EXPECT_EQ(refusal.Message.ToUTF8(), "Invalid filter type.");
        EXPECT_EQ(refusal.Code, 2);
    }
    EXPECT_EQ(section.generation, generation + 1);
    EXPECT_EQ(section.b0, before);
}

TEST(Filter, RefusesWhatItHasNoFormulaFor)
{
    for (const std::int32_t type : { 5, 6, 10, 11, -1 })
    {
        Filter<double> section = Designed(MAudioFilters::Peak, 7.0, 3000.0, 2.0);
        section.type = type;
        ExpectRefusal(section, false);
        Filter<float> single;
        single.type = type;
        ExpectRefusal(single, true);
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
    try
    {
        static_cast<void>(Complex{ 1, 1 } / Complex{ 0, 0 });
        FAIL();
    }
    catch (const MException& refusal)
    {
        EXPECT_EQ(refusal.Message.ToUTF8(), "Complex division by zero.");
    }
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
            double lowMagnitude = 1.0;
            double highMagnitude = 1.0;
            for (std::int32_t i = 0; i < low.count; ++i)
            {
                lowMagnitude *= low.sections[i].Magnitude(frequency);
                highMagnitude *= high.sections[i].Magnitude(frequency);
            }
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
    Filter<double> first;
    first.b0 = 1.53512485958697;
    first.b1 = -2.69169618940638;
    first.b2 = 1.19839281085285;
    first.a1 = 1.69065929318241;
    first.a2 = -0.73248077421585;
    Filter<double> second;
    second.b0 = 1.0;
    second.b1 = -2.0;
    second.b2 = 1.0;
    second.a1 = 1.99004745483398;
    second.a2 = -0.99007225036621;
    first.sampleRate = second.sampleRate = SampleRate;
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
