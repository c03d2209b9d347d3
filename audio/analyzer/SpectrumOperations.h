// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Operations on arrays of linear amplitudes, one value for each FFT bin.
namespace SpectrumOperations
{
/// A weighted harmonic product: a bin stays strong only where the bins at 2, 3 and 4 times its frequency are
/// strong too. The strongest bin of the result keeps the level of the strongest before.
/// @param amount   0 (nothing happens) to 1
/// @param scratch  n floats
/// Never allocates. Source: M. R. Schroeder, Period histogram and product spectrum, 1968.
void Deharmonize(float* spectrum, std::int32_t n, double amount, float* scratch);

/// Lowers every bin that is no peak by 120 dB times `amount`. A peak is strictly above its neighbours, these
/// above theirs, and above the largest bin by `thresholdDb`, which is negative.
void KeepPeaks(float* spectrum, std::int32_t n, double amount, double thresholdDb);
}   // namespace SpectrumOperations
