// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/MDirectoryTreeControl.h"

#include <algorithm>
#include <map>
#include <string>

#include "foundation/streams/MFile.h"
#include "foundation/text/MException.h"
#include "foundation/text/PathText.h"
#include "gui/controls/XmlAttributes.h"
#include "gui/files/FilePaths.h"
#include "gui/files/FolderEntry.h"

MDirectoryTreeControl::MDirectoryTreeControl()
{
    OnExpand().AddHandler<&MDirectoryTreeControl::OnItemExpands>(*this);
    OnSelect().AddHandler<&MDirectoryTreeControl::OnItemSelected>(*this);
    SetPlaces(ListFilePlaces());
}

void MDirectoryTreeControl::LoadXml(const MAttribute& node)
{
    // Its lines are folders: those of a document aren't any.
    MControl::LoadXml(node);   // NOLINT(bugprone-parent-virtual-call)
    const XmlAttributes attributes(node);
    if (bool shows = false; attributes.Read("showhidden", shows))
        SetShowsHidden(shows);
    if (MString path; attributes.Read("path", path))
        SetPath(FilePaths::Resolved(path, "/"));
}

MDirectoryTreeControl::FolderItem& MDirectoryTreeControl::AddPlace(const FilePlace& place)
{
    auto made = std::make_unique<FolderItem>();
    FolderItem& item = *made;
    item.text = place.name;
    item.icon = place.icon;
    item.path = place.path;
    item.mayHaveChildren = true;
    item.parent = &Items();
    Items().children.push_back(std::move(made));
    return item;
}

void MDirectoryTreeControl::SetPlaces(const std::vector<FilePlace>& places)
{
    SetCurrent(nullptr);
    Items().children.clear();
    for (const FilePlace& each : places)
        AddPlace(each);
    ItemsChanged();
}

void MDirectoryTreeControl::SetShowsHidden(bool shows)
{
    if (showsHidden == shows)
        return;
    showsHidden = shows;
    Refresh();
}

void MDirectoryTreeControl::Refresh()
{
    RefreshBelow(Items());
    ItemsChanged();
}

void MDirectoryTreeControl::RefreshBelow(MTreeItem& item) const
{
    for (const auto& each : item.children)
    {
        if (ItemOf(*each).filled)
            Fill(ItemOf(*each));
        RefreshBelow(*each);
    }
}

void MDirectoryTreeControl::Fill(FolderItem& item) const
{
    std::vector<FolderEntry> entries;
    const bool wasLocked = item.icon == MStdIcon::Lock;
    try
    {
        entries = ReadFolder(item.path);
        if (wasLocked)
            item.icon = MStdIcon::Folder;
    }
    catch (const MException&)
    {
        item.icon = MStdIcon::Lock;
    }
    std::map<std::string, std::unique_ptr<MTreeItem>> known;
    for (auto& each : item.children)
        known[PathBytes(each->text)] = std::move(each);
    item.children.clear();
    std::sort(entries.begin(), entries.end(),
              [](const FolderEntry& a, const FolderEntry& b)
              { return CompareFileNames(a.name, b.name) < 0; });
    for (const FolderEntry& entry : entries)
    {
        if (!entry.isFolder || (entry.IsHidden() && !showsHidden))
            continue;
        std::unique_ptr<MTreeItem>& old = known[PathBytes(entry.name)];
        if (old == nullptr)
        {
            auto made = std::make_unique<FolderItem>();
            made->text = entry.name;
            made->icon = MStdIcon::Folder;
            made->path = FilePaths::Join(item.path, entry.name);
            made->mayHaveChildren = true;
            made->parent = &item;
            old = std::move(made);
        }
        item.children.push_back(std::move(old));
    }
    item.filled = true;
    item.mayHaveChildren = !item.children.empty();
}

void MDirectoryTreeControl::OnItemExpands(const MOnItemParams<MTreeItem*>& params)
{
    Fill(ItemOf(*params.item));
}

void MDirectoryTreeControl::OnItemSelected(const MOnItemParams<MTreeItem*>&)
{
    // The item of the event may have gone since.
    MOnStringParams params;
    params.source = this;
    params.text = Path();
    if (!params.text.IsEmpty())
        pathChosen.Post(GlobalEventProcessor(), params);
}

MString MDirectoryTreeControl::Path() const
{
    return Current() != nullptr ? ItemOf(*Current()).path : MString();
}

bool MDirectoryTreeControl::SetPath(const MString& path)
{
    MTreeItem* here = nullptr;
    for (const auto& each : Items().children)
        if (FilePaths::IsWithin(path, ItemOf(*each).path) &&
            (here == nullptr || ItemOf(*each).path.Length() > ItemOf(*here).path.Length()))
            here = each.get();
    while (here != nullptr && ItemOf(*here).path != path)
    {
        SetExpanded(*here, true);
        MTreeItem* next = nullptr;
        for (const auto& each : here->children)
            if (FilePaths::IsWithin(path, ItemOf(*each).path))
                next = each.get();
        here = next;
    }
    if (here != nullptr)
        SetCurrent(here);
    return here != nullptr;
}

MTreeItem* MDirectoryTreeControl::FindShown(MTreeItem& item, const MString& path)
{
    for (const auto& each : item.children)
    {
        if (ItemOf(*each).path == path)
            return each.get();
        if (MTreeItem* found = each->expanded ? FindShown(*each, path) : nullptr)
            return found;
    }
    return nullptr;
}

void MDirectoryTreeControl::Follow(const MString& path)
{
    // One of several lines of the same folder stays chosen.
    if (Path() != path)
        SetCurrent(FindShown(Items(), path));
}
