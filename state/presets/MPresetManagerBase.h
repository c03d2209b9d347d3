// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "foundation/containers/MEvent.h"
#include "foundation/text/MObject.h"
#include "foundation/threads/MRelaxed.h"
#include "state/presets/MPresetDialogs.h"
#include "state/presets/MPresetTree.h"
#include "state/tree/MStoreParams.h"

/// What a handler of a preset's selection gets: which preset stands at which place of the flat order.
struct PresetSelectedParams : MEventParams
{
    int index = 0;   ///< -1 for a file of its own
    MString name;   ///< of the preset, or the file's path
};

/// Presets of one object, in folders, in the file `<prefix>presets.xml` in the user's data folder.
///
/// The file is read anew at each operation and replaced as a whole by each change, so that all instances in
/// all processes share their presets; of two changes at once the later one stays. An operation gets an
/// element of a tree that LoadPresets gave, which may be older than the file: it finds the element's
/// counterpart in the file's present tree by its folders and name, changes that, saves, and brings the given
/// tree up to date. All elements of that tree are new afterwards.
///
/// A factory preset changes what it names and nothing else of the object. Any preset leaves alone what
/// belongs to the object's place in its session (see MStoreScope).
///
/// Whatever is thrown, the file is as it was, and so is the object. Thread: main, but the current index.
class MPresetManagerBase : public MObject
{
public:
    MPresetManagerBase();
    ~MPresetManagerBase() override;
    MPresetManagerBase(const MPresetManagerBase&) = delete;
    MPresetManagerBase& operator=(const MPresetManagerBase&) = delete;

    /// Of the file's name.
    void SetPrefix(const MString& filePrefix);
    MString name;   ///< title that the user sees
    MPresetDialogs* dialogs = nullptr;
    /// Raised after a preset or a file of its own was applied. Handlers run where GlobalEventProcessor is
    /// drained.
    MEvent<PresetSelectedParams> onSelected;
    /// Raised after the file was changed by this manager or another one of the same file.
    MEvent<MOnNotifyParams> onChanged;

    /// Reads the module's resource of factory presets, in whichever form it has; managers that live at the
    /// same time share one tree. Without a module or such a resource the list stays empty. Any thread.
    /// Throws MException when the resource is damaged.
    void ReadFactoryPresets();
    /// The factory presets are the programs that hosts see, in their flat order, and what the list holds as
    /// long as there is no file.
    int FactoryPresetCount() const;
    /// Empty out of range. Any thread.
    MString FactoryPresetName(int index) const;
    /// False out of range.
    bool LoadFactoryPreset(int index);

    /// The path of the file. A file of the same name beside the maker's folder, where earlier versions kept
    /// it, is merged into it, or without one into the factory presets, and deleted first; one that can't be
    /// read stays where it is.
    MString GetPresetFileName();
    /// A missing file gives the factory presets, or nothing. A broken one throws MException.
    void LoadPresets(MAttribute& root);
    void SavePresets(MAttribute& root);

    /// A new preset with the object's present state at the folder's end.
    void AddPreset(MAttribute& folder, const MString& presetName);
    /// The object's present state under the preset's name and exchange index.
    void ReplacePreset(MAttribute& preset);
    /// Presets and folders.
    void RenameItem(MAttribute& item, const MString& newName);
    void RenameFolder(MAttribute& folder);
    void CreateFolder(MAttribute& parent);
    void DeleteItem(MAttribute& item);
    /// Writes the folder's present content to a ".qpresets" file; the forms without a path ask for it.
    void ExportFolder(MAttribute& folder);
    void ExportFolder(MAttribute& folder, const MString& path);
    /// Replaces the folder's content by a file's.
    void ImportFolder(MAttribute& folder);
    void ImportFolder(MAttribute& folder, const MString& path);
    /// Merges a file's tree into the user's; saves only when there is something new. Answers the count of
    /// added presets.
    int MergeFile(const MString& path, int exchangeIndex);

    /// Applies a preset, as it stands in the file now, of a tree that LoadPresets gave.
    void LoadPreset(MAttribute& preset);
    /// Applies the preset `direction` places behind the current one in the flat order, around the ends.
    /// Does nothing without presets.
    void StepPreset(int direction);
    /// The object's state from and to a file of its own. Failures are shown where there are dialogs and
    /// thrown where there are none: "Error loading file \"{0}\"." and "Error saving file \"{0}\".".
    void LoadFromFile();
    void LoadFromFile(const MString& path);
    void SaveToFile();
    void SaveToFile(const MString& path);

    /// The place of the current preset in the flat order. Any thread.
    int CurrentPresetIndex() const { return currentPresetIndex; }
    void SetCurrentPresetIndex(int index) { currentPresetIndex = index < 0 ? 0 : index; }
    /// The attribute CurrentPresetIndex of the object's state, in both directions.
    void StoreCurrentIndex(const MStoreParams& params);

protected:
    /// The object's Store. Reading happens under the object's own locks.
    virtual void StoreObject(const MStoreParams& params) = 0;

private:
    struct Managers;
    static Managers& AllManagers();

    void Apply(MAttribute& settings, MLoadMode mode);
    void ApplyPreset(const MAttribute& preset, int index);
    void SaveObject(MAttribute& item);
    void MergeEarlierFile(const MString& earlier, const MString& path) const;
    void CopyFactoryPresets(MAttribute& root) const;
    MAttribute& CounterpartOf(const MAttribute& item, MAttribute& present);
    void Announce(int index, const MString& presetName);
    void AnnounceChange() const;
    void Change(MAttribute& item, const std::function<void(MAttribute&)>& change);
    bool IsConfirmed(const MString& question) const;
    bool AskText(const MString& prompt, MString& text) const;
    bool AskFile(const MPresetDialogs::FileRequest& request, MString& path) const;
    void Report(const MString& text) const;

    struct FactoryPresets;
    static std::shared_ptr<const FactoryPresets> ReadFactoryResource();

    MString prefix;   // guarded by the managers' lock
    std::shared_ptr<const FactoryPresets> factory;   // never changes: many threads read it
    MRelaxed<int> currentPresetIndex = 0;
};
