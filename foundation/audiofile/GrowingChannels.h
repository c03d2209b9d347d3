// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/audiofile/AudioSampleBuffer.h"

/// Collects decoded audio whose length isn't known for certain, in buffers that double.
class GrowingChannels
{
public:
    /// @param expectedFrames  room to begin with
    /// @param maxFrames       more than that is refused
    GrowingChannels(std::int32_t channelCount, std::int64_t expectedFrames, std::int64_t maxFrames);

    /// Where the next `frameCount` frames of each channel go; they count as written. False beyond the
    /// maximum. Throws MException when memory is short.
    bool Append(std::int32_t frameCount, float** outChannels);
    std::int32_t FrameCount() const { return frameCount; }
    /// Hands the collected frames over. This object is then empty.
    void MoveTo(AudioSampleBuffer& buffer);

private:
    void Grow(std::int32_t neededFrames);

    AudioSampleBuffer collected;   // `frames` is its room
    std::int32_t frameCount = 0;
    std::int64_t limit;
};
