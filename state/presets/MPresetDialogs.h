// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MString.h"

/// What a preset manager asks its user. Without an editor nobody answers: then questions count as agreed to
/// and texts as their defaults, for whoever calls an operation has made up their mind.
class MPresetDialogs
{
public:
    struct FileRequest
    {
        MString title;
        MString fileType;
        MString extension;
        MString dialogId;   ///< under which the dialog remembers its folder
        bool forSaving = false;
    };

    virtual ~MPresetDialogs() = default;
    /// False cancels the operation.
    virtual bool Confirm(const MString& question) = 0;
    /// `text` holds the default before and the answer afterwards; false cancels.
    virtual bool AskText(const MString& prompt, MString& text) = 0;
    virtual bool AskFile(const FileRequest& request, MString& path) = 0;
    virtual void ShowMessage(const MString& text) = 0;
};
