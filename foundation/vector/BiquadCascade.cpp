// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/BiquadCascade.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#ifndef TONALIGN_BIQUAD_CASCADE_ONCE
#define TONALIGN_BIQUAD_CASCADE_ONCE
namespace MVector
{
namespace
{
/// Shorter runs are not worth a pass of vectors in any of the instruction sets.
constexpr std::int32_t ShortestVectorRun = 20;
}   // namespace
}   // namespace MVector
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "foundation/vector/BiquadCascade.cpp"
// The groups of sections below are vectors in structures, which vectors of unknown size can't be.
#ifndef HWY_DISABLED_TARGETS
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)
#endif
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "foundation/vector/InstructionSets.h"

// How the lanes are used
//
// A section waits for its own last output, so the lanes of a vector can't be filled with the samples of one
// section. A vector of four doubles holds two channels of two sections instead, the second section Skew
// samples behind the first: what the first put out Skew steps ago is what the second takes in now.
//
//     lane      0            1            2                    3
//     section   A, left      A, right     B, left              B, right
//     sample    k            k            k - Skew             k - Skew
//
// Vectors are chained to a pass of several groups, each section Skew samples behind the one before. One step
// of a group is five operations. They are ordered so that a step waits for its predecessor by one
// multiply-add only; Skew 2 gives the shift between the lanes the time that it takes.
//
// The recursion inside is direct form I, which needs the two last inputs and outputs. The memory that
// outlasts the call is that of the transposed form: at a section's first sample its s1 is added to the
// output, at the second its s2, and both are formed again from the last two inputs and outputs. Before its
// first sample a section sees zeros, so it stays silent until its turn comes, without any masks.
HWY_BEFORE_NAMESPACE();
namespace MVector
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR
// Two lanes on any processor: the compiler's own vector type.
constexpr std::ptrdiff_t LaneCount = 2;
using V = double __attribute__((vector_size(16)));

HWY_INLINE V Times(V a, V b)
{
    return a * b;
}
HWY_INLINE V TimesPlus(V a, V b, V c)
{
    return a * b + c;
}
HWY_INLINE V LoadPair(const double* pair)
{
    return V{ pair[0], pair[1] };
}
template <std::ptrdiff_t stage>
HWY_INLINE void StorePair(V v, double* pair)
{
    pair[0] = v[0];
    pair[1] = v[1];
}
#else
using D = hn::CappedTag<double, 4>;
constexpr std::ptrdiff_t LaneCount = hn::MaxLanes(D());
using V = hn::Vec<D>;

HWY_INLINE V Times(V a, V b)
{
    return hn::Mul(a, b);
}
HWY_INLINE V TimesPlus(V a, V b, V c)
{
    return hn::MulAdd(a, b, c);
}
#endif

constexpr std::ptrdiff_t StageCount = LaneCount / 2;   // sections of a group
constexpr std::ptrdiff_t Skew = 2;
constexpr std::ptrdiff_t GroupLag = StageCount * Skew;

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET <= HWY_AVX2 && HWY_ARCH_X86
constexpr hn::Half<D> HalfTag;

/// The pair in both halves.
HWY_INLINE V LoadPair(const double* pair)
{
    return hn::LoadDup128(D(), pair);
}
template <std::ptrdiff_t stage>
HWY_INLINE void StorePair(V v, double* pair)
{
    if constexpr (stage == 0)
        hn::StoreU(hn::LowerHalf(v), HalfTag, pair);
    else
        hn::StoreU(hn::UpperHalf(HalfTag, v), HalfTag, pair);
}
/// The pairs of two sections of a group.
HWY_INLINE V GatherPairs(const double* first, const double* second)
{
    return hn::Combine(D(), hn::LoadU(HalfTag, second), hn::LoadU(HalfTag, first));
}
/// One value of each section, for both channels.
HWY_INLINE V GatherTaps(const double* first, const double* second)
{
    return hn::Combine(D(), hn::Set(HalfTag, *second), hn::Set(HalfTag, *first));
}
/// The upper pair of `before` moves in from below; `own` moves up by a pair.
HWY_INLINE V ShiftIn(V before, V own)
{
    return hn::ConcatLowerUpper(D(), own, before);
}
#else
#if HWY_TARGET != HWY_SCALAR
HWY_INLINE V LoadPair(const double* pair)
{
    return hn::LoadU(D(), pair);
}
template <std::ptrdiff_t stage>
HWY_INLINE void StorePair(V v, double* pair)
{
    hn::StoreU(v, D(), pair);
}
#endif
HWY_INLINE V GatherPairs(const double* first, const double* /*second*/)
{
    return LoadPair(first);
}
HWY_INLINE V GatherTaps(const double* first, const double* /*second*/)
{
    const double both[2] = { *first, *first };
    return LoadPair(both);
}
HWY_INLINE V ShiftIn(V before, V /*own*/)
{
    return before;
}
#endif

