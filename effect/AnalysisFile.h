// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "foundation/text/MString.h"

class MAttribute;

/// One value for each point of the analyzer's grid, linear amplitudes.
using AnalysisArray = std::array<float, 1024>;

/// The memory image of an array, little-endian 32-bit floats, as the binary data of a node. Reading a block
/// of any other length than 4096 bytes gives zeros.
void StoreAnalysis(MAttribute& node, const AnalysisArray& analysis);
AnalysisArray ReadAnalysis(const MAttribute& node);

/// A saved analysis, ".TonalignComparison": XML with the one element "TonalignSourceAnalysis", in a zlib
/// stream. A reader takes the XML without the stream as well.
inline constexpr const char* AnalysisFileExtension = "TonalignComparison";
/// What a file dialog calls them.
inline constexpr const char* AnalysisFileTypeName = "Source analysis files";
/// Where dialogs start: a folder in the module's data folder, created when missing. Throws MException.
MString AnalysisFolder();
/// Its bytes, for whoever writes the file.
std::vector<std::uint8_t> AnalysisFileBytes(const AnalysisArray& analysis);
/// Throws MException; an old file stays as it was then.
void SaveAnalysisFile(const MString& path, const AnalysisArray& analysis);
/// Throws MException for what is neither a zlib stream nor XML.
AnalysisArray LoadAnalysisFile(const MString& path);
