// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace MAudioFilters
{
/// A complex number for the evaluation of filter magnitudes.
struct Complex
{
    double re = 0;
    double im = 0;
};

constexpr Complex operator*(const Complex& a, const Complex& b)
{
    return { a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re };
}

/// Throws MException "Complex division by zero.".
/// Source: R. L. Smith, Algorithm 116: Complex division, 1962.
Complex operator/(const Complex& a, const Complex& b);
}   // namespace MAudioFilters
