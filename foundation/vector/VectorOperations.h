// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Arithmetic on float arrays. Throughout: `n` counts elements, n = 0 does nothing, arrays need no
/// alignment, and a destination may be the same array as a source unless a line says otherwise. The
/// instruction set is chosen at run time. Nothing here allocates or throws. Any thread.
namespace MVector
{
void Zero(float* dst, std::int32_t n);
void Set(float value, float* dst, std::int32_t n);
/// The arrays do not overlap; Move is for those that do.
void Copy(const float* src, float* dst, std::int32_t n);
void Move(const float* src, float* dst, std::int32_t n);
/// Samples beyond 200 dB over full scale are no audio.
inline constexpr float LargestSample = 1e10f;
/// dst[i] = src[i], or 0 where that is no audio: not a number, beyond LargestSample or subnormal. The same
/// array is allowed.
void CopyAudio(const float* src, float* dst, std::int32_t n);
void Add(const float* a, const float* b, float* dst, std::int32_t n);
void AddInPlace(const float* src, float* srcDst, std::int32_t n);
void SubInPlace(const float* src, float* srcDst, std::int32_t n);
/// dst[i] = b[i] - a[i].
void Sub(const float* a, const float* b, float* dst, std::int32_t n);
void AddConstant(const float* src, float value, float* dst, std::int32_t n);
void AddConstantInPlace(float value, float* srcDst, std::int32_t n);
void Multiply(const float* a, const float* b, float* dst, std::int32_t n);
void MultiplyConstant(const float* src, float value, float* dst, std::int32_t n);
void MultiplyConstantInPlace(float* srcDst, std::int32_t n, float value);
/// dst[i] += src[i] * value.
void AddScaled(float* dst, const float* src, std::int32_t n, float value);
/// srcDst[i] += a[i] * b[i].
void AddProduct(const float* a, const float* b, float* srcDst, std::int32_t n);
void Square(const float* src, float* dst, std::int32_t n);
void SquareInPlace(float* srcDst, std::int32_t n);
void MaxEveryInPlace(const float* src, float* srcDst, std::int32_t n);
void ThresholdLowInPlace(float* srcDst, std::int32_t n, float level);
void ClipInPlace(float* srcDst, std::int32_t n, float low, float high);

/// Reductions; with n = 0 the result is left alone. Sums run in float, in several partial sums.
void Max(const float* src, std::int32_t n, float* out);
void Min(const float* src, std::int32_t n, float* out);
/// The first of equal elements.
void MaxIndex(const float* src, std::int32_t n, float* outValue, std::int32_t* outIndex);
void MinIndex(const float* src, std::int32_t n, float* outValue, std::int32_t* outIndex);
void MinMax(const float* src, std::int32_t n, float* outMin, float* outMax);
void AbsMax(const float* src, std::int32_t n, float* out);
void Sum(const float* src, std::int32_t n, float* out);
void AbsSum(const float* src, std::int32_t n, float* out);
void DotProduct(const float* a, const float* b, std::int32_t n, float* out);

/// Natural logarithm; src[i] > 0. Within 2 units in the last place for normal floats.
void Ln(const float* src, float* dst, std::int32_t n);
void Exp(const float* src, float* dst, std::int32_t n);
void Log10(const float* src, float* dst, std::int32_t n);
void PowerConstant(const float* src, float value, float* dst, std::int32_t n);

/// n interleaved complex pairs.
void Magnitude(const float* srcComplex, float* dst, std::int32_t n);
void Phase(const float* srcComplex, float* dst, std::int32_t n);
void PolarToComplex(const float* magnitude, const float* phase, float* dstComplex, std::int32_t n);
void ComplexMultiply(const float* a, const float* b, float* dst, std::int32_t n);

/// Signed integers to float by plain value.
void ConvertFrom16Bit(const std::int16_t* src, float* dst, std::int32_t n);
void ConvertFrom32Bit(const std::int32_t* src, float* dst, std::int32_t n);

/// Window shapes, multiplying what is in the array; x = i / (n - 1).
void WindowHann(float* srcDst, std::int32_t n);
void WindowBlackman(float* srcDst, std::int32_t n);
void WindowBartlett(float* srcDst, std::int32_t n);
}   // namespace MVector
