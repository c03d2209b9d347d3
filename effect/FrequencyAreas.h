// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/text/MString.h"

struct MStoreParams;

/// Coloured frequency ranges behind an equalizer's curves: settings that travel with the effect.
struct FrequencyAreas
{
    struct Area
    {
        double minX = 1.3010299956639813;   ///< log10 of Hz
        double maxX = 1.3010299956639813;
        std::uint32_t color = 0;   ///< 0xAARRGGBB
        bool colorEnabled = false;
        std::int32_t row = 0;
        std::int32_t height = 0;
        MString name = "Undefined";
    };

    std::int32_t rowHeight = 20;   ///< pixels
    bool fromTop = false;
    bool invertRows = false;
    bool maximizeRows = false;
    double alpha = 0.5;
    std::vector<Area> areas;

    /// Keys with their default are left out; a missing key reads as the default.
    void Store(const MStoreParams& params);
};
