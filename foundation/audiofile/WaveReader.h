// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/audiofile/AudioFile.h"

/// The head of a RIFF WAVE file: construction walks its chunks and leaves the stream at the first sample.
/// Source: Microsoft and IBM, Multimedia Programming Interface and Data Specifications 1.0, 1991.
class WaveReader
{
public:
    enum SampleKind : std::int32_t
    {
        IntegerSamples = 0,
        FloatSamples = 1
    };

    explicit WaveReader(MStream& source);
    /// Decodes the data chunk.
    void Read(AudioSampleBuffer& buffer, const LoadProgress& progress);

    std::int32_t sampleKind = IntegerSamples;
    MStream& stream;
    std::int32_t channels = 0;
    std::int32_t bits = 0;
    std::int32_t dataLength = 0;   ///< bytes
    std::int32_t sampleRate = 0;   ///< Hz

private:
    void ReadFormat();
    void ReadDataLength();
};
