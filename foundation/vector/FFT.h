// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Real FFT of N = 2^order floats in place, packed: index 0 is bin 0, index 1 is bin N/2 (both real),
/// index 2k and 2k + 1 are the real and imaginary part of bin k, for k from 1 to N/2 - 1.
///
/// A spec may be used by several threads at once, each with a scratch buffer of its own. Plans are shared
/// by the process and made once a length.
struct FFTSpec;

enum FFTFlags : std::uint32_t
{
    FFTDivideInverse = 2,   ///< the inverse divides by N
    FFTNoScaling = 8        ///< neither direction scales
};

/// order 1 to 18. `hint` 1 asks for speed over accuracy. Throws MException for an order out of range.
/// Allocates; not for the audio thread.
void FFTCreate(FFTSpec** outSpec, std::int32_t order, std::uint32_t flags, std::int32_t hint);
/// Scratch in bytes, which the caller allocates aligned to 64 bytes (see FFTBuffer).
void FFTBufferSize(const FFTSpec* spec, std::int32_t* outBytes);
/// X[k] = sum over n of x[n] e^(-j 2 pi n k / N), no scaling. Thread: any; never allocates.
void FFTForward(float* srcDst, const FFTSpec* spec, std::uint8_t* buffer);
/// x[n] = sum over k of X[k] e^(+j 2 pi n k / N), divided by N with FFTDivideInverse.
void FFTInverse(float* srcDst, const FFTSpec* spec, std::uint8_t* buffer);
void FFTFree(FFTSpec* spec);
