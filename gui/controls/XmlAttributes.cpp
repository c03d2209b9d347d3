// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/XmlAttributes.h"

#include <algorithm>
#include <limits>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

std::int32_t XmlAttributes::ToInteger(const MString& text)
{
    const bool negative = text.Length() > 0 && text[0] == '-';
    std::int64_t number = 0;
    for (int i = negative ? 1 : 0; i < text.Length() && text[i] >= '0' && text[i] <= '9'; ++i)
        number =
            std::min<std::int64_t>(number * 10 + (text[i] - '0'), std::numeric_limits<std::int32_t>::max());
    return static_cast<std::int32_t>(negative ? -number : number);
}

std::int32_t XmlAttributes::IndexOf(const MString& name, const char* const* labels, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        if (labels[i] != nullptr && name.EqualsNoCase(MString::Literal(labels[i])))
            return static_cast<std::int32_t>(i);
    return -1;
}

void XmlAttributes::ThrowUnknown(const char* type, const MString& text)
{
    throw MException(Format("Invalid {0} identifier to parse ({1}).", MString::Literal(type), text));
}

bool XmlAttributes::Read(const MString& key, MString& value) const
{
    const MString* text = node.FindAttribute(key);
    if (text != nullptr)
        value = *text;
    return text != nullptr;
}

bool XmlAttributes::Read(const MString& key, std::int32_t& value) const
{
    const MString* text = node.FindAttribute(key);
    if (text != nullptr)
        value = ToInteger(*text);
    return text != nullptr;
}

bool XmlAttributes::Read(const MString& key, bool& value) const
{
    std::int32_t number = 0;
    const bool found = Read(key, number);
    if (found)
        value = number != 0;
    return found;
}
