// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/UriList.h"

#include "foundation/text/PathText.h"

namespace
{
constexpr std::size_t MostLines = 100000;

int DigitOf(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    const char small = static_cast<char>(character | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

// A "%" without two digits behind it stands for itself.
std::string Decoded(std::string_view text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const int high = text[i] == '%' && i + 2 < text.size() ? DigitOf(text[i + 1]) : -1;
        const int low = high >= 0 ? DigitOf(text[i + 2]) : -1;
        if (low >= 0)
            i += 2;
        bytes += low >= 0 ? static_cast<char>(high * 16 + low) : text[i];
    }
    return bytes;
}

bool TakeStart(std::string_view& text, std::string_view start)
{
    if (text.substr(0, start.size()) != start)
        return false;
    text.remove_prefix(start.size());
    return true;
}

// The absolute path that a line names; empty for none.
std::string PathOfLine(std::string_view line)
{
    if (!line.empty() && line.front() == '/')
        return std::string(line);
    if (!TakeStart(line, "file:"))
        return {};
    if (TakeStart(line, "//"))
    {
        const std::size_t slash = line.find('/');
        const std::string_view host = line.substr(0, slash);
        if (slash == std::string_view::npos || (!host.empty() && host != "localhost"))
            return {};
        line.remove_prefix(slash);
    }
    return !line.empty() && line.front() == '/' ? Decoded(line) : std::string();
}
}   // namespace

std::vector<MString> FilesOfUriList(std::string_view list)
{
    std::vector<MString> files;
    for (std::size_t count = 0; !list.empty() && count < MostLines; ++count)
    {
        const std::size_t end = list.find_first_of("\r\n");
        const std::string path = PathOfLine(list.substr(0, end));
        if (!path.empty() && path.find('\0') == std::string::npos)
            files.push_back(PathText(path));
        list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
    }
    return files;
}

std::string UriListOf(const std::vector<MString>& files)
{
    static constexpr std::string_view plain = "/-._~";
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string list;
    for (const MString& file : files)
    {
        list += "file://";
        for (const char byte : PathBytes(file))
        {
            const auto value = static_cast<unsigned char>(byte);
            const bool isLetter = (value | 0x20) >= 'a' && (value | 0x20) <= 'z';
            if (isLetter || (value >= '0' && value <= '9') || plain.find(byte) != std::string_view::npos)
                list += byte;
            else
                list += { '%', digits[value / 16], digits[value % 16] };
        }
        list += "\r\n";
    }
    return list;
}
