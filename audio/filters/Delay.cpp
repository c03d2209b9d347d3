// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/Delay.h"

#include <algorithm>

namespace MAudioFilters
{
namespace
{
/// Storage is given back from this length on; below it, moving a control back and forth allocates nothing.
constexpr std::int32_t ReleaseLength = 1250000;
}   // namespace

std::int32_t Delay<float>::SetLength(std::int32_t samples)
{
    const std::int32_t newLength = std::max(samples, 1);
    if (newLength == length)
        return 0;
    std::rotate(buffer.begin(), buffer.begin() + position, buffer.end());
    position = 0;
    if (newLength > length)
        Grow(static_cast<std::size_t>(newLength));
    else
        Shrink(static_cast<std::size_t>(newLength));
    length = newLength;
    return 1;
}

/// The value at the old position newIndex * (oldLength - 1) / (newLength - 1).
float Delay<float>::At(std::size_t newIndex, std::size_t oldLength, std::size_t newLength) const
{
    const std::size_t last = oldLength - 1;
    if (newLength == 1)
        return buffer[last];
    const float place =
        static_cast<float>(newIndex) * static_cast<float>(last) / static_cast<float>(newLength - 1);
    const auto index = std::min(static_cast<std::size_t>(place), last);
    const std::size_t next = std::min(index + 1, last);
    const float fraction = std::min(place - static_cast<float>(index), 1.0f);
    return buffer[index] + (buffer[next] - buffer[index]) * fraction;
}

// The source of a new index lies at or below it when the line grows, at or above it when it shrinks: the
// order of each loop never overwrites what it still has to read.
void Delay<float>::Grow(std::size_t newLength)
{
    const auto oldLength = static_cast<std::size_t>(length);
    buffer.resize(newLength, 0.0f);
    if (oldLength == 0)
        return;
    for (std::size_t i = newLength; i-- > 0;)
        buffer[i] = At(i, oldLength, newLength);
}

void Delay<float>::Shrink(std::size_t newLength)
{
    const auto oldLength = static_cast<std::size_t>(length);
    for (std::size_t i = 0; i < newLength; ++i)
        buffer[i] = At(i, oldLength, newLength);
    buffer.resize(newLength);
    if (static_cast<std::int32_t>(newLength) >= ReleaseLength)
        buffer.shrink_to_fit();
}

void Delay<float>::Clear()
{
    std::fill(buffer.begin(), buffer.end(), 0.0f);
    position = 0;
}

void Delay<float>::Process(const float* src, float* dst, std::int32_t n)
{
    if (length == 0)
    {
        if (n > 0 && src != dst)
            std::copy(src, src + n, dst);
        return;
    }
    for (std::int32_t i = 0; i < n; ++i)
    {
        float& place = buffer[static_cast<std::size_t>(position)];
        const float incoming = src[i];
        dst[i] = place;
        place = incoming;
        position = position + 1 == length ? 0 : position + 1;
    }
}
}   // namespace MAudioFilters
