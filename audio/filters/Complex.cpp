// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/Complex.h"

#include <cmath>

#include "foundation/text/MException.h"

namespace MAudioFilters
{
namespace
{
double NonZero(double divisor)
{
    if (divisor == 0.0)
        throw MException("Complex division by zero.");
    return divisor;
}
}   // namespace

Complex operator/(const Complex& a, const Complex& b)
{
    if (std::abs(b.re) <= std::abs(b.im))
    {
        const double t = b.re / NonZero(b.im);
        const double d = NonZero(b.re * t + b.im);
        return { (a.re * t + a.im) / d, (a.im * t - a.re) / d };
    }
    const double t = b.im / NonZero(b.re);
    const double d = NonZero(b.im * t + b.re);
    return { (a.im * t + a.re) / d, (a.im - a.re * t) / d };
}
}   // namespace MAudioFilters
