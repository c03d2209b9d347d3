// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/FilterFitter.h"

#include <algorithm>
#include <cmath>

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

void FilterFitter::BuildGrid(double minHz, double maxHz, std::int32_t count)
{
    if (count == gridCount && std::abs(minHz - gridMinHz) < 1e-50 && std::abs(maxHz - gridMaxHz) < 1e-50)
        return;
    FitGrid::Build(minHz, maxHz, count, grid.data());
    gridCount = count;
    gridMinHz = minHz;
    gridMaxHz = maxHz;
}

void FilterFitter::Prepare(double newSampleRate)
{
    BuildGrid(FitGrid::MinHz, FitGrid::MaxHz, FitGrid::Count);
    if (dictionary && std::abs(dictionary->SampleRate() - newSampleRate) < 1e-50)
        return;
    dictionary.reset();   // first, so that two rates don't stand in memory at once
    dictionary = FilterDictionary::Shared(newSampleRate);
}

void FilterFitter::Fit(float* wanted, double newSampleRate, std::vector<FittedFilter>& results,
                       std::int32_t maxBands, bool allowPassNotch, MFAAlgorithm algorithm, double maxQ)
{
    Prepare(newSampleRate);
    const FitSelection selection{ allowPassNotch, std::max(maxQ, LowestMaxQ) };
    FilterSearch search(*dictionary);
    std::array<double, FitGrid::Count> power;
    for (std::int32_t band = 0; band < maxBands; ++band)
    {
        const FitChoice choice = algorithm == MFAOptimized ? search.Convolving(wanted, selection)
                                                           : search.Exhaustive(wanted, selection);
        if (choice.candidate == nullptr)
            throw MException(Translate("Invalid source data. Please perform analyzation."));

        // The first shift of the exhaustive search stands one point above the grid.
        const auto point = static_cast<std::size_t>(std::clamp(choice.position, 0, FitGrid::Count - 1));
        FittedFilter filter;
        filter.frequency = grid[point];
        filter.type = choice.candidate->type;
        filter.q = choice.candidate->q;
        filter.gain = choice.candidate->hasGain ? GainOfShapeDb * choice.gain : 0.0;
        results.push_back(filter);
        if (band + 1 == maxBands)
            return;

        // The real response at the real frequency goes off the curve, so that later bands correct what a
        // shifted shape misjudged.
        dictionary->Response().Evaluate(filter.type, filter.gain, filter.frequency, filter.q, power.data());
        for (std::size_t i = 0; i < static_cast<std::size_t>(dictionary->JudgedCount()); ++i)
        {
            const auto responseDb = static_cast<float>(10.0 * std::log10(std::max(power[i], LowestPower)));
            wanted[i] -= responseDb;
            if (!choice.candidate->hasGain)
                wanted[i] -= responseDb;   // runs as two sections in a row
        }
    }
}
