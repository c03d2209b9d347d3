// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/text/MString.h"

/// What a folder holds under one name.
struct FolderEntry
{
    bool IsHidden() const { return !name.IsEmpty() && name[0] == u'.'; }

    MString name;
    bool isFolder = false;
    bool chosen = false;   ///< in the list that shows it
    std::int64_t size = 0;   ///< bytes
    std::int64_t writeTime = 0;   ///< seconds since 1970, 0: unknown
};

/// Sorted by name. Throws MException "Could not access path \"{0}\" to get file list." with the reason.
std::vector<FolderEntry> ReadFolder(const MString& path);
/// Below 0, 0 or above 0: without case, and numbers by their value, so that "Take 2" comes before "Take 10".
int CompareFileNames(const MString& a, const MString& b);
/// "1.2 MB": with units of 1000.
MString FileSizeText(std::int64_t bytes);
/// " 9 Mar 2026  17:05" in the user's time zone; empty for 0. Without a "-": digits of equal width would make
/// it a minus.
MString FileTimeText(std::int64_t seconds);
