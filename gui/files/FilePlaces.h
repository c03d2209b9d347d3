// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/text/MString.h"
#include "gui/controls/StyleNames.h"

/// A folder from which a user starts.
struct FilePlace
{
    MString name;
    MString path;
    MStdIcon icon = MStdIcon::Folder;
};

/// Those of this user that are there, each once: the own folder, those that the desktop gives, the root of
/// the file system, mounted media, and the bookmarks that file dialogs share (`gtk-3.0/bookmarks` in the
/// user's configuration: a "file:" address on each line, with an optional name behind a blank). Never throws
/// for what can't be read.
std::vector<FilePlace> ListFilePlaces();
