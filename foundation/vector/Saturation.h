// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace MVector
{
/// x = (v + even (v - x)^2) wet + x dry with v = sin(pi / 2 x), clipped to -1 and 1 beyond |x| = 1. The sine
/// is within 1e-7. Any alignment; never allocates; any thread.
void SaturateInPlace(float* srcDst, std::int32_t n, float even, float wet, float dry);
/// srcDst[i] *= start + i step: a gain on its way.
void MultiplyRampInPlace(float* srcDst, std::int32_t n, double start, double step);
}   // namespace MVector
