// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/OutputGain.h"

#include <cmath>

#include "foundation/vector/Saturation.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
double FactorOf(double gainDb)
{
    return std::pow(10.0, gainDb * 0.05);
}
}   // namespace

void OutputGain::Process(double gainDb, float* const* channels, std::int32_t channelCount,
                         std::int32_t frames)
{
    if (frames <= 0)
        return;
    const double present = FactorOf(gainDb);
    if (gainDb != previousDb)
    {
        const double start = FactorOf(previousDb);
        for (std::int32_t i = 0; i < channelCount; ++i)
            MVector::MultiplyRampInPlace(channels[i], frames, start, (present - start) / frames);
        previousDb = gainDb;
        return;
    }
    if (std::abs(present - 1.0) < 1e-50)
        return;
    for (std::int32_t i = 0; i < channelCount; ++i)
        MVector::MultiplyConstantInPlace(channels[i], frames, static_cast<float>(present));
}
