// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/UTF8.h"

#include <cstdint>

namespace
{
constexpr char16_t ByteOrderMark = 0xFEFF;
constexpr char16_t BrokenSequence = 1;

char16_t* PutCodePoint(std::uint32_t codePoint, char16_t* target) noexcept
{
    if (codePoint == ByteOrderMark)
        return target;
    if (codePoint < 0x10000)
    {
        *target++ = static_cast<char16_t>(codePoint);
        return target;
    }
    if (codePoint > 0x10FFFF)   // four bytes can hold more than Unicode has
    {
        *target++ = BrokenSequence;
        return target;
    }
    *target++ = static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10));
    *target++ = static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
    return target;
}

void AppendSequence(std::uint32_t codePoint, std::string& bytes)
{
    const auto put = [&bytes](std::uint32_t value)
    {
        bytes.push_back(static_cast<char>(value));
    };
    if (codePoint < 0x80)
    {
        put(codePoint);
    }
    else if (codePoint < 0x800)
    {
        put(0xC0 | (codePoint >> 6));
        put(0x80 | (codePoint & 0x3F));
    }
    else if (codePoint < 0x10000)
    {
        put(0xE0 | (codePoint >> 12));
        put(0x80 | ((codePoint >> 6) & 0x3F));
        put(0x80 | (codePoint & 0x3F));
    }
    else
    {
        put(0xF0 | (codePoint >> 18));
        put(0x80 | ((codePoint >> 12) & 0x3F));
        put(0x80 | ((codePoint >> 6) & 0x3F));
        put(0x80 | (codePoint & 0x3F));
    }
}
}   // namespace

int DecodeUTF8(std::string_view bytes, char16_t* target) noexcept
{
    char16_t* out = target;
    std::uint32_t codePoint = 0;
    int pending = 0;
    for (const char character : bytes)
    {
        const auto byte = static_cast<std::uint8_t>(character);
        if (pending > 0)
        {
            if ((byte & 0xC0) != 0x80)
            {
                // The byte that broke the sequence goes with it.
                *out++ = BrokenSequence;
                pending = 0;
                if (byte == 0)
                    break;
                continue;
            }
            codePoint = (codePoint << 6) | (byte & 0x3F);
            if (--pending == 0)
                out = PutCodePoint(codePoint, out);
            continue;
        }
        if (byte == 0)
            break;
        if (byte < 0x80)
            *out++ = byte;
        else if ((byte & 0xE0) == 0xC0)
            codePoint = byte & 0x1F, pending = 1;
        else if ((byte & 0xF0) == 0xE0)
            codePoint = byte & 0x0F, pending = 2;
        else if ((byte & 0xF8) == 0xF0)
            codePoint = byte & 0x07, pending = 3;
    }
    return static_cast<int>(out - target);
}

void EncodeUTF8(std::u16string_view text, std::string& bytes)
{
    bytes.reserve(bytes.size() + text.size());
    for (std::size_t index = 0; index < text.size(); ++index)
    {
        const std::uint32_t unit = text[index];
        if (unit < 0x80)   // most of what is written
        {
            bytes.push_back(static_cast<char>(unit));
            continue;
        }
        if (unit < 0xD800 || unit > 0xDFFF)
        {
            AppendSequence(unit, bytes);
            continue;
        }
        const bool startsPair = unit < 0xDC00 && index + 1 < text.size() && text[index + 1] >= 0xDC00 &&
                                text[index + 1] <= 0xDFFF;
        if (!startsPair)
            continue;
        AppendSequence(0x10000 + ((unit & 0x3FF) << 10) + (text[index + 1] & 0x3FFu), bytes);
        ++index;
    }
}
