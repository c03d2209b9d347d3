// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/text/MString.h"

// Files as programs hand them to each other: a line "file:///folder/name" for each, with %XX for every byte
// that isn't plain. Sources: RFC 2483 section 5, RFC 3986, RFC 8089. File names are texts as PathText has
// them: each byte of a name stays what it was.

/// The files of a list that another program made; comments, other machines' files, web addresses and names
/// with a zero byte are left out, and so is what comes after the first hundred thousand lines. Lines that
/// are plain absolute paths count, too: terminals hand those out.
std::vector<MString> FilesOfUriList(std::string_view list);
std::string UriListOf(const std::vector<MString>& files);
