// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/audiofile/AudioFileErrors.h"
#include "foundation/audiofile/GrowingChannels.h"
#include "foundation/audiofile/SampleConversion.h"
#include "foundation/audiofile/ampegdecoder.h"
#include "foundation/audiofile/mpegsplitstream.h"

namespace
{
constexpr std::uint32_t ProgramStreamCode = 0x000001BA;
constexpr std::int64_t SyncSearchBytes = 1024;
// A frame begins with 12 set bits.
constexpr std::int32_t FirstSyncWord = 0xFFF0;
constexpr std::int32_t ReadBytes = 1 << 16;
// Chosen: the lowest bit rate of the format decodes to some 400 times its size.
constexpr std::int64_t MostBytesPerFileByte = 1024;

// Moves to where the audio lies in the file, and limits it to its container.
class Locator
{
public:
    explicit Locator(MStream& source) : stream(source), start(source.GetPosition()), end(source.GetSize()) {}

    bool isProgramStream = false;

    /// From first to last byte.
    void Locate()
    {
        std::uint8_t word[4] = {};
        if (stream.Read(word, 4) != 4)
            ThrowInvalidContents("Error initializing MPEG decoder.");
        if (Big32(word) == ProgramStreamCode)
            isProgramStream = true;
        else if (std::memcmp(word, "RIFF", 4) == 0)
            EnterRiff();
        else if (std::memcmp(word, "INFO", 4) == 0)
        {
            if (stream.Read(word, 4) != 4)
                ThrowInvalidContents("Error initializing MPEG decoder.");
            Skip(Little32(word));
        }
        else if (std::memcmp(word, "ID3", 3) == 0)
            SkipId3();
        else
            FindSync();
    }

    std::int64_t Start() const { return start; }
    std::int64_t Length() const { return std::max<std::int64_t>(end - start, 0); }

private:
    static std::uint32_t Big32(const std::uint8_t* p)
    {
        return static_cast<std::uint32_t>(p[0]) << 24 | static_cast<std::uint32_t>(p[1]) << 16 |
               static_cast<std::uint32_t>(p[2]) << 8 | p[3];
    }

    static std::uint32_t Little32(const std::uint8_t* p)
    {
        return static_cast<std::uint32_t>(p[3]) << 24 | static_cast<std::uint32_t>(p[2]) << 16 |
               static_cast<std::uint32_t>(p[1]) << 8 | p[0];
    }

    void Skip(std::int64_t count)
    {
        SkipBytes(stream, count);
        start = stream.GetPosition();
    }

    void EnterRiff()
    {
        std::uint8_t chunk[8];
        if (stream.Read(chunk, 8) != 8)
            ThrowInvalidContents("Invalid MPEG header in WAVe file.");
        for (;;)
        {
            if (stream.Read(chunk, 8) != 8)
                ThrowInvalidContents("Invalid MPEG header in WAVe file.");
            const std::int64_t length = Little32(chunk + 4);
            if (std::memcmp(chunk, "data", 4) == 0)
            {
                start = stream.GetPosition();
                end = std::min(end, start + length);
                return;
            }
            SkipBytes(stream, length + (length & 1));
        }
    }

    void SkipId3()
    {
        // The fourth byte read and one more are the version; flags 1 | length 4, of 7 bits each.
        std::uint8_t rest[6];
        if (stream.Read(rest, 6) != 6)
            ThrowInvalidContents("Error initializing MPEG decoder.");
        std::int64_t length = 0;
        for (std::size_t i = 2; i < 6; ++i)
            length = length << 7 | (rest[i] & 0x7F);
        Skip(length);
    }

    void FindSync()
    {
        std::array<std::uint8_t, SyncSearchBytes + 1> head;
        stream.Seek(start, MStream::Begin);
        const std::int32_t count = stream.Read(head.data(), static_cast<std::int32_t>(head.size()));
        for (std::int32_t i = 0; i + 1 < count; ++i)
        {
            const auto index = static_cast<std::size_t>(i);
            if ((head[index] << 8 | head[index + 1]) >= FirstSyncWord)
            {
                start += i;
                return;
            }
        }
        ThrowInvalidContents("Error initializing MPEG decoder.");
    }

