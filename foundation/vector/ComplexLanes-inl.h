// SPDX-License-Identifier: GPL-3.0-or-later
// Interleaved complex numbers in vectors. Included once for each instruction set, by the files that are.
#if defined(TONALIGN_COMPLEX_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TONALIGN_COMPLEX_LANES_INL_H
#undef TONALIGN_COMPLEX_LANES_INL_H
#else
#define TONALIGN_COMPLEX_LANES_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace MVector
{
namespace HWY_NAMESPACE
{
#if HWY_TARGET != HWY_SCALAR
/// (re, im, re, im, ...): even lanes are real parts.
struct ComplexLanes
{
    using Floats = hwy::HWY_NAMESPACE::ScalableTag<float>;
    using V = hwy::HWY_NAMESPACE::Vec<Floats>;

    static HWY_INLINE std::size_t FloatCount() { return hwy::HWY_NAMESPACE::Lanes(Floats()); }
    static HWY_INLINE V Load(const float* from) { return hwy::HWY_NAMESPACE::LoadU(Floats(), from); }
    static HWY_INLINE void Store(V v, float* to) { hwy::HWY_NAMESPACE::StoreU(v, Floats(), to); }

    static HWY_INLINE V Times(V a, V b)
    {
        namespace hn = hwy::HWY_NAMESPACE;
        const V cross = hn::Mul(hn::Shuffle2301(a), hn::DupOdd(b));
        const V straight = hn::Mul(a, hn::DupEven(b));
        return hn::OddEven(hn::Add(straight, cross), hn::Sub(straight, cross));
    }

    static HWY_INLINE V Conjugate(V a)
    {
        namespace hn = hwy::HWY_NAMESPACE;
        return hn::OddEven(hn::Neg(a), a);
    }

    /// Times j.
    static HWY_INLINE V Turn(V a)
    {
        namespace hn = hwy::HWY_NAMESPACE;
        const V swapped = hn::Shuffle2301(a);
        return hn::OddEven(swapped, hn::Neg(swapped));
    }

    /// The numbers in the reverse order.
    static HWY_INLINE V Reverse(V a)
    {
        namespace hn = hwy::HWY_NAMESPACE;
        const hn::RepartitionToWide<Floats> numbers;
        return hn::BitCast(Floats(), hn::Reverse(numbers, hn::BitCast(numbers, a)));
    }
};
#endif
}   // namespace HWY_NAMESPACE
}   // namespace MVector
HWY_AFTER_NAMESPACE();

#endif
