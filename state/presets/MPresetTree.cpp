// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/presets/MPresetTree.h"

#include <map>
#include <set>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MSafeFileStream.h"
#include "state/tree/XML.h"

namespace
{
struct WithoutCase
{
    bool operator()(const MString& a, const MString& b) const noexcept
    {
        return MString::CompareNoCase(a, b) < 0;
    }
};

// `name` of a preset and `Name` of a folder are one key: keys have no case.
const MString& NameOf(const MAttribute& item)
{
    static const MString none;
    const MString* name = item.FindAttribute("name");
    return name != nullptr ? *name : none;
}

// A preset's own tree may hold anything, also elements that are called "preset": no walk enters it.
void CollectInDocumentOrder(const MAttribute& item, std::vector<MAttribute*>& presets)
{
    for (int index = 0; index < item.SubItemCount(); ++index)
    {
        MAttribute& child = item.SubItemAt(index);
        if (IsPreset(child))
            presets.push_back(&child);
        else
            CollectInDocumentOrder(child, presets);
    }
}

void Compress(MAttribute& preset)
{
    const MString name = preset.GetAttribute("name");
    const MString exchangeIndex = preset.GetAttribute("ExchangeIndex");
    MMemoryStream stream;
    WriteCompressedXML(preset, stream, "utf-8");
    preset.Clear();
    preset.SetAttribute("name", name);
    if (!exchangeIndex.IsEmpty())
        preset.SetAttribute("ExchangeIndex", exchangeIndex);
    preset.SetAttribute("compressed", "1");
    preset.SetBinary(stream, false);
}

// The ordinal of an item among its siblings of the same kind and name.
int OrdinalOf(const MAttribute& item)
{
    int ordinal = 0;
    for (const MAttribute* other = item.Previous(); other != nullptr; other = other->Previous())
        if (other->Name().EqualsNoCase(item.Name()) && NameOf(*other) == NameOf(item))
            ++ordinal;
    return ordinal;
}

void CheckIsPresetTree(const MAttribute& root)
{
    if (!root.Name().EqualsNoCase("presets") && !IsPresetFolder(root))
        throw MException("Invalid file contents. The document holds no presets.", MErrorCode::Content);
}
// What a reader of XML accepts; a file beyond that could never be read again.
constexpr int LargestDepth = 255;
constexpr int LargestElementCount = 1 << 18;
constexpr std::int64_t LargestFileSize = std::int64_t{ 64 } << 20;

void CheckCanBeReadAgain(MAttribute& root)
{
    MAttribute walk;
    walk.BeginIteration(root);
    int count = 1;
    while (const MAttribute* item = walk.NextItem())
        if (++count > LargestElementCount || item->Depth() - root.Depth() >= LargestDepth)
            throw MException("There are too many presets or folders in one file.");
}
}   // namespace

bool IsPreset(const MAttribute& item)
{
    return item.Name().EqualsNoCase("preset");
}

bool IsPresetFolder(const MAttribute& item)
{
    return item.Name().EqualsNoCase("Directory");
}

void CollectPresets(const MAttribute& item, std::vector<MAttribute*>& presets)
{
    for (int index = 0; index < item.SubItemCount(); ++index)
        if (IsPreset(item.SubItemAt(index)))
            presets.push_back(&item.SubItemAt(index));
    for (int index = 0; index < item.SubItemCount(); ++index)
        if (IsPresetFolder(item.SubItemAt(index)))
            CollectPresets(item.SubItemAt(index), presets);
}

void CompressPresets(MAttribute& root)
{
    std::vector<MAttribute*> presets;
    CollectInDocumentOrder(root, presets);
    for (MAttribute* preset : presets)
    {
        if (!preset->HasAttribute("name"))
            return;
        if (!preset->HasAttribute("compressed"))
            Compress(*preset);
    }
}

void ReadPreset(const MAttribute& preset, MAttribute& settings)
{
    if (preset.FindAttribute("compressed") == nullptr)
    {
        settings.CopyFrom(preset);
        return;
    }
    MMemoryStream stream;
    preset.GetBinary(stream, false);
    ReadCompressedXML(settings, stream);
}

int MergePresets(MAttribute& target, const MAttribute& source, std::optional<int> exchangeIndex)
{
    std::set<MString, WithoutCase> presets;
    std::map<MString, MAttribute*, WithoutCase> folders;
    for (int index = 0; index < target.SubItemCount(); ++index)
    {
        MAttribute& item = target.SubItemAt(index);
        if (IsPreset(item))
            presets.insert(NameOf(item));
        else if (IsPresetFolder(item))
            folders.emplace(NameOf(item), &item);
    }
    int addedCount = 0;
    for (int index = 0; index < source.SubItemCount(); ++index)
    {
        const MAttribute& item = source.SubItemAt(index);
        if (!IsPreset(item) || presets.contains(NameOf(item)))
            continue;
        MAttribute& added = target.AddSubItem(item.Name());
        added.CopyFrom(item);
        if (exchangeIndex)
            added.SetAttribute("ExchangeIndex", MString::FromInt(*exchangeIndex));
        ++addedCount;
    }
    for (int index = 0; index < source.SubItemCount(); ++index)
    {
        const MAttribute& item = source.SubItemAt(index);
        if (!IsPresetFolder(item))
            continue;
        MAttribute*& folder = folders[NameOf(item)];
        if (folder == nullptr)
        {
            folder = &target.AddSubItem("Directory");
            folder->SetAttribute("Name", NameOf(item));
        }
        addedCount += MergePresets(*folder, item, exchangeIndex);
    }
    return addedCount;
}

MAttribute* FindCounterpart(const MAttribute& item, MAttribute& tree)
{
    if (item.Parent() == nullptr)
        return &tree;
    MAttribute* folder = FindCounterpart(*item.Parent(), tree);
    if (folder == nullptr)
        return nullptr;
    int ordinal = OrdinalOf(item);
    for (int index = 0; index < folder->SubItemCount(); ++index)
    {
        MAttribute& candidate = folder->SubItemAt(index);
        if (candidate.Name().EqualsNoCase(item.Name()) && NameOf(candidate) == NameOf(item) && ordinal-- == 0)
            return &candidate;
    }
    return nullptr;
}

void LoadPresetTree(MAttribute& root, const MString& path)
{
    MAttribute loaded;
    LoadXML(loaded, path);
    CheckIsPresetTree(loaded);
    root.CopyFrom(loaded);
    root.SetName(loaded.Name());
}

void SavePresetTree(MAttribute& root, const MString& path)
{
    CompressPresets(root);
    CheckCanBeReadAgain(root);
    MMemoryStream document;
    WriteXML(root, document, false, "utf-8");
    if (document.GetSize() > LargestFileSize)
        throw MException("There are too many presets or folders in one file.");
    MSafeFileStream file(path);
    file.Write(document.Block().Data(), document.Block().Size());
    file.Commit();
}
