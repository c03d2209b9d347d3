// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <iterator>
#include <memory>

#include "gui/controls/StyleNames.h"
#include "gui/painting/MFont.h"
#include "gui/styles/StyleDefinition.h"

/// The fonts of a style, one for each MStdFont. A font's `face` is a font file's name without its extension:
/// it is looked for in the style's file, in the module, and among the system's fonts; where nobody has it, in
/// the faces that nearly every system has. Thread: GUI.
class StyleFonts
{
public:
    /// Throws MException "Cannot find requested resource ({0})." where not even those are there, "Invalid
    /// MStdFont identifier to parse ({0}).", and what reading a font file throws.
    void Load(const MAttribute& section, StyleDefinition& definition, double scale);
    /// One that the style doesn't have is the normal one; throws MException without that.
    MFont& Get(std::int32_t index) const;

private:
    static constexpr std::size_t FontCount = std::size(MEnumLabels<MStdFont>::Labels);

    std::array<std::unique_ptr<MFont>, FontCount> fonts;
};
