// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "audio/filters/FilterMagnitudes.h"

struct FittedFilter;

/// Keeps the sum of a fit's bands below a ceiling at every frequency, those beyond the fitter's grid
/// included: what the sum is without a band, and how much of the next one fits under.
class ResponseCeiling
{
public:
    /// No ceiling: whatever comes fits.
    static constexpr double None = 1e30;

    /// The ceiling holds from 0 Hz to half the sample rate, at `sampleRate` and at the usual rates, which a
    /// project with these bands may be opened at.
    ResponseCeiling(double sampleRate, double ceilingDb);

    bool Admits(const FittedFilter& filter) const;
    /// The filter with as much of its gain as the ceiling leaves: none where it is a type without gain that
    /// goes above.
    FittedFilter Fitting(FittedFilter filter) const;
    /// Takes the filter into the sum.
    void Add(const FittedFilter& filter);

private:
    std::vector<double> ResponseDb(const FittedFilter& filter) const;

    struct Rate
    {
        double sampleRate;
        std::vector<MAudioFilters::InverseZPowers> points;
    };

    double ceilingDb;
    std::vector<Rate> rates;
    std::vector<double> sumDb;   // at each rate's points, without linear phase and then with it
};
