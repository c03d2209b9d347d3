// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/FormatGrammar.h"

#include "foundation/text/MException.h"

namespace
{
// A number of at most two digits; none is 0.
std::int8_t ReadShortNumber(const MString& text, int& position)
{
    int value = 0;
    for (int digitCount = 0; digitCount < 2; ++digitCount)
    {
        const char16_t digit = text[position];
        if (digit < u'0' || digit > u'9')
            break;
        value = value * 10 + (digit - u'0');
        ++position;
    }
    return static_cast<std::int8_t>(value);
}

int ReadIndex(const MString& text, int& position)
{
    int consumed = 0;
    const std::int64_t index = text.SubString(position, 3).ToInt(10, &consumed);
    if (index < 0 || index >= ArgumentSpecification::SlotCount)
        throw MException("Formatting string names an argument out of range.", MErrorCode::BadCall);
    position += consumed;
    return static_cast<int>(index);
}
}   // namespace

ArgumentSpecification ReadArgumentSpecification(const MString& text, int& position)
{
    ArgumentSpecification specification;
    ++position;
    specification.index = ReadIndex(text, position);
    while (position < text.Length())
    {
        switch (text[position++])
        {
        case u'}':
            specification.isTerminated = true;
            return specification;
        case u'x':
            specification.isHexadecimal = true;
            break;
        case u'+':
            specification.hasPlus = true;
            break;
        case u'.':
            specification.precision = ReadShortNumber(text, position);
            break;
        case u'0':
            specification.filler = '0';
            specification.width = ReadShortNumber(text, position);
            break;
        case u' ':
            specification.width = ReadShortNumber(text, position);
            break;
        default:
            break;   // ";" and ":" by convention
        }
    }
    return specification;
}
