// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/FilterFitter.h"

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "audio/filters/Filter.h"
#include "effect/FilterSearch.h"
#include "foundation/text/MException.h"
#include "tests/effect/PlainFit.h"

namespace
{
using Curve = std::array<float, 1024>;

constexpr unsigned Seed = 20240517;

struct NamedCurve
{
    std::string name;
    Curve values;
};

Curve Smooth(std::mt19937& random, double peakDb)
{
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    Curve curve{};
    for (int wave = 1; wave <= 9; ++wave)
    {
        const double amplitude = peakDb * uniform(random) / std::sqrt(wave);
        const double phase = std::numbers::pi * uniform(random);
        for (std::size_t i = 0; i < 1024; ++i)
            curve[i] += static_cast<float>(
                amplitude * std::sin(std::numbers::pi * wave * static_cast<double>(i) / 1024.0 + phase));
    }
    return curve;
}

std::vector<NamedCurve> Curves(std::mt19937& random)
{
    std::vector<NamedCurve> curves;
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    const auto add = [&](const char* name, auto&& value)
    {
        NamedCurve& curve = curves.emplace_back(NamedCurve{ name, {} });
        for (int i = 0; i < 1024; ++i)
            curve.values[static_cast<std::size_t>(i)] = static_cast<float>(value(i));
    };
    add("rough", [&](int) { return 15.0f * uniform(random); });
    curves.push_back({ "smooth", Smooth(random, 6.0) });
    curves.push_back({ "far beyond 24 dB", Smooth(random, 60.0) });
    add("steps", [&](int i) { return i / 171 % 2 == 0 ? -7.0 : 11.0; });
    add("spikes", [&](int i) { return i % 211 == 100 ? 30.0 : 0.0; });
    add("one spike", [&](int i) { return i == 700 ? -18.0 : 0.0; });
    add("tilt", [&](int i) { return 0.02 * i - 5.0; });
    add("flat", [&](int) { return -6.0; });
    add("silence above 8 kHz", [&](int i) { return i > 880 ? -200.0 : 0.5 * std::sin(0.03 * i); });
    add("tiny", [&](int) { return 1e-20f * uniform(random); });
    add("huge", [&](int) { return 1e15f * uniform(random); });
    return curves;
}

// 20 log10 |H| of a filter as the equalizer runs it, by complex arithmetic of its own.
double ResponseDb(const FittedFilter& filter, double sampleRate, double frequencyHz)
{
    MAudioFilters::Filter<double> section;
    section.Set(filter.type, filter.gain, filter.frequency, sampleRate, filter.q);
    const auto z1 = std::polar(1.0, -2.0 * std::numbers::pi * frequencyHz / sampleRate);
    const auto h = (section.b0 + section.b1 * z1 + section.b2 * z1 * z1) /
                   (1.0 - section.a1 * z1 - section.a2 * z1 * z1);
    const bool hasGain = filter.type <= MAudioFilters::HighShelf;
    return (hasGain ? 20.0 : 40.0) * std::log10(std::abs(h));
}

const FilterCandidate& Candidate(const FilterDictionary& dictionary, std::int32_t type, double q)
{
    for (const FilterCandidate& candidate : dictionary.Candidates())
        if (candidate.type == type && std::abs(candidate.q - q) < 0.04 * q)
            return candidate;
    throw std::logic_error("no such candidate");
}

TEST(FilterDictionary, CapsTheCentreOfWideShapesBelow50kHz)
{
    struct Row
    {
        double sampleRate;
        std::int32_t type;
        double q;
        int maxShift;
    };
    // 1000 Hz at Q 0.1 and 8000 Hz more for each unit of Q, 341.33 points a decade above 632.46 Hz.
    const Row rows[] = { { 44100.0, 0, 0.1, 67 },  { 44100.0, 3, 0.1, 67 },   { 44100.0, 5, 0.7071, 329 },
                         { 48000.0, 0, 9.7, 512 }, { 49999.0, 0, 2.55, 512 }, { 50000.0, 0, 0.1, 512 },
                         { 96000.0, 1, 0.1, 512 } };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.q);
        EXPECT_EQ(Candidate(*FilterDictionary::Shared(row.sampleRate), row.type, row.q).maxShift,
                  row.maxShift);
    }
}

