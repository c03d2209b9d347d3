// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/audiofile/AudioSampleBuffer.h"

#include <new>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/Translate.h"

void AudioSampleBuffer::Allocate(std::int32_t channelCount, std::int32_t frameCount)
{
    Free();
    if (channelCount < 1 || channelCount > MaxChannels || frameCount < 0)
        throw MException(
            Format(Translate("{0} channels of {1} samples are not possible."), channelCount, frameCount),
            MErrorCode::InvalidArgument);
    const auto count = static_cast<std::size_t>(frameCount);
    try
    {
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(channelCount); ++channel)
        {
            // Not zeroed as a whole: that would touch hundreds of megabytes twice.
            channelAlloc[channel].reset(new float[count + 2]);
            channelAlloc[channel][0] = 0.0f;
            channelAlloc[channel][count + 1] = 0.0f;
            channelData[channel] = channelAlloc[channel].get() + 1;
        }
    }
    catch (const std::bad_alloc&)
    {
        Free();
        throw MException(Translate("There is not enough memory for the audio."));
    }
    channels = channelCount;
    frames = frameCount;
    validFrames = frameCount;
}

void AudioSampleBuffer::Free()
{
    *this = AudioSampleBuffer();
}

const std::int16_t* AudioSampleBuffer::CompactData(std::int32_t channel) const
{
    return reinterpret_cast<const std::int16_t*>(channelData[static_cast<std::size_t>(channel)]);
}
