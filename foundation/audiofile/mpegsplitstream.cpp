// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/audiofile/mpegsplitstream.h"

namespace mp3dec
{
namespace
{
constexpr std::uint8_t EndCode = 0xB9;
constexpr std::uint8_t PackCode = 0xBA;
constexpr std::uint8_t AudioCode = 0xC0;
// From here on a start code is followed by a length of two bytes.
constexpr std::uint8_t FirstPacketCode = 0xBB;

bool ReadByte(binfile& source, std::uint8_t& byte)
{
    return source.Read(&byte, 1) == 1;
}

// Finds 00 00 01 and answers the byte behind it; false at the end.
bool FindStartCode(binfile& source, std::uint8_t& code)
{
    std::uint32_t window = 0xFFFFFFFF;
    std::uint8_t byte = 0;
    while (ReadByte(source, byte))
    {
        window = window << 8 | byte;
        if (window >> 8 == 1)
        {
            code = byte;
            return true;
        }
    }
    return false;
}
}   // namespace

bool mpegsplitstream::Open(binfile& source)
{
    std::uint8_t code = 0;
    std::vector<std::uint8_t> packet;
    while (FindStartCode(source, code) && code != EndCode)
    {
        // The pack header holds no start code, so the search passes over it.
        if (code == PackCode || code < FirstPacketCode)
            continue;
        std::uint8_t length[2];
        if (source.Read(length, 2) != 2)
            break;
        const std::int32_t size = length[0] << 8 | length[1];
        if (code != AudioCode)
        {
            source.Seek(source.Tell() + size);
            continue;
        }
        packet.resize(static_cast<std::size_t>(size));
        const std::int32_t got = source.Read(packet.data(), size);
        packet.resize(static_cast<std::size_t>(std::max(got, 0)));
        TakePacket(packet);
    }
    return !audio.empty();
}

// Appends what is behind the packet's header.
void mpegsplitstream::TakePacket(const std::vector<std::uint8_t>& packet)
{
    std::size_t i = 0;
    while (i < packet.size() && packet[i] == 0xFF)
        ++i;   // stuffing
    if (i + 2 < packet.size() && (packet[i] & 0xC0) == 0x80)
        i += std::size_t{ 3 } + packet[i + 2];   // 13818-1: flags 2 | length of the rest 1 | rest
    else
    {
        if (i < packet.size() && (packet[i] & 0xC0) == 0x40)
            i += 2;   // buffer size
        if (i < packet.size() && (packet[i] & 0xF0) == 0x20)
            i += 5;   // presentation time
        else if (i < packet.size() && (packet[i] & 0xF0) == 0x30)
            i += 10;   // presentation and decoding time
        else
            ++i;   // 0x0F: no time
    }
    if (i < packet.size())
        audio.insert(audio.end(), packet.begin() + static_cast<std::ptrdiff_t>(i), packet.end());
}

std::int32_t mpegsplitstream::Read(void* buffer, std::int32_t size)
{
    const auto count =
        static_cast<std::int32_t>(std::clamp<std::int64_t>(Length() - position, 0, std::max(size, 0)));
    if (count > 0)
        std::memcpy(buffer, audio.data() + position, static_cast<std::size_t>(count));
    position += count;
    return count;
}

void mpegsplitstream::Seek(std::int64_t newPosition)
{
    position = std::clamp<std::int64_t>(newPosition, 0, Length());
}
}   // namespace mp3dec
