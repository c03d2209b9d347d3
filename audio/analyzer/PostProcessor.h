// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

class Interpolator;

/// What happens between a spectrum of 1024 points and its display: slope, gain, smoothing, bands,
/// normalisation. For the display only. It owns no setting: each pointer leads to one that lives elsewhere,
/// and a null one leaves its step out. Thread: GUI.
class PostProcessor
{
public:
    static constexpr std::int32_t PointCount = 1024;

    virtual ~PostProcessor() = default;
    virtual double GetSlope() const { return slope != nullptr ? *slope : 0.0; }
    virtual double GetGain() const { return gain != nullptr ? *gain : 0.0; }
    virtual double GetDeharmonize() const { return deharmonize != nullptr ? *deharmonize : 0.0; }
    virtual bool IsNormalized() const { return normalize != nullptr && *normalize; }

    /// The chain on PointCount linear amplitudes, in place.
    void Process(float* array) const;
    /// Scales the common reference, or without one the largest value, to 1. Arrays at or below 1e-6 stay.
    void Normalize(float* array) const;

    const double* slope = nullptr;   ///< dB per octave, around 20 Hz
    const double* gain = nullptr;   ///< dB
    const double* deharmonize = nullptr;   ///< 0 to 1; for whoever gets the spectrum, Process ignores it
    Interpolator* interpolator = nullptr;
    const std::int32_t* bands = nullptr;   ///< number of display bands, used from 1 on
    const std::int32_t* viewType = nullptr;   ///< 0 all points, 1 thirty bands, 2 ten bands
    const bool* maximizedSmoothing = nullptr;
    const bool* normalize = nullptr;
    const float* reference = nullptr;   ///< linear level that becomes 1

private:
    void ApplySlope(float* array) const;
    void ApplyBands(float* array) const;
};
