// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/AnalyzerFrequencyMap.h"

#include <algorithm>
#include <cmath>

#include "foundation/vector/VectorOperations.h"

void AnalyzerFrequencyMap::Build(std::int32_t frameSize, double sampleRate, double lowHz, double highHz,
                                 std::int32_t pointCount)
{
    const bool axisChanged = lowHz != low || highHz != high || pointCount != count;
    if (!axisChanged && frameSize == builtFrameSize && sampleRate == builtSampleRate)
        return;
    low = lowHz;
    high = highHz;
    count = pointCount;
    builtFrameSize = frameSize;
    builtSampleRate = sampleRate;
    const double first = std::log10(low);
    const double step = (std::log10(high) - first) / count;
    const double limit = (sampleRate - 2.0) / 2.0;
    for (std::int32_t i = 0; i < count; ++i)
    {
        const auto index = static_cast<std::size_t>(i);
        frequency[index] = static_cast<float>(std::pow(10.0, first + step * (i + 0.5)));
        const double hz = std::min(static_cast<double>(frequency[index]), limit);
        binPosition[index] = static_cast<float>(hz * frameSize / sampleRate);
    }
}

double AnalyzerFrequencyMap::PointsPerDecade() const
{
    return count / (std::log10(high) - std::log10(low));
}

void AnalyzerFrequencyMap::MapToPoints(const float* x, float* out) const
{
    const float* p = binPosition.data();
    const std::int32_t lastBin = builtFrameSize / 2 - 1;
    std::int32_t i = 0;
    for (; i < count && !(p[i] - 1.0f > p[i == 0 ? 0 : i - 1]); ++i)
    {
        const auto bin = static_cast<std::int32_t>(p[i]);
        const float fraction = p[i] - static_cast<float>(bin);
        out[i] = std::pow(x[std::min(bin + 1, lastBin)], fraction) * std::pow(x[bin], 1.0f - fraction);
    }
    for (; i < count; ++i)
    {
        const auto from = static_cast<std::int32_t>(p[i - 1]);
        const auto to = static_cast<std::int32_t>(p[i]);
        if (from >= to)
        {
            // The positions have reached the last bin.
            std::fill(out + i, out + count, 0.0f);
            return;
        }
        MVector::Max(x + from, to - from, out + i);
    }
}
