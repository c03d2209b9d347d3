// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "foundation/text/MString.h"

// What ends a name in a document. Reader and writer share it, so that what is written can be read.

inline bool IsXMLBlank(char character)
{
    return static_cast<unsigned char>(character) <= ' ';
}

inline bool IsXMLSpecial(char character)
{
    return std::string_view("<>\"/!=").find(character) != std::string_view::npos;
}

/// Whether a name can be written and read again. What is decoded from bad bytes may hold anything.
inline bool IsXMLName(const MString& name)
{
    const std::string bytes = name.ToUTF8();
    return !bytes.empty() && bytes.front() != '?' &&
           std::none_of(bytes.begin(), bytes.end(), [](char c) { return IsXMLBlank(c) || IsXMLSpecial(c); });
}
