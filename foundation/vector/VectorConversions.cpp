// SPDX-License-Identifier: GPL-3.0-or-later
// The operations that no audio block waits for: plain loops in the widest sensible precision.
#include <cmath>
#include <numbers>

#include "foundation/vector/VectorOperations.h"

namespace MVector
{
namespace
{
/// Multiplies by shape(x), x = i / (n - 1) from 0 to 1. A window of one point is taken at x = 0.
template <typename Shape>
void MultiplyWindow(float* srcDst, std::int32_t n, Shape shape)
{
    const double last = n > 1 ? n - 1 : 1;
    for (std::int32_t i = 0; i < n; ++i)
        srcDst[i] = static_cast<float>(static_cast<double>(srcDst[i]) * shape(i / last));
}
}   // namespace

void PowerConstant(const float* src, float value, float* dst, std::int32_t n)
{
    for (std::int32_t i = 0; i < n; ++i)
        dst[i] = std::pow(src[i], value);
}

void Phase(const float* srcComplex, float* dst, std::int32_t n)
{
    for (std::int32_t i = 0; i < n; ++i)
        dst[i] = std::atan2(srcComplex[2 * i + 1], srcComplex[2 * i]);
}

void PolarToComplex(const float* magnitude, const float* phase, float* dstComplex, std::int32_t n)
{
    for (std::int32_t i = 0; i < n; ++i)
    {
        dstComplex[2 * i] = magnitude[i] * std::cos(phase[i]);
        dstComplex[2 * i + 1] = magnitude[i] * std::sin(phase[i]);
    }
}

void ConvertFrom16Bit(const std::int16_t* src, float* dst, std::int32_t n)
{
    for (std::int32_t i = 0; i < n; ++i)
        dst[i] = static_cast<float>(src[i]);
}

void ConvertFrom32Bit(const std::int32_t* src, float* dst, std::int32_t n)
{
    for (std::int32_t i = 0; i < n; ++i)
        dst[i] = static_cast<float>(src[i]);
}

void WindowHann(float* srcDst, std::int32_t n)
{
    MultiplyWindow(srcDst, n, [](double x) { return 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * x); });
}

void WindowBlackman(float* srcDst, std::int32_t n)
{
    MultiplyWindow(srcDst, n,
                   [](double x)
                   {
                       const double turn = 2.0 * std::numbers::pi * x;
                       return 0.42 - 0.5 * std::cos(turn) + 0.08 * std::cos(2.0 * turn);
                   });
}

void WindowBartlett(float* srcDst, std::int32_t n)
{
    MultiplyWindow(srcDst, n, [](double x) { return 1.0 - std::abs(2.0 * x - 1.0); });
}
}   // namespace MVector