TEST(FilterDictionary, ShapesAreTheResponsesOfTheFiltersThatTheyStandFor)
{
    FilterFitter fitter;
    fitter.BuildGrid(20.0, 20000.0, 1024);
    for (const double sampleRate : { 44100.0, 96000.0 })
    {
        const auto dictionary = FilterDictionary::Shared(sampleRate);
        for (const FilterCandidate& candidate : dictionary->Candidates())
        {
            SCOPED_TRACE(candidate.type * 1000 + candidate.q);
            const FittedFilter filter{ std::pow(10.0, 2.801029996), -24.0, candidate.q, candidate.type };
            for (std::size_t i = 0; i < 1024; i += 13)
            {
                const double expected = ResponseDb(filter, sampleRate, fitter.Grid()[i]);
                // Float rounding of up to 500 dB, and the floor of a notch, where zero meets rounding noise.
                ASSERT_NEAR(candidate.shape[i], expected, expected < -250.0 ? 5.0 : 1e-4) << "point " << i;
            }
        }
    }
}

TEST(FilterDictionary, IsSharedForOneRateAndGoesWithItsLastUser)
{
    std::shared_ptr<const FilterDictionary> seen[4];
    std::vector<std::thread> threads;
    for (auto& slot : seen)
        threads.emplace_back([&slot] { slot = FilterDictionary::Shared(88200.0); });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& slot : seen)
        EXPECT_EQ(slot, seen[0]);
    EXPECT_NE(FilterDictionary::Shared(88201.0), seen[0]);

    const std::weak_ptr<const FilterDictionary> watched = seen[0];
    for (auto& slot : seen)
        slot.reset();
    EXPECT_TRUE(watched.expired());
}

struct SearchCase
{
    double sampleRate;
    bool allowPassNotch;
};

class FilterSearchChoices : public testing::TestWithParam<SearchCase>
{
};

// Two rounds on the curves of the first kinds, so that residuals of real filters take part too.
TEST_P(FilterSearchChoices, ExhaustiveTakesWhatThePlainLoopTakes)
{
    const auto [sampleRate, allowPassNotch] = GetParam();
    std::mt19937 random(Seed + static_cast<unsigned>(sampleRate));
    const auto dictionary = FilterDictionary::Shared(sampleRate);
    FilterFitter fitter;
    fitter.Prepare(sampleRate);
    FilterSearch search(*dictionary);
    int curveIndex = 0;
    for (const NamedCurve& named : Curves(random))
    {
        Curve wanted = named.values;
        const int roundCount = curveIndex++ < 5 ? 2 : 1;
        for (int round = 0; round < roundCount; ++round)
        {
            SCOPED_TRACE(named.name + ", round " + std::to_string(round) + ", seed " + std::to_string(Seed));
            const FitSelection selection{ allowPassNotch, round == 0 ? 20.0 : 5.0 };
            const FitChoice expected = PlainFit::Exhaustive(*dictionary, wanted.data(), selection);
            const FitChoice actual = search.Exhaustive(wanted.data(), selection);
            ASSERT_EQ(actual.candidate, expected.candidate);
            ASSERT_EQ(actual.position, expected.position);
            ASSERT_EQ(actual.gain, expected.gain);
            ASSERT_EQ(actual.error, expected.error);
            const auto point = static_cast<std::size_t>(std::min(actual.position, 1023));
            const FittedFilter filter{ fitter.Grid()[point], -24.0 * actual.gain, actual.candidate->q,
                                       actual.candidate->type };
            for (std::size_t i = 0; i < 1024; ++i)
                wanted[i] -= static_cast<float>(ResponseDb(filter, sampleRate, fitter.Grid()[i]));
        }
    }
}

