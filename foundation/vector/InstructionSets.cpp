// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/InstructionSets.h"

#include <atomic>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace MVector::InstructionSets
{
namespace
{
// 0: not asked yet. Whoever asks first writes it; two that ask at once write the same.
std::atomic<std::int64_t> inUse{ 0 };

#if HWY_ARCH_X86
// Not every compiler's check knows these two by name. Bits: Intel, Software Developer's Manual, CPUID.
bool HasLzcntAndF16c()
{
    constexpr unsigned f16cInLeaf1 = 1U << 29;
    constexpr unsigned lzcntInLeaf80000001 = 1U << 5;
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & f16cInLeaf1) == 0)
        return false;
    return __get_cpuid(0x80000001, &a, &b, &c, &d) != 0 && (c & lzcntInLeaf80000001) != 0;
}
#endif
}   // namespace

std::int64_t Supported()
{
    std::int64_t targets = HWY_SCALAR | HWY_EMU128 | HWY_STATIC_TARGET;
#if HWY_ARCH_X86
    // The compiler asks the system as well whether it keeps the wide registers. The conditions are those
    // under which Highway lets the compiler use a target: see HWY_BASELINE_* in its detect_targets.h. Each
    // set contains the last.
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("ssse3"))
        return targets;
    targets |= HWY_SSSE3;
    if (!__builtin_cpu_supports("sse4.1") || !__builtin_cpu_supports("sse4.2") ||
        !__builtin_cpu_supports("pclmul") || !__builtin_cpu_supports("aes"))
        return targets;
    targets |= HWY_SSE4;
    if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma") || !__builtin_cpu_supports("bmi") ||
        !__builtin_cpu_supports("bmi2") || !HasLzcntAndF16c())
        return targets;
    targets |= HWY_AVX2;
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512cd") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512bw"))
        targets |= HWY_AVX3;
#endif
    return targets;
}

std::int64_t InUse()
{
    std::int64_t targets = inUse.load(std::memory_order_relaxed);
    if (targets == 0)
    {
        targets = Supported();
        inUse.store(targets, std::memory_order_relaxed);
    }
    return targets;
}

void Use(std::int64_t targets)
{
    inUse.store(targets, std::memory_order_relaxed);
}
}   // namespace MVector::InstructionSets
