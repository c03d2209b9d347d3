// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/VectorOperations.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "foundation/vector/VectorOperations.cpp"
#include <hwy/foreach_target.h>

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

#include "foundation/vector/InstructionSets.h"

// Compiled once for each instruction set. The remainder of an array that fills no vector goes one lane at
// a time through the same operations, fused ones included, so that an element's result doesn't depend on
// where it stands.
HWY_BEFORE_NAMESPACE();
namespace MVector
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

using Wide = hn::ScalableTag<float>;
using One = hn::CappedTag<float, 1>;

struct AddOp
{
    template <class V>
    HWY_INLINE V operator()(V a, V b) const
    {
        return hn::Add(a, b);
    }
};
struct SubOp
{
    template <class V>
    HWY_INLINE V operator()(V a, V b) const
    {
        return hn::Sub(b, a);
    }
};
struct MultiplyOp
{
    template <class V>
    HWY_INLINE V operator()(V a, V b) const
    {
        return hn::Mul(a, b);
    }
};
/// The first where the second is not larger: a second that is not a number leaves the first alone.
struct MaxOp
{
    template <class V>
    HWY_INLINE V operator()(V a, V b) const
    {
        return hn::IfThenElse(hn::Gt(b, a), b, a);
    }
};
struct MinOp
{
    template <class V>
    HWY_INLINE V operator()(V a, V b) const
    {
        return hn::IfThenElse(hn::Lt(b, a), b, a);
    }
};
struct SumOp
{
    template <class V>
    HWY_INLINE V operator()(V sum, V a, V /*b*/) const
    {
        return hn::Add(sum, a);
    }
};
struct AbsSumOp
{
    template <class V>
    HWY_INLINE V operator()(V sum, V a, V /*b*/) const
    {
        return hn::Add(sum, hn::Abs(a));
    }
};
struct DotOp
{
    template <class V>
    HWY_INLINE V operator()(V sum, V a, V b) const
    {
        return hn::MulAdd(a, b, sum);
    }
};
struct LnOp
{
    template <class D, class V>
    HWY_INLINE V operator()(D d, V x) const
    {
        return hn::Log(d, x);
    }
};
struct ExpOp
{
    template <class D, class V>
    HWY_INLINE V operator()(D d, V x) const
    {
        return hn::Exp(d, x);
    }
};
struct Log10Op
{
    template <class D, class V>
    HWY_INLINE V operator()(D d, V x) const
    {
        return hn::Log10(d, x);
    }
};

/// dst[i] = operation(a[i], b[i]).
template <class Operation>
HWY_INLINE void Binary(const float* a, const float* b, float* dst, std::size_t n)
{
    const Operation operation;
    const Wide wide;
    const One one;
    const std::size_t lanes = hn::Lanes(wide);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
        hn::StoreU(operation(hn::LoadU(wide, a + i), hn::LoadU(wide, b + i)), wide, dst + i);
    for (; i < n; ++i)
        hn::StoreU(operation(hn::LoadU(one, a + i), hn::LoadU(one, b + i)), one, dst + i);
}

/// dst[i] = operation(src[i], value).
template <class Operation>
HWY_INLINE void WithConstant(const float* src, float value, float* dst, std::size_t n)
{
    const Operation operation;
    const Wide wide;
    const One one;
    const std::size_t lanes = hn::Lanes(wide);
    const auto values = hn::Set(wide, value);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
        hn::StoreU(operation(hn::LoadU(wide, src + i), values), wide, dst + i);
    for (; i < n; ++i)
        hn::StoreU(operation(hn::LoadU(one, src + i), hn::Set(one, value)), one, dst + i);
}

/// dst[i] = operation(src[i]) for operations that cost much: the remainder is padded to a vector.
template <class Operation>
HWY_INLINE void Costly(const float* src, float* dst, std::size_t n)
{
    const Operation operation;
    const Wide wide;
    const std::size_t lanes = hn::Lanes(wide);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
        hn::StoreU(operation(wide, hn::LoadU(wide, src + i)), wide, dst + i);
    if (i < n)
    {
        HWY_ALIGN float padded[hn::MaxLanes(wide)];
        std::fill_n(padded, lanes, 1.0f);
        std::copy(src + i, src + n, padded);
        hn::Store(operation(wide, hn::Load(wide, padded)), wide, padded);
        std::copy(padded, padded + (n - i), dst + i);
    }
}

