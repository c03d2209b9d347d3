// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/FilterFitter.h"

#include <algorithm>
#include <cmath>

#include "audio/filters/FilterTypes.h"
#include "effect/FilterSearch.h"
#include "foundation/text/MException.h"
#include "foundation/text/Translate.h"

namespace
{
constexpr double LowestMaxQ = 0.1;
// Shapes of the types with gain stand at -24 dB, so a multiplier of 1 is that gain.
constexpr double GainOfShapeDb = -24.0;
// -200 dB, where analyses end, too: a notch that stands on a grid point has no finite level there.
constexpr double LowestPower = 1e-20;
}   // namespace

void FilterFitter::Prepare(double newSampleRate)
{
    if (dictionary && std::abs(dictionary->SampleRate() - newSampleRate) < 1e-50)
        return;
    dictionary.reset();   // first, so that two rates don't stand in memory at once
    dictionary = FilterDictionary::Shared(newSampleRate);
}

FittedFilter FilterFitter::FilterOf(const FitChoice& choice) const
{
    // The first shift of the exhaustive search stands one point above the grid.
    const auto point = static_cast<std::size_t>(std::clamp(choice.position, 0, FitGrid::Count - 1));
    return { .frequency = FitGrid::Hertz()[point],
             .gain = choice.candidate->hasGain ? GainOfShapeDb * choice.gain : 0.0,
             .q = choice.candidate->q,
             .type = choice.candidate->type };
}

void FilterFitter::Subtract(const FittedFilter& filter, float* wanted) const
{
    // The real response at the real frequency goes off the curve, so that later bands correct what a
    // shifted shape misjudged.
    std::array<double, FitGrid::Count> power;
    dictionary->Response().Evaluate(filter.type, filter.gain, filter.frequency, filter.q, power.data());
    const bool isTwoSections = !MAudioFilters::PropertiesOf(filter.type).hasGain;   // in a row
    for (std::size_t i = 0; i < static_cast<std::size_t>(dictionary->JudgedCount()); ++i)
    {
        const auto responseDb = static_cast<float>(10.0 * std::log10(std::max(power[i], LowestPower)));
        wanted[i] -= responseDb;
        if (isTwoSections)
            wanted[i] -= responseDb;
    }
}

std::optional<FittedFilter> FilterFitter::BestUnder(const ResponseCeiling& ceiling, const float* wanted,
                                                    const std::array<FittedFilter, 2>& proposals) const
{
    // Below this share of what is wanted a band isn't worth its place.
    constexpr double leastGain = 1e-4;
    const std::int32_t judged = dictionary->JudgedCount();
    double least = (1 - leastGain) * FitDot(wanted, wanted, judged);
    std::optional<FittedFilter> best;
    for (const FittedFilter& proposal : proposals)
    {
        const FittedFilter fitting = ceiling.Fitting(proposal);
        if (!ceiling.Admits(fitting))
            continue;
        std::array<float, FitGrid::Count> rest;
        std::copy_n(wanted, rest.size(), rest.begin());
        Subtract(fitting, rest.data());
        const double error = FitDot(rest.data(), rest.data(), judged);
        if (error < least)
        {
            least = error;
            best = fitting;
        }
    }
    return best;
}

void FilterFitter::Fit(float* wanted, double newSampleRate, std::vector<FittedFilter>& results,
                       std::int32_t maxBands, bool allowPassNotch, MFAAlgorithm algorithm, double maxQ,
                       double ceilingDb)
{
    Prepare(newSampleRate);
    FilterSearch search(*dictionary);
    ResponseCeiling ceiling(newSampleRate, ceilingDb);
    const auto find = [&](bool cutsOnly)
    {
        const FitSelection selection{ allowPassNotch, std::max(maxQ, LowestMaxQ), cutsOnly };
        const FitChoice choice = algorithm == MFAOptimized ? search.Convolving(wanted, selection)
                                                           : search.Exhaustive(wanted, selection);
        if (choice.candidate == nullptr)
            throw MException(Translate("Invalid source data. Please perform analyzation."));
        return FilterOf(choice);
    };
    for (std::int32_t band = 0; band < maxBands; ++band)
    {
        FittedFilter filter = find(false);
        if (ceilingDb < ResponseCeiling::None)
        {
            // As much of it as fits, or the best cut, whichever leaves less to be wanted.
            if (!ceiling.Admits(filter))
            {
                const std::optional<FittedFilter> other = BestUnder(ceiling, wanted, { filter, find(true) });
                if (!other)
                    return;
                filter = *other;
            }
            ceiling.Add(filter);
        }
        results.push_back(filter);
        if (band + 1 < maxBands)
            Subtract(filter, wanted);
    }
}
