// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/SoftSaturator.h"

#include "foundation/vector/Saturation.h"

namespace
{
constexpr float EvenAmount = 0.8f;
}

void SoftSaturator::SetAmount(double amount)
{
    active = amount - 1e-20 > 0.0;
    wet = static_cast<float>(amount);
    dry = 1.0f - wet;
}

void SoftSaturator::Process(float* samples, std::int32_t n) const
{
    if (active)
        MVector::SaturateInPlace(samples, n, EvenAmount, wet, dry);
}
