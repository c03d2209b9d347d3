// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MMemoryStream.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "foundation/text/MException.h"

MMemoryStream::MMemoryStream() = default;

MMemoryStream::MMemoryStream(const MDataBlock& data) : block(data), size(data.Size()) {}

MMemoryStream MMemoryStream::Borrow(const void* bytes, std::int32_t size)
{
    return MMemoryStream(MDataBlock::Borrow(bytes, size));
}

void MMemoryStream::Write(const void* bytes, std::int32_t byteCount)
{
    if (byteCount <= 0)
        return;
    const std::int64_t end = std::int64_t{ position } + byteCount;
    if (end > std::numeric_limits<std::int32_t>::max())
        throw MException("A memory stream cannot hold more data.", MErrorCode::Content);
    if (block.WritableData() == nullptr || block.Size() < end)
    {
        const auto doubled = static_cast<std::int64_t>(std::bit_ceil(static_cast<std::uint64_t>(end)));
        const std::int64_t capacity =
            std::min<std::int64_t>(doubled, std::numeric_limits<std::int32_t>::max());
        // Bytes that lie in this very block stay readable while it moves.
        const MDataBlock source = block;
        block.MakeUnique(static_cast<std::int32_t>(std::max<std::int64_t>(capacity, size)));
        std::memcpy(block.WritableData() + position, bytes, static_cast<std::size_t>(byteCount));
    }
    else
    {
        std::memmove(block.WritableData() + position, bytes, static_cast<std::size_t>(byteCount));
    }
    position = static_cast<std::int32_t>(end);
    size = std::max(size, position);
}

std::int32_t MMemoryStream::Read(void* buffer, std::int32_t wanted)
{
    const std::int32_t count = std::clamp(wanted, 0, Remaining());
    if (count > 0)
        std::memcpy(buffer, GetCurrentPointer(), static_cast<std::size_t>(count));
    position += count;
    return count;
}

MStream::Line MMemoryStream::ReadLine(char* buffer, std::int32_t bufferSize)
{
    if (position == size && bufferSize > 1)
    {
        buffer[0] = 0;
        return Line::NoData;
    }
    std::int32_t length = 0;
    bool hasEnd = false;
    while (!hasEnd && length < bufferSize - 1)
    {
        hasEnd = position == size;
        if (hasEnd)
            break;
        const auto character = static_cast<char>(block.Data()[position++]);
        hasEnd = character == 0 || character == '\n';
        if (!hasEnd && character != '\r')
            buffer[length++] = character;
    }
    if (bufferSize > 0)
        buffer[length] = 0;
    return hasEnd ? Line::Read : Line::BufferFull;
}

void MMemoryStream::Seek(std::int64_t offset, int origin)
{
    std::int64_t base = 0;
    if (origin == Current)
        base = position;
    else if (origin == End)
        base = size;
    else if (origin != Begin)
        throw MException("Invalid seek origin.", MErrorCode::InvalidArgument);
    // The offset first: together with the base it might not fit.
    position = static_cast<std::int32_t>(base + std::clamp<std::int64_t>(offset, -base, size - base));
}

std::int64_t MMemoryStream::GetPosition()
{
    return position;
}

void MMemoryStream::Flush() {}

bool MMemoryStream::IsEnd()
{
    return position >= size;
}

std::int64_t MMemoryStream::GetSize()
{
    return size;
}

const std::uint8_t* MMemoryStream::GetCurrentPointer() const
{
    return block.Data() + position;
}

const MDataBlock& MMemoryStream::Block() const
{
    if (block.Size() != size)
        block.MakeUnique(size);
    return block;
}