/// Four vectors of partial sums, which also hides the adder's latency.
template <class Operation>
HWY_INLINE float Accumulate(const float* a, const float* b, std::size_t n)
{
    const Operation operation;
    const Wide wide;
    const One one;
    const std::size_t lanes = hn::Lanes(wide);
    auto sum0 = hn::Zero(wide);
    auto sum1 = sum0;
    auto sum2 = sum0;
    auto sum3 = sum0;
    std::size_t i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes)
    {
        sum0 = operation(sum0, hn::LoadU(wide, a + i), hn::LoadU(wide, b + i));
        sum1 = operation(sum1, hn::LoadU(wide, a + i + lanes), hn::LoadU(wide, b + i + lanes));
        sum2 = operation(sum2, hn::LoadU(wide, a + i + 2 * lanes), hn::LoadU(wide, b + i + 2 * lanes));
        sum3 = operation(sum3, hn::LoadU(wide, a + i + 3 * lanes), hn::LoadU(wide, b + i + 3 * lanes));
    }
    for (; i + lanes <= n; i += lanes)
        sum0 = operation(sum0, hn::LoadU(wide, a + i), hn::LoadU(wide, b + i));
    auto rest = hn::Zero(one);
    for (; i < n; ++i)
        rest = operation(rest, hn::LoadU(one, a + i), hn::LoadU(one, b + i));
    const auto all = hn::Add(hn::Add(sum0, sum1), hn::Add(sum2, sum3));
    return hn::GetLane(hn::SumOfLanes(wide, all)) + hn::GetLane(rest);
}

/// The element that wins every comparison. n >= 1.
template <class Operation, bool absolute>
HWY_INLINE float Extreme(const float* src, std::size_t n)
{
    const Operation operation;
    const Wide wide;
    const One one;
    const std::size_t lanes = hn::Lanes(wide);
    std::size_t i = 0;
    auto best = hn::Set(one, absolute ? std::abs(src[0]) : src[0]);
    if (n >= lanes)
    {
        auto first = hn::LoadU(wide, src);
        first = absolute ? hn::Abs(first) : first;
        auto second = first;
        for (; i + 2 * lanes <= n; i += 2 * lanes)
        {
            const auto a = hn::LoadU(wide, src + i);
            const auto b = hn::LoadU(wide, src + i + lanes);
            first = operation(first, absolute ? hn::Abs(a) : a);
            second = operation(second, absolute ? hn::Abs(b) : b);
        }
        HWY_ALIGN float winners[hn::MaxLanes(wide)];
        hn::Store(operation(first, second), wide, winners);
        for (std::size_t lane = 0; lane < lanes; ++lane)
            best = operation(best, hn::Set(one, winners[lane]));
    }
    for (; i < n; ++i)
    {
        const auto a = hn::LoadU(one, src + i);
        best = operation(best, absolute ? hn::Abs(a) : a);
    }
    return hn::GetLane(best);
}

void AddRun(const float* a, const float* b, float* dst, std::size_t n)
{
    Binary<AddOp>(a, b, dst, n);
}
void SubRun(const float* a, const float* b, float* dst, std::size_t n)
{
    Binary<SubOp>(a, b, dst, n);
}
void MultiplyRun(const float* a, const float* b, float* dst, std::size_t n)
{
    Binary<MultiplyOp>(a, b, dst, n);
}
void MaxEveryRun(const float* a, const float* b, float* dst, std::size_t n)
{
    Binary<MaxOp>(a, b, dst, n);
}
void AddConstantRun(const float* src, float value, float* dst, std::size_t n)
{
    WithConstant<AddOp>(src, value, dst, n);
}
void MultiplyConstantRun(const float* src, float value, float* dst, std::size_t n)
{
    WithConstant<MultiplyOp>(src, value, dst, n);
}
void ThresholdLowRun(const float* src, float level, float* dst, std::size_t n)
{
    WithConstant<MaxOp>(src, level, dst, n);
}
void ThresholdHighRun(const float* src, float level, float* dst, std::size_t n)
{
    WithConstant<MinOp>(src, level, dst, n);
}

