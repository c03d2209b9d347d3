// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/stages/SlidingSum.h"

#include <algorithm>
#include <cstddef>

void SlidingSum::Prepare(std::int32_t length)
{
    ring.assign(static_cast<std::size_t>(std::max(length, 1)), 0.0f);
    writeIndex = 0;
    sum = 0;
    lapSum = 0;
    scale = 1.0 / static_cast<double>(ring.size());
}

void SlidingSum::Fix(double value)
{
    sum = value;
    scale = 1;
}

void SlidingSum::Slide(const float* samples, std::int32_t sampleCount)
{
    for (std::int32_t index = 0; index < sampleCount; ++index)
    {
        const double sample = samples[index];
        sum += sample - static_cast<double>(ring[writeIndex]);
        lapSum += sample;
        ring[writeIndex] = samples[index];
        if (++writeIndex == ring.size())
        {
            writeIndex = 0;
            sum = lapSum;
            lapSum = 0;
        }
    }
}
