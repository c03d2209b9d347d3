// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// The soft saturation behind the equalizer, mixed with the unsaturated signal: v is a quarter of a sine up
/// to an amplitude of 1 and then stays there, and the square of what that takes away adds even harmonics.
///
///     y = (v + 0.8 (v - x)^2) wet + x (1 - wet),  v = sign(x) sin(pi / 2 min(|x|, 1))
class SoftSaturator
{
public:
    /// The share of the saturated signal, 0 to 1.
    void SetAmount(double amount);
    bool IsActive() const { return active; }
    /// In place on n samples; does nothing when inactive. Within 2e-7 of the formula for |x| up to 2. Thread:
    /// audio.
    void Process(float* samples, std::int32_t n) const;

private:
    bool active = false;
    float wet = 0.0f;
    float dry = 1.0f;
};
