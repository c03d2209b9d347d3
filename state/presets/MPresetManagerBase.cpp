// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/presets/MPresetManagerBase.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <new>

#include "foundation/module/MModule.h"
#include "foundation/streams/MFile.h"
#include "foundation/text/Boundary.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/PathText.h"
#include "foundation/text/Translate.h"
#include "state/tree/StoredNode.h"
#include "state/tree/XML.h"

namespace
{
MAttribute& RootOf(MAttribute& item)
{
    MAttribute* root = &item;
    while (root->Parent() != nullptr)
        root = root->Parent();
    return *root;
}

// The tree knows removal by name only; no document can hold an element of this one.
void Remove(MAttribute& item)
{
    const MString marker = "< removed >";
    MAttribute* parent = item.Parent();
    if (parent == nullptr)
        return;
    item.SetName(marker);
    parent->RemoveSubItems(marker);
}

// The content of `source` becomes that of `folder`, whose own attributes stay.
void ReplaceContent(MAttribute& folder, const MAttribute& source)
{
    MAttribute own;
    for (int index = 0; index < folder.AttributeCount(); ++index)
        own.SetAttribute(folder.AttributeAt(index).key, folder.AttributeAt(index).value);
    folder.CopyFrom(source);
    folder.SetText({});
    while (folder.AttributeCount() > 0)
        folder.RemoveAttribute(MString(folder.AttributeAt(0).key));
    for (int index = 0; index < own.AttributeCount(); ++index)
        folder.SetAttribute(own.AttributeAt(index).key, own.AttributeAt(index).value);
}

void MakeUserFolder()
{
    MFile::CreatePath(MFile::GetSpecialFolder(MFile::UserData));
}

constexpr const char OverlayMark[] = "Overlay";   // of a preset that names a part of the object only

// What SaveToFile writes, or a preset that was written by itself.
void CheckIsSettings(const MAttribute& settings)
{
    if (!settings.Name().EqualsNoCase("settings") && !IsPreset(settings))
        throw MException("Invalid file contents. The document holds no settings.", MErrorCode::Content);
}

MPresetDialogs::FileRequest FolderRequest(bool forSaving)
{
    MPresetDialogs::FileRequest request;
    request.title = Translate(forSaving ? "Export preset directory" : "Import preset directory");
    request.fileType = Translate("Preset directories");
    request.extension = "qpresets";
    request.dialogId = "ExportPresets";
    request.forSaving = forSaving;
    return request;
}

MPresetDialogs::FileRequest SettingsRequest(bool forSaving)
{
    MPresetDialogs::FileRequest request;
    request.title = Translate(forSaving ? "Save" : "Load");
    request.extension = "xml";
    request.forSaving = forSaving;
    return request;
}
}   // namespace

struct MPresetManagerBase::FactoryPresets
{
    MAttribute tree;
    std::vector<MAttribute*> presets;   // in the flat order
    std::vector<MString> names;
};

// Managers of one file tell each other of its changes.
struct MPresetManagerBase::Managers
{
    MLock lock;
    MArray<MPresetManagerBase*> all;
};

MPresetManagerBase::Managers& MPresetManagerBase::AllManagers()
{
    // Never destroyed: objects may outlive what a library's end destroys.
    alignas(Managers) static unsigned char storage[sizeof(Managers)];
    static Managers& managers = *new (storage) Managers;
    return managers;
}

MPresetManagerBase::MPresetManagerBase()
{
    Managers& managers = AllManagers();
    const MSynchronizerGuard guard(managers.lock);
    managers.all.Add(this);
}

MPresetManagerBase::~MPresetManagerBase()
{
    Managers& managers = AllManagers();
    const MSynchronizerGuard guard(managers.lock);
    managers.all.Delete(
        static_cast<int>(std::find(managers.all.begin(), managers.all.end(), this) - managers.all.begin()));
}

void MPresetManagerBase::SetPrefix(const MString& filePrefix)
{
    const MSynchronizerGuard guard(AllManagers().lock);
    prefix = filePrefix;
}

