// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "gui/painting/MBitmap.h"
#include "state/tree/MAttribute.h"
#include "tools/stylebuilder/StyleScale.h"

/// The images of a style file while it is made.
class StyleImages
{
public:
    /// As "ID@PERCENT".
    void Add(const std::string& id, const StyleScale& scale, const MBitmap& image);
    /// The file: a resource block whose description holds the style's definition beside the list of images.
    std::string Block(const MAttribute& definition) const;

private:
    struct Entry
    {
        std::string id;
        std::string bytes;   // TGA
        bool compressed = false;
    };
    std::vector<Entry> entries;
};
