// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace MVector
{
/// Squared magnitude of a quotient of two quadratics in z on the unit circle, as the caller's variables
/// t and s tell the angle: |numerator|^2 = (n0 + n1 t)^2 + n2 s, |denominator|^2 = (d0 + d1 t)^2 + d2 s.
///
/// A quadratic c0 + c1 z^-1 + c2 z^-2 times z has the real part (c0 + c2) cos w + c1 and the imaginary part
/// (c0 - c2) sin w. With s = sin^2 w and t the distance of cos w from 1 (or from -1) nothing cancels near
/// 0 Hz (or near half the sample rate): the sum of the three coefficients is formed once and exactly enough.
struct SectionQuotient
{
    double n0;
    double n1;
    double n2;
    double d0;
    double d1;
    double d2;
};

/// srcDst[i] *= product over the sections of |numerator| / |denominator| at t[i], s[i]; n points.
/// Within 1e-14 times the section count, relative. Eight squared magnitudes are multiplied before a square
/// root is taken, so their product must stay within 1e-300 and 1e300. Any alignment, never allocates.
void MultiplySectionMagnitudes(const SectionQuotient* sections, std::int32_t sectionCount, const double* t,
                               const double* s, double* srcDst, std::int32_t n);
}   // namespace MVector
