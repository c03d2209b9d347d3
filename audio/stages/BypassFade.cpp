// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/stages/BypassFade.h"

#include <algorithm>
#include <cmath>

#include "foundation/vector/Saturation.h"
#include "foundation/vector/VectorOperations.h"

void BypassFade::Prepare(double sampleRate, bool bypassed)
{
    step = 1.0 / std::max(Seconds * sampleRate, 1.0);
    share = shareBefore = bypassed ? 1.0 : 0.0;
}

void BypassFade::Begin(bool bypassed, std::int32_t sampleCount)
{
    const double target = bypassed ? 1.0 : 0.0;
    count = sampleCount;
    shareBefore = share;
    direction = target > share ? step : -step;
    const double left = std::ceil(std::fabs(target - share) / step);
    fading = static_cast<std::int32_t>(std::min<double>(left, sampleCount));
    share = left <= sampleCount ? target : share + direction * sampleCount;
}

void BypassFade::Apply(float* processed, float* dry) const
{
    if (fading > 0)
    {
        MVector::MultiplyRampInPlace(processed, fading, 1.0 - shareBefore, -direction);
        MVector::MultiplyRampInPlace(dry, fading, shareBefore, direction);
        MVector::AddInPlace(dry, processed, fading);
    }
    // What isn't heard may be anything: it takes no part, not even times zero.
    if (fading < count && share > 0.5)
        MVector::Copy(dry + fading, processed + fading, count - fading);
}
