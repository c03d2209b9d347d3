// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

/// Numbers as 8-bit text on the stack, the same in every locale. Used by MString, the formatter and the
/// scanner.
class NumberText
{
public:
    static NumberText FromMagnitude(std::uint64_t value, int radix);
    /// See MString::FromDouble.
    static NumberText FromDouble(double value, int precision);

    std::string_view Text() const { return { characters + start, static_cast<std::size_t>(end - start) }; }

private:
    // 309 digits before the point of the largest double, as many after it as the precision allows.
    static constexpr int Capacity = 512;

    char characters[Capacity];
    int start = 0;
    int end = 0;
};

inline constexpr std::string_view UpperDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// The value of a digit of either case, 36 and above when it is none.
inline int DigitValue(char16_t character) noexcept
{
    if (character >= u'0' && character <= u'9')
        return character - u'0';
    if (character >= u'A' && character <= u'Z')
        return character - u'A' + 10;
    if (character >= u'a' && character <= u'z')
        return character - u'a' + 10;
    return 36;
}