constexpr double Silence[2] = {};

/// The sections of one vector: taps and the last two inputs and outputs. `last` is the index of the last
/// section in a group.
struct Group
{
    static constexpr std::ptrdiff_t last = StageCount - 1;

    V b0, b1, b2, a1, a2;
    V x1, x2, y1, y2;

    HWY_INLINE void Load(const CascadeTaps* taps)
    {
        b0 = GatherTaps(&taps[0].b0, &taps[last].b0);
        b1 = GatherTaps(&taps[0].b1, &taps[last].b1);
        b2 = GatherTaps(&taps[0].b2, &taps[last].b2);
        a1 = GatherTaps(&taps[0].a1, &taps[last].a1);
        a2 = GatherTaps(&taps[0].a2, &taps[last].a2);
        x1 = x2 = y1 = y2 = LoadPair(Silence);
    }

    /// `known` is what doesn't depend on this step's input.
    HWY_INLINE V Advance(V before, V known)
    {
        const V x = ShiftIn(before, y2);
        const V y = TimesPlus(a1, y1, TimesPlus(b0, x, known));
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }

    HWY_INLINE V Step(V before)
    {
        return Advance(before, TimesPlus(a2, y2, TimesPlus(b1, x1, Times(b2, x2))));
    }

    /// A step in which one section sees its first or second sample.
    template <std::ptrdiff_t age>
    HWY_INLINE V StepBeginning(V before, const CascadeMemory* memory)
    {
        constexpr std::ptrdiff_t stage = age / Skew;
        const double* injected = age % Skew == 0 ? memory[stage].s1 : memory[stage].s2;
        const V injection = GatherPairs(stage == 0 ? injected : Silence, stage == 0 ? Silence : injected);
        return Advance(before, TimesPlus(a2, y2, TimesPlus(b1, x1, TimesPlus(b2, x2, injection))));
    }

    /// The memory of the section whose last sample is the present one.
    template <std::ptrdiff_t stage>
    HWY_INLINE void Capture(CascadeMemory* memory) const
    {
        const V older = TimesPlus(b2, x2, Times(a2, y2));
        StorePair<stage>(TimesPlus(b1, x1, TimesPlus(a1, y1, older)), memory[stage].s1);
        StorePair<stage>(TimesPlus(b2, x1, Times(a2, y1)), memory[stage].s2);
    }
};

/// `count` groups in a row. `age` and `late` count the steps from the first and the last input as the first
/// section of the chain sees them; what a section has to do at its beginning and end is known to the
/// compiler.
template <std::ptrdiff_t count>
struct Chain
{
    Group group;
    Chain<count - 1> rest;

    HWY_INLINE void Load(const CascadeTaps* taps)
    {
        group.Load(taps);
        if constexpr (count > 1)
            rest.Load(taps + StageCount);
    }

    HWY_INLINE V Step(V before)
    {
        if constexpr (count == 1)
            return group.Step(before);
        else
        {
            const V y = rest.Step(group.y2);
            group.Step(before);
            return y;
        }
    }

    template <std::ptrdiff_t age>
    HWY_INLINE V StepBeginning(V before, const CascadeMemory* memory)
    {
        V y = LoadPair(Silence);
        if constexpr (count > 1)
            y = rest.template StepBeginning<age - GroupLag>(group.y2, memory + StageCount);
        V own = y;
        if constexpr (age >= GroupLag)
            own = group.Step(before);
        else if constexpr (age >= 0)
            own = group.template StepBeginning<age>(before, memory);
        return count > 1 ? y : own;
    }

