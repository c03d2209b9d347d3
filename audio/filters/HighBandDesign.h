// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace MAudioFilters
{
/// The highest frequency, as a share of the sample rate, at which the bilinear formulas of a section hold: 20
/// kHz at 44.1 kHz, so that no band of the audible range leaves them at the usual rates.
inline constexpr double HighestBilinearShare = 20000.0 / 44100.0;

/// Coefficients of one section with b0 x[n] + b1 x[n-1] + b2 x[n-2] + a1 y[n-1] + a2 y[n-2].
struct SectionCoefficients
{
    double b0, b1, b2;
    double a1, a2;
};

/// A section for a band above HighestBilinearShare of the sample rate, even above all of it: what the band
/// does to the frequencies below. The formulas of the bilinear transform would be unstable there.
///
/// The wanted magnitude L is that of the band at a rate of 96 kHz, or at 4.8 times its frequency where that
/// is more. Between HighestBilinearShare and 0.47 of the rate the wanted magnitude glides from that of the
/// bilinear section over to this, so that a band may be moved across; only a notch, which the formulas narrow
/// most there, takes a step of several decibels in the uppermost octave. With s the bilinear variable (1 -
/// 1/z) / (1 + 1/z), whose magnitude is tan(pi f / rate), the section is
///
///     peak, shelves, low-pass, notch     L(0) (1 + P s) / (1 + Q s), P and Q >= 0
///     band-pass, first-order high-pass   K s / (1 + Q s)
///     high-pass                          K s^2 / ((1 + P s) (1 + Q s))
///
/// which meets L at 0 Hz, or its slope there, at the highest share and, as far as P and Q stay within their
/// limits, half way up to it: stable and of minimum phase for every band. Below 0.43 of the rate it stays
/// within 6 dB of L but for the narrow resonances of shelves of a high Q. All-passes stay where the highest
/// share is.
///
/// @param frequency  Hz, above HighestBilinearShare * sampleRate
/// @param sampleRate  Hz
/// Throws MException "Invalid filter type.". Thread: any.
SectionCoefficients DesignHighBand(std::int32_t type, double gainDb, double frequency, double sampleRate,
                                   double q);
}   // namespace MAudioFilters
