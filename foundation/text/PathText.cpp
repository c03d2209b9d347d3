// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/PathText.h"

#include <cstdint>

#include "foundation/text/UTF8.h"

namespace
{
constexpr char16_t ByteBase = 0xDC00;   // plus the byte, which is 0x80 or more
constexpr char16_t LowestByte = ByteBase + 0x80;
constexpr char16_t HighestByte = ByteBase + 0xFF;

std::uint8_t ByteAt(std::string_view bytes, std::size_t index)
{
    return index < bytes.size() ? static_cast<std::uint8_t>(bytes[index]) : std::uint8_t{ 0 };
}

// The length of the well-formed sequence that the bytes begin with, 0 for none; RFC 3629, section 4.
std::size_t SequenceLength(std::string_view bytes, std::uint32_t& codePoint)
{
    const std::uint8_t first = ByteAt(bytes, 0);
    if (first < 0x80)
    {
        codePoint = first;
        return 1;
    }
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (length == 0)
        return 0;
    codePoint = first & (0x7Fu >> length);
    for (std::size_t index = 1; index < length; ++index)
    {
        if ((ByteAt(bytes, index) & 0xC0) != 0x80)
            return 0;
        codePoint = (codePoint << 6) | (ByteAt(bytes, index) & 0x3Fu);
    }
    constexpr std::uint32_t Lowest[] = { 0, 0, 0x80, 0x800, 0x10000 };
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    return codePoint < Lowest[length] || isSurrogate || codePoint > 0x10FFFF ? 0 : length;
}
}   // namespace

MString PathText(std::string_view bytes)
{
    std::u16string text;
    text.reserve(bytes.size());
    while (!bytes.empty())
    {
        std::uint32_t codePoint = 0;
        const std::size_t length = SequenceLength(bytes, codePoint);
        if (length == 0)
        {
            text.push_back(static_cast<char16_t>(ByteBase + ByteAt(bytes, 0)));
        }
        else if (codePoint < 0x10000)
        {
            text.push_back(static_cast<char16_t>(codePoint));
        }
        else
        {
            text.push_back(static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10)));
            text.push_back(static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF)));
        }
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return MString(text);
}

std::string PathBytes(const MString& path)
{
    std::string bytes;
    std::u16string run;
    for (int index = 0; index < path.Length(); ++index)
    {
        const char16_t unit = path[index];
        const bool followsHighHalf = !run.empty() && (run.back() & 0xFC00) == 0xD800;
        if (unit < LowestByte || unit > HighestByte || followsHighHalf)
        {
            run.push_back(unit);
            continue;
        }
        EncodeUTF8(run, bytes);
        run.clear();
        bytes.push_back(static_cast<char>(unit - ByteBase));
    }
    EncodeUTF8(run, bytes);
    return bytes;
}
