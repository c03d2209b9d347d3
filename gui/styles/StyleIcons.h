// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <iterator>
#include <memory>
#include <vector>

#include "gui/controls/MStyle.h"
#include "gui/painting/MAlphaMask.h"
#include "gui/styles/StyleDefinition.h"

/// The icons of a style. They stand side by side in sheets, one for each of a few sizes: the section names
/// the sheets' `image` and `sizes`, and for each icon "INDEX SIZE", its place and the size that it usually
/// has. An icon may also name an image of its own. Thread: GUI.
class StyleIcons
{
public:
    /// Throws MException for images that aren't there or can't be read.
    void Load(const MAttribute& section, StyleDefinition& definition, double scale, bool invert);
    /// The usual size, in pixels.
    MSize SizeOf(MStdIcon icon) const;
    /// In the middle of an area, in a smaller size where the usual one doesn't fit.
    void Paint(MDrawer& drawer, const MRectangle& area, MStdIcon icon, MColor color, MColorOp op) const;

private:
    static constexpr std::size_t IconCount = std::size(MEnumLabels<MStdIcon>::Labels);

    struct Sheet
    {
        MBitmap image;
        std::int32_t side = 0;
        /// Made with the first use of each.
        mutable std::array<std::unique_ptr<MAlphaMask>, IconCount> masks;
    };
    struct Icon
    {
        std::int32_t index = -1;   // in the sheets; -1: none
        std::int32_t side = 0;   // pixels
        std::unique_ptr<MAlphaMask> own;
    };

    void LoadSheets(const MAttribute& section, StyleDefinition& definition, double scale, bool invert);
    const Sheet* SheetFor(const Icon& icon, std::int32_t room) const;
    static const MAlphaMask& MaskOf(const Sheet& sheet, std::int32_t index);

    std::vector<Sheet> sheets;   // the smallest first
    std::array<Icon, IconCount> icons;
};
