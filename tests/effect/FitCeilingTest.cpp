// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <random>

#include <gtest/gtest.h>

#include "audio/filters/FilterMagnitudes.h"
#include "effect/FilterFitter.h"
#include "tests/audio/equalizer/TestEqualizer.h"

namespace
{
// The magnitude that the lists of a mode promise, in dB.
double PromisedDb(const TestEqualizer& equalizer, EqualizerMode mode, double hertz)
{
    const bool runsTwice = mode == EqualizerMode::LinearPhase;
    const FilterList& list = runsTwice ? equalizer.LinearFilters() : equalizer.filters;
    return (runsTwice ? 40 : 20) *
           std::log10(MAudioFilters::MagnitudeOfList(list.filters.data(), list.count, hertz));
}
}   // namespace

TEST(FitCeiling, HoldsInAnyModeAtAnyRate)
{
    constexpr unsigned seed = 77;
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> steps(-1.5f, 1.5f);
    for (const auto& [rate, algorithm] : { std::pair{ 8000.0, MFAOptimized },
                                           { 44100.0, MFADefault },
                                           { 96000.0, MFAOptimized },
                                           { 384000.0, MFADefault } })
    {
        SCOPED_TRACE(::testing::Message() << rate << " Hz, algorithm " << algorithm << ", seed " << seed);
        // A wish that wanders, at its highest 0 dB.
        std::array<float, 1024> wanted;
        float level = 0;
        for (std::size_t i = 0; i < wanted.size(); ++i)
            wanted[i] = level = 0.995f * level + steps(generator);
        const float highest = *std::max_element(wanted.begin(), wanted.end());
        double before = 0;
        for (float& value : wanted)
        {
            value -= highest;
            before += value * static_cast<double>(value);
        }

        FilterFitter fitter;
        std::vector<FittedFilter> fitted;
        fitter.Fit(wanted.data(), rate, fitted, 10, algorithm == MFADefault, algorithm, 20, 0.03);
        double after = 0;
        for (std::size_t i = 0; i < static_cast<std::size_t>(FitGrid::UsableCount(rate)); ++i)
            after += wanted[i] * static_cast<double>(wanted[i]);
        EXPECT_LT(after, 0.04 * before) << "and yet it fits";

        for (const EqualizerMode mode :
             { EqualizerMode::Normal, EqualizerMode::LinearPhase, EqualizerMode::LinearPhaseFFT })
            for (const double playedRate : { rate, 44100.0, 48000.0, 96000.0 })
            {
                TestEqualizer equalizer(mode, playedRate);
                for (std::size_t band = 0; band < fitted.size(); ++band)
                    equalizer
                        .SetBand(static_cast<std::int32_t>(band), fitted[band].type, fitted[band].frequency,
                                 fitted[band].gain, fitted[band].q)
                        .RoundToStored();
                equalizer.Update();
                for (double hertz = 1; hertz < 0.499 * playedRate; hertz *= 1.013)
                    ASSERT_LE(PromisedDb(equalizer, mode, hertz), 0.05)
                        << hertz << " Hz in "
                        << "mode " << static_cast<int>(mode) << " played at " << playedRate;
            }
    }
}
