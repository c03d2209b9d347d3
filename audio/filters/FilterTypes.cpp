// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/FilterTypes.h"

namespace MAudioFilters
{
namespace
{
constexpr FilterTypeProperties Types[FilterTypeCount] = {
    { "Peak", "Peak", "peak", 0, true, true, 10.0 },
    { "LowShelf", "Low-shelf", "lowshelf", 0, true, true, 1.2 },
    { "HighShelf", "High-shelf", "highshelf", 0, true, true, 1.2 },
    { "LowPass", "Low-pass", "lowpass", 12, false, true, 1.2 },
    { "HighPass", "High-pass", "highpass", 12, false, true, 1.2 },
    { "LowPass6", "Low-pass", "lowpass", 6, false, false, 0.0 },
    { "HighPass6", "High-pass", "highpass", 6, false, false, 0.0 },
    { "BandPass", "Band-pass", "bandpass", 0, false, true, 2.5 },
    { "Notch", "Notch", "notch", 0, false, true, 2.5 },
    { "AllPass", "All-pass", "allpass", 12, false, false, 0.0 },
    { "AllPass", "All-pass", "allpass", 6, false, false, 0.0 },
};
}

const FilterTypeProperties& PropertiesOf(std::int32_t type)
{
    return Types[type >= 0 && type < FilterTypeCount ? type : Peak];
}

std::int32_t FilterTypeFromStoredName(const MString& name)
{
    for (std::int32_t type = 0; type < BandFilterTypeCount; ++type)
    {
        if (name == MString(Types[type].storedName))
            return type;
    }
    return Peak;
}
}   // namespace MAudioFilters
