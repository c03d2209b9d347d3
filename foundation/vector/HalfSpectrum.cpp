// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/HalfSpectrum.h"

#include <cmath>
#include <complex>
#include <numbers>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "foundation/vector/HalfSpectrum.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "foundation/vector/ComplexLanes-inl.h"
#include "foundation/vector/InstructionSets.h"

HWY_BEFORE_NAMESPACE();
namespace MVector
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

// Both answer the first k that is left to do: vectors of numbers from k = 1 upwards meet their mirror images
// from M - 1 downwards, as long as they don't overlap.
#if HWY_TARGET == HWY_SCALAR
std::size_t ToPackedRun(const float* /*z*/, const float* /*roots*/, float* /*packed*/, std::size_t /*m*/)
{
    return 1;
}
std::size_t FromPackedRun(const float* /*packed*/, const float* /*roots*/, float* /*z*/, std::size_t /*m*/)
{
    return 1;
}
#else
using V = ComplexLanes::V;

std::size_t ToPackedRun(const float* z, const float* roots, float* packed, std::size_t m)
{
    const std::size_t count = ComplexLanes::FloatCount() / 2;
    const V half = hn::Set(ComplexLanes::Floats(), 0.5f);
    std::size_t k = 1;
    for (; 2 * (k + count) <= m; k += count)
    {
        const std::size_t mirror = m - k - count + 1;
        const V element = ComplexLanes::Load(z + 2 * k);
        const V image = ComplexLanes::Conjugate(ComplexLanes::Reverse(ComplexLanes::Load(z + 2 * mirror)));
        const V even = hn::Mul(half, hn::Add(element, image));
        const V odd = hn::Mul(half, hn::Sub(element, image));
        const V turned = ComplexLanes::Turn(ComplexLanes::Times(odd, ComplexLanes::Load(roots + 2 * k)));
        ComplexLanes::Store(hn::Sub(even, turned), packed + 2 * k);
        const V above = ComplexLanes::Conjugate(hn::Add(even, turned));
        ComplexLanes::Store(ComplexLanes::Reverse(above), packed + 2 * mirror);
    }
    return k;
}

std::size_t FromPackedRun(const float* packed, const float* roots, float* z, std::size_t m)
{
    const std::size_t count = ComplexLanes::FloatCount() / 2;
    std::size_t k = 1;
    for (; 2 * (k + count) <= m; k += count)
    {
        const std::size_t mirror = m - k - count + 1;
        const V bin = ComplexLanes::Load(packed + 2 * k);
        const V above =
            ComplexLanes::Conjugate(ComplexLanes::Reverse(ComplexLanes::Load(packed + 2 * mirror)));
        const V even = hn::Add(bin, above);
        const V root = ComplexLanes::Conjugate(ComplexLanes::Load(roots + 2 * k));
        const V turned = ComplexLanes::Turn(ComplexLanes::Times(hn::Sub(bin, above), root));
        ComplexLanes::Store(hn::Add(even, turned), z + 2 * k);
        const V image = ComplexLanes::Conjugate(hn::Sub(even, turned));
        ComplexLanes::Store(ComplexLanes::Reverse(image), z + 2 * mirror);
    }
    return k;
}
#endif
}   // namespace HWY_NAMESPACE
}   // namespace MVector
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace MVector
{
KERNEL_TABLE(ToPackedRun);
KERNEL_TABLE(FromPackedRun);
}   // namespace MVector

namespace HalfSpectrum
{
namespace
{
using Number = std::complex<float>;

Number At(const float* numbers, std::size_t k)
{
    return { numbers[2 * k], numbers[2 * k + 1] };
}

void Put(Number number, float* numbers, std::size_t k)
{
    numbers[2 * k] = number.real();
    numbers[2 * k + 1] = number.imag();
}

/// The product without the care for infinities that the operator takes.
Number Times(Number a, Number b)
{
    return { a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real() };
}
}   // namespace

void FillRoots(float* roots, std::size_t m)
{
    // Products of two short tables in double: sines for all of them would cost more than planning the
    // transform.
    constexpr std::size_t FineCount = 64;
    std::complex<double> fine[FineCount];
    for (std::size_t i = 0; i < FineCount; ++i)
        fine[i] = std::polar(1.0, -std::numbers::pi * static_cast<double>(i) / static_cast<double>(m));
    std::complex<double> coarse = 1.0;
    for (std::size_t k = 0; k <= m / 2; ++k)
    {
        if (k % FineCount == 0)
            coarse = std::polar(1.0, -std::numbers::pi * static_cast<double>(k) / static_cast<double>(m));
        const std::complex<double> step = fine[k % FineCount];
        roots[2 * k] = static_cast<float>(coarse.real() * step.real() - coarse.imag() * step.imag());
        roots[2 * k + 1] = static_cast<float>(coarse.real() * step.imag() + coarse.imag() * step.real());
    }
}

void ToPacked(const float* z, const float* roots, float* packed, std::size_t m)
{
    packed[0] = z[0] + z[1];
    packed[1] = z[0] - z[1];
    if (m < 2)
        return;
    for (std::size_t k = KERNEL(MVector::ToPackedRun)(z, roots, packed, m); 2 * k < m; ++k)
    {
        const Number even = 0.5f * (At(z, k) + std::conj(At(z, m - k)));
        const Number odd = 0.5f * (At(z, k) - std::conj(At(z, m - k)));
        const Number turned = Times({ 0.0f, 1.0f }, Times(At(roots, k), odd));
        Put(even - turned, packed, k);
        Put(std::conj(even + turned), packed, m - k);
    }
    Put(std::conj(At(z, m / 2)), packed, m / 2);
}

void FromPacked(const float* packed, const float* roots, float* z, std::size_t m)
{
    z[0] = packed[0] + packed[1];
    z[1] = packed[0] - packed[1];
    if (m < 2)
        return;
    for (std::size_t k = KERNEL(MVector::FromPackedRun)(packed, roots, z, m); 2 * k < m; ++k)
    {
        const Number even = At(packed, k) + std::conj(At(packed, m - k));
        const Number odd = At(packed, k) - std::conj(At(packed, m - k));
        const Number turned = Times({ 0.0f, 1.0f }, Times(std::conj(At(roots, k)), odd));
        Put(even + turned, z, k);
        Put(std::conj(even - turned), z, m - k);
    }
    Put(2.0f * std::conj(At(packed, m / 2)), z, m / 2);
}
}   // namespace HalfSpectrum
#endif
