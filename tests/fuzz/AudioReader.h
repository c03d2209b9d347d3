// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"

/// Runs one reader over hostile bytes: it may refuse by MException and nothing else, and what it accepts is
/// whole.
inline void FuzzAudioReader(void (*reader)(AudioSampleBuffer&, MStream&, const LoadProgress&),
                            const std::uint8_t* data, std::size_t size)
{
    MMemoryStream stream = MMemoryStream::Borrow(data, static_cast<std::int32_t>(size));
    AudioSampleBuffer buffer;
    try
    {
        reader(buffer, stream, {});
    }
    catch (const MException&)
    {
        return;
    }
    if (buffer.channels < 1 || buffer.channels > AudioSampleBuffer::MaxChannels || buffer.frames < 0 ||
        !(buffer.sampleRate >= 1000.0))
        std::abort();
    // Every sample and both guards belong to the buffer.
    float sum = 0;
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(buffer.channels); ++channel)
    {
        const float* samples = buffer.channelData[channel];
        if (samples[-1] != 0.0f || samples[buffer.frames] != 0.0f)
            std::abort();
        for (std::int32_t i = 0; i < buffer.frames; ++i)
            sum += samples[i];
    }
    volatile float sink = sum;
    static_cast<void>(sink);
    if (buffer.frames < 100000)
        Resample(buffer, 48000.0);
}