TEST_P(FilterSearchChoices, ConvolvingTakesWhatADirectConvolutionNames)
{
    const auto [sampleRate, allowPassNotch] = GetParam();
    std::mt19937 random(Seed + static_cast<unsigned>(sampleRate));
    const auto dictionary = FilterDictionary::Shared(sampleRate);
    FilterSearch search(*dictionary);
    const FitSelection selection{ allowPassNotch, 20.0 };
    for (const char* name : { "rough", "smooth", "steps" })
        for (const NamedCurve& named : Curves(random))
        {
            if (named.name != name)
                continue;
            SCOPED_TRACE(named.name + ", seed " + std::to_string(Seed));
            const FitChoice expected = PlainFit::Convolving(*dictionary, named.values.data(), selection);
            const FitChoice actual = search.Convolving(named.values.data(), selection);
            // A transform in single precision may name the neighbour of a flat extreme, at hardly any cost.
            ASSERT_NE(actual.candidate, nullptr);
            EXPECT_NEAR(actual.error, expected.error, 1e-3 * expected.error);
            EXPECT_EQ(actual.candidate->type, expected.candidate->type);
            EXPECT_NEAR(actual.position, expected.position, 1);
        }
}

INSTANTIATE_TEST_SUITE_P(Rates, FilterSearchChoices,
                         testing::Values(SearchCase{ 44100.0, true }, SearchCase{ 48000.0, false },
                                         SearchCase{ 16000.0, true }, SearchCase{ 192000.0, false }),
                         [](const auto& row)
                         {
                             return std::to_string(static_cast<int>(row.param.sampleRate)) +
                                    (row.param.allowPassNotch ? "WithPassAndNotch" : "WithGainOnly");
                         });

TEST(FilterSearch, CorrelationStaysFarInsideItsMargin)
{
    std::mt19937 random(Seed);
    const auto dictionary = FilterDictionary::Shared(96000.0);
    FilterSearch search(*dictionary);
    std::vector<double> estimates(1024);
    double worst = 0;
    for (const NamedCurve& named : Curves(random))
    {
        const double wantedNorm = std::sqrt(PlainFit::Dot(named.values.data(), named.values.data(), 1024));
        for (std::size_t index = 0; index < dictionary->Candidates().size(); index += 7)
        {
            const FilterCandidate& candidate = dictionary->Candidates()[index];
            search.CorrelateAll(named.values.data(), candidate, estimates.data());
            for (int shift = -candidate.maxShift; shift < 512; shift += 3)
            {
                const double exact = PlainFit::DotAt(named.values.data(), candidate, shift);
                const double estimate = estimates[static_cast<std::size_t>(shift + candidate.maxShift)];
                worst = std::max(worst, std::abs(estimate - exact) / (wantedNorm * candidate.norm));
            }
        }
    }
    // A choice can only be missed by an error above the margin; a tenth of it leaves room for other
    // processors.
    EXPECT_LT(worst, 0.1 * FilterSearch::CorrelationMargin) << "seed " << Seed;
}

TEST(FilterFitter, LeavesTheResidualOfAllBandsButTheLast)
{
    std::mt19937 random(Seed);
    for (const MFAAlgorithm algorithm : { MFADefault, MFAOptimized })
        for (const bool allowPassNotch : { false, true })
        {
            SCOPED_TRACE(algorithm);
            const Curve original = Smooth(random, 10.0);
            Curve wanted = original;
            FilterFitter fitter;
            std::vector<FittedFilter> results(1);   // earlier content stays in front
            fitter.Fit(wanted.data(), 44100.0, results, 5, allowPassNotch, algorithm, 20.0);
            ASSERT_EQ(results.size(), 6u);
            double energyBefore = 0, energyAfter = 0;
            const auto judged = static_cast<std::size_t>(FitGrid::UsableCount(44100.0));
            for (std::size_t i = 0; i < judged; ++i)
            {
                double expected = original[i];
                for (std::size_t band = 1; band <= 4; ++band)
                    expected -= ResponseDb(results[band], 44100.0, fitter.Grid()[i]);
                ASSERT_NEAR(wanted[i], expected, 1e-4) << "point " << i;   // four subtractions in float
                energyBefore += static_cast<double>(original[i]) * original[i];
                energyAfter += static_cast<double>(wanted[i]) * wanted[i];
            }
            EXPECT_LT(energyAfter, 0.5 * energyBefore);
            for (std::size_t band = 1; band <= 5; ++band)
                EXPECT_TRUE(allowPassNotch || results[band].type <= MAudioFilters::HighShelf);
        }
}

