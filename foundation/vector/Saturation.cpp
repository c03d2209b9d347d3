// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/Saturation.h"

#include <algorithm>
#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "foundation/vector/Saturation.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "foundation/vector/InstructionSets.h"

HWY_BEFORE_NAMESPACE();
namespace MVector
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

/// sin(pi / 2 x) for |x| <= 1: x times a polynomial of degree 5 in x^2, the Chebyshev expansion of
/// sin(pi / 2 x) / x. Its own error is below 1e-10; what remains is the rounding of floats.
template <class D, class V>
HWY_INLINE V QuarterSine(D d, V x)
{
    const V z = hn::Mul(x, x);
    V sum = hn::Set(d, -3.4317889917983869e-06f);
    sum = hn::MulAdd(sum, z, hn::Set(d, 0.00016025459023725092f));
    sum = hn::MulAdd(sum, z, hn::Set(d, -0.0046816577072779919f));
    sum = hn::MulAdd(sum, z, hn::Set(d, 0.079692603685575847f));
    sum = hn::MulAdd(sum, z, hn::Set(d, -0.64596409557412504f));
    sum = hn::MulAdd(sum, z, hn::Set(d, 0.570796326768066f));
    return hn::MulAdd(sum, x, x);   // the leading 1 rounds nothing
}

template <class D>
HWY_INLINE void Saturate(D d, float* at, float even, float wet, float dry)
{
    const auto x = hn::LoadU(d, at);
    const auto one = hn::Set(d, 1.0f);
    const auto inside = hn::Max(hn::Min(x, one), hn::Neg(one));
    const auto v = QuarterSine(d, inside);
    const auto removed = hn::Sub(v, x);
    const auto saturated = hn::MulAdd(hn::Mul(removed, removed), hn::Set(d, even), v);
    hn::StoreU(hn::MulAdd(saturated, hn::Set(d, wet), hn::Mul(x, hn::Set(d, dry))), d, at);
}

void SaturateTarget(float* srcDst, std::size_t n, float even, float wet, float dry)
{
    const hn::ScalableTag<float> wide;
    const hn::CappedTag<float, 1> one;
    std::size_t i = 0;
    for (; i + hn::Lanes(wide) <= n; i += hn::Lanes(wide))
        Saturate(wide, srcDst + i, even, wet, dry);
    for (; i < n; ++i)
        Saturate(one, srcDst + i, even, wet, dry);
}
}   // namespace HWY_NAMESPACE
}   // namespace MVector
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace MVector
{
namespace
{
KERNEL_TABLE(SaturateTarget);
}

void SaturateInPlace(float* srcDst, std::int32_t n, float even, float wet, float dry)
{
    if (n > 0)
        KERNEL(SaturateTarget)(srcDst, static_cast<std::size_t>(n), even, wet, dry);
}

void MultiplyRampInPlace(float* srcDst, std::int32_t n, double start, double step)
{
    for (std::int32_t i = 0; i < n; ++i)
        srcDst[i] *= static_cast<float>(start + i * step);
}
}   // namespace MVector
#endif
