// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Cascades of second-order sections over a pair of channels (see ChannelPairs.h). Arithmetic is double.
namespace MVector
{
/// y[n] = b0 x[n] + b1 x[n-1] + b2 x[n-2] + a1 y[n-1] + a2 y[n-2]: the feedback signs are reversed.
struct CascadeTaps
{
    double b0 = 1.0;
    double b1 = 0.0;
    double b2 = 0.0;
    double a1 = 0.0;
    double a2 = 0.0;
};

/// The memory of one section for both channels, in transposed direct form II:
/// y = b0 x + s1; s1 = b1 x + a1 y + s2; s2 = b2 x + a2 y. It has no scale of its own, so taps may be
/// replaced while it is kept.
struct CascadeMemory
{
    double s1[2] = {};
    double s2[2] = {};
};

enum class CascadeDirection
{
    Forward,
    Backward   ///< from the last pair to the first
};

/// Runs n pairs through the sections in place; the memory runs on into the next call. Any count, n = 0 does
/// nothing. The result is that of section after section in double, up to the order of roundings: about 1e-15
/// of the largest value in a section's signal, amplified as the section amplifies its own rounding.
/// Thread: any; never allocates.
void CascadeRun(const CascadeTaps* taps, CascadeMemory* memory, std::int32_t sectionCount, double* pairs,
                std::int32_t n, CascadeDirection direction);

/// Silences the memory of a channel in which a value is not a number or its amount not below `limit`. Answers
/// whether all was in order.
bool CascadeKeepSane(CascadeMemory* memory, std::int32_t sectionCount, double limit);

/// The same as CascadeRun by the definition, section by section and one channel at a time: the oracle of
/// tests and benchmarks.
void CascadeRunPlain(const CascadeTaps* taps, CascadeMemory* memory, std::int32_t sectionCount, double* pairs,
                     std::int32_t n, CascadeDirection direction);
}   // namespace MVector
