// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// One second-order section with its memory: samples are float, arithmetic is double.
/// Taps are (b0, b1, b2, 1, d1, d2) in the denominator form:
/// y[n] = b0 x[n] + b1 x[n-1] + b2 x[n-2] - d1 y[n-1] - d2 y[n-2].
struct BiquadState;
struct BiquadStateFloat;

/// `sectionCount` is 1 and `delayInit` 0 (zero memory). Allocates.
void BiquadCreate(BiquadState** outState, const double* taps, std::int32_t sectionCount,
                  std::int32_t delayInit);
void BiquadSetTaps(const double* taps, BiquadState* state);
/// src and dst may be the same array; the memory runs on into the next call. Never allocates.
void BiquadRun(const float* src, float* dst, std::int32_t n, BiquadState* state);
void BiquadFree(BiquadState* state);

void BiquadCreateFloat(BiquadStateFloat** outState, const float* taps, std::int32_t sectionCount,
                       std::int32_t delayInit);
void BiquadSetTapsFloat(const float* taps, BiquadStateFloat* state);
void BiquadRunFloat(const float* src, float* dst, std::int32_t n, BiquadStateFloat* state);
void BiquadFree(BiquadStateFloat* state);
