// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/ChannelPairs.h"

#include <algorithm>
#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "foundation/vector/ChannelPairs.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "foundation/vector/InstructionSets.h"

HWY_BEFORE_NAMESPACE();
namespace MVector
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR
constexpr std::size_t Step = 1;

HWY_INLINE void Widen(const float* a, const float* b, double offset, double* pairs)
{
    pairs[0] = static_cast<double>(*a) + offset;
    pairs[1] = static_cast<double>(*b) + offset;
}
HWY_INLINE void WidenTimes(const float* a, const float* b, const float* window, double offset, double* pairs)
{
    pairs[0] = static_cast<double>(*a) * static_cast<double>(*window) + offset;
    pairs[1] = static_cast<double>(*b) * static_cast<double>(*window) + offset;
}
HWY_INLINE void Narrow(const double* pairs, float offset, float* a, float* b)
{
    *a = static_cast<float>(pairs[0]) + offset;
    *b = static_cast<float>(pairs[1]) + offset;
}
HWY_INLINE void AddTimes(const double* src, const float* window, double* srcDst)
{
    srcDst[0] += src[0] * static_cast<double>(*window);
    srcDst[1] += src[1] * static_cast<double>(*window);
}
#else
constexpr std::size_t Step = 4;   // pairs

using Floats = hn::FixedTag<float, 4>;

/// Four doubles in one vector, or in two where vectors are short.
#if HWY_TARGET <= HWY_AVX2 && HWY_ARCH_X86
using Doubles = hn::FixedTag<double, 4>;
using Four = hn::Vec<Doubles>;

HWY_INLINE Four Promote(hn::Vec<Floats> v)
{
    return hn::PromoteTo(Doubles(), v);
}
HWY_INLINE hn::Vec<Floats> Demote(Four v)
{
    return hn::DemoteTo(Floats(), v);
}
HWY_INLINE Four LoadFour(const double* from)
{
    return hn::LoadU(Doubles(), from);
}
HWY_INLINE void StoreFour(Four v, double* to)
{
    hn::StoreU(v, Doubles(), to);
}
HWY_INLINE Four AddTo(Four a, double b)
{
    return hn::Add(a, hn::Set(Doubles(), b));
}
HWY_INLINE Four TimesPlus(Four a, Four b, Four c)
{
    return hn::MulAdd(a, b, c);
}
HWY_INLINE Four Spread(double value)
{
    return hn::Set(Doubles(), value);
}
#else
using Doubles = hn::FixedTag<double, 2>;
struct Four
{
    hn::Vec<Doubles> low;
    hn::Vec<Doubles> high;
};

HWY_INLINE Four Promote(hn::Vec<Floats> v)
{
    const hn::Half<Floats> half;
    return { hn::PromoteTo(Doubles(), hn::LowerHalf(half, v)),
             hn::PromoteTo(Doubles(), hn::UpperHalf(half, v)) };
}
HWY_INLINE hn::Vec<Floats> Demote(Four v)
{
    const hn::Half<Floats> half;
    return hn::Combine(Floats(), hn::DemoteTo(half, v.high), hn::DemoteTo(half, v.low));
}
HWY_INLINE Four LoadFour(const double* from)
{
    return { hn::LoadU(Doubles(), from), hn::LoadU(Doubles(), from + 2) };
}
HWY_INLINE void StoreFour(Four v, double* to)
{
    hn::StoreU(v.low, Doubles(), to);
    hn::StoreU(v.high, Doubles(), to + 2);
}
HWY_INLINE Four Spread(double value)
{
    return { hn::Set(Doubles(), value), hn::Set(Doubles(), value) };
}
HWY_INLINE Four AddTo(Four a, double b)
{
    const Four values = Spread(b);
    return { hn::Add(a.low, values.low), hn::Add(a.high, values.high) };
}
HWY_INLINE Four TimesPlus(Four a, Four b, Four c)
{
    return { hn::MulAdd(a.low, b.low, c.low), hn::MulAdd(a.high, b.high, c.high) };
}
#endif

HWY_INLINE void Widen(const float* a, const float* b, double offset, double* pairs)
{
    const Floats floats;
    const auto first = hn::LoadU(floats, a);
    const auto second = hn::LoadU(floats, b);
    StoreFour(AddTo(Promote(hn::InterleaveLower(floats, first, second)), offset), pairs);
    StoreFour(AddTo(Promote(hn::InterleaveUpper(floats, first, second)), offset), pairs + 4);
}

HWY_INLINE void WidenTimes(const float* a, const float* b, const float* window, double offset, double* pairs)
{
    const Floats floats;
    const auto first = hn::LoadU(floats, a);
    const auto second = hn::LoadU(floats, b);
    const auto factors = hn::LoadU(floats, window);
    StoreFour(TimesPlus(Promote(hn::InterleaveLower(floats, first, second)),
                        Promote(hn::InterleaveLower(floats, factors, factors)), Spread(offset)),
              pairs);
    StoreFour(TimesPlus(Promote(hn::InterleaveUpper(floats, first, second)),
                        Promote(hn::InterleaveUpper(floats, factors, factors)), Spread(offset)),
              pairs + 4);
}

HWY_INLINE void Narrow(const double* pairs, float offset, float* a, float* b)
{
    const Floats floats;
    const auto offsets = hn::Set(floats, offset);
    const auto first = Demote(LoadFour(pairs));
    const auto second = Demote(LoadFour(pairs + 4));
    hn::StoreU(hn::Add(hn::ConcatEven(floats, second, first), offsets), floats, a);
    hn::StoreU(hn::Add(hn::ConcatOdd(floats, second, first), offsets), floats, b);
}