void MPresetManagerBase::AnnounceChange() const
{
    Managers& managers = AllManagers();
    const MSynchronizerGuard guard(managers.lock);
    for (MPresetManagerBase* manager : managers.all)
        if (manager->prefix == prefix)
            manager->onChanged.Post(GlobalEventProcessor(), {});
}

void MPresetManagerBase::Announce(int index, const MString& presetName)
{
    PresetSelectedParams selected;
    selected.index = index;
    selected.name = presetName;
    onSelected.Post(GlobalEventProcessor(), selected);
}

bool MPresetManagerBase::IsConfirmed(const MString& question) const
{
    return dialogs == nullptr || dialogs->Confirm(question);
}

bool MPresetManagerBase::AskText(const MString& prompt, MString& text) const
{
    return dialogs == nullptr || dialogs->AskText(prompt, text);
}

bool MPresetManagerBase::AskFile(const MPresetDialogs::FileRequest& request, MString& path) const
{
    return dialogs != nullptr && dialogs->AskFile(request, path) && !path.IsEmpty();
}

void MPresetManagerBase::Report(const MString& text) const
{
    if (dialogs == nullptr)
        throw MException(text);
    dialogs->ShowMessage(text);
}

void MPresetManagerBase::CopyFactoryPresets(MAttribute& root) const
{
    root.Clear();
    if (factory != nullptr)
        root.CopyFrom(factory->tree);
    root.SetName("presets");
}

void MPresetManagerBase::MergeEarlierFile(const MString& earlier, const MString& path) const
{
    MAttribute old;
    const bool isReadable = AtBoundary("MPresetManagerBase::GetPresetFileName", false,
                                       [&]
                                       {
                                           LoadPresetTree(old, earlier);
                                           return true;
                                       });
    if (!isReadable)
        return;
    MAttribute current;
    if (MFile::Exists(path))
        LoadPresetTree(current, path);
    else
        CopyFactoryPresets(current);
    if (MergePresets(current, old, {}) > 0)
    {
        MakeUserFolder();
        SavePresetTree(current, path);
    }
    // Another instance may have been quicker.
    if (MFile::Exists(earlier))
        MFile::Delete(earlier);
}

MString MPresetManagerBase::GetPresetFileName()
{
    const MString file = prefix + "presets.xml";
    const MString folder = MFile::GetSpecialFolder(MFile::UserData);
    const MString path = folder + "/" + file;
    std::string parent = PathBytes(folder);
    parent.resize(parent.rfind('/'));
    const MString earlier = PathText(parent) + "/" + file;
    if (MFile::Exists(earlier))
        MergeEarlierFile(earlier, path);
    return path;
}

void MPresetManagerBase::LoadPresets(MAttribute& root)
{
    const MString path = GetPresetFileName();
    if (MFile::Exists(path))
    {
        LoadPresetTree(root, path);
        return;
    }
    CopyFactoryPresets(root);
}

std::shared_ptr<const MPresetManagerBase::FactoryPresets> MPresetManagerBase::ReadFactoryResource()
{
    MModule* module = MModule::Main();
    MResource* resource = module != nullptr ? module->resources.Find("qpresets") : nullptr;
    if (resource == nullptr)
        return nullptr;
    auto read = std::make_shared<FactoryPresets>();
    ReadCompressedXML(read->tree, resource->bytes);
    CollectPresets(read->tree, read->presets);
    for (MAttribute* preset : read->presets)
        read->names.push_back(preset->GetAttribute("name"));
    return read;
}

void MPresetManagerBase::ReadFactoryPresets()
{
    // Instances are made on any thread, while the resource has one reading position. What was read lives as
    // long as somebody uses it.
    static std::mutex reading;
    static std::weak_ptr<const FactoryPresets> shared;
    const std::lock_guard guard(reading);
    factory = shared.lock();
    if (factory == nullptr)
        shared = factory = ReadFactoryResource();
}

int MPresetManagerBase::FactoryPresetCount() const
{
    return factory != nullptr ? static_cast<int>(factory->presets.size()) : 0;
}

