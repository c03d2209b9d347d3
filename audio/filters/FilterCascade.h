// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "audio/filters/Filter.h"

namespace MAudioFilters
{
/// A Butterworth low-pass or high-pass made of sections in a row. Designs only; the owner runs the sections.
struct FilterCascade
{
    static constexpr std::int32_t MaxSections = 10;

    Filter<double> sections[MaxSections];
    std::int32_t count = 0;

    /// orderIndex 0: one first-order section, 6 dB/oct. k = 1 to 10: order 2k, 12k dB/oct, highest Q first.
    /// Frequencies in Hz. -3.01 dB at `frequency`.
    void SetLowPass(double frequency, double sampleRate, std::int32_t orderIndex);
    void SetHighPass(double frequency, double sampleRate, std::int32_t orderIndex);

private:
    void Set(FilterType first, FilterType second, double frequency, double sampleRate,
             std::int32_t orderIndex);
};

/// Low-pass of order 8 in front of an analyzer's decimation, in single precision.
struct DecimatorCascade
{
    static constexpr std::int32_t MaxSections = 4;

    Filter<float> sections[MaxSections];
    std::int32_t count = 0;

    /// Frequencies in Hz.
    void SetLowPass(float frequency, float sampleRate);
};

/// The two sections in front of a loudness measurement: a high shelf of 4 dB, which stands for the head,
/// and a high-pass. Source: ITU-R BS.1770, by design formula for any sample rate instead of its table.
struct LoudnessWeighting
{
    Filter<double> shelf;
    Filter<double> highPass;

    void Design(double sampleRate);
};
}   // namespace MAudioFilters
