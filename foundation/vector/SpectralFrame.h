// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

/// A frame of 32768 real samples whose spectrum is multiplied by real gains. Does what window, FFTForward,
/// multiplication, FFTInverse and overlap-add do one after the other, up to rounding, in less than half the
/// time: nothing is put into the packed layout on the way, and the transform works in pieces that stay in the
/// cache. One thread at a time; only construction allocates.
class SpectralFrame
{
public:
    static constexpr std::int32_t Length = 32768;

    SpectralFrame();
    ~SpectralFrame();
    SpectralFrame(const SpectralFrame&) = delete;
    SpectralFrame& operator=(const SpectralFrame&) = delete;

    /// frame[at + i] = samples[i] * window[i]. `at` and n are even.
    void Load(const float* samples, const float* window, std::int32_t at, std::int32_t n);
    /// Multiplies bin k by gains[2 k], k = 0 to 16383, and bin 16384 by gains[0]. The array has Length
    /// values, each gain twice, as for a packed spectrum; null multiplies nothing. The frame comes back times
    /// Length.
    void Process(const float* gains);
    /// target[i] += frame[at + i] * scale, or = instead of += if `replace` is set. `at` and n are even.
    void Unload(std::int32_t at, float scale, float* target, std::int32_t n, bool replace) const;

private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation;
};
