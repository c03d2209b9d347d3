// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

#include "audio/analyzer/Interpolator.h"
#include "control/envelope/MEnvelope.h"
#include "effect/FilterFitter.h"

/// One value for each point of the fitter's grid.
using GridCurve = std::array<float, 1024>;

/// Turns a copy of an analysis (linear amplitudes) into decibels below its own peak: smoothed where the
/// kernel is wider than one point, 0 dB at the largest value, nothing below -200 dB. Silence is -200
/// everywhere.
void PrepareAnalysis(GridCurve& analysis, Interpolator& smoothing);

/// The limits that the user sets for the wanted response.
struct WantedLimits
{
    double frequencyMinHz = 20;
    double frequencyMaxHz = 20000;
    bool neverAmplify = false;
};

/// The gain in dB that the target needs at each grid point to become the reference.
class WantedResponse
{
public:
    /// Both prepared. The wanted gain is reference less target.
    WantedResponse(const GridCurve& target, const GridCurve& reference);
    /// What a target may keep beside a mix: where the mix rises x dB above `limitDb`, at most -x dB.
    static GridCurve RoomBeside(const GridCurve& target, const GridCurve& mix, double limitDb);

    /// Below 0.01 dB everywhere: there is nothing to do.
    bool IsFlat() const;
    /// Zeroes what lies outside the frequency limits, then, where nothing may be amplified, lowers the whole
    /// curve until its highest point is at 0 dB.
    void Limit(const std::array<float, 1024>& gridHz, const WantedLimits& limits);
    /// Maps each wish by a curve on the unit square, the largest wish standing at 1. No sign changes; a
    /// straight line changes nothing.
    void Transform(const MEnvelope& curve);

    GridCurve& Values() { return values; }
    std::int32_t First() const { return first; }
    std::int32_t Last() const { return last; }

private:
    GridCurve values;
    std::int32_t first = 0;   // 1024 where every point lies below the limits
    std::int32_t last = 1023;   // -1 where every point lies above
};

/// How far two prepared curves are apart: the root mean square over the points from `first` to `last` of
/// their difference less its mean, in dB.
double SpectralDistanceDb(const GridCurve& reference, const GridCurve& target, std::int32_t first,
                          std::int32_t last);
