// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MCharFilter.h"

#include "foundation/text/NumberText.h"

namespace
{
bool IsDigit(char16_t character)
{
    return DigitValue(character) < 10;
}

bool IsLetter(char16_t character)
{
    return !IsDigit(character) && DigitValue(character) < 36;
}
}   // namespace

bool AllFilter::IsAllowed(char16_t) const
{
    return true;
}

bool LettersFilter::IsAllowed(char16_t character) const
{
    return IsLetter(character);
}

bool AlphaStrictFilter::IsAllowed(char16_t character) const
{
    return IsLetter(character) || IsDigit(character);
}

bool AlphaFilter::IsAllowed(char16_t character) const
{
    return IsLetter(character) || IsDigit(character) || character == u'-' || character == u'.' ||
           character == u' ';
}

bool IntegerFilter::IsAllowed(char16_t character) const
{
    return IsDigit(character) || character == u'-';
}

bool IntegerHexaFilter::IsAllowed(char16_t character) const
{
    return DigitValue(character) < 16;
}

bool FloatFilter::IsAllowed(char16_t character) const
{
    return IsDigit(character) || character == u'-' || character == u'.';
}
