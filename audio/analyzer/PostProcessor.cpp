// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/PostProcessor.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "audio/analyzer/Interpolator.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
// log2(20000 / 20) / 1024, to ten digits.
constexpr double OctavesPerPoint = 0.0097322265625;
constexpr std::int32_t BandsOfViewType[] = { 0, 30, 10 };
}   // namespace

void PostProcessor::Process(float* array) const
{
    ApplySlope(array);
    if (const double gainDb = GetGain(); gainDb != 0.0)
        MVector::MultiplyConstantInPlace(array, PointCount,
                                         static_cast<float>(std::pow(10.0, gainDb * 0.05)));
    if (interpolator != nullptr && interpolator->HalfLength() > 1)
    {
        if (maximizedSmoothing != nullptr && *maximizedSmoothing)
            interpolator->MaxFilter(array, array, PointCount);
        else
            interpolator->Convolve(array, array, PointCount, true);
    }
    ApplyBands(array);
}

void PostProcessor::ApplySlope(float* array) const
{
    const double dbPerOctave = GetSlope();
    if (!(std::abs(dbPerOctave) >= 0.0001))
        return;
    const double ratio = std::pow(10.0, dbPerOctave * OctavesPerPoint * 0.05);
    double factor = 1.0;
    for (std::int32_t i = 0; i < PointCount; ++i, factor *= ratio)
        array[i] = static_cast<float>(array[i] * factor);
}

// The bands divide the points evenly; each shows its largest value.
void PostProcessor::ApplyBands(float* array) const
{
    std::int64_t count = 0;
    if (bands != nullptr && *bands >= 1)
        count = *bands;
    else if (viewType != nullptr && *viewType >= 0 && *viewType < std::ssize(BandsOfViewType))
        count = BandsOfViewType[*viewType];
    for (std::int64_t band = 0; band < count; ++band)
    {
        const auto from = static_cast<std::int32_t>(PointCount * band / count);
        const auto to = static_cast<std::int32_t>(PointCount * (band + 1) / count);
        float largest = 0;
        MVector::Max(array + from, to - from, &largest);
        MVector::Set(largest, array + from, to - from);
    }
}

void PostProcessor::Normalize(float* array) const
{
    if (!IsNormalized())
        return;
    float level = 0;
    if (reference != nullptr)
        level = *reference;
    else
        MVector::Max(array, PointCount, &level);
    if (level > 1e-6f)
        MVector::MultiplyConstantInPlace(array, PointCount, 1.0f / level);
}
