// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MMD5Stream.h"

#include <bit>
#include <cmath>

namespace
{
constexpr std::int32_t BlockSize = 64;

// RFC 1321: the integer parts of 2^32 * abs(sin(i)), i = 1 to 64 in radians.
const std::array<std::uint32_t, 64>& SineTable()
{
    static const std::array<std::uint32_t, 64> table = []
    {
        std::array<std::uint32_t, 64> values{};
        for (std::size_t index = 0; index < values.size(); ++index)
            values[index] = static_cast<std::uint32_t>(
                std::floor(4294967296.0 * std::fabs(std::sin(static_cast<double>(index + 1)))));
        return values;
    }();
    return table;
}

constexpr int Rotations[4][4] = { { 7, 12, 17, 22 }, { 5, 9, 14, 20 }, { 4, 11, 16, 23 }, { 6, 10, 15, 21 } };

struct Step
{
    std::uint32_t mixed;   // of b, c, d by the round's function
    unsigned messageIndex;   // the word of the block that is added
};

Step StepOf(unsigned index, std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    switch (index / 16)
    {
    case 0:
        return { (b & c) | (~b & d), index };
    case 1:
        return { (b & d) | (c & ~d), (5 * index + 1) % 16 };
    case 2:
        return { b ^ c ^ d, (3 * index + 5) % 16 };
    default:
        return { c ^ (b | ~d), (7 * index) % 16 };
    }
}

std::uint32_t LittleEndianWord(const std::uint8_t* bytes)
{
    return bytes[0] | (std::uint32_t{ bytes[1] } << 8) | (std::uint32_t{ bytes[2] } << 16) |
           (std::uint32_t{ bytes[3] } << 24);
}
}   // namespace

void MMD5Stream::Initialize()
{
    SetBlockSize(BlockSize);
    words = { 0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476 };
    byteCount = 0;
}

void MMD5Stream::ProcessBlock(const std::uint8_t* message)
{
    byteCount += BlockSize;
    auto [a, b, c, d] = words;
    for (unsigned index = 0; index < 64; ++index)
    {
        const Step step = StepOf(index, b, c, d);
        const std::uint32_t sum = a + step.mixed + SineTable()[index] +
                                  LittleEndianWord(message + std::size_t{ 4 } * step.messageIndex);
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, Rotations[index / 16][index % 4]);
    }
    words[0] += a;
    words[1] += b;
    words[2] += c;
    words[3] += d;
}

void MMD5Stream::Finish()
{
    // A one bit, zeros up to the last 8 bytes of a block, then the length in bits.
    const std::uint64_t bitCount = 8 * (byteCount + static_cast<std::uint64_t>(Fill()));
    constexpr std::int32_t LengthPosition = BlockSize - 8;
    std::array<std::uint8_t, BlockSize> padding = { 0x80 };
    const std::int32_t used = Fill();
    Write(padding.data(), used < LengthPosition ? LengthPosition - used : BlockSize + LengthPosition - used);
    std::array<std::uint8_t, 8> length;
    for (unsigned index = 0; index < 8; ++index)
        length[index] = static_cast<std::uint8_t>(bitCount >> (8 * index));
    Write(length.data(), 8);
    for (unsigned index = 0; index < digest.size(); ++index)
        digest[index] = static_cast<std::uint8_t>(words[index / 4] >> (8 * (index % 4)));
}
