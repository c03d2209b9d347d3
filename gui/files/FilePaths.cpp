// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/FilePaths.h"

#include <filesystem>

#include "foundation/streams/MFile.h"
#include "foundation/text/PathText.h"

namespace
{
bool IsStrayByte(char16_t unit)
{
    return unit >= 0xDC80 && unit <= 0xDCFF;
}

int DigitOf(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    const char small = static_cast<char>(character | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

MString WithoutEnd(const std::string& path)
{
    std::size_t length = path.size();
    while (length > 1 && path[length - 1] == '/')
        --length;
    return PathText(std::string_view(path).substr(0, length));
}
}   // namespace

MString FilePaths::Join(const MString& folder, const MString& name)
{
    return folder == "/" ? folder + name : folder + "/" + name;
}

MString FilePaths::Parent(const MString& path)
{
    for (int i = path.Length() - 1; i > 0; --i)
        if (path[i] == u'/')
            return path.SubString(0, i);
    return "/";
}

MString FilePaths::NameOf(const MString& path)
{
    for (int i = path.Length() - 1; i >= 0 && path.Length() > 1; --i)
        if (path[i] == u'/')
            return path.SubString(i + 1, path.Length() - i - 1);
    return path;
}

bool FilePaths::IsWithin(const MString& path, const MString& folder)
{
    if (folder == "/" || path == folder)
        return true;
    return path.Length() > folder.Length() && path[folder.Length()] == u'/' &&
           path.SubString(0, folder.Length()) == folder;
}

MString FilePaths::Resolved(const MString& typed, const MString& folder)
{
    MString whole = typed;
    if (typed == "~" || typed.Find("~/") == 0)
        whole = MFile::GetSpecialFolder(MFile::User) + typed.SubString(1, typed.Length() - 1);
    else if (typed.IsEmpty() || typed[0] != u'/')
        whole = Join(folder, typed);
    return WithoutEnd(std::filesystem::path(PathBytes(whole)).lexically_normal().native());
}

MString FilePaths::ExistingFolder(const MString& path)
{
    MString folder = path;
    while (folder.Length() > 1 && !MFile::IsFolder(folder))
        folder = Parent(folder);
    return folder.IsEmpty() ? MString("/") : folder;
}

MString FilePaths::Escaped(const MString& path)
{
    MString text;
    for (int i = 0; i < path.Length(); ++i)
    {
        const bool secondOfPair = i > 0 && (path[i - 1] & 0xFC00) == 0xD800;
        const bool stray = IsStrayByte(path[i]) && !secondOfPair;
        if (stray || path[i] < 0x20 || path[i] == u'%' || path[i] == 0x7F)
            text += "%" + MString::FromUnsigned(path[i] & 0xFFu, 16, 2, '0');
        else
            text.Append(path[i]);
    }
    return text;
}

MString FilePaths::Unescaped(const MString& text)
{
    const std::string escaped = PathBytes(text);
    std::string bytes;
    for (std::size_t i = 0; i < escaped.size(); ++i)
    {
        const int high = escaped[i] == '%' && i + 2 < escaped.size() ? DigitOf(escaped[i + 1]) : -1;
        const int low = high >= 0 ? DigitOf(escaped[i + 2]) : -1;
        bytes.push_back(low >= 0 ? static_cast<char>(high * 16 + low) : escaped[i]);
        i += low >= 0 ? 2 : 0;
    }
    return PathText(bytes);
}