MString MPresetManagerBase::FactoryPresetName(int index) const
{
    if (index < 0 || index >= FactoryPresetCount())
        return {};
    return factory->names[static_cast<std::size_t>(index)];
}

bool MPresetManagerBase::LoadFactoryPreset(int index)
{
    if (index < 0 || index >= FactoryPresetCount())
        return false;
    MAttribute settings;
    ReadPreset(*factory->presets[static_cast<std::size_t>(index)], settings);
    Apply(settings, MLoadMode::Overlay);
    SetCurrentPresetIndex(index);
    Announce(index, FactoryPresetName(index));
    return true;
}

void MPresetManagerBase::SavePresets(MAttribute& root)
{
    const MString path = GetPresetFileName();
    MakeUserFolder();
    SavePresetTree(root, path);
}

void MPresetManagerBase::Change(MAttribute& item, const std::function<void(MAttribute&)>& change)
{
    MAttribute present;
    change(CounterpartOf(item, present));
    SavePresets(present);
    RootOf(item).CopyFrom(present);
    AnnounceChange();
}

MAttribute& MPresetManagerBase::CounterpartOf(const MAttribute& item, MAttribute& present)
{
    LoadPresets(present);
    MAttribute* counterpart = FindCounterpart(item, present);
    if (counterpart == nullptr)
        throw MException(Format("\"{0}\" does not exist anymore.", item.GetAttribute("name")));
    return *counterpart;
}

void MPresetManagerBase::SaveObject(MAttribute& item)
{
    StoreObject({ .saving = 1, .item = &item, .scope = MStoreScope::Preset });
}

void MPresetManagerBase::Apply(MAttribute& settings, MLoadMode mode)
{
    MAttribute before;
    SaveObject(before);
    try
    {
        StoreObject({ .item = &settings, .mode = mode, .scope = MStoreScope::Preset });
    }
    catch (...)
    {
        AtBoundary("MPresetManagerBase::Apply",
                   [&] { StoreObject({ .item = &before, .scope = MStoreScope::Preset }); });
        throw;
    }
}

void MPresetManagerBase::AddPreset(MAttribute& folder, const MString& presetName)
{
    Change(folder,
           [&](MAttribute& target)
           {
               MAttribute& preset = target.AddSubItem("preset");
               SaveObject(preset);
               preset.SetAttribute("name", presetName);
           });
}

void MPresetManagerBase::ReplacePreset(MAttribute& preset)
{
    if (!IsConfirmed(Translate("Are you sure you want to replace selected preset?")))
        return;
    Change(preset,
           [&](MAttribute& target)
           {
               const MString presetName = target.GetAttribute("name");
               const MString exchangeIndex = target.GetAttribute("ExchangeIndex");
               target.Clear();
               SaveObject(target);
               target.SetAttribute("name", presetName);
               if (!exchangeIndex.IsEmpty())
                   target.SetAttribute("ExchangeIndex", exchangeIndex);
           });
}

void MPresetManagerBase::RenameItem(MAttribute& item, const MString& newName)
{
    Change(item,
           [&](MAttribute& target) { target.SetAttribute(IsPreset(target) ? "name" : "Name", newName); });
}

void MPresetManagerBase::RenameFolder(MAttribute& folder)
{
    MString newName = folder.GetAttribute("Name");
    if (AskText(Translate("Enter new name of the folder"), newName))
        RenameItem(folder, newName);
}

void MPresetManagerBase::CreateFolder(MAttribute& parent)
{
    MString folderName = Translate("New folder ");
    if (!AskText(Translate("Enter name of the new folder"), folderName))
        return;
    Change(parent,
           [&](MAttribute& target) { target.AddSubItem("Directory").SetAttribute("Name", folderName); });
}

void MPresetManagerBase::DeleteItem(MAttribute& item)
{
    if (item.Parent() != nullptr)
        Change(item, [](MAttribute& target) { Remove(target); });
}

void MPresetManagerBase::ExportFolder(MAttribute& folder)
{
    MString path;
    if (AskFile(FolderRequest(true), path))
        ExportFolder(folder, path);
}

