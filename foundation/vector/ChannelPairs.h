// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Channel pairs: a signal of two channels as n interleaved pairs of doubles (channel 0, channel 1, channel
/// 0,
/// ...). Passes of double arithmetic run on them; the roundings to float are left to the ends of a chain of
/// passes. A single channel is a pair whose second channel is silent. `pairs` holds 2 n doubles, unaligned.
/// Thread: any; never allocates.
namespace MVector
{
/// pairs[i] = (a[i], b[i]) + offset. A null b is silence, plus the offset.
void PairsFromFloats(const float* a, const float* b, double offset, double* pairs, std::int32_t n);
/// pairs[i] = (a[i], b[i]) * window[i] + offset.
void PairsFromFloatsTimes(const float* a, const float* b, const float* window, double offset, double* pairs,
                          std::int32_t n);
/// a[i] = first of pairs[i], rounded to float, plus offset in float; b[i] the second, unless b is null.
void PairsToFloats(const double* pairs, float offset, float* a, float* b, std::int32_t n);
/// srcDst[i] += src[i], pair by pair.
void PairsAdd(const double* src, double* srcDst, std::int32_t n);
/// srcDst[i] += src[i] * window[i].
void PairsAddTimes(const double* src, const float* window, double* srcDst, std::int32_t n);
}   // namespace MVector
