// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/text/MString.h"

/// A line of a description: KIND ID FILE [compressed].
struct ResourceLine
{
    std::string kind;   ///< "resource" with any suffix, or "xresource"
    std::string id;
    std::string file;   ///< from the description's folder; of an xresource from the module's
    bool compressed = false;
};

/// Lines of words; "#" begins a comment. Throws MException "{0}:{1}: ..." with the name and line number for
/// anything that is no description, and for an id that comes twice.
std::vector<ResourceLine> ParseResourceLines(std::string_view text, const std::string& name);

/// The block in the format that MResourceTable reads, with the files taken from `folder`, and those whose
/// name begins with "built/" from `built`. Throws MException.
std::string MakeResourceBlock(const std::vector<ResourceLine>& lines, const std::string& folder,
                              const std::string& built = {});

/// C++ source that defines the block as `EmbeddedResourceBlock` and its size.
std::string MakeResourceSource(std::string_view block);
