// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// The output gain: over the block in which its value changes it runs along a line from the old to the new
/// factor. Thread: audio, but for Reset.
class OutputGain
{
public:
    /// Takes a value without a ramp.
    void Reset(double gainDb) { previousDb = gainDb; }
    /// In place on all channels of a block. Never allocates.
    void Process(double gainDb, float* const* channels, std::int32_t channelCount, std::int32_t frames);

private:
    double previousDb = 0.0;
};
