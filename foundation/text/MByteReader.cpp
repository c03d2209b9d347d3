// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MByteReader.h"

#include <cstring>

#include "foundation/text/MException.h"

bool MByteReader::Refill()
{
    position = 0;
    fill = static_cast<std::uint32_t>(
        source->ReadBytes(buffer.data(), static_cast<std::int32_t>(buffer.size())));
    return fill > 0;
}

void MByteReader::ThrowNoMoreData()
{
    throw MException("No more data in source stream.", MErrorCode::Content);
}

bool MByteReader::SkipIfNext(const std::uint8_t* bytes, std::uint32_t count)
{
    if (fill - position < count)
    {
        // What is left goes to the front, so that all the bytes can stand side by side.
        std::memmove(buffer.data(), buffer.data() + position, fill - position);
        fill -= position;
        position = 0;
        fill += static_cast<std::uint32_t>(
            source->ReadBytes(buffer.data() + fill, static_cast<std::int32_t>(buffer.size() - fill)));
    }
    if (fill - position < count || std::memcmp(buffer.data() + position, bytes, count) != 0)
        return false;
    position += count;
    return true;
}
