// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "state/tree/MAttribute.h"
#include "tools/tonalign/BandSpec.h"

/// A line of the description: name and bands, in the folder of the "[Folder]" line above it.
struct FactoryPreset
{
    std::string folder;   ///< empty above the first folder
    std::string name;
    std::vector<BandSpec> bands;
};

/// "#" begins a comment line. Throws MException "{0}:{1}: ..." with the name and the line number for anything
/// that is no description, and for a name that its folder has already.
std::vector<FactoryPreset> ParseFactoryPresets(std::string_view text, const std::string& name);

/// The tree of a preset file. A preset holds the bands and the sliders beside them, nothing else: what a user
/// has measured, the channel mode and the view stay as they are when it is loaded.
void MakeFactoryPresets(const std::vector<FactoryPreset>& presets, MAttribute& root);
