// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

/// The plain loops that MVector speeds up, one line each: the meaning of every operation, and what tests
/// and benchmarks compare with. Sums run in double here. Not for the audio path.
namespace MVectorReference
{
using Count = std::int32_t;

template <typename F>
inline void Each(Count n, F operation)
{
    for (Count i = 0; i < n; ++i)
        operation(i);
}

inline void Add(const float* a, const float* b, float* dst, Count n)
{
    Each(n, [=](Count i) { dst[i] = a[i] + b[i]; });
}
inline void AddInPlace(const float* src, float* srcDst, Count n)
{
    Each(n, [=](Count i) { srcDst[i] += src[i]; });
}
inline void SubInPlace(const float* src, float* srcDst, Count n)
{
    Each(n, [=](Count i) { srcDst[i] -= src[i]; });
}
inline void Sub(const float* a, const float* b, float* dst, Count n)
{
    Each(n, [=](Count i) { dst[i] = b[i] - a[i]; });
}
inline void AddConstant(const float* src, float value, float* dst, Count n)
{
    Each(n, [=](Count i) { dst[i] = src[i] + value; });
}
inline void Multiply(const float* a, const float* b, float* dst, Count n)
{
    Each(n, [=](Count i) { dst[i] = a[i] * b[i]; });
}
inline void MultiplyConstant(const float* src, float value, float* dst, Count n)
{
    Each(n, [=](Count i) { dst[i] = src[i] * value; });
}
inline void AddScaled(float* dst, const float* src, Count n, float value)
{
    Each(n, [=](Count i) { dst[i] += src[i] * value; });
}
inline void AddProduct(const float* a, const float* b, float* srcDst, Count n)
{
    Each(n, [=](Count i) { srcDst[i] += a[i] * b[i]; });
}
inline void Square(const float* src, float* dst, Count n)
{
    Each(n, [=](Count i) { dst[i] = src[i] * src[i]; });
}
inline void MaxEveryInPlace(const float* src, float* srcDst, Count n)
{
    Each(n, [=](Count i) { srcDst[i] = std::max(srcDst[i], src[i]); });
}
inline void ThresholdLowInPlace(float* srcDst, Count n, float level)
{
    Each(n, [=](Count i) { srcDst[i] = srcDst[i] < level ? level : srcDst[i]; });
}
inline void ClipInPlace(float* srcDst, Count n, float low, float high)
{
    Each(n, [=](Count i) { srcDst[i] = std::min(std::max(srcDst[i], low), high); });
}

inline double Sum(const float* src, Count n)
{
    double sum = 0;
    Each(n, [&](Count i) { sum += static_cast<double>(src[i]); });
    return sum;
}
inline double AbsSum(const float* src, Count n)
{
    double sum = 0;
    Each(n, [&](Count i) { sum += std::abs(static_cast<double>(src[i])); });
    return sum;
}
inline double DotProduct(const float* a, const float* b, Count n)
{
    double sum = 0;
    Each(n, [&](Count i) { sum += static_cast<double>(a[i]) * static_cast<double>(b[i]); });
    return sum;
}

inline void Ln(const float* src, float* dst, Count n)
{
    Each(n, [=](Count i) { dst[i] = std::log(src[i]); });
}
inline void Exp(const float* src, float* dst, Count n)
{
    Each(n, [=](Count i) { dst[i] = std::exp(src[i]); });
}
inline void Log10(const float* src, float* dst, Count n)
{
    Each(n, [=](Count i) { dst[i] = std::log10(src[i]); });
}
inline void Magnitude(const float* srcComplex, float* dst, Count n)
{
    Each(n,
         [=](Count i)
         {
             dst[i] = std::sqrt(srcComplex[2 * i] * srcComplex[2 * i] +
                                srcComplex[2 * i + 1] * srcComplex[2 * i + 1]);
         });
}
inline void ComplexMultiply(const float* a, const float* b, float* dst, Count n)
{
    Each(n,
         [=](Count i)
         {
             const float re = a[2 * i] * b[2 * i] - a[2 * i + 1] * b[2 * i + 1];
             const float im = a[2 * i] * b[2 * i + 1] + a[2 * i + 1] * b[2 * i];
             dst[2 * i] = re;
             dst[2 * i + 1] = im;
         });
}
}   // namespace MVectorReference
