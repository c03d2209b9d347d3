// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/values/MValue.h"

#include <algorithm>
#include <cmath>

#include "state/tree/MAttribute.h"

void MValue::Load(MAttribute& item)
{
    MStorable::Load(item);
    Clamp();
}

void MValue::LoadDefinition(MAttribute& item)
{
    if (item.HasAttribute("id"))
        Name = item.GetCachedAttribute();
}

const MCharFilter& MValue::GetCharFilter() const
{
    static const AllFilter filter;
    return filter;
}

MString MValue::DisplayTextOf(double number, const MString& ordinary) const
{
    return toTextConverter != nullptr ? toTextConverter(number, toTextConverterContext) : ordinary;
}

MString MValue::GetDisplayText() const
{
    return DisplayTextOf(GetNumber(), ToText());
}

MContent MValue::MakeContent(const MString& text) const
{
    return std::make_shared<const MContentData>(MContentData{ text });
}

MContent MValue::CreateContent() const
{
    return MakeContent(GetDisplayText());
}

bool MValue::SetDisplayText(const MString& text)
{
    if (fromTextConverter == nullptr)
    {
        const TextResult result = TakeText(text);
        Clamp();
        return result != TextResult::Refused;
    }
    double number = GetNumber();
    const bool isTaken = fromTextConverter(text, number, fromTextConverterContext);
    if (isTaken)
        SetNumber(number);
    Clamp();
    return isTaken;
}

double MValue::LimitedPosition(double position)
{
    return position >= 0.0 ? std::min(position, 1.0) : 0.0;   // what is no number at all goes to 0
}

double MValue::PositionOfIndex(int index) const
{
    const int count = GetStepCount();
    return count < 2 ? 0.0 : static_cast<double>(index) / (count - 1);
}

MContent MValue::CreateContentAtIndex(int index) const
{
    return CreateContentAt(PositionOfIndex(index));
}

int MValue::GetIndex() const
{
    const int count = GetStepCount();
    return count > 1 ? static_cast<int>(std::lround(GetNormalized() * (count - 1))) : 0;
}

bool MValue::SetIndex(int index)
{
    return SetNormalized(PositionOfIndex(index));
}

void MValue::SetConverters(ToTextConverter toText, void* toTextContext, FromTextConverter fromText,
                           void* fromTextContext)
{
    toTextConverter = toText;
    toTextConverterContext = toTextContext;
    fromTextConverter = fromText;
    fromTextConverterContext = fromTextContext;
}
