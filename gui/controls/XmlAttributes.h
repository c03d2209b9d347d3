// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <iterator>

#include "foundation/text/MEnumLabels.h"
#include "foundation/text/MString.h"
#include "state/tree/MAttribute.h"

/// The attributes of an element of a layout document. What is missing changes nothing.
class XmlAttributes
{
public:
    explicit XmlAttributes(const MAttribute& element) : node(element) {}

    /// A decimal number with an optional minus sign; what isn't a digit ends it. Limited to 32 bits.
    static std::int32_t ToInteger(const MString& text);
    /// The place of a name in a table, without case; -1: none.
    static std::int32_t IndexOf(const MString& name, const char* const* labels, std::size_t count);
    /// Throws MException "Invalid {type} identifier to parse ({text}).".
    [[noreturn]] static void ThrowUnknown(const char* type, const MString& text);

    bool Read(const MString& key, MString& value) const;
    bool Read(const MString& key, std::int32_t& value) const;
    /// Not 0 is true.
    bool Read(const MString& key, bool& value) const;
    template <typename E>
    bool ReadName(const MString& key, E& value, const char* type) const
    {
        const MString* text = node.FindAttribute(key);
        if (text == nullptr)
            return false;
        const std::int32_t index = IndexOf(*text, MEnumLabels<E>::Labels, std::size(MEnumLabels<E>::Labels));
        if (index < 0)
            ThrowUnknown(type, *text);
        value = static_cast<E>(index);
        return true;
    }

private:
    const MAttribute& node;
};
