// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/fields/MEdit.h"
#include "gui/files/FolderEntry.h"

/// A field for names and paths. What all names that begin as typed have in common is put behind it, chosen,
/// so that the next letter takes its place. Thread: GUI.
class MFileNameEdit : public MEdit
{
public:
    enum class Completes
    {
        All,
        Folders,
        PathsOnly   ///< nothing in the folder itself: for the name of a new file
    };

    bool OnEvent(const MControlEvent& event) override;

    MString folder = "/";   ///< in which names without a path are
    Completes completes = Completes::All;

protected:
    MString Continuation(const MString& typed) override;

private:
    void ReadOnce(const MString& path);

    MString readFolder;   // whose entries are kept while the field has the keyboard
    std::vector<FolderEntry> entries;
};
