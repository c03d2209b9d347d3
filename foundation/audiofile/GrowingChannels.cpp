// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/audiofile/GrowingChannels.h"

#include <algorithm>
#include <limits>

GrowingChannels::GrowingChannels(std::int32_t channelCount, std::int64_t expectedFrames,
                                 std::int64_t maxFrames)
    : limit(std::min<std::int64_t>(maxFrames, std::numeric_limits<std::int32_t>::max() - 2))
{
    collected.Allocate(channelCount,
                       static_cast<std::int32_t>(std::clamp<std::int64_t>(expectedFrames, 0, limit)));
}

bool GrowingChannels::Append(std::int32_t count, float** outChannels)
{
    if (limit - frameCount < count)
        return false;
    if (collected.frames - frameCount < count)
        Grow(frameCount + count);
    for (std::int32_t channel = 0; channel < collected.channels; ++channel)
        outChannels[channel] = collected.channelData[static_cast<std::size_t>(channel)] + frameCount;
    frameCount += count;
    return true;
}

void GrowingChannels::Grow(std::int32_t neededFrames)
{
    const std::int64_t doubled = std::max<std::int64_t>(std::int64_t{ 2 } * collected.frames, 4096);
    const std::int64_t room =
        std::clamp<std::int64_t>(doubled, neededFrames, std::max<std::int64_t>(limit, neededFrames));
    AudioSampleBuffer larger;
    larger.Allocate(collected.channels, static_cast<std::int32_t>(room));
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(collected.channels); ++channel)
    {
        std::copy_n(collected.channelData[channel], frameCount, larger.channelData[channel]);
        collected.channelAlloc[channel].reset();   // one channel at a time stands in memory twice
    }
    collected = std::move(larger);
}

void GrowingChannels::MoveTo(AudioSampleBuffer& buffer)
{
    buffer = std::move(collected);
    buffer.frames = frameCount;
    buffer.validFrames = frameCount;
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(buffer.channels); ++channel)
        buffer.channelData[channel][frameCount] = 0.0f;   // the guard behind the last frame
    collected.Free();
    frameCount = 0;
}
