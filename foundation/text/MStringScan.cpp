// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MStringScan.h"

#include <algorithm>

namespace
{
bool IsBlank(char16_t character)
{
    return character <= u' ';
}

void SkipBlanks(const MString& text, int& position)
{
    while (position < text.Length() && IsBlank(text[position]))
        ++position;
}
}   // namespace

MStringScan::MStringScan(const MString& pattern, const MString& text) : input(text)
{
    Scan(pattern);
}

void MStringScan::Scan(const MString& pattern)
{
    int place = 0;   // in the pattern
    int position = 0;
    while (place < pattern.Length() && position < input.Length())
    {
        char16_t wanted = pattern[place];
        if (IsBlank(wanted))
        {
            if (!MatchWhitespace(pattern, place, position))
                return;
            continue;
        }
        const bool isEscapedBrace = wanted == u'{' && pattern[place + 1] == u'{';
        if (wanted == u'{' && !isEscapedBrace)
        {
            if (!Capture(pattern, place, position))
                return;
            continue;
        }
        if (wanted == u'{' || wanted == u'}')
        {
            wanted = pattern[++place];
            if (place >= pattern.Length())
                return;
        }
        if (input[position] != wanted)
            return;
        ++place;
        ++position;
    }
}

bool MStringScan::MatchWhitespace(const MString& pattern, int& place, int& position) const
{
    if (!IsBlank(input[position]))
        return false;
    SkipBlanks(pattern, place);
    SkipBlanks(input, position);
    return true;
}

bool MStringScan::Capture(const MString& pattern, int& place, int& position)
{
    const ArgumentSpecification specification = ReadArgumentSpecification(pattern, place);
    if (!specification.isTerminated)
        return false;
    slotCount = std::max(slotCount, specification.index + 1);

    const char16_t delimiter = pattern[place];   // the terminator at the pattern's end counts as blank
    const int start = position;
    while (position < input.Length() &&
           (IsBlank(delimiter) ? !IsBlank(input[position]) : input[position] != delimiter))
        ++position;

    Slot& slot = slots[static_cast<std::size_t>(specification.index)];
    slot.text = input.SubString(start, position - start);
    slot.isHexadecimal = specification.isHexadecimal;
    capturedCount = std::min(capturedCount + 1, ArgumentSpecification::SlotCount);
    return true;
}

const MStringScan::Slot* MStringScan::NextSlot()
{
    if (nextArgument >= capturedCount)
        return nullptr;
    return &slots[static_cast<std::size_t>(nextArgument++)];
}

MStringScan::ParsedInteger MStringScan::Parse(const Slot& slot)
{
    ParsedInteger parsed;
    parsed.isHexadecimal = slot.isHexadecimal;
    parsed.isNegative = !slot.text.IsEmpty() && slot.text[0] == u'-';
    const MString digits = parsed.isNegative ? slot.text.SubString(1, slot.text.Length()) : slot.text;
    int digitCount = 0;
    parsed.magnitude = digits.ToUnsigned(slot.isHexadecimal ? 16 : 10, &digitCount);
    parsed.hasDigits = digitCount > 0;
    return parsed;
}

MStringScan& MStringScan::Get(double& value)
{
    if (const Slot* slot = NextSlot())
        value = slot->text.ToDouble();
    return *this;
}

MStringScan& MStringScan::Get(MString& value)
{
    if (const Slot* slot = NextSlot())
        value = slot->text;
    return *this;
}
