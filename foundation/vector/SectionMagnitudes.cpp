// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/SectionMagnitudes.h"

#include <algorithm>
#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "foundation/vector/SectionMagnitudes.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "foundation/vector/InstructionSets.h"

HWY_BEFORE_NAMESPACE();
namespace MVector
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

/// Two vectors of points at a time share each coefficient that is fetched.
template <class D>
HWY_INLINE void TwoVectors(D d, const SectionQuotient* sections, std::size_t sectionCount, const double* t,
                           const double* s, double* srcDst)
{
    constexpr std::size_t GroupSize = 8;
    const std::size_t lanes = hn::Lanes(d);
    const auto t0 = hn::LoadU(d, t);
    const auto t1 = hn::LoadU(d, t + lanes);
    const auto s0 = hn::LoadU(d, s);
    const auto s1 = hn::LoadU(d, s + lanes);
    auto magnitude0 = hn::LoadU(d, srcDst);
    auto magnitude1 = hn::LoadU(d, srcDst + lanes);
    for (std::size_t start = 0; start < sectionCount; start += GroupSize)
    {
        auto numerator0 = hn::Set(d, 1.0);
        auto numerator1 = numerator0;
        auto denominator0 = numerator0;
        auto denominator1 = numerator0;
        const std::size_t end = std::min(start + GroupSize, sectionCount);
        for (std::size_t i = start; i < end; ++i)
        {
            const SectionQuotient& section = sections[i];
            const auto n0 = hn::Set(d, section.n0);
            const auto n1 = hn::Set(d, section.n1);
            const auto n2 = hn::Set(d, section.n2);
            const auto re0 = hn::MulAdd(n1, t0, n0);
            const auto re1 = hn::MulAdd(n1, t1, n0);
            numerator0 = hn::Mul(numerator0, hn::MulAdd(re0, re0, hn::Mul(n2, s0)));
            numerator1 = hn::Mul(numerator1, hn::MulAdd(re1, re1, hn::Mul(n2, s1)));
            const auto d0 = hn::Set(d, section.d0);
            const auto d1 = hn::Set(d, section.d1);
            const auto d2 = hn::Set(d, section.d2);
            const auto below0 = hn::MulAdd(d1, t0, d0);
            const auto below1 = hn::MulAdd(d1, t1, d0);
            denominator0 = hn::Mul(denominator0, hn::MulAdd(below0, below0, hn::Mul(d2, s0)));
            denominator1 = hn::Mul(denominator1, hn::MulAdd(below1, below1, hn::Mul(d2, s1)));
        }
        magnitude0 = hn::Mul(magnitude0, hn::Sqrt(hn::Div(numerator0, denominator0)));
        magnitude1 = hn::Mul(magnitude1, hn::Sqrt(hn::Div(numerator1, denominator1)));
    }
    hn::StoreU(magnitude0, d, srcDst);
    hn::StoreU(magnitude1, d, srcDst + lanes);
}

void SectionMagnitudesRun(const SectionQuotient* sections, std::size_t sectionCount, const double* t,
                          const double* s, double* srcDst, std::size_t n)
{
    const hn::ScalableTag<double> wide;
    const std::size_t step = 2 * hn::Lanes(wide);
    std::size_t i = 0;
    for (; i + step <= n; i += step)
        TwoVectors(wide, sections, sectionCount, t + i, s + i, srcDst + i);
    if (i == n)
        return;
    // The rest is computed in padded copies.
    constexpr std::size_t MaxStep = 2 * hn::MaxLanes(wide);
    double padded[3][MaxStep] = {};
    std::copy(t + i, t + n, padded[0]);
    std::copy(s + i, s + n, padded[1]);
    std::copy(srcDst + i, srcDst + n, padded[2]);
    TwoVectors(wide, sections, sectionCount, padded[0], padded[1], padded[2]);
    std::copy(padded[2], padded[2] + (n - i), srcDst + i);
}
}   // namespace HWY_NAMESPACE
}   // namespace MVector
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace MVector
{
namespace
{
KERNEL_TABLE(SectionMagnitudesRun);
}

void MultiplySectionMagnitudes(const SectionQuotient* sections, std::int32_t sectionCount, const double* t,
                               const double* s, double* srcDst, std::int32_t n)
{
    if (n > 0 && sectionCount > 0)
        KERNEL(SectionMagnitudesRun)
    (sections, static_cast<std::size_t>(sectionCount), t, s, srcDst, static_cast<std::size_t>(n));
}
}   // namespace MVector
#endif
