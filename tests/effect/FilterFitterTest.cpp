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

// The search as it is defined, with no step left out: the oracle of FilterSearch.

// Sixteen partial sums, element i in sum i mod 16.
double Dot(const float* a, const float* b, int n)
{
    double parts[16] = {};
    for (int i = 0; i < n; ++i)
        parts[i % 16] += static_cast<double>(a[i]) * static_cast<double>(b[i]);
    double sum = 0;
    for (const double part : parts)
        sum += part;
    return sum;
}

double DotAt(const float* wanted, const FilterCandidate& candidate, int shift)
{
    const float* shape = candidate.shape.data();
    double head = 0;
    for (int i = 0; i < -shift; ++i)
        head += wanted[i];
    double tail = 0;
    for (int i = 1023; i >= 1024 - shift; --i)
        tail += wanted[i];
    const double overlap =
        Dot(wanted + std::max(-shift, 0), shape + std::max(shift, 0), 1024 - std::abs(shift));
    if (shift < 0)
        return shape[0] * head + overlap;
    return shape[1023] * tail + overlap;
}

// The curve with what is not judged as zeros.
std::vector<float> Judged(const FilterDictionary& dictionary, const float* curve)
{
    std::vector<float> judged(1024);
    std::copy_n(curve, dictionary.JudgedCount(), judged.begin());
    return judged;
}

bool Admits(const FitSelection& selection, const FilterCandidate& candidate)
{
    if (candidate.q > selection.maxQ || (!selection.allowPassNotch && !candidate.hasGain))
        return false;
    const float highest = *std::max_element(candidate.shape.begin(), candidate.shape.end());
    return !selection.cutsOnly || highest < FitSelection::HighestOfCut;
}

double LowestGain(const FitSelection& selection, const FilterCandidate& candidate)
{
    return !candidate.hasGain ? 1.0 : (selection.cutsOnly ? 0.0 : -1.0);
}

/// The best of the choice that was made, all near it and every 13th elsewhere. `onDot` is told of each sum.
template <typename OnDot>
FitChoice Exhaustive(const FilterDictionary& dictionary, const float* curve, const FitSelection& selection,
                     const FitChoice& made, OnDot onDot)
{
    FitChoice best;
    const std::vector<float> judged = Judged(dictionary, curve);
    const float* wanted = judged.data();
    const int count = dictionary.JudgedCount();
    const double wantedEnergy = Dot(wanted, wanted, 1024);
    int visited = 0;
    for (const FilterCandidate& candidate : dictionary.Candidates())
    {
        if (!Admits(selection, candidate))
            continue;
        const auto square = [&](int i)
        {
            const double value = candidate.shape[static_cast<std::size_t>(i)];
            return value * value;
        };
        double energy = candidate.maxShift * square(0);
        for (int i = 0; i < count - candidate.maxShift; ++i)
            energy += square(i);
        for (int shift = -candidate.maxShift; shift < 512; ++shift)
        {
            if (std::abs(shift - (512 - made.position)) < 4 || ++visited % 13 == 0)
            {
                const double dot = DotAt(wanted, candidate, shift);
                onDot(candidate, shift, dot);
                const double gain = std::max(std::min(dot / energy, 1.0), LowestGain(selection, candidate));
                const double error = gain * gain * energy - 2.0 * gain * dot + wantedEnergy;
                if (error < best.error)
                    best = { &candidate, error, gain, 512 - shift };
            }
            energy += square(std::min(shift + count, 1023));
            energy -= square(std::max(shift, 0));
        }
    }
    return best;
}

