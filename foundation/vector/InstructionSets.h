// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

#include <hwy/targets.h>

/// Which of its instruction sets a kernel runs with. Highway's headers compile each kernel once for every
/// set, a "target" HWY_SSE4, HWY_AVX2 ...; the choice among them is made here, so that the module needs no
/// library for it.
///
///     KERNEL_TABLE(AddRun);                    // behind the kernels, #if HWY_ONCE
///     KERNEL(AddRun)(a, b, dst, count);        // the call
///
/// Thread: any.
namespace MVector::InstructionSets
{
/// The targets that this processor and its system can run, HWY_* bits; the plain fallback is always among
/// them.
std::int64_t Supported();

/// The targets that kernels may use from now on: all supported ones, unless a test or a benchmark narrowed
/// them.
std::int64_t InUse();

/// Lets kernels use nothing but `targets`, or the fallback where a kernel has none of them; 0: all that are
/// supported. For tests and benchmarks.
void Use(std::int64_t targets);

/// Index in a kernel's table, which holds one entry for each bit that a target of this architecture can have,
/// the best first, and the fallback last.
/// @param compiled  the targets that the table's kernels were compiled for
inline std::size_t TableIndex(std::int64_t compiled)
{
    const std::int64_t bits = HWY_CHOSEN_TARGET_SHIFT(InUse() & compiled) | HWY_CHOSEN_TARGET_MASK_SCALAR;
    // Bit 0 of that form has no target.
    return static_cast<std::size_t>(__builtin_ctzll(static_cast<unsigned long long>(bits))) - 1;
}
}   // namespace MVector::InstructionSets

#define KERNEL_TABLE(name)                                                                                   \
    static decltype(&HWY_STATIC_DISPATCH(name)) const HWY_CONCAT(                                            \
        name, Kernels)[HWY_MAX_DYNAMIC_TARGETS + 1] = { HWY_CHOOSE_TARGET_LIST(name),                        \
                                                        HWY_CHOOSE_FALLBACK(name) }
#define KERNEL(name) (*HWY_CONCAT(name, Kernels)[MVector::InstructionSets::TableIndex(HWY_TARGETS)])
