// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/files/FilePlaces.h"
#include "gui/widgets/MTreeControl.h"

/// Folders in folders, below some places to start from. A folder is read when its line is opened; one that
/// can't be read gets a lock for its sign. Thread: GUI.
class MDirectoryTreeControl : public MTreeControl
{
public:
    /// With the places of the user: see ListFilePlaces.
    MDirectoryTreeControl();

    void SetPlaces(const std::vector<FilePlace>& places);
    void SetShowsHidden(bool shows);
    /// Reads what is open anew.
    void Refresh();
    /// Of the chosen folder; empty: none.
    MString Path() const;
    /// Opens the lines that lead there, from the nearest place, and chooses the last one. From outside: no
    /// event. False: no place leads there, or the way can't be read; what can be reached is open then.
    bool SetPath(const MString& path);
    /// Chooses a line that shows the folder, if there is one, and opens nothing. From outside: no event.
    void Follow(const MString& path);
    /// The user has chosen another folder: its path.
    MEvent<MOnStringParams>& OnPath() { return pathChosen; }

    /// "path", "showhidden".
    void LoadXml(const MAttribute& node) override;

private:
    struct FolderItem : MTreeItem
    {
        MString path;
        bool filled = false;
    };

    static FolderItem& ItemOf(MTreeItem& item) { return static_cast<FolderItem&>(item); }
    FolderItem& AddPlace(const FilePlace& place);
    /// The folders in it; those that were there stay what they are.
    void Fill(FolderItem& item) const;
    void RefreshBelow(MTreeItem& item) const;
    /// Below an item, of those that can be seen.
    static MTreeItem* FindShown(MTreeItem& item, const MString& path);
    void OnItemExpands(const MOnItemParams<MTreeItem*>& params);
    void OnItemSelected(const MOnItemParams<MTreeItem*>& params);

    MEvent<MOnStringParams> pathChosen;
    bool showsHidden = false;
};
