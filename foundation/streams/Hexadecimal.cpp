// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/Hexadecimal.h"

#include <array>

#include "foundation/text/MException.h"

namespace
{
constexpr char Digits[] = "0123456789ABCDEF";
constexpr std::uint8_t NoDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> MakeDigitValues()
{
    std::array<std::uint8_t, 256> values{};
    values.fill(NoDigit);
    for (std::uint8_t value = 0; value < 16; ++value)
    {
        const auto digit = static_cast<std::uint8_t>(Digits[value]);
        values[digit] = value;
        if (value >= 10)
            values[digit + ('a' - 'A')] = value;
    }
    return values;
}

constexpr std::array<std::uint8_t, 256> DigitValues = MakeDigitValues();

template <typename Character>
std::uint8_t ValueOf(Character digit)
{
    const auto code = static_cast<std::make_unsigned_t<Character>>(digit);
    return code < DigitValues.size() ? DigitValues[static_cast<std::uint8_t>(code)] : NoDigit;
}
}   // namespace

void ThrowInvalidDigit()
{
    throw MException("Invalid character to be converted to a number.");
}

void AppendHexadecimal(const std::uint8_t* bytes, std::int32_t count, std::string& digits)
{
    const std::size_t start = digits.size();
    digits.resize(start + 2 * static_cast<std::size_t>(count));
    char* target = digits.data() + start;
    for (std::int32_t index = 0; index < count; ++index)
    {
        *target++ = Digits[bytes[index] >> 4];
        *target++ = Digits[bytes[index] & 15];
    }
}

template <typename Character>
void DecodeHexadecimal(const Character* digits, std::int32_t byteCount, std::uint8_t* bytes)
{
    for (std::int32_t index = 0; index < byteCount; ++index)
    {
        const std::uint8_t high = ValueOf(digits[2 * index]);
        const std::uint8_t low = ValueOf(digits[2 * index + 1]);
        if ((high | low) > 15)
            ThrowInvalidDigit();
        bytes[index] = static_cast<std::uint8_t>((high << 4) | low);
    }
}

template void DecodeHexadecimal<char>(const char*, std::int32_t, std::uint8_t*);
template void DecodeHexadecimal<char16_t>(const char16_t*, std::int32_t, std::uint8_t*);
