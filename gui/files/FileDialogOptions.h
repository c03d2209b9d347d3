// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/text/MEnumLabels.h"
#include "foundation/text/MString.h"

class MAttribute;

/// What a file dialog is asked for.
struct FileDialogOptions
{
    enum class Mode
    {
        Open,
        OpenMany,
        Save,
        Folder
    };
    struct FileType
    {
        MString name;   ///< "Wave files"
        MString patterns;   ///< "*.wav;*.w64"
    };

    Mode mode = Mode::Open;
    MString title;   ///< empty: one that fits the mode
    MString purpose;   ///< what the memory is kept by, such as "presets"
    MString folder;   ///< to begin in where none is remembered; empty: the user's documents
    MString name;   ///< that a new file could have
    /// To choose from, the first one first. A new file without a name of the chosen type gets the ending of
    /// the first pattern. None: all files.
    std::vector<FileType> types;
    /// Keeps what the dialog remembers from one time to the next, for each purpose; outlives the dialog.
    /// Null: nothing is remembered.
    MAttribute* memory = nullptr;
};

template <>
struct MEnumLabels<FileDialogOptions::Mode>
{
    static constexpr const char* Labels[] = { "open", "openmany", "save", "folder" };
};
