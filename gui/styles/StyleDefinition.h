// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "foundation/module/MResourceTable.h"
#include "gui/painting/MBitmap.h"

/// A style's file: a resource block whose description holds, beside `resources`, the element `style` with
/// the definition. Images are TGA files in its data: "ID@PERCENT" is the image ID for a scale, ID alone
/// counts as that for 100 %. Files come from anywhere; images are read only when they are asked for, and all
/// of them together may not be larger than any style needs. Thread: GUI.
class StyleDefinition
{
public:
    /// Throws MException for what is no block, or has no definition: "Invalid file contents. ...".
    static std::unique_ptr<StyleDefinition> Read(MStream& stream);
    static std::unique_ptr<StyleDefinition> Load(const MString& path);

    /// Takes over what this one lacks: sections, attributes, images.
    void CompleteFrom(std::unique_ptr<StyleDefinition> other);

    const MAttribute& Tree() const { return *tree; }
    /// Null where there is none.
    const MAttribute* Section(const MString& name) const { return tree->FindSubItem(name); }
    /// For a scale: the one drawn for it, or the next larger one reduced, or the largest there is enlarged.
    /// Throws MException "Cannot find requested resource ({0}).", and what reading an image throws.
    MBitmap Image(const MString& id, double scale) { return Image(id, scale, false); }
    /// The same of squares side by side, which stay squares where it is reduced.
    MBitmap Sheet(const MString& id, double scale) { return Image(id, scale, true); }
    /// Null where there is none.
    MResource* FindResource(const MString& id);

private:
    struct Drawn
    {
        int percent = 100;
        MResource* resource = nullptr;
    };

    StyleDefinition() = default;
    void ListImages();
    MBitmap Image(const MString& id, double scale, bool isSheet);
    MBitmap ReadImage(MResource& resource);
    /// Of the budget of all images.
    void TakePixels(double width, double height);

    MResourceTable table;
    MAttribute* tree = nullptr;
    std::unique_ptr<StyleDefinition> common;
    std::unordered_map<std::string, std::vector<Drawn>> images;   // by id, the smallest scale first
    std::int64_t pixelsLeft = std::int64_t{ 1 } << 24;
};