    template <std::ptrdiff_t late>
    HWY_INLINE V StepEnding(V before)
    {
        V y = LoadPair(Silence);
        if constexpr (count > 1)
            y = rest.template StepEnding<late - GroupLag>(group.y2);
        V own = y;
        if constexpr (late <= Group::last * Skew)
            own = group.Step(before);
        else
            group.y2 = group.y1;   // nothing but the next group's delayed input is still needed
        return count > 1 ? y : own;
    }

    template <std::ptrdiff_t late>
    HWY_INLINE void Capture(CascadeMemory* memory) const
    {
        if constexpr (late >= 0 && late % Skew == 0 && late / Skew < StageCount)
            group.template Capture<late / Skew>(memory);
        if constexpr (count > 1)
            rest.template Capture<late - GroupLag>(memory + StageCount);
    }
};

template <>
struct Chain<0>
{
};

/// One pass of `groups` full groups over n pairs, n > Lag + 1. `pairs` is the first in the direction of
/// running and `step` the distance to the next.
template <std::ptrdiff_t groups>
struct Pass
{
    static constexpr std::ptrdiff_t Lag = (groups * StageCount - 1) * Skew;

    Chain<groups> chain;

    template <std::ptrdiff_t k>
    HWY_INLINE void Begin(const CascadeMemory* memory, double* pairs, std::ptrdiff_t step)
    {
        const V y = chain.template StepBeginning<k>(LoadPair(pairs + k * step), memory);
        if constexpr (k >= Lag)
            StorePair<Group::last>(y, pairs + (k - Lag) * step);
        if constexpr (k < Lag + 1)
            Begin<k + 1>(memory, pairs, step);
    }

    template <std::ptrdiff_t late>
    HWY_INLINE void End(CascadeMemory* memory, double* out, std::ptrdiff_t step)
    {
        if constexpr (late <= Lag)
        {
            StorePair<Group::last>(chain.template StepEnding<late>(LoadPair(Silence)), out);
            chain.template Capture<late>(memory);
            End<late + 1>(memory, out + step, step);
        }
    }

    HWY_INLINE void Run(const CascadeTaps* taps, CascadeMemory* memory, double* pairs, std::ptrdiff_t step,
                        std::ptrdiff_t n)
    {
        chain.Load(taps);
        Begin<0>(memory, pairs, step);
        std::ptrdiff_t k = Lag + 2;
        const double* in = pairs + k * step;
        double* out = pairs + 2 * step;
        for (; k + 1 < n; k += 2)
        {
            StorePair<Group::last>(chain.Step(LoadPair(in)), out);
            StorePair<Group::last>(chain.Step(LoadPair(in + step)), out + step);
            in += 2 * step;
            out += 2 * step;
        }
        if (k < n)
        {
            StorePair<Group::last>(chain.Step(LoadPair(in)), out);
            out += step;
        }
        chain.template Capture<0>(memory);
        End<1>(memory, out, step);
    }
};

/// Groups of a pass, as measured: what the registers hold, with taps that are fetched from memory.
#if HWY_TARGET <= HWY_AVX3 && HWY_ARCH_X86
constexpr std::ptrdiff_t MaxGroups = 5;
#elif HWY_TARGET == HWY_AVX2
constexpr std::ptrdiff_t MaxGroups = 4;
#else
constexpr std::ptrdiff_t MaxGroups = 3;
#endif
static_assert(Pass<MaxGroups>::Lag + 2 <= ShortestVectorRun);

template <std::ptrdiff_t groups>
HWY_NOINLINE void RunFullGroups(std::ptrdiff_t count, const CascadeTaps* taps, CascadeMemory* memory,
                                double* pairs, std::ptrdiff_t step, std::ptrdiff_t n)
{
    if constexpr (groups > 1)
    {
        if (count < groups)
        {
            RunFullGroups<groups - 1>(count, taps, memory, pairs, step, n);
            return;
        }
    }
    Pass<groups>().Run(taps, memory, pairs, step, n);
}