HWY_INLINE void AddTimes(const double* src, const float* window, double* srcDst)
{
    const Floats floats;
    const auto factors = hn::LoadU(floats, window);
    StoreFour(
        TimesPlus(LoadFour(src), Promote(hn::InterleaveLower(floats, factors, factors)), LoadFour(srcDst)),
        srcDst);
    StoreFour(TimesPlus(LoadFour(src + 4), Promote(hn::InterleaveUpper(floats, factors, factors)),
                        LoadFour(srcDst + 4)),
              srcDst + 4);
}
#endif

// What fills no step is worked on in padded copies.

void FromFloatsRun(const float* a, const float* b, double offset, double* pairs, std::size_t n)
{
    std::size_t i = 0;
    for (; i + Step <= n; i += Step)
        Widen(a + i, b + i, offset, pairs + 2 * i);
    if (i == n)
        return;
    float padded[2][Step] = {};
    double wide[2 * Step];
    std::copy(a + i, a + n, padded[0]);
    std::copy(b + i, b + n, padded[1]);
    Widen(padded[0], padded[1], offset, wide);
    std::copy_n(wide, 2 * (n - i), pairs + 2 * i);
}

void FromFloatsTimesRun(const float* a, const float* b, const float* window, double offset, double* pairs,
                        std::size_t n)
{
    std::size_t i = 0;
    for (; i + Step <= n; i += Step)
        WidenTimes(a + i, b + i, window + i, offset, pairs + 2 * i);
    if (i == n)
        return;
    float padded[3][Step] = {};
    double wide[2 * Step];
    std::copy(a + i, a + n, padded[0]);
    std::copy(b + i, b + n, padded[1]);
    std::copy(window + i, window + n, padded[2]);
    WidenTimes(padded[0], padded[1], padded[2], offset, wide);
    std::copy_n(wide, 2 * (n - i), pairs + 2 * i);
}

void ToFloatsRun(const double* pairs, float offset, float* a, float* b, std::size_t n)
{
    std::size_t i = 0;
    for (; i + Step <= n; i += Step)
        Narrow(pairs + 2 * i, offset, a + i, b + i);
    if (i == n)
        return;
    double padded[2 * Step] = {};
    float narrow[2][Step];
    std::copy_n(pairs + 2 * i, 2 * (n - i), padded);
    Narrow(padded, offset, narrow[0], narrow[1]);
    std::copy_n(narrow[0], n - i, a + i);
    std::copy_n(narrow[1], n - i, b + i);
}

void AddTimesRun(const double* src, const float* window, double* srcDst, std::size_t n)
{
    std::size_t i = 0;
    for (; i + Step <= n; i += Step)
        AddTimes(src + 2 * i, window + i, srcDst + 2 * i);
    if (i == n)
        return;
    double padded[2][2 * Step] = {};
    float factors[Step] = {};
    std::copy_n(src + 2 * i, 2 * (n - i), padded[0]);
    std::copy_n(srcDst + 2 * i, 2 * (n - i), padded[1]);
    std::copy(window + i, window + n, factors);
    AddTimes(padded[0], factors, padded[1]);
    std::copy_n(padded[1], 2 * (n - i), srcDst + 2 * i);
}
}   // namespace HWY_NAMESPACE
}   // namespace MVector
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace MVector
{
namespace
{
KERNEL_TABLE(FromFloatsRun);
KERNEL_TABLE(FromFloatsTimesRun);
KERNEL_TABLE(ToFloatsRun);
KERNEL_TABLE(AddTimesRun);

std::size_t Size(std::int32_t n)
{
    return n > 0 ? static_cast<std::size_t>(n) : 0;
}
}   // namespace

void PairsFromFloats(const float* a, const float* b, double offset, double* pairs, std::int32_t n)
{
    if (b != nullptr)
    {
        KERNEL(FromFloatsRun)(a, b, offset, pairs, Size(n));
        return;
    }
    for (std::size_t i = 0; i < Size(n); ++i)
    {
        pairs[2 * i] = static_cast<double>(a[i]) + offset;
        pairs[2 * i + 1] = offset;
    }
}

void PairsFromFloatsTimes(const float* a, const float* b, const float* window, double offset, double* pairs,
                          std::int32_t n)
{
    if (b != nullptr)
    {
        KERNEL(FromFloatsTimesRun)(a, b, window, offset, pairs, Size(n));
        return;
    }
    for (std::size_t i = 0; i < Size(n); ++i)
    {
        pairs[2 * i] = static_cast<double>(a[i]) * static_cast<double>(window[i]) + offset;
        pairs[2 * i + 1] = offset;
    }
}

void PairsToFloats(const double* pairs, float offset, float* a, float* b, std::int32_t n)
{
    if (b != nullptr)
    {
        KERNEL(ToFloatsRun)(pairs, offset, a, b, Size(n));
        return;
    }
    for (std::size_t i = 0; i < Size(n); ++i)
        a[i] = static_cast<float>(pairs[2 * i]) + offset;
}

void PairsAdd(const double* src, double* srcDst, std::int32_t n)
{
    for (std::size_t i = 0; i < 2 * Size(n); ++i)
        srcDst[i] += src[i];
}

void PairsAddTimes(const double* src, const float* window, double* srcDst, std::int32_t n)
{
    KERNEL(AddTimesRun)(src, window, srcDst, Size(n));
}
}   // namespace MVector
#endif