void CopyAudioRun(const float* src, float* dst, std::size_t n)
{
    const Wide wide;
    const One one;
    const std::size_t lanes = hn::Lanes(wide);
    const auto copy = [src, dst](auto tag, std::size_t at) HWY_ATTR
    {
        const auto v = hn::LoadU(tag, src + at);
        const auto amount = hn::Abs(v);
        const auto isAudio = hn::And(hn::Le(amount, hn::Set(tag, MVector::LargestSample)),
                                     hn::Ge(amount, hn::Set(tag, std::numeric_limits<float>::min())));
        hn::StoreU(hn::IfThenElseZero(isAudio, v), tag, dst + at);
    };
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
        copy(wide, i);
    for (; i < n; ++i)
        copy(one, i);
}

void AddScaledRun(float* dst, const float* src, float value, std::size_t n)
{
    const Wide wide;
    const One one;
    const std::size_t lanes = hn::Lanes(wide);
    const auto values = hn::Set(wide, value);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
        hn::StoreU(hn::MulAdd(hn::LoadU(wide, src + i), values, hn::LoadU(wide, dst + i)), wide, dst + i);
    for (; i < n; ++i)
    {
        const auto sum = hn::MulAdd(hn::LoadU(one, src + i), hn::Set(one, value), hn::LoadU(one, dst + i));
        hn::StoreU(sum, one, dst + i);
    }
}

void AddProductRun(const float* a, const float* b, float* srcDst, std::size_t n)
{
    const Wide wide;
    const One one;
    const std::size_t lanes = hn::Lanes(wide);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
    {
        const auto sum = hn::LoadU(wide, srcDst + i);
        hn::StoreU(hn::MulAdd(hn::LoadU(wide, a + i), hn::LoadU(wide, b + i), sum), wide, srcDst + i);
    }
    for (; i < n; ++i)
    {
        const auto sum = hn::LoadU(one, srcDst + i);
        hn::StoreU(hn::MulAdd(hn::LoadU(one, a + i), hn::LoadU(one, b + i), sum), one, srcDst + i);
    }
}

float SumRun(const float* src, std::size_t n)
{
    return Accumulate<SumOp>(src, src, n);
}
float AbsSumRun(const float* src, std::size_t n)
{
    return Accumulate<AbsSumOp>(src, src, n);
}
float DotProductRun(const float* a, const float* b, std::size_t n)
{
    return Accumulate<DotOp>(a, b, n);
}
float MaxRun(const float* src, std::size_t n)
{
    return Extreme<MaxOp, false>(src, n);
}
float MinRun(const float* src, std::size_t n)
{
    return Extreme<MinOp, false>(src, n);
}
float AbsMaxRun(const float* src, std::size_t n)
{
    return Extreme<MaxOp, true>(src, n);
}

void LnRun(const float* src, float* dst, std::size_t n)
{
    Costly<LnOp>(src, dst, n);
}
void ExpRun(const float* src, float* dst, std::size_t n)
{
    Costly<ExpOp>(src, dst, n);
}
void Log10Run(const float* src, float* dst, std::size_t n)
{
    Costly<Log10Op>(src, dst, n);
}

void MagnitudeRun(const float* srcComplex, float* dst, std::size_t n)
{
    const Wide wide;
    const One one;
    const std::size_t lanes = hn::Lanes(wide);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
    {
        hn::Vec<Wide> re;
        hn::Vec<Wide> im;
        hn::LoadInterleaved2(wide, srcComplex + 2 * i, re, im);
        hn::StoreU(hn::Sqrt(hn::MulAdd(re, re, hn::Mul(im, im))), wide, dst + i);
    }
    for (; i < n; ++i)
    {
        const auto re = hn::LoadU(one, srcComplex + 2 * i);
        const auto im = hn::LoadU(one, srcComplex + 2 * i + 1);
        hn::StoreU(hn::Sqrt(hn::MulAdd(re, re, hn::Mul(im, im))), one, dst + i);
    }
}

