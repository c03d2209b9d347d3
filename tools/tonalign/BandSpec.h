// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

struct BandPoint;

/// A band as it is typed: TYPE:FREQ:GAIN:Q[:ORDER].
struct BandSpec
{
    std::int32_t type = 0;   ///< FilterType
    double frequencyHz = 1000;
    double gainDb = 0;
    double q = 0.7071;
    std::int32_t order = 0;   ///< order index, 0 to 9
};

/// Throws UsageError that says what is wrong with which field.
BandSpec ParseBandSpec(const std::string& text);
/// Enables a band with just these settings.
void ApplyBandSpec(const BandSpec& spec, BandPoint& band);
BandSpec BandSpecOf(const BandPoint& band);
/// "peak", "lowshelf", "highshelf", "lowpass", "highpass", "lowpass6", "highpass6", "bandpass", "notch".
const char* BandTypeWord(std::int32_t type);
/// dB per octave beyond the corner, 0 for types without a slope.
std::int32_t SlopeOf(const BandSpec& spec);
