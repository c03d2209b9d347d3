// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/SelectionText.h"

namespace
{
std::string WithPlainLineEnds(std::string_view bytes)
{
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '\r' || i + 1 >= text.size() || text[i + 1] != '\n')
            plain += text[i];
    return plain;
}
}   // namespace

MString TextOfUTF8Selection(std::string_view bytes)
{
    return MString::FromUTF8(WithPlainLineEnds(bytes));
}

MString TextOfLatinSelection(std::string_view bytes)
{
    return MString::Copy(WithPlainLineEnds(bytes));
}

std::string LatinOf(const MString& text)
{
    std::string bytes;
    for (int i = 0; i < text.Length(); ++i)
        bytes += text[i] < 0x100 ? static_cast<char>(text[i]) : '?';
    return bytes;
}