TEST(FilterDictionary, CapsTheCentreOfWideShapesBelow50kHz)
{
    // 1000 Hz at Q 0.1 and 8000 Hz more for each unit of Q, 341.33 points a decade above 632.46 Hz.
    // Lower rates end before the grid does.
    for (const double sampleRate : { 44100.0, 49999.0, 50000.0 })
    {
        const std::int32_t usable = FitGrid::UsableCount(sampleRate);
        const double highest = usable == 1024 ? 512 : usable - 513;
        const auto dictionary = FilterDictionary::Shared(sampleRate);
        for (const FilterCandidate& candidate : dictionary->Candidates())
        {
            const double topHz = 1000 + 8000 * (candidate.q - 0.1);
            const double cap = std::clamp(341.333 * std::log10(topHz / 632.456), 0.0, highest);
            ASSERT_NEAR(candidate.maxShift, sampleRate < 50000 ? cap : 512, 1.01) << candidate.q;
        }
    }
}

TEST(FilterDictionary, ShapesAreTheResponsesOfTheFiltersThatTheyStandFor)
{
    for (const double sampleRate : { 44100.0, 96000.0 })
    {
        const auto dictionary = FilterDictionary::Shared(sampleRate);
        for (const FilterCandidate& candidate : dictionary->Candidates())
        {
            SCOPED_TRACE(candidate.type * 1000 + candidate.q);
            const FittedFilter filter{ std::pow(10.0, 2.801029996), -24.0, candidate.q, candidate.type };
            for (std::size_t i = 0; i < 1024; i += 13)
            {
                const double expected = ResponseDb(filter, sampleRate, FitGrid::Hertz()[i]);
                // Float rounding of up to 500 dB, and the floor of a notch, where zero meets rounding noise.
                ASSERT_NEAR(candidate.shape[i], expected, expected < -250.0 ? 5.0 : 1e-4) << "point " << i;
            }
        }
    }
}

TEST(FilterDictionary, IsSharedForOneRateAndGoesWithItsLastUser)
{
    std::shared_ptr<const FilterDictionary> seen[2];
    std::thread other([&seen] { seen[0] = FilterDictionary::Shared(88200.0); });
    seen[1] = FilterDictionary::Shared(88200.0);
    other.join();
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_NE(FilterDictionary::Shared(88201.0), seen[0]);
    const std::weak_ptr<const FilterDictionary> watched = seen[0];
    seen[0] = seen[1] = nullptr;
    EXPECT_TRUE(watched.expired());
}

TEST(FilterSearch, ExhaustiveTakesWhatThePlainLoopTakesAndEstimatesFarInsideItsMargin)
{
    struct Case
    {
        double sampleRate;
        FitSelection selection;
    };
    const Case cases[] = { { 44100.0, { .maxQ = 5.0 } },
                           { 48000.0, { .allowPassNotch = false } },
                           { 16000.0, {} },
                           { 192000.0, { .cutsOnly = true } } };
    std::mt19937 random(Seed);
    for (const auto& [sampleRate, selection] : cases)
    {
        const auto dictionary = FilterDictionary::Shared(sampleRate);
        FilterSearch search(*dictionary), estimating(*dictionary);
        std::vector<double> estimates(1024);
        for (NamedCurve& named : Curves(random))
        {
            SCOPED_TRACE(::testing::Message() << named.name << ", " << sampleRate << " Hz, seed " << Seed);
            Curve& wanted = named.values;
            const std::vector<float> judged = Judged(*dictionary, wanted.data());
            const double norm = std::sqrt(Dot(judged.data(), judged.data(), 1024));
            const FilterCandidate* estimated = nullptr;
            double worst = 0;
            const auto compare = [&](const FilterCandidate& candidate, int shift, double exact)
            {
                if (&candidate != estimated)
                    estimating.CorrelateAll(wanted.data(), candidate, estimates.data());
                estimated = &candidate;
                const double estimate = estimates[static_cast<std::size_t>(shift + candidate.maxShift)];
                worst = std::max(worst, std::abs(estimate - exact) / (norm * candidate.norm));
            };
            const FitChoice actual = search.Exhaustive(wanted.data(), selection);
            const FitChoice expected = Exhaustive(*dictionary, wanted.data(), selection, actual, compare);
            ASSERT_EQ(actual.candidate, expected.candidate);
            ASSERT_EQ(actual.position, expected.position);
            ASSERT_EQ(actual.gain, expected.gain);
            ASSERT_EQ(actual.error, expected.error);
            // The other search looks at one shift of each shape.
            const FitChoice convolved = search.Convolving(wanted.data(), selection);
            EXPECT_GE(convolved.error, actual.error * (1 - 1e-9));
            EXPECT_LE(convolved.error, norm * norm * (1 + 1e-9));
            // A choice can only be missed by an error above the margin; a tenth of it leaves room for other
            // processors.
            EXPECT_LT(worst, 0.1 * FilterSearch::CorrelationMargin);
        }
    }
}

