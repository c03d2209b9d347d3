// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstring>
#include <vector>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/audiofile/AudioFileErrors.h"
#include "foundation/streams/MStream.h"

namespace
{
// Little-endian: "QAF1" | 32 unused | sample rate 4 | channels 4 | frames 4 | scale, a float 4 | 8 unused.
// Samples follow, all of one channel after the other, as signed 32-bit integers.
constexpr std::int32_t HeaderBytes = 60;
constexpr std::int32_t BlockFrames = 1 << 16;

template <typename Value>
Value Get(const std::uint8_t* bytes)
{
    Value value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}
}   // namespace

void LoadQaf(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress)
{
    buffer.Free();
    std::uint8_t header[HeaderBytes];
    ReadRequired(stream, header, HeaderBytes, "No QAF header found.");
    const auto sampleRate = Get<std::int32_t>(header + 36);
    const auto channels = Get<std::int32_t>(header + 40);
    const auto frames = Get<std::int32_t>(header + 44);
    const auto scale = Get<float>(header + 48);
    if (std::memcmp(header, "QAF1", 4) != 0 || sampleRate <= 0 || channels <= 0 || frames <= 0)
        ThrowInvalidContents("Invalid QAF header.");
    RequireChannels(channels);
    RequireSampleRate(sampleRate);
    if (RemainingBytes(stream) < std::int64_t{ 4 } * frames * channels)
        ThrowInvalidContents("Could not load samples.");

    buffer.Allocate(channels, frames);
    buffer.sampleRate = sampleRate;
    buffer.scale = scale;
    buffer.bitsPerSample = 32;
    const double factor = scale / 2147483647.0;
    std::vector<std::int32_t> block(static_cast<std::size_t>(std::min(frames, BlockFrames)));
    for (std::int32_t channel = 0; channel < channels; ++channel)
        for (std::int32_t start = 0; start < frames; start += BlockFrames)
        {
            progress.Report((channel + static_cast<double>(start) / frames) / channels);
            const std::int32_t count = std::min(BlockFrames, frames - start);
            ReadRequired(stream, block.data(), count * 4, "Could not load samples.");
            float* out = buffer.channelData[static_cast<std::size_t>(channel)] + start;
            for (std::int32_t i = 0; i < count; ++i)
                out[i] = static_cast<float>(block[static_cast<std::size_t>(i)] * factor);
        }
}
