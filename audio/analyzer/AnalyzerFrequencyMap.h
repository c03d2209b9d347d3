// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

/// Maps an FFT spectrum to points that are evenly spaced on a logarithmic frequency axis.
class AnalyzerFrequencyMap
{
public:
    static constexpr std::int32_t MaxCount = 1024;

    /// @param frameSize   FFT length, a power of two
    /// @param sampleRate  Hz
    /// @param lowHz, highHz  the axis; point i of `count` (at most MaxCount) stands at
    ///                    10^(log10 low + (i + 0.5) (log10 high - log10 low) / count) Hz
    void Build(std::int32_t frameSize, double sampleRate, double lowHz, double highHz, std::int32_t count);

    /// Fills out[0 .. Count() - 1] from the frameSize / 2 linear amplitudes of x. Where bins are further
    /// apart than points, the points lie on lines between them that are straight in dB; where a point covers
    /// several bins it takes the largest; points above the last bin are 0.
    void MapToPoints(const float* x, float* out) const;

    std::int32_t Count() const { return count; }
    /// Hz, valid below Count().
    const std::array<float, MaxCount>& Frequency() const { return frequency; }
    const std::array<float, MaxCount>& BinPosition() const { return binPosition; }
    double PointsPerDecade() const;

private:
    std::array<float, MaxCount> frequency{};
    std::array<float, MaxCount> binPosition{};   // in bins of the FFT
    std::int32_t count = 0;
    double low = 0;
    double high = 0;
    std::int32_t builtFrameSize = 0;
    double builtSampleRate = 0;
};
