// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/MFileNameEdit.h"

#include "foundation/text/MException.h"
#include "gui/files/FilePaths.h"

namespace
{
int CommonLength(const MString& a, const MString& b)
{
    int length = 0;
    while (length < a.Length() && length < b.Length() && a[length] == b[length])
        ++length;
    return length;
}
}   // namespace

bool MFileNameEdit::OnEvent(const MControlEvent& event)
{
    if (event.code == MEventCode::Focus)
        readFolder = {};
    return MEdit::OnEvent(event);
}

void MFileNameEdit::ReadOnce(const MString& path)
{
    if (path == readFolder)
        return;
    readFolder = path;
    entries.clear();
    try
    {
        entries = ReadFolder(path);
    }
    catch (const MException&)
    {
        // Nothing is known of it.
    }
}

MString MFileNameEdit::Continuation(const MString& typed)
{
    int nameAt = typed.Length();
    while (nameAt > 0 && typed[nameAt - 1] != u'/')
        --nameAt;
    const MString begin = typed.SubString(nameAt, typed.Length() - nameAt);
    if (begin.IsEmpty() || (completes == Completes::PathsOnly && nameAt == 0))
        return {};
    ReadOnce(FilePaths::Resolved(typed.SubString(0, nameAt), folder));
    MString common;
    std::int32_t matches = 0;
    bool isFolder = false;
    for (const FolderEntry& each : entries)
    {
        if ((completes != Completes::All && !each.isFolder) || (each.IsHidden() && begin[0] != u'.') ||
            CommonLength(each.name, begin) < begin.Length())
            continue;
        common = matches == 0 ? each.name : common.SubString(0, CommonLength(common, each.name));
        isFolder = each.isFolder;
        ++matches;
    }
    if (matches == 0)
        return {};
    MString rest = common.SubString(begin.Length(), common.Length() - begin.Length());
    if (matches == 1 && isFolder)
        rest += "/";
    // A name's bytes aren't cut apart.
    return !rest.IsEmpty() && (rest[0] & 0xFC00) == 0xDC00 ? MString() : rest;
}
