// SPDX-License-Identifier: GPL-3.0-or-later
// Binary data in an item's text.
#include <algorithm>
#include <array>
#include <memory>
#include <string>

#include "foundation/streams/Hexadecimal.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MZLibStream.h"
#include "state/tree/MAttribute.h"

namespace
{
constexpr std::int32_t RunSize = 4096;
constexpr int BestQuality = 100;
// Far above what is stored; a few bytes of compressed data can stand for gigabytes.
constexpr std::int64_t LargestInflatedSize = std::int64_t{ 64 } << 20;

void CopyRest(MStream& source, MStream& target)
{
    std::array<std::uint8_t, RunSize> run;
    while (const std::int32_t got = source.Read(run.data(), RunSize))
        target.Write(run.data(), got);
}

MString HexadecimalOf(const MDataBlock& block)
{
    std::string digits;
    AppendHexadecimal(block.Data(), block.Size(), digits);
    return MString::Copy(digits);
}

// The text's bytes, at most `largestCount` of them.
MDataBlock BytesOf(const MString& text, std::int32_t largestCount)
{
    if (text.Length() % 2 != 0)
        ThrowInvalidDigit();
    const std::int32_t count = std::min(largestCount, text.Length() / 2);
    std::u16string digits(static_cast<std::size_t>(2 * count), u'\0');
    for (std::int32_t index = 0; index < 2 * count; ++index)
        digits[static_cast<std::size_t>(index)] = text[index];
    MDataBlock block(count);
    DecodeHexadecimal(digits.data(), count, block.WritableData());
    return block;
}
}   // namespace

void MAttribute::SetBinary(MStream& stream, bool compress)
{
    stream.Seek(0, MStream::Begin);
    MMemoryStream bytes;
    if (compress)
    {
        MZLibStream compressed(&bytes, MZLibStream::Direction::Compress, BestQuality);
        CopyRest(stream, compressed);
        compressed.Finish();
    }
    else
    {
        CopyRest(stream, bytes);
    }
    text = HexadecimalOf(bytes.Block());
}

void MAttribute::SetBinary(const void* buffer, std::int32_t size, bool compress)
{
    MMemoryStream stream = MMemoryStream::Borrow(buffer, size);
    SetBinary(stream, compress);
}

void MAttribute::GetBinary(MStream& stream, bool compressed) const
{
    const std::int64_t position = stream.GetPosition();
    MMemoryStream bytes(BytesOf(text, text.Length()));
    if (compressed)
    {
        MZLibStream inflated(&bytes, MZLibStream::Direction::Inflate);
        inflated.SetReadLimit(LargestInflatedSize);
        CopyRest(inflated, stream);
    }
    else
    {
        CopyRest(bytes, stream);
    }
    stream.Seek(position, MStream::Begin);
}

std::int32_t MAttribute::GetBinary(void* buffer, std::int32_t size, bool compressed) const
{
    auto* target = static_cast<std::uint8_t*>(buffer);
    if (!compressed)
    {
        const MDataBlock bytes = BytesOf(text, std::max(size, 0));
        std::copy_n(bytes.Data(), bytes.Size(), target);
        return bytes.Size();
    }
    MMemoryStream bytes(BytesOf(text, text.Length()));
    MZLibStream inflated(&bytes, MZLibStream::Direction::Inflate);
    std::uint8_t further = 0;
    if (inflated.Read(target, size) != size || inflated.Read(&further, 1) != 0)
        throw MException("Value doesn't have correct format.");
    return size;
}
