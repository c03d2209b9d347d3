// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Makes a buffer hold `sampleCount` samples: it grows to the next power of two and keeps its memory, so that
/// a host's usual block lengths stop allocating.
inline void GrowBuffer(std::vector<float>& buffer, std::int32_t sampleCount)
{
    std::size_t size = std::max<std::size_t>(buffer.size(), 2);
    while (size < static_cast<std::size_t>(sampleCount))
        size *= 2;
    if (size > buffer.size())
        buffer.resize(size);
}
