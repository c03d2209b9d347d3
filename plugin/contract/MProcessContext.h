// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Time information for an effect. Without valid time information all but the tempo are -1.
struct MProcessContext
{
    double tempo = -1;   ///< beats per minute
    double position = -1;   ///< quarter notes
    double barStart = -1;   ///< quarter notes
    std::int32_t timeSignatureNumerator = -1;
    std::int32_t timeSignatureDenominator = -1;
    bool updateTimeInfo = false;
    std::int32_t maxBlockSize = 0;
};
