// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "effect/FilterDictionary.h"
#include "effect/ResponseCeiling.h"

struct FitChoice;

/// How the fitter searches.
enum MFAAlgorithm : std::int32_t
{
    MFADefault = 0,   ///< every shift of every shape
    MFAOptimized = 1   ///< the one shift of every shape that a convolution names
};

/// One band that a fit found.
struct FittedFilter
{
    double frequency = 0;   ///< Hz
    double gain = 0;   ///< dB
    double q = 0;
    std::int32_t type = 0;   ///< FilterType
};

/// Turns a wanted response into a short list of filters: a greedy matching pursuit in decibels over the
/// shapes of FilterDictionary. Each round takes the shape, shift and gain with the least squared error
/// against what is still wanted, makes it a real filter, and subtracts that filter's real response.
///
/// Used on the GUI thread only; nothing is kept of a fit but the dictionary.
class FilterFitter
{
public:
    /// Builds, or finds in the process, what depends on the sample rate. Called by Fit.
    void Prepare(double newSampleRate);

    /// Appends `maxBands` bands to `results`. What lies above FitGrid::HighestShare of the rate has no say,
    /// and no band is placed there.
    /// @param wanted          FitGrid::Count gains in dB; consumed: ends as the residual without the last
    /// band
    /// @param allowPassNotch  also types without gain, which are used at their full shape
    /// @param maxQ            shapes of a higher Q stay out; raised to 0.1
    /// @param ceilingDb       the sum of the bands stays below it at every frequency; then there may be fewer
    ///                        bands, because none is left that helps
    /// Throws MException "Invalid source data. Please perform analyzation." when no shape has a finite
    /// error; bands of earlier rounds then stay in `results`.
    void Fit(float* wanted, double newSampleRate, std::vector<FittedFilter>& results, std::int32_t maxBands,
             bool allowPassNotch, MFAAlgorithm algorithm, double maxQ,
             double ceilingDb = ResponseCeiling::None);

private:
    FittedFilter FilterOf(const FitChoice& choice) const;
    void Subtract(const FittedFilter& filter, float* wanted) const;
    /// Of the proposals, as much as the ceiling leaves of each, the one that leaves least to be wanted.
    /// Nothing where none helps.
    std::optional<FittedFilter> BestUnder(const ResponseCeiling& ceiling, const float* wanted,
                                          const std::array<FittedFilter, 2>& proposals) const;

    std::shared_ptr<const FilterDictionary> dictionary;
};
