// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/SpectrumOperations.h"

#include <cmath>

#include "foundation/vector/VectorOperations.h"

namespace SpectrumOperations
{
void Deharmonize(float* x, std::int32_t n, double amount, float* scratch)
{
    float before = 0;
    MVector::Max(x, n, &before);
    if (!(amount > 1e-10) || !(before > 1e-5f))
        return;
    const auto keep = static_cast<float>(std::pow(1.0 - amount, 16.0));
    MVector::Copy(x, scratch, n);
    for (std::int32_t harmonic = 2; harmonic <= 4; ++harmonic)
    {
        std::int32_t i = 1;
        for (std::int32_t source = 1; source < n; source += harmonic, ++i)
            x[i] = x[i] * scratch[source] * (1.0f - keep) + x[i] * keep;
        x[0] *= keep;
        MVector::MultiplyConstantInPlace(x + i, n - i, keep);
    }
    float after = 0;
    MVector::Max(x, n, &after);
    if (after > 1e-20f)
        MVector::MultiplyConstantInPlace(x, n, before / after);
}

void KeepPeaks(float* x, std::int32_t n, double amount, double thresholdDb)
{
    float largest = 0;
    MVector::Max(x, n, &largest);
    const float threshold = static_cast<float>(std::pow(10.0, thresholdDb * 0.05)) * largest;
    const auto factor = static_cast<float>(std::pow(1e-6, amount));
    std::int32_t mark = 0;
    for (std::int32_t i = 2; i <= n - 3; ++i)
    {
        const bool isPeak = x[i] > threshold && x[i] > x[i - 1] && x[i] > x[i + 1] && x[i - 1] > x[i - 2] &&
                            x[i + 1] > x[i + 2];
        if (!isPeak)
            continue;
        MVector::MultiplyConstantInPlace(x + mark, i - mark, factor);
        mark = i + 1;
    }
    MVector::MultiplyConstantInPlace(x + mark, n - mark, factor);
}
}   // namespace SpectrumOperations
