// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <vector>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/text/MException.h"
#include "foundation/text/Translate.h"

namespace
{
constexpr std::int32_t BlockFrames = 512;
constexpr std::int32_t BlocksPerReport = 256;

// Where the frames of a block lie in the source; the same for all channels.
struct Positions
{
    std::array<std::int32_t, BlockFrames> index;
    std::array<float, BlockFrames> fraction;
    std::int32_t count = 0;

    void Set(std::int32_t start, std::int32_t frameCount, double step, std::int32_t lastIndex)
    {
        count = frameCount;
        // One step at a time, as each then runs in vectors.
        std::array<double, BlockFrames> position;
        const auto used = static_cast<std::size_t>(count);
        for (std::size_t i = 0; i < used; ++i)
            position[i] = (start + static_cast<std::int32_t>(i)) * step;
        for (std::size_t i = 0; i < used; ++i)
            index[i] = static_cast<std::int32_t>(position[i]);
        for (std::size_t i = 0; i < used; ++i)
            fraction[i] = static_cast<float>(position[i] - index[i]);
        for (std::size_t i = 0; i < used; ++i)
            index[i] = std::min(index[i], lastIndex);
    }
};

// Catmull-Rom between the second and the third of four samples. These are gathered first, so that the
// arithmetic runs in vectors.
void Interpolate(const float* source, const Positions& positions, float* out)
{
    std::array<float, 4 * BlockFrames> gathered;
    const auto count = static_cast<std::size_t>(positions.count);
    for (std::size_t i = 0; i < count; ++i)
        std::memcpy(&gathered[4 * i], source + positions.index[i] - 1, 4 * sizeof(float));
    for (std::size_t i = 0; i < count; ++i)
    {
        const float x0 = gathered[4 * i];
        const float x1 = gathered[4 * i + 1];
        const float x2 = gathered[4 * i + 2];
        const float x3 = gathered[4 * i + 3];
        const float t = positions.fraction[i];
        const float cubic = 3.0f * (x1 - x2) - x0 + x3;
        const float square = x0 + 2.0f * x2 - (5.0f * x1 + x3) * 0.5f;
        const float slope = (x2 - x0) * 0.5f;
        out[i] = x1 + t * (slope + t * (square + t * (cubic * 0.5f)));
    }
}

// The same samples as floats, with the guards.
AudioSampleBuffer Expand(const AudioSampleBuffer& buffer)
{
    AudioSampleBuffer expanded;
    expanded.Allocate(buffer.channels, buffer.frames);
    for (std::int32_t channel = 0; channel < buffer.channels; ++channel)
    {
        const std::int16_t* source = buffer.CompactData(channel);
        float* out = expanded.channelData[static_cast<std::size_t>(channel)];
        for (std::int32_t i = 0; i < buffer.frames; ++i)
            out[i] = static_cast<float>(source[i]) * AudioSampleBuffer::CompactScale;
    }
    return expanded;
}
}   // namespace

void Resample(AudioSampleBuffer& buffer, double targetRate, const LoadProgress& progress)
{
    if (targetRate == buffer.sampleRate)
        return;
    const double step = buffer.sampleRate / targetRate;
    const double newLength = buffer.frames / step;
    if (!(newLength >= 0.0 && newLength < std::numeric_limits<std::int32_t>::max() - BlockFrames))
        throw MException(Translate("The audio is too long to be resampled."), MErrorCode::InvalidArgument);

    const AudioSampleBuffer expanded = buffer.compact != 0 ? Expand(buffer) : AudioSampleBuffer();
    const AudioSampleBuffer& source = buffer.compact != 0 ? expanded : buffer;
    const auto newFrames = static_cast<std::int32_t>(newLength);
    AudioSampleBuffer result;
    result.Allocate(buffer.channels, newFrames);
    Positions positions;
    for (std::int32_t start = 0; start < newFrames; start += BlockFrames)
    {
        if (start / BlockFrames % BlocksPerReport == 0)
            progress.Report(static_cast<double>(start) / newFrames);
        const std::int32_t count = std::min(BlockFrames, newFrames - start);
        // A single frame has no neighbours: it stands for as long as it lasts.
        if (source.frames >= 2)
            positions.Set(start, count, step, source.frames - 2);
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(result.channels); ++channel)
        {
            float* out = result.channelData[channel] + start;
            if (source.frames < 2)
                std::fill_n(out, count, source.channelData[channel][0]);
            else
                Interpolate(source.channelData[channel], positions, out);
        }
    }
    result.sampleRate = targetRate;
    result.scale = buffer.scale;
    result.bitsPerSample = buffer.bitsPerSample;
    result.isFloatSource = buffer.isFloatSource;
    buffer = std::move(result);
}