void ComplexMultiplyRun(const float* a, const float* b, float* dst, std::size_t n)
{
    const Wide wide;
    const One one;
    const std::size_t lanes = hn::Lanes(wide);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
    {
        hn::Vec<Wide> aRe;
        hn::Vec<Wide> aIm;
        hn::Vec<Wide> bRe;
        hn::Vec<Wide> bIm;
        hn::LoadInterleaved2(wide, a + 2 * i, aRe, aIm);
        hn::LoadInterleaved2(wide, b + 2 * i, bRe, bIm);
        hn::StoreInterleaved2(hn::MulSub(aRe, bRe, hn::Mul(aIm, bIm)),
                              hn::MulAdd(aRe, bIm, hn::Mul(aIm, bRe)), wide, dst + 2 * i);
    }
    for (; i < n; ++i)
    {
        const auto aRe = hn::LoadU(one, a + 2 * i);
        const auto aIm = hn::LoadU(one, a + 2 * i + 1);
        const auto bRe = hn::LoadU(one, b + 2 * i);
        const auto bIm = hn::LoadU(one, b + 2 * i + 1);
        hn::StoreU(hn::MulSub(aRe, bRe, hn::Mul(aIm, bIm)), one, dst + 2 * i);
        hn::StoreU(hn::MulAdd(aRe, bIm, hn::Mul(aIm, bRe)), one, dst + 2 * i + 1);
    }
}
}   // namespace HWY_NAMESPACE
}   // namespace MVector
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace MVector
{
namespace
{
KERNEL_TABLE(AddRun);
KERNEL_TABLE(SubRun);
KERNEL_TABLE(MultiplyRun);
KERNEL_TABLE(MaxEveryRun);
KERNEL_TABLE(AddConstantRun);
KERNEL_TABLE(MultiplyConstantRun);
KERNEL_TABLE(ThresholdLowRun);
KERNEL_TABLE(ThresholdHighRun);
KERNEL_TABLE(CopyAudioRun);
KERNEL_TABLE(AddScaledRun);
KERNEL_TABLE(AddProductRun);
KERNEL_TABLE(SumRun);
KERNEL_TABLE(AbsSumRun);
KERNEL_TABLE(DotProductRun);
KERNEL_TABLE(MaxRun);
KERNEL_TABLE(MinRun);
KERNEL_TABLE(AbsMaxRun);
KERNEL_TABLE(LnRun);
KERNEL_TABLE(ExpRun);
KERNEL_TABLE(Log10Run);
KERNEL_TABLE(MagnitudeRun);
KERNEL_TABLE(ComplexMultiplyRun);

/// A count below 0 is nothing to do, like 0.
std::size_t Size(std::int32_t n)
{
    return n > 0 ? static_cast<std::size_t>(n) : 0;
}

std::int32_t IndexOf(const float* src, std::int32_t n, float value)
{
    const float* found = std::find(src, src + n, value);
    return found == src + n ? 0 : static_cast<std::int32_t>(found - src);
}
}   // namespace

void Zero(float* dst, std::int32_t n)
{
    std::fill_n(dst, Size(n), 0.0f);
}

void Set(float value, float* dst, std::int32_t n)
{
    std::fill_n(dst, Size(n), value);
}

void Copy(const float* src, float* dst, std::int32_t n)
{
    std::copy_n(src, Size(n), dst);
}

void Move(const float* src, float* dst, std::int32_t n)
{
    if (n > 0)
        std::memmove(dst, src, Size(n) * sizeof(float));
}

void CopyAudio(const float* src, float* dst, std::int32_t n)
{
    KERNEL(CopyAudioRun)(src, dst, Size(n));
}

void Add(const float* a, const float* b, float* dst, std::int32_t n)
{
    KERNEL(AddRun)(a, b, dst, Size(n));
}

void AddInPlace(const float* src, float* srcDst, std::int32_t n)
{
    KERNEL(AddRun)(srcDst, src, srcDst, Size(n));
}

void SubInPlace(const float* src, float* srcDst, std::int32_t n)
{
    KERNEL(SubRun)(src, srcDst, srcDst, Size(n));
}

void Sub(const float* a, const float* b, float* dst, std::int32_t n)
{
    KERNEL(SubRun)(a, b, dst, Size(n));
}

void AddConstant(const float* src, float value, float* dst, std::int32_t n)
{
    KERNEL(AddConstantRun)(src, value, dst, Size(n));
}

void AddConstantInPlace(float value, float* srcDst, std::int32_t n)
{
    KERNEL(AddConstantRun)(srcDst, value, srcDst, Size(n));
}

void Multiply(const float* a, const float* b, float* dst, std::int32_t n)
{
    KERNEL(MultiplyRun)(a, b, dst, Size(n));
}

void MultiplyConstant(const float* src, float value, float* dst, std::int32_t n)
{
    KERNEL(MultiplyConstantRun)(src, value, dst, Size(n));
}

void MultiplyConstantInPlace(float* srcDst, std::int32_t n, float value)
{
    KERNEL(MultiplyConstantRun)(srcDst, value, srcDst, Size(n));
}

void AddScaled(float* dst, const float* src, std::int32_t n, float value)
{
    KERNEL(AddScaledRun)(dst, src, value, Size(n));
}

void AddProduct(const float* a, const float* b, float* srcDst, std::int32_t n)
{
    KERNEL(AddProductRun)(a, b, srcDst, Size(n));
}

void Square(const float* src, float* dst, std::int32_t n)
{
    KERNEL(MultiplyRun)(src, src, dst, Size(n));
}

void SquareInPlace(float* srcDst, std::int32_t n)
{
    KERNEL(MultiplyRun)(srcDst, srcDst, srcDst, Size(n));
}

void MaxEveryInPlace(const float* src, float* srcDst, std::int32_t n)
{
    KERNEL(MaxEveryRun)(srcDst, src, srcDst, Size(n));
}

void ThresholdLowInPlace(float* srcDst, std::int32_t n, float level)
{
    KERNEL(ThresholdLowRun)(srcDst, level, srcDst, Size(n));
}

void ClipInPlace(float* srcDst, std::int32_t n, float low, float high)
{
    KERNEL(ThresholdLowRun)(srcDst, low, srcDst, Size(n));
    KERNEL(ThresholdHighRun)(srcDst, high, srcDst, Size(n));
}

void Max(const float* src, std::int32_t n, float* out)
{
    if (n > 0)
        *out = KERNEL(MaxRun)(src, Size(n));
}

void Min(const float* src, std::int32_t n, float* out)
{
    if (n > 0)
        *out = KERNEL(MinRun)(src, Size(n));
}

void MaxIndex(const float* src, std::int32_t n, float* outValue, std::int32_t* outIndex)
{
    if (n <= 0)
        return;
    *outValue = KERNEL(MaxRun)(src, Size(n));
    *outIndex = IndexOf(src, n, *outValue);
}

void MinIndex(const float* src, std::int32_t n, float* outValue, std::int32_t* outIndex)
{
    if (n <= 0)
        return;
    *outValue = KERNEL(MinRun)(src, Size(n));
    *outIndex = IndexOf(src, n, *outValue);
}

void MinMax(const float* src, std::int32_t n, float* outMin, float* outMax)
{
    Min(src, n, outMin);
    Max(src, n, outMax);
}

void AbsMax(const float* src, std::int32_t n, float* out)
{
    if (n > 0)
        *out = KERNEL(AbsMaxRun)(src, Size(n));
}

void Sum(const float* src, std::int32_t n, float* out)
{
    if (n > 0)
        *out = KERNEL(SumRun)(src, Size(n));
}

void AbsSum(const float* src, std::int32_t n, float* out)
{
    if (n > 0)
        *out = KERNEL(AbsSumRun)(src, Size(n));
}

void DotProduct(const float* a, const float* b, std::int32_t n, float* out)
{
    if (n > 0)
        *out = KERNEL(DotProductRun)(a, b, Size(n));
}

void Ln(const float* src, float* dst, std::int32_t n)
{
    KERNEL(LnRun)(src, dst, Size(n));
}

void Exp(const float* src, float* dst, std::int32_t n)
{
    KERNEL(ExpRun)(src, dst, Size(n));
}

void Log10(const float* src, float* dst, std::int32_t n)
{
    KERNEL(Log10Run)(src, dst, Size(n));
}

void Magnitude(const float* srcComplex, float* dst, std::int32_t n)
{
    KERNEL(MagnitudeRun)(srcComplex, dst, Size(n));
}

void ComplexMultiply(const float* a, const float* b, float* dst, std::int32_t n)
{
    KERNEL(ComplexMultiplyRun)(a, b, dst, Size(n));
}
}   // namespace MVector
#endif