    MStream& stream;
    std::int64_t start;
    std::int64_t end;
};

/// Samples a channel that the stream's first frame announces in a "Xing" or "Info" header, as most encoders
/// write it; 0 where there is none. Goes back to the start.
std::int64_t AnnouncedSamples(mp3dec::binfile& source)
{
    std::array<std::uint8_t, 256> head{};
    source.Seek(0);
    const std::int32_t count = source.Read(head.data(), static_cast<std::int32_t>(head.size()));
    source.Seek(0);
    // The header follows the side information, whose length depends on version and channels.
    for (std::size_t at = 4; at + 12 <= static_cast<std::size_t>(std::max(count, 0)); ++at)
    {
        const bool found = std::memcmp(&head[at], "Xing", 4) == 0 || std::memcmp(&head[at], "Info", 4) == 0;
        if (!found)
            continue;
        constexpr std::uint8_t hasFrameCount = 1;
        if ((head[at + 7] & hasFrameCount) == 0)
            return 0;
        const bool isVersion1 = (head[1] & 0x18) == 0x18;   // MPEG 2 and 2.5 have half the samples a frame
        const std::int64_t frames = static_cast<std::int64_t>(head[at + 8]) << 24 | head[at + 9] << 16 |
                                    head[at + 10] << 8 | head[at + 11];
        return frames * (isVersion1 ? 1152 : 576);
    }
    return 0;
}

using Extent = mp3dec::ampegdecoder::Extent;

// False when frames follow behind the announced end: two files were joined, or the count is wrong.
bool DecodeExtent(AudioSampleBuffer& buffer, mp3dec::binfile& source, Extent extent,
                  const LoadProgress& progress)
{
    const std::int64_t announced = AnnouncedSamples(source);
    mp3dec::ampegdecoder decoder;
    if (!decoder.Open(source, extent))
        ThrowInvalidContents("Error initializing MPEG decoder.");
    RequireChannels(decoder.Channels());
    if (!decoder.OpenForReading())
        ThrowInvalidContents("Error decompressing MPEG stream.");

    const SampleLayout layout{ 16, decoder.Channels(), false, false, false };
    const std::int64_t seconds = source.Length() * 8 / (1000 * std::max(decoder.KilobitsPerSecond(), 8)) + 1;
    const std::int64_t most =
        std::max<std::int64_t>(MostBytesPerFileByte * source.Length(), ReadBytes) / (4 * layout.channels);
    GrowingChannels decoded(layout.channels, std::min(seconds * decoder.SampleRate(), most), most);
    std::vector<std::uint8_t> block(ReadBytes);
    std::array<float*, AudioSampleBuffer::MaxChannels> out{};
    while (const std::int32_t got = decoder.Read(block.data(), ReadBytes))
    {
        progress.Report(static_cast<double>(source.Tell()) / static_cast<double>(source.Length()));
        const std::int32_t frameCount = got / layout.BytesPerFrame();
        if (!decoded.Append(frameCount, out.data()))
            ThrowInvalidContents("Error decompressing MPEG stream.");
        DeinterleaveSamples(block.data(), frameCount, layout, out.data());
    }
    if (extent == Extent::Announced && decoder.HasMore())
        return false;
    decoded.MoveTo(buffer);
    // The delay of encoder and decoder, up to some frames, isn't part of the audio.
    constexpr std::int64_t longestDelay = 4 * 1152;
    if (buffer.frames + longestDelay < announced)
        ThrowInvalidContents("The MPEG stream ends before its last frame.");
    buffer.sampleRate = decoder.SampleRate();
    buffer.bitsPerSample = 16;
    return true;
}

void Decode(AudioSampleBuffer& buffer, mp3dec::binfile& source, const LoadProgress& progress)
{
    if (DecodeExtent(buffer, source, Extent::Announced, progress))
        return;
    DecodeExtent(buffer, source, Extent::AllBytes, progress);
}
}   // namespace

void LoadMpeg(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress)
{
    buffer.Free();
    Locator locator(stream);
    locator.Locate();
    mp3dec::binfileMStream source(stream, locator.Start(), locator.Length());
    if (!locator.isProgramStream)
    {
        Decode(buffer, source, progress);
        return;
    }
    mp3dec::mpegsplitstream split;
    if (!split.Open(source))
        ThrowInvalidContents("MPEG stream header error.");
    Decode(buffer, split, progress);
}
