// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "foundation/streams/MStream.h"
#include "state/tree/MAttribute.h"

/// The tree of a preset file: root `presets`, `Directory` elements with a `Name` to any depth, `preset`
/// elements with a `name`. A preset is plain (the attributes and children are the stored tree) or compressed
/// (`compressed` = "1", the text is the hexadecimal form of the plain preset's compressed XML).
/// None of these operations touches a file but the last two. Thread: main.

bool IsPreset(const MAttribute& item);
bool IsPresetFolder(const MAttribute& item);

/// The presets below `item` in their flat order: of each folder first its presets, then its folders.
void CollectPresets(const MAttribute& item, std::vector<MAttribute*>& presets);
/// Brings every plain preset that has a name into the compressed form. A preset without a name ends the walk.
void CompressPresets(MAttribute& root);
/// The stored tree of a preset, whichever form it has. Throws MException for one that is damaged.
void ReadPreset(const MAttribute& preset, MAttribute& settings);
/// Adds the presets and folders of `source` whose names `target` doesn't have, without regard to case.
/// What is added gets `exchangeIndex` as its ExchangeIndex; without one it keeps its own. Answers the count
/// of added presets.
int MergePresets(MAttribute& target, const MAttribute& source, std::optional<int> exchangeIndex);
/// The element of `tree` that stands where `item` stands in its own tree: the same folders by name, the same
/// name, among equal names the same one. Null when there is none.
MAttribute* FindCounterpart(const MAttribute& item, MAttribute& tree);

/// Reads a preset file or an exported folder, compressed or not. Throws MException with the parser's text,
/// also for a document that is none of presets.
void LoadPresetTree(MAttribute& root, const MString& path);
/// CompressPresets, then the file as a whole. Throws MException, also for what LoadPresetTree would refuse.
void SavePresetTree(MAttribute& root, const MString& path);
