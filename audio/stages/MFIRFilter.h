// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "foundation/vector/FFT.h"

/// A symmetric low-pass of an odd number of taps, run by overlap-save on two independent signals.
///
/// The taps are a sine cardinal times a Kaiser window. One hop is as long as the kernel without its middle
/// tap, so that a transform of two hops holds a frame exactly. What comes out lags what went in by
/// LatencySamples(): a hop, in which the frame gathers, and the group delay of half a hop.
/// Main thread prepares, audio thread processes; the owner keeps the two apart.
class MFIRFilter
{
public:
    static constexpr std::int32_t StateCount = 2;

    /// @param cutoffHz  where the response is at one half, 0 < cutoffHz < sampleRate / 2
    /// @param taps  made odd by rounding up, and at most `maximumTaps`; one less must be a power of two from
    ///              16 on
    /// Silences both signals. Allocates. Throws MException for a length that has no transform.
    void SetLowPass(double cutoffHz, double sampleRate, std::int32_t taps, std::int32_t maximumTaps);
    /// Silences both signals and fills their delay with zeros.
    void Reset();
    /// Filters in place; block lengths don't change the result. `state` chooses the signal. Never allocates.
    void Process(float* srcDst, std::int32_t sampleCount, std::int32_t state);

    std::int32_t Taps() const { return hop + 1; }
    std::int32_t LatencySamples() const { return hop + hop / 2; }

private:
    struct State
    {
        std::vector<float> gathered;   // the hop before, and the one that comes in
        std::vector<float> ready;   // the filtered hop that goes out meanwhile
        std::int32_t position = 0;   // in both
    };

    void FilterHop(State& signal);

    MFFT transform;
    std::int32_t hop = 0;
    std::vector<float> response;   // packed spectrum of the taps, over the length of the transform
    std::vector<float> work;
    std::array<State, StateCount> states;
};
