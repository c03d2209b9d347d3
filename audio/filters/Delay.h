// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace MAudioFilters
{
/// A delay line whose length may change while it holds audio: what it holds is stretched to the new length.
template <typename T>
class Delay;

template <>
class Delay<float>
{
public:
    Delay() = default;
    Delay(const Delay&) = default;
    Delay& operator=(const Delay&) = default;
    virtual ~Delay() = default;

    std::int32_t Length() const { return length; }
    /// Below 1 acts as 1. Stretches the content by linear interpolation, oldest sample on oldest and newest
    /// on newest. Answers 1 if the length changed, else 0. Allocates when it grows beyond any length before.
    std::int32_t SetLength(std::int32_t samples);
    /// Silence of the present length.
    void Clear();
    /// Delays n samples by Length(), 0 being a wire. src and dst may be the same array. Thread: audio.
    void Process(const float* src, float* dst, std::int32_t n);

private:
    void Grow(std::size_t newLength);
    void Shrink(std::size_t newLength);
    float At(std::size_t newIndex, std::size_t oldLength, std::size_t newLength) const;

    std::vector<float> buffer;
    std::int32_t length = 0;
    std::int32_t position = 0;   // of the oldest sample, which the next one replaces
};
}   // namespace MAudioFilters
