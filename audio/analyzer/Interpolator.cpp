// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/Interpolator.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "foundation/vector/VectorOperations.h"

namespace
{
// From here on two transforms cost less than the taps.
constexpr std::int32_t FirstHalfLengthByFFT = 31;
constexpr float SpectrumGuard = 1e-15f;
}   // namespace

Interpolator::Interpolator()
{
    SetWidth(1.0);
}

void Interpolator::SetWidth(double width)
{
    if (!(width > 1.0))
        width = 1.0;
    const auto newHalfLength = static_cast<std::int32_t>(std::ceil(width));
    if (newHalfLength == halfLength)
        return;
    halfLength = newHalfLength;
    transformOrder = 0;

    const auto centre = static_cast<std::size_t>(halfLength);
    kernel.assign(2 * centre + 1, 1.0f);
    double distance = 0;
    double sides = 0;
    for (std::size_t i = 1; i <= centre; ++i)
    {
        distance += 2.0 / width;
        const auto tap = static_cast<float>(std::exp(-distance * distance));
        kernel[centre - i] = tap;
        kernel[centre + i] = tap;
        sides += static_cast<double>(tap);
    }
    total = 1.0 + 2.0 * sides;
    MVector::MultiplyConstantInPlace(kernel.data(), static_cast<std::int32_t>(kernel.size()),
                                     static_cast<float>(1.0 / total));
}

// h copies of the first value, the array, and copies of the last value up to `length`.
void Interpolator::ExtendEdges(const float* src, std::int32_t n, std::size_t length)
{
    edgeBuffer.resize(length);
    const auto begin = edgeBuffer.begin() + halfLength;
    std::copy_n(src, n, begin);
    std::fill(edgeBuffer.begin(), begin, src[0]);
    std::fill(begin + n, edgeBuffer.end(), src[n - 1]);
}

void Interpolator::Convolve(float* dst, const float* src, std::int32_t n, bool allowFFT)
{
    if (n < 1)
        return;
    const std::size_t length = ExtendedLength(n);
    if (halfLength >= FirstHalfLengthByFFT && allowFFT)
    {
        ExtendEdges(src, n, std::bit_ceil(length));
        ConvolveByFFT(dst, n);
        return;
    }
    ExtendEdges(src, n, length);
    MVector::MultiplyConstant(edgeBuffer.data(), kernel[0], dst, n);
    for (std::size_t j = 1; j < kernel.size(); ++j)
        MVector::AddScaled(dst, edgeBuffer.data() + j, n, kernel[j]);
}

// Circular convolution; the points from 2h on hold no wrapped value.
void Interpolator::ConvolveByFFT(float* dst, std::int32_t n)
{
    const std::size_t length = edgeBuffer.size();
    const auto size = static_cast<std::int32_t>(length);
    const auto order = static_cast<std::int32_t>(std::countr_zero(length));
    if (fftOrder != order)
    {
        fft = MFFT(order, FFTDivideInverse);
        fftOrder = order;
    }
    if (transformOrder != order)
    {
        kernelSpectrum.assign(length, 0.0f);
        std::copy(kernel.begin(), kernel.end(), kernelSpectrum.begin());
        fft.Forward(kernelSpectrum.data());
        MVector::AddConstantInPlace(SpectrumGuard, kernelSpectrum.data(), size);
        transformOrder = order;
    }
    float* data = edgeBuffer.data();
    fft.Forward(data);
    MVector::AddConstantInPlace(SpectrumGuard, data, size);
    data[0] *= kernelSpectrum[0];
    data[1] *= kernelSpectrum[1];
    MVector::ComplexMultiply(data + 2, kernelSpectrum.data() + 2, data + 2, size / 2 - 1);
    fft.Inverse(data);
    MVector::Copy(data + 2 * halfLength, dst, n);
}

void Interpolator::MaxFilter(float* dst, const float* src, std::int32_t n)
{
    if (n < 1)
        return;
    ExtendEdges(src, n, ExtendedLength(n));
    MVector::MultiplyConstant(edgeBuffer.data(), kernel[0], dst, n);
    for (std::size_t j = 1; j < kernel.size(); ++j)
    {
        const float tap = kernel[j];
        const float* shifted = edgeBuffer.data() + j;
        for (std::int32_t i = 0; i < n; ++i)
            dst[i] = std::max(dst[i], tap * shifted[i]);
    }
    MVector::MultiplyConstantInPlace(dst, n, static_cast<float>(total));
}
