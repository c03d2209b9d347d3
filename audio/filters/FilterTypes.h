// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "audio/filters/Filter.h"
#include "foundation/text/MString.h"

namespace MAudioFilters
{
inline constexpr std::int32_t FilterTypeCount = 11;
/// The types that a band can have, and the rows that a stored name can mean.
inline constexpr std::int32_t BandFilterTypeCount = 9;

/// What is known of a type apart from its formulas. The texts are ASCII constants.
struct FilterTypeProperties
{
    const char* storedName;
    const char* label;
    const char* icon;   ///< stem of the band's image
    std::int32_t slopeDbPerOctave;   ///< of one unit of order; 0: the bare label stands
    bool hasGain;
    bool hasQ;   ///< whether a search over Q makes sense
    double topQ;   ///< exclusive upper limit of such a search; 0 without one
};

/// Any other value answers like Peak. Any thread.
const FilterTypeProperties& PropertiesOf(std::int32_t type);

/// The type of a name that a band has stored; Peak for an unknown one.
std::int32_t FilterTypeFromStoredName(const MString& name);
}   // namespace MAudioFilters