void CascadeRunTarget(const CascadeTaps* taps, CascadeMemory* memory, std::ptrdiff_t sectionCount,
                      double* pairs, std::ptrdiff_t step, std::ptrdiff_t n)
{
    while (sectionCount > 0)
    {
        // Passes of like length: a single group waits for itself most of the time.
        const std::ptrdiff_t allGroups = (sectionCount + StageCount - 1) / StageCount;
        const std::ptrdiff_t passes = (allGroups + MaxGroups - 1) / MaxGroups;
        const std::ptrdiff_t groups = (allGroups + passes - 1) / passes;
        const std::ptrdiff_t taken = std::min(groups * StageCount, sectionCount);
        if (taken == groups * StageCount)
            RunFullGroups<MaxGroups>(groups, taps, memory, pairs, step, n);
        else
        {
            // The last group is filled with sections that pass their input through.
            CascadeTaps paddedTaps[MaxGroups * StageCount];
            CascadeMemory paddedMemory[MaxGroups * StageCount];
            std::copy_n(taps, taken, paddedTaps);
            std::copy_n(memory, taken, paddedMemory);
            RunFullGroups<MaxGroups>(groups, paddedTaps, paddedMemory, pairs, step, n);
            std::copy_n(paddedMemory, taken, memory);
        }
        taps += taken;
        memory += taken;
        sectionCount -= taken;
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
KERNEL_TABLE(CascadeRunTarget);

void RunPlain(const CascadeTaps& taps, CascadeMemory& memory, std::size_t channel, double* samples,
              std::ptrdiff_t step, std::int32_t n)
{
    double s1 = memory.s1[channel];
    double s2 = memory.s2[channel];
    for (std::int32_t i = 0; i < n; ++i)
    {
        const double x = *samples;
        const double y = taps.b0 * x + s1;
        s1 = taps.b1 * x + taps.a1 * y + s2;
        s2 = taps.b2 * x + taps.a2 * y;
        *samples = y;
        samples += step;
    }
    memory.s1[channel] = s1;
    memory.s2[channel] = s2;
}
}   // namespace

void CascadeRunPlain(const CascadeTaps* taps, CascadeMemory* memory, std::int32_t sectionCount, double* pairs,
                     std::int32_t n, CascadeDirection direction)
{
    if (n <= 0)
        return;
    const bool forward = direction == CascadeDirection::Forward;
    double* first = forward ? pairs : pairs + 2 * (n - 1);
    for (std::int32_t i = 0; i < sectionCount; ++i)
    {
        for (std::size_t channel = 0; channel < 2; ++channel)
            RunPlain(taps[i], memory[i], channel, first + channel, forward ? 2 : -2, n);
    }
}

bool CascadeKeepSane(CascadeMemory* memory, std::int32_t sectionCount, double limit)
{
    bool sane[2] = { true, true };
    for (std::int32_t i = 0; i < sectionCount; ++i)
    {
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            sane[channel] &= std::abs(memory[i].s1[channel]) < limit;
            sane[channel] &= std::abs(memory[i].s2[channel]) < limit;
        }
    }
    if (sane[0] && sane[1])
        return true;
    for (std::int32_t i = 0; i < sectionCount; ++i)
    {
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            memory[i].s1[channel] = sane[channel] ? memory[i].s1[channel] : 0.0;
            memory[i].s2[channel] = sane[channel] ? memory[i].s2[channel] : 0.0;
        }
    }
    return false;
}

void CascadeRun(const CascadeTaps* taps, CascadeMemory* memory, std::int32_t sectionCount, double* pairs,
                std::int32_t n, CascadeDirection direction)
{
    if (n < ShortestVectorRun)
    {
        CascadeRunPlain(taps, memory, sectionCount, pairs, n, direction);
        return;
    }
    const bool forward = direction == CascadeDirection::Forward;
    KERNEL(CascadeRunTarget)
    (taps, memory, std::max(sectionCount, 0), forward ? pairs : pairs + 2 * (n - 1), forward ? 2 : -2, n);
}
}   // namespace MVector
#endif
