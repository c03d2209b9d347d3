// SPDX-License-Identifier: GPL-3.0-or-later
// Source: Apple, Audio Interchange File Format AIFF 1.3, 1989, and AIFF-C draft, 1991.
#include <cmath>
#include <cstring>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/audiofile/AudioFileErrors.h"
#include "foundation/audiofile/SampleConversion.h"
#include "foundation/streams/MStream.h"

namespace
{
constexpr std::uint32_t CommonBytes = 18;   // without the compression of AIFF-C

std::uint32_t Big32(const std::uint8_t* p)
{
    return static_cast<std::uint32_t>(p[0]) << 24 | static_cast<std::uint32_t>(p[1]) << 16 |
           static_cast<std::uint32_t>(p[2]) << 8 | p[3];
}

std::int32_t Big16(const std::uint8_t* p)
{
    return p[0] << 8 | p[1];
}

bool Is(const std::uint8_t* bytes, const char* word)
{
    return std::memcmp(bytes, word, 4) == 0;
}

// IEEE 754 80-bit extended: sign and 15 bits of exponent, 64 bits of mantissa with its leading one.
double Extended(const std::uint8_t* p)
{
    const int exponent = Big16(p) & 0x7FFF;
    const std::uint32_t high = Big32(p + 2);
    const std::uint32_t low = Big32(p + 6);
    double value = 0;
    if (exponent == 0x7FFF)
        value = HUGE_VAL;
    else if (exponent != 0 || high != 0 || low != 0)
        value = std::ldexp(high, exponent - 16414) + std::ldexp(low, exponent - 16446);
    return (p[0] & 0x80) != 0 ? -value : value;
}

class AiffReader
{
public:
    explicit AiffReader(MStream& source) : stream(source) {}

    void Read(AudioSampleBuffer& buffer, const LoadProgress& progress)
    {
        std::uint8_t head[12];
        Require(head, sizeof head);
        const bool isCompressible = Is(head + 8, "AIFC");
        if (!Is(head, "FORM") || (!Is(head + 8, "AIFF") && !isCompressible))
            ThrowInvalidContents("The stream is not an AIFF standard file.");
        for (;;)
        {
            std::uint8_t chunk[8];
            Require(chunk, sizeof chunk);
            const std::uint32_t length = Big32(chunk + 4);
            if (Is(chunk, "SSND"))
            {
                ReadSoundData(length, buffer, progress);
                return;
            }
            if (Is(chunk, "COMM"))
                ReadCommon(length, isCompressible);
            else
                SkipChunk(length);
        }
    }

private:
    void Require(std::uint8_t* bytes, std::int32_t size)
    {
        ReadRequired(stream, bytes, size, "Could not read required data from stream.");
    }

    // Chunks are padded to even lengths, which some writers forget. An identifier never starts with a zero.
    void SkipChunk(std::uint32_t length)
    {
        SkipBytes(stream, length);
        std::uint8_t pad = 0;
        if (length % 2 != 0 && stream.Read(&pad, 1) == 1 && pad != 0)
            stream.Seek(-1, MStream::Current);
    }

    void ReadCommon(std::uint32_t length, bool isCompressible)
    {
        // channels 2 | frames 4 | bits 2 | sample rate 10
        std::uint8_t common[CommonBytes + 4] = {};
        Require(common, CommonBytes);
        layout.channels = Big16(common);
        layout.bits = Big16(common + 6);
        layout.bigEndian = true;
        layout.signedBytes = true;
        // Integers, also with 32 bits: only AIFF-C has floats, and says so.
        layout.isFloat = false;
        sampleRate = std::floor(Extended(common + 8) + 0.5);

        std::uint32_t used = CommonBytes;
        if (isCompressible && length >= CommonBytes + 4)
        {
            const std::uint8_t* compression = common + CommonBytes;
            Require(common + CommonBytes, 4);
            used += 4;
            if (Is(compression, "sowt"))
                layout.bigEndian = false;
            else if (Is(compression, "fl32") || Is(compression, "FL32"))
                layout.isFloat = true;
            else if (!Is(compression, "NONE") && !Is(compression, "twos"))
                ThrowInvalidContents("The compression of the AIFF-C file is not supported.");
        }
        if (length > used)
            SkipChunk(length - used);
    }

    void ReadSoundData(std::uint32_t length, AudioSampleBuffer& buffer, const LoadProgress& progress)
    {
        std::uint8_t start[8];   // offset 4 | block size 4
        Require(start, sizeof start);
        if (layout.channels == 0 && layout.bits == 0)
            ThrowInvalidContents("The AIFF file has samples before their description.");
        RequireChannels(layout.channels);
        RequireSampleRate(sampleRate);
        const std::int64_t offset = Big32(start);
        SkipBytes(stream, offset);
        std::int64_t byteCount = static_cast<std::int64_t>(length) - offset - 8;
        if (byteCount < 0)
            byteCount = 0;
        if (byteCount > 0x7FFFFFFF)
            ThrowInvalidContents("Files with more than 2 GB of audio are not supported.");
        ReadSamples(buffer, stream, byteCount, layout, "Could not load AIFF samples.", progress);
        buffer.sampleRate = sampleRate;
    }

    MStream& stream;
    SampleLayout layout;
    double sampleRate = 0;
};
}   // namespace

void LoadAiff(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress)
{
    buffer.Free();
    AiffReader(stream).Read(buffer, progress);
}