// What lies above a low rate's reach has no say in what is done below.
TEST(FilterFitter, RemovesAsMuchAtLowRatesAsAtUsualOnesBelowTheirReach)
{
    std::mt19937 random(Seed);
    for (const MFAAlgorithm algorithm : { MFADefault, MFAOptimized })
        for (const double lowRate : { 8000.0, 11025.0, 16000.0, 22050.0, 32000.0 })
        {
            double before = 0, leftAtLowRate = 0, leftAtUsualRate = 0;
            for (int turn = 0; turn < 12; ++turn)
            {
                const Curve curve = Smooth(random, 8.0);
                for (const double rate : { lowRate, 48000.0 })
                {
                    Curve wanted = curve;
                    if (rate == lowRate)
                        std::fill(wanted.begin() + FitGrid::UsableCount(rate), wanted.end(), 1e9f);
                    FilterFitter fitter;
                    std::vector<FittedFilter> results;
                    fitter.Fit(wanted.data(), rate, results, 6, turn % 2 == 0, algorithm, 20.0);
                    for (const FittedFilter& filter : results)
                        ASSERT_LE(filter.frequency, 0.45 * rate) << "seed " << Seed;
                    // 0.4375 of the low rate: 7 kHz at 16 kHz.
                    for (std::size_t i = 0; i < 1024 && fitter.Grid()[i] < 0.4375 * lowRate; ++i)
                    {
                        double left = curve[i];
                        before += rate == lowRate ? left * left : 0;
                        for (const FittedFilter& filter : results)
                            left -= ResponseDb(filter, rate, fitter.Grid()[i]);
                        (rate == lowRate ? leftAtLowRate : leftAtUsualRate) += left * left;
                    }
                }
            }
            // Real filters differ from their shapes in another way at each rate, and each fit is greedy.
            EXPECT_GT(before - leftAtLowRate, 0.97 * (before - leftAtUsualRate))
                << lowRate << " Hz, algorithm " << algorithm << ", of " << before;
        }
}

TEST(FilterFitter, TakesTheLogarithmOfANotchOnAGridPoint)
{
    FilterFitter fitter;
    fitter.Prepare(48000.0);
    for (const double q : { 0.5, 2.0 })
    {
        Curve wanted;
        for (std::size_t i = 0; i < 1024; ++i)
            wanted[i] = static_cast<float>(std::max(
                ResponseDb({ fitter.Grid()[700], 0, q, MAudioFilters::Notch }, 48000.0, fitter.Grid()[i]),
                -60.0));
        std::vector<FittedFilter> results;
        fitter.Fit(wanted.data(), 48000.0, results, 10, true, MFADefault, 20.0);
        EXPECT_EQ(results[0].type, MAudioFilters::Notch);
        for (const float left : wanted)
            EXPECT_TRUE(std::isfinite(left));
    }
}

TEST(FilterFitter, MaxQLimitsTheShapesAndIsAtLeastATenth)
{
    std::mt19937 random(Seed);
    for (const double maxQ : { 5.0, 0.5, 0.1, 0.0, -3.0 })
    {
        SCOPED_TRACE(maxQ);
        Curve wanted = Curves(random)[0].values;
        FilterFitter fitter;
        std::vector<FittedFilter> results;
        fitter.Fit(wanted.data(), 48000.0, results, 4, true, MFADefault, maxQ);
        ASSERT_EQ(results.size(), 4u);
        for (const FittedFilter& filter : results)
            EXPECT_LE(filter.q, std::max(maxQ, 0.1));
    }
}

TEST(FilterFitter, RefusesACurveThatIsNotANumber)
{
    for (const float bad : { std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                             -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::max() })
        for (const MFAAlgorithm algorithm : { MFADefault, MFAOptimized })
        {
            SCOPED_TRACE(bad);
            Curve wanted{};
            wanted[333] = bad;
            FilterFitter fitter;
            std::vector<FittedFilter> results(2);
            try
            {
                fitter.Fit(wanted.data(), 48000.0, results, 4, true, algorithm, 20.0);
                ADD_FAILURE() << "accepted";
            }
            catch (const MException& exception)
            {
                EXPECT_EQ(exception.Message.ToUTF8(), "Invalid source data. Please perform analyzation.");
            }
            EXPECT_EQ(results.size(), 2u);
        }
}
}   // namespace
