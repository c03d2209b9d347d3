// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/vector/FFT.h"

/// The smoothing kernel of analyses: a bell over 2h + 1 points that sums to 1. Beyond the ends of an array,
/// its first and last value continue.
///
/// Operations may allocate. Thread: one at a time, not the audio thread.
class Interpolator
{
public:
    Interpolator();

    /// @param width  points from the centre to where the bell has fallen to e^-4; h is width rounded up, at
    ///               least 1. A change of the width that leaves h as it is does nothing.
    void SetWidth(double width);
    /// h. With 1 nothing is smoothed by those who use this.
    std::int32_t HalfLength() const { return halfLength; }
    /// The 2h + 1 taps.
    const std::vector<float>& Kernel() const { return kernel; }

    /// dst[i] = sum over k from -h to h of kernel(k) src[i + k]. dst may be src.
    /// @param allowFFT  a kernel of h >= 31 then runs through an FFT, to the same result up to rounding
    void Convolve(float* dst, const float* src, std::int32_t n, bool allowFFT);
    /// dst[i] = maximum over k of e^-(2 k / width)^2 src[i + k]: a lone peak becomes a bell of its own
    /// height.
    void MaxFilter(float* dst, const float* src, std::int32_t n);

private:
    std::size_t ExtendedLength(std::int32_t n) const
    {
        const std::int32_t length = n + 2 * halfLength;
        return static_cast<std::size_t>(length);
    }
    void ExtendEdges(const float* src, std::int32_t n, std::size_t length);
    void ConvolveByFFT(float* dst, std::int32_t n);

    std::int32_t halfLength = 0;
    std::vector<float> kernel;
    double total = 1;   // of the kernel before it was scaled to a sum of 1
    std::vector<float> edgeBuffer;

    std::int32_t transformOrder = 0;   // of `kernelSpectrum`; 0 while there is none for this kernel
    std::int32_t fftOrder = 0;
    MFFT fft;
    std::vector<float> kernelSpectrum;
};
