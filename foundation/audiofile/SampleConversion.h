// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

#include "foundation/audiofile/AudioFile.h"

/// How a sample stands in a file.
struct SampleLayout
{
    std::int32_t bits = 0;   ///< 8, 16, 24 or 32
    std::int32_t channels = 0;
    bool isFloat = false;
    bool bigEndian = false;
    bool signedBytes = false;   ///< of 8 bits; otherwise they are unsigned

    std::int32_t BytesPerFrame() const { return bits / 8 * channels; }
    /// Throws "Invalid source bitrate." for a layout that nobody reads.
    void Require() const;
};

/// Takes frameCount interleaved little-endian frames apart.
/// @param outChannels  layout.channels places of frameCount floats
void DeinterleaveSamples(const std::uint8_t* bytes, std::int32_t frameCount, const SampleLayout& layout,
                         float* const* outChannels);

/// Allocates the buffer for `byteCount` bytes and reads them in blocks. Checks first that the stream holds
/// them; what is missing throws `shortDetail`.
void ReadSamples(AudioSampleBuffer& buffer, MStream& stream, std::int64_t byteCount,
                 const SampleLayout& layout, const MString& shortDetail, const LoadProgress& progress);