// What lies above a low rate's reach has no say in it.
TEST(FilterFitter, LeavesTheResidualOfAllBandsButTheLast)
{
    std::mt19937 random(Seed);
    Curve notch;   // a steep one on a grid point, whose level there isn't finite
    FilterFitter fitter;
    for (std::size_t i = 0; i < 1024; ++i)
        notch[i] = static_cast<float>(std::max(
            ResponseDb({ FitGrid::Hertz()[600], 0, 2.0, MAudioFilters::Notch }, 44100.0, FitGrid::Hertz()[i]),
            -60.0));
    struct Case
    {
        double rate, maxQ;
        bool isNotch, allowPassNotch;
    };
    for (const MFAAlgorithm algorithm : { MFADefault, MFAOptimized })
        for (const auto& [rate, maxQ, isNotch, allowPassNotch] :
             { Case{ 44100, 20, algorithm == MFADefault, true }, Case{ 8000, 20, false, true },
               Case{ 32000, 0.5, false, false }, Case{ 16000, -3, false, false } })
        {
            SCOPED_TRACE(::testing::Message() << "algorithm " << algorithm << ", Q " << maxQ << ", " << rate);
            const Curve original = isNotch ? notch : Smooth(random, 10.0);
            const auto judged = static_cast<std::size_t>(FitGrid::UsableCount(rate));
            Curve wanted = original;
            std::fill(wanted.begin() + static_cast<std::ptrdiff_t>(judged), wanted.end(), 1e9f);
            std::vector<FittedFilter> results(1);   // earlier content stays in front
            fitter.Fit(wanted.data(), rate, results, 5, allowPassNotch, algorithm, maxQ);
            ASSERT_EQ(results.size(), 6u);
            double energyBefore = 0, energyAfter = 0;
            for (std::size_t i = 0; i < judged; ++i)
            {
                double expected = original[i];
                for (std::size_t band = 1; band <= 4; ++band)
                    expected -= std::max(ResponseDb(results[band], rate, FitGrid::Hertz()[i]), -400.0);
                ASSERT_NEAR(wanted[i], expected, 1e-4) << "point " << i;   // four subtractions in float
                energyBefore += static_cast<double>(original[i]) * original[i];
                energyAfter += static_cast<double>(wanted[i]) * wanted[i];
            }
            EXPECT_TRUE(isNotch ? results[1].type == MAudioFilters::Notch
                                : energyAfter < (maxQ > 1 ? 0.25 : 1.0) * energyBefore)
                << energyAfter / energyBefore;
            for (std::size_t band = 1; band <= 5; ++band)
            {
                EXPECT_TRUE(allowPassNotch || results[band].type <= MAudioFilters::HighShelf);
                EXPECT_LE(results[band].q, std::max(maxQ, 0.1));
                EXPECT_LE(results[band].frequency, 0.45 * rate);
            }
        }
}

TEST(FilterFitter, RefusesACurveThatIsNotANumber)
{
    for (const float bad : { std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::infinity(),
                             std::numeric_limits<float>::max() })
        for (const MFAAlgorithm algorithm : { MFADefault, MFAOptimized })
        {
            Curve wanted{};
            wanted[333] = bad;
            std::vector<FittedFilter> results(2);
            EXPECT_THROW(FilterFitter().Fit(wanted.data(), 48000.0, results, 4, true, algorithm, 20.0),
                         MException);
            EXPECT_EQ(results.size(), 2u);
        }
}
}   // namespace
