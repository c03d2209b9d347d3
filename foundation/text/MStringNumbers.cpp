// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "foundation/text/MException.h"
#include "foundation/text/MString.h"
#include "foundation/text/NumberText.h"

namespace
{
constexpr int FirstGeneralPrecision = 10;
constexpr int LargestPrecision = 150;

MString FromMagnitude(std::uint64_t magnitude, bool isNegative, int radix, int width, char filler)
{
    const NumberText digits = NumberText::FromMagnitude(magnitude, radix);
    const int padding = std::max(0, width - static_cast<int>(digits.Text().size()));
    std::string text;
    if (isNegative)
        text.push_back('-');
    text.append(static_cast<std::size_t>(padding), filler);
    text.append(digits.Text());
    return MString::Copy(text);
}

struct Magnitude
{
    std::uint64_t value = 0;   // saturates
    int digitCount = 0;
};

Magnitude ParseMagnitude(const MString& text, int start, int radix)
{
    constexpr std::uint64_t Largest = std::numeric_limits<std::uint64_t>::max();
    Magnitude result;
    for (int index = start; index < text.Length(); ++index)
    {
        const int digit = DigitValue(text[index]);
        if (digit >= radix)
            break;
        const auto base = static_cast<std::uint64_t>(radix);
        const auto added = static_cast<std::uint64_t>(digit);
        const bool fits = result.value <= (Largest - added) / base;
        result.value = fits ? result.value * base + added : Largest;
        ++result.digitCount;
    }
    return result;
}

bool IsSpace(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

// std::from_chars tells that a number is out of range, but not on which side: the place of the first
// digit that counts and the exponent decide.
double OutOfRangeValue(const char* text, const char* end)
{
    const bool isNegative = text != end && *text == '-';
    long long exponent = 0;
    const char* mark = std::find_if(text, end, [](char c) { return c == 'e' || c == 'E'; });
    if (mark != end)
    {
        const char* digits = mark + 1;
        const bool isBelowOne = digits != end && *digits == '-';
        if (digits != end && (*digits == '-' || *digits == '+'))
            ++digits;
        if (std::from_chars(digits, end, exponent).ec == std::errc::result_out_of_range)
            exponent = std::numeric_limits<int>::max();
        exponent = isBelowOne ? -exponent : exponent;
    }
    const char* point = std::find(text, mark, '.');
    const char* first = std::find_if(text, mark, [](char c) { return c >= '1' && c <= '9'; });
    exponent += first < point ? point - first : -(first - point);
    const double magnitude = exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    return isNegative ? -magnitude : magnitude;
}
}   // namespace

NumberText NumberText::FromMagnitude(std::uint64_t value, int radix)
{
    if (radix < 2 || radix > 36)
        throw MException("Invalid radix.", MErrorCode::InvalidArgument);
    NumberText text;
    text.start = text.end = Capacity;
    const auto base = static_cast<std::uint64_t>(radix);
    do
    {
        text.characters[--text.start] = UpperDigits[value % base];
        value /= base;
    } while (value != 0);
    return text;
}

NumberText NumberText::FromDouble(double value, int precision)
{
    NumberText text;
    const int digits = std::clamp(precision, 0, LargestPrecision);
    const auto format =
        digits < FirstGeneralPrecision ? std::chars_format::fixed : std::chars_format::general;
    const auto written = std::to_chars(text.characters, text.characters + Capacity, value, format, digits);
    text.end = static_cast<int>(written.ptr - text.characters);
    return text;
}

MString MString::FromInt(std::int64_t value, int radix, int width, char filler)
{
    const bool isNegative = value < 0;
    const auto bits = static_cast<std::uint64_t>(value);
    return FromMagnitude(isNegative ? 0 - bits : bits, isNegative, radix, width, filler);
}

MString MString::FromUnsigned(std::uint64_t value, int radix, int width, char filler)
{
    return FromMagnitude(value, false, radix, width, filler);
}

MString MString::FromDouble(double value, int precision)
{
    return Copy(NumberText::FromDouble(value, precision).Text());
}

std::int64_t MString::ToInt(int radix, int* consumedCount) const
{
    constexpr std::int64_t Largest = std::numeric_limits<std::int64_t>::max();
    const bool isNegative = length > 0 && (*this)[0] == u'-';
    const int start = isNegative ? 1 : 0;
    const Magnitude magnitude = ParseMagnitude(*this, start, radix);
    if (consumedCount != nullptr)
        *consumedCount = magnitude.digitCount > 0 ? start + magnitude.digitCount : 0;
    if (magnitude.value > static_cast<std::uint64_t>(Largest))
        return isNegative ? std::numeric_limits<std::int64_t>::min() : Largest;
    const auto value = static_cast<std::int64_t>(magnitude.value);
    return isNegative ? -value : value;
}

std::uint64_t MString::ToUnsigned(int radix, int* consumedCount) const
{
    const Magnitude magnitude = ParseMagnitude(*this, 0, radix);
    if (consumedCount != nullptr)
        *consumedCount = magnitude.digitCount;
    return magnitude.value;
}

double MString::ToDouble(int* consumedCount) const
{
    if (consumedCount != nullptr)
        *consumedCount = 0;
    // A number ends at the first character that is not ASCII; usual numbers fit the stack.
    char onStack[128] = {};
    std::string onHeap;
    char* bytes = onStack;
    if (length > static_cast<int>(sizeof onStack))
    {
        onHeap.resize(static_cast<std::size_t>(length));
        bytes = onHeap.data();
    }
    int byteCount = 0;
    while (byteCount < length && (*this)[byteCount] < 0x80)
    {
        bytes[byteCount] = static_cast<char>((*this)[byteCount]);
        ++byteCount;
    }

    const char* end = bytes + byteCount;
    const char* start = std::find_if_not(static_cast<const char*>(bytes), end, IsSpace);
    if (start != end && *start == '+' && (start + 1 == end || start[1] != '-'))
        ++start;
    double value = 0.0;
    const auto parsed = std::from_chars(start, end, value);
    if (parsed.ec == std::errc::invalid_argument)
        return 0.0;
    if (parsed.ec == std::errc::result_out_of_range)
        value = OutOfRangeValue(start, parsed.ptr);
    if (consumedCount != nullptr)
        *consumedCount = static_cast<int>(parsed.ptr - bytes);
    return value;
}
