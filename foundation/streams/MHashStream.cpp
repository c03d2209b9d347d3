// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MHashStream.h"

#include <algorithm>

#include "foundation/text/MException.h"

void MHashStream::SetBlockSize(std::int32_t size)
{
    blockSize = size;
    fill = 0;
    block.assign(static_cast<std::size_t>(size), 0);
}

void MHashStream::Write(const void* bytes, std::int32_t size)
{
    if (blockSize < 1)
        throw MException("Cryptographic hash stream has not been initialized.");
    const auto* source = static_cast<const std::uint8_t*>(bytes);
    std::int32_t left = size;
    while (left > 0)
    {
        const std::int32_t taken = std::min(left, blockSize - fill);
        std::copy_n(source, taken, block.begin() + fill);
        source += taken;
        left -= taken;
        fill += taken;
        if (fill == blockSize)
        {
            ProcessBlock(block.data());
            fill = 0;
        }
    }
}