void MPresetManagerBase::ExportFolder(MAttribute& folder, const MString& path)
{
    MAttribute present;
    MAttribute exported("presets");
    ReplaceContent(exported, CounterpartOf(folder, present));
    CompressPresets(exported);
    SaveCompressedXML(exported, path, "utf-8");
}

void MPresetManagerBase::ImportFolder(MAttribute& folder)
{
    MString path;
    if (AskFile(FolderRequest(false), path))
        ImportFolder(folder, path);
}

void MPresetManagerBase::ImportFolder(MAttribute& folder, const MString& path)
{
    if (!IsConfirmed(Translate("This function will replace remove all presets in selected directory and "
                               "replace them with presets loaded from the file. Are you sure you want to "
                               "continue?")))
        return;
    MAttribute imported;
    LoadPresetTree(imported, path);
    Change(folder, [&](MAttribute& target) { ReplaceContent(target, imported); });
}

int MPresetManagerBase::MergeFile(const MString& path, int exchangeIndex)
{
    MAttribute source;
    LoadPresetTree(source, path);
    MAttribute target;
    LoadPresets(target);
    const int addedCount = MergePresets(target, source, exchangeIndex);
    if (addedCount > 0)
    {
        SavePresets(target);
        AnnounceChange();
    }
    return addedCount;
}

void MPresetManagerBase::ApplyPreset(const MAttribute& preset, int index)
{
    MAttribute settings;
    ReadPreset(preset, settings);   // as a whole, before anything in the object changes
    Apply(settings, settings.FindAttribute(OverlayMark) != nullptr ? MLoadMode::Overlay : MLoadMode::Plain);
    SetCurrentPresetIndex(index);
    Announce(index, preset.GetAttribute("name"));
}

void MPresetManagerBase::LoadPreset(MAttribute& preset)
{
    MAttribute present;
    const MAttribute& counterpart = CounterpartOf(preset, present);
    std::vector<MAttribute*> presets;
    CollectPresets(present, presets);
    const auto place = std::find(presets.begin(), presets.end(), &counterpart);
    ApplyPreset(counterpart, place == presets.end() ? 0 : static_cast<int>(place - presets.begin()));
}

void MPresetManagerBase::StepPreset(int direction)
{
    MAttribute root;
    LoadPresets(root);
    std::vector<MAttribute*> presets;
    CollectPresets(root, presets);
    if (presets.empty())
        return;
    const auto count = static_cast<std::int64_t>(presets.size());
    const std::int64_t wanted = std::int64_t{ CurrentPresetIndex() } + direction;
    const std::int64_t index = (wanted % count + count) % count;
    ApplyPreset(*presets[static_cast<std::size_t>(index)], static_cast<int>(index));
}

void MPresetManagerBase::LoadFromFile()
{
    MString path;
    if (AskFile(SettingsRequest(false), path))
        LoadFromFile(path);
}

void MPresetManagerBase::LoadFromFile(const MString& path)
{
    try
    {
        MAttribute settings;
        LoadXML(settings, path);
        CheckIsSettings(settings);
        Apply(settings, MLoadMode::Plain);
        Announce(-1, path);
    }
    catch (const MException&)
    {
        Report(Format(Translate("Error loading file \"{0}\"."), path));
    }
}

void MPresetManagerBase::SaveToFile()
{
    MString path;
    if (AskFile(SettingsRequest(true), path))
        SaveToFile(path);
}

void MPresetManagerBase::SaveToFile(const MString& path)
{
    try
    {
        MAttribute settings("settings");
        SaveObject(settings);
        SaveCompressedXML(settings, path, "utf-8");
    }
    catch (const MException&)
    {
        Report(Format(Translate("Error saving file \"{0}\"."), path));
    }
}

void MPresetManagerBase::StoreCurrentIndex(const MStoreParams& params)
{
    if (params.scope == MStoreScope::State)
        StoredNode(params).Always("CurrentPresetIndex", currentPresetIndex,
                                  { 0, std::numeric_limits<std::int32_t>::max() });
}
