// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/audiofile/WaveReader.h"

#include <cstring>
#include <limits>

#include "foundation/audiofile/AudioFileErrors.h"
#include "foundation/audiofile/SampleConversion.h"
#include "foundation/streams/MStream.h"
#include "foundation/text/Translate.h"

namespace
{
constexpr std::uint16_t IntegerTag = 1;
constexpr std::uint16_t FloatTag = 3;
// The real tag is then the start of a GUID further behind. Usual for more than 16 bits or two channels.
constexpr std::uint16_t ExtensibleTag = 0xFFFE;
constexpr std::uint32_t PlainFormatBytes = 16;

template <typename Value>
Value Get(const std::uint8_t* bytes)
{
    Value value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

bool Is(const std::uint8_t* bytes, const char* word)
{
    return std::memcmp(bytes, word, 4) == 0;
}
}   // namespace

WaveReader::WaveReader(MStream& source) : stream(source)
{
    std::uint8_t head[12];
    ReadRequired(stream, head, sizeof head, "No WAVe header found.");
    if (Is(head, "RF64") || Is(head, "BW64"))
        ThrowInvalidContents("Wave files of more than 4 GB (RF64) are not supported.");
    if (!Is(head, "RIFF"))
        ThrowInvalidContents("The stream is not a RIFF standard file.");
    if (!Is(head + 8, "WAVE"))
        ThrowInvalidContents("Note a WAVe file.");
    for (;;)
    {
        std::uint8_t word[4];
        ReadRequired(stream, word, sizeof word, "No chunk identifier found.");
        if (Is(word, "data"))
            break;
        if (Is(word, "fmt "))
        {
            ReadFormat();
            continue;
        }
        ReadRequired(stream, word, sizeof word, "No unknown chunk length found.");
        const std::int64_t length = Get<std::uint32_t>(word);
        SkipBytes(stream, length + (length & 1));
    }
    ReadDataLength();
}

void WaveReader::ReadFormat()
{
    // length 4 | tag 2 | channels 2 | sample rate 4 | bytes a second 4 | block alignment 2 | bits 2
    std::uint8_t format[4 + PlainFormatBytes];
    ReadRequired(stream, format, sizeof format, "No format chunk found.");
    const auto length = Get<std::uint32_t>(format);
    auto tag = Get<std::uint16_t>(format + 4);
    channels = Get<std::uint16_t>(format + 6);
    sampleRate = Get<std::int32_t>(format + 8);
    bits = Get<std::uint16_t>(format + 18);

    std::uint32_t used = PlainFormatBytes;
    if (tag == ExtensibleTag)
    {
        // size 2 | valid bits 2 | channel mask 4 | GUID 16
        std::uint8_t extension[24];
        if (length < used + sizeof extension)
            ThrowInvalidContents("Invalid WAVe file format tag contents.");
        ReadRequired(stream, extension, sizeof extension, "No format chunk found.");
        used += sizeof extension;
        tag = Get<std::uint16_t>(extension + 8);
    }
    if (tag != IntegerTag && tag != FloatTag)
        ThrowInvalidContents("Invalid WAVe file format tag contents.");
    sampleKind = tag == FloatTag ? FloatSamples : IntegerSamples;
    if (length > used)
        SkipBytes(stream, length - used);
}

void WaveReader::ReadDataLength()
{
    std::uint8_t word[4];
    ReadRequired(stream, word, sizeof word, "No data chunk length found.");
    const auto length = Get<std::uint32_t>(word);
    if (length > static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max()))
        ThrowInvalidContents(Translate("Invalid data chunk length.") + " " +
                             Translate("Files with more than 2 GB of audio are not supported."));
    if (length < 1)
        ThrowInvalidContents("Invalid data chunk length.");
    dataLength = static_cast<std::int32_t>(length);
    if (bits == 0)
        ThrowInvalidContents("No format chunk found.");
}

void WaveReader::Read(AudioSampleBuffer& buffer, const LoadProgress& progress)
{
    RequireChannels(channels);
    RequireSampleRate(sampleRate);
    ReadSamples(buffer, stream, dataLength, { bits, channels, sampleKind == FloatSamples, false, false },
                "Could not load WAV samples.", progress);
    buffer.sampleRate = sampleRate;
}

void LoadWave(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress)
{
    buffer.Free();
    WaveReader(stream).Read(buffer, progress);
}
