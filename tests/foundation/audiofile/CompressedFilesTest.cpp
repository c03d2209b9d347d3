// SPDX-License-Identifier: GPL-3.0-or-later
#include <numbers>

#include "foundation/audiofile/GrowingChannels.h"
#include "tests/ErrorOf.h"
#include "tests/foundation/audiofile/TestFiles.h"

namespace
{
TEST(GrowingChannels, KeepWhatTheyHoldWhileTheyGrow)
{
    AudioOptions options;
    options.frames = 20000;
    GrowingChannels growing(options.channels, 10, options.frames);
    float* out[AudioSampleBuffer::MaxChannels] = {};
    for (int start = 0; start < options.frames; start += 500)
    {
        ASSERT_TRUE(growing.Append(500, out));
        for (int frame = 0; frame < 500; ++frame)
            for (int channel = 0; channel < options.channels; ++channel)
                out[channel][frame] = static_cast<float>(TestSample(start + frame, channel));
    }
    EXPECT_FALSE(growing.Append(1, out));
    AudioSampleBuffer buffer;
    growing.MoveTo(buffer);
    buffer.sampleRate = options.sampleRate;
    ExpectSignal(buffer, options);
}

TEST(Flac, ReadsEveryDepthAtTheSameFullScale)
{
    for (const int bits : { 8, 16, 20, 24 })
        for (const int channels : { 1, 2, 8 })
        {
            SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(channels) + " channels");
            AudioOptions options;
            options.bits = bits;
            options.channels = channels;
            options.frames = 5000;
            const AudioSampleBuffer buffer = Load(LoadFlac, FlacFile(options));
            if (bits != 20)   // a little more than full scale, as they stand in 24
                ExpectSignal(buffer, options);
            const int wholeBits = bits == 20 ? 24 : bits;
            const double fullScale = std::ldexp(1.0, wholeBits - 1) - 1;
            for (int frame = 0; frame < 5000; ++frame)
                ASSERT_EQ(std::nearbyint(buffer.channelData[0][frame] * fullScale),
                          TestInteger(frame, 0, bits) << (wholeBits - bits));
        }
}

// Long blocks of silence are what the format compresses best.
TEST(Flac, ReadsBlocksOfEveryLength)
{
    struct Row
    {
        std::uint32_t blockSize;
        int channels;
        bool isSilent;
    };
    for (const auto& [blockSize, channels, isSilent] :
         { Row{ 16, 2, false }, { 4608, 8, false }, { 65535, 1, true }, { 65535, 8, true } })
    {
        SCOPED_TRACE(blockSize);
        AudioOptions options;
        options.frames = isSilent ? 140000 : 20000;
        options.channels = channels;
        const AudioSampleBuffer buffer = Load(LoadFlac, FlacFile(options, blockSize, isSilent));
        ASSERT_EQ(buffer.frames, options.frames);
        if (!isSilent)
            ExpectSignal(buffer, options);
    }
}

TEST(Flac, RefusesWhatIsNotWhole)
{
    AudioOptions options;
    options.frames = 5000;
    const FileBytes good = FlacFile(options);
    options.sampleRate = 11000;
    options.frames = 1;
    ExpectSignal(Load(LoadFlac, FlacFile(options)), options);
    options.sampleRate = 10999;
    const FileBytes slow = FlacFile(options);
    // STREAMINFO: 18 + 8 bytes in there are rate, channels, depth and the total of samples; behind it the
    // checksum.
    const auto flipped = [&](std::size_t position, std::uint8_t mask)
    {
        return good.Patched(position, FileBytes().Little(good[position] ^ mask, 1));
    };
    const char* const detail = "Could not load flac file.";
    ExpectRefusals({ { LoadFlac, flipped(26, 0xFF), detail },   // checksum of the audio
                     { LoadFlac, flipped(25, 0x01), detail },   // more samples than there are
                     { LoadFlac, flipped(21, 0x0F), detail },   // as many as 2^36 samples
                     { LoadFlac, flipped(20, 0x02), detail },   // other channels
                     { LoadFlac, flipped(20, 0x01), detail },   // another depth
                     { LoadFlac, flipped(good.size() - 200, 0x10), detail },   // a damaged frame
                     { LoadFlac, good.Patched(22, FileBytes().Big(0, 4)), detail },   // an unknown total
                     { LoadFlac, slow, detail },
                     { LoadFlac, FileBytes().Text(std::string(5000, 'f')), detail } });
}

// Half a second of a sine of 1 kHz at half of full scale, 44.1 kHz, mono, 64 kbit/s, layer III.
FileBytes SineMp3(const std::string& name = "sine1k.mp3")
{
    return FileBytes::Of(std::string(std::getenv("TONALIGN_SOURCE_DIR")) + "/tests/data/" + name);
}

// Amplitude of one frequency over whole periods in the middle.
double Amplitude(const AudioSampleBuffer& buffer, double hz)
{
    const int first = 4410, count = 13230;   // 300 periods of 1 kHz
    double re = 0, im = 0;
    for (int i = first; i < first + count; ++i)
    {
        const double phase = 2 * std::numbers::pi * hz * i / buffer.sampleRate;
        re += buffer.channelData[0][i] * std::cos(phase);
        im += buffer.channelData[0][i] * std::sin(phase);
    }
    return 2 * std::hypot(re, im) / count;
}

TEST(Mpeg, DecodesAudioInEveryContainer)
{
    const FileBytes mp3 = SineMp3();
    const FileBytes id3 =
        FileBytes().Text("ID3").Big(0x030000, 3).Big(0x0000030A, 4).Text(std::string(3 * 128 + 10, '\xFF'));
    const FileBytes info = FileBytes().Text("INFO").Little(0x10203, 4).Text(std::string(0x10203, '\xFF'));
    FileBytes riff;
    riff.Text("RIFF").Little(0, 4).Text("WAVE").Text("fmt ").Little(5, 4).Text("12345").Little(0, 1);
    riff.Text("fact").Little(0x10204, 4).Text(std::string(0x10204, '\xFF'));
    riff.Text("data").Little(mp3.size(), 4).Append(mp3).Text("tail").Append(mp3);
    FileBytes program;
    program.Big(0x1BA, 4).Big(0x2100010001, 5).Big(0x80C001, 3);   // ISO/IEC 11172-1 pack
    program.Big(0x1BB, 4).Big(6, 2).Big(0, 6);
    for (std::size_t start = 0, packet = 0; start < mp3.size(); start += 300, ++packet)
    {
        const FileBytes headers[] = {
            FileBytes().Big(0xFFFF, 2).Big(0x60E0, 2).Big(0x2100010001, 5),   // stuffing, buffer size, time
            FileBytes().Big(0x3100010001, 5).Big(0x1100010001, 5),   // two times
            FileBytes().Big(0x0F, 1), FileBytes().Big(0x808005, 3).Big(0x2100010001, 5),   // ISO/IEC 13818-1
            FileBytes().Big(0x808000, 3)
        };
        const FileBytes& header = headers[packet % std::size(headers)];
        FileBytes part = mp3.Cut(std::min(start + 300, mp3.size()));
        part.erase(part.begin(), part.begin() + static_cast<std::ptrdiff_t>(start));
        program.Big(0x1E0, 4).Big(7, 2).Text("\xFF\xFB\x90\xFF\xFB\x90\x01");   // video
        program.Big(0x1C0, 4).Big(header.size() + part.size(), 2).Append(header).Append(part);
    }
    program.Big(0x1B9, 4).Big(0x1C0, 4).Big(mp3.size() + 1, 2).Big(0x0F, 1).Append(mp3);   // behind the end

    const int frames = Load(LoadMpeg, mp3).frames;
    EXPECT_NEAR(frames, 22050, 2400);   // encoders add up to two frames of delay and padding
    int number = 0;
    for (const FileBytes& file :
         { mp3, FileBytes().Text(std::string(700, 'n')).Append(mp3),
           FileBytes().Text(std::string(1023, 'n')).Append(mp3), FileBytes(id3).Append(mp3),
           FileBytes(info).Append(mp3), riff, program, FileBytes(mp3).Append(id3).Append(mp3) })
    {
        SCOPED_TRACE(number++);
        AudioSampleBuffer buffer;
        ASSERT_EQ(Refusal([&] { buffer = Load(LoadMpeg, file); }), "");
        EXPECT_EQ(buffer.channels, 1);
        EXPECT_EQ(buffer.sampleRate, 44100.0);
        EXPECT_EQ(buffer.bitsPerSample, 16);
        ASSERT_EQ(buffer.frames, frames * (buffer.frames > frames ? 2 : 1));
        EXPECT_EQ(buffer.validFrames, buffer.frames);
        EXPECT_EQ(buffer.channelData[0][buffer.frames], 0.0f);
        EXPECT_NEAR(Amplitude(buffer, 1000.0), 0.5, 0.005);
        EXPECT_LT(Amplitude(buffer, 3000.0), 0.005);
    }
}

// Silent frames of layer III, the first with a count of those that follow.
FileBytes SilentMpeg(bool isVersion1, int channels, int frameCount, std::int64_t announcedCount)
{
    // 128 kbit/s at 44.1 kHz or 22.05 kHz: all frames have 417 bytes.
    const std::uint32_t header = (isVersion1 ? 0xFFFB9000 : 0xFFF3C000) | (channels == 1 ? 0xC0 : 0);
    const FileBytes frame = FileBytes().Big(header, 4).Text(std::string(413, '\0'));
    const std::size_t sideBytes = isVersion1 ? (channels == 1 ? 17 : 32) : (channels == 1 ? 9 : 17);
    FileBytes file = frame.Patched(4 + sideBytes, FileBytes().Text("Info").Big(1, 4).Big(announcedCount, 4));
    for (int index = 0; index < frameCount; ++index)
        file.Append(frame);
    return file;
}

// The count of frames is too small in what tools leave behind that cut and join, and too great in what was
// cut off. The delay of encoder and decoder may be missing.
TEST(Mpeg, PlaysToTheEndOfTheBytesAndMissesWhatWasAnnounced)
{
    constexpr int Count = 60;
    for (const bool isVersion1 : { true, false })
        for (const int channels : { 1, 2 })
        {
            const int frames = isVersion1 ? 1152 : 576;
            for (const int announced : { Count / 4, Count, Count + 3 })
            {
                SCOPED_TRACE(testing::Message() << isVersion1 << channels << " " << announced);
                AudioSampleBuffer buffer;
                ASSERT_EQ(
                    Refusal([&]
                            { buffer = Load(LoadMpeg, SilentMpeg(isVersion1, channels, Count, announced)); }),
                    "");
                EXPECT_NEAR(buffer.frames, Count * frames, 2 * frames);
                EXPECT_EQ(buffer.channels, channels);
                EXPECT_EQ(buffer.sampleRate, isVersion1 ? 44100.0 : 22050.0);
            }
            for (const std::int64_t announced : { Count + 10, 1 << 8, 1 << 16, 1 << 24 })
                ExpectRefusals({ { LoadMpeg, SilentMpeg(isVersion1, channels, Count, announced),
                                   "The MPEG stream ends before its last frame." } });
        }

    const FileBytes plain = SineMp3();
    const FileBytes announced = SineMp3("sine1k-info.mp3");   // at 32 kHz
    const FileBytes tag = FileBytes().Text("ID3").Big(0x030000, 3).Big(10, 4).Text(std::string(10, '\0'));
    EXPECT_EQ(Load(LoadMpeg, announced).frames, 16000);   // without what the encoder added on both sides
    for (const FileBytes& between : { FileBytes(), tag })
        EXPECT_NEAR(Load(LoadMpeg, FileBytes(announced).Append(between).Append(announced)).frames, 2 * 16000,
                    4 * 1152);
    EXPECT_EQ(Load(LoadMpeg, FileBytes(announced).Text("TAG").Text(std::string(125, ' '))).frames, 16000);
    for (const auto& [first, second] : { std::pair{ plain, announced }, { announced, plain } })
        ExpectRefusals({ { LoadMpeg, FileBytes(first).Append(second),
                           "The MPEG stream changes its sample rate or channels." } });
    ExpectRefusals(
        { { LoadMpeg, announced.Cut(announced.size() / 2), "The MPEG stream ends before its last frame." } });
}

// A disk that fails in the middle of a file.
class FailingStream : public MMemoryStream
{
public:
    using MMemoryStream::MMemoryStream;
    std::int32_t Read(void* buffer, std::int32_t wanted) override
    {
        if (2 * GetPosition() > GetSize())
            throw MException("The disk has failed.");
        return MMemoryStream::Read(buffer, std::min(wanted, 100));
    }
};

TEST(CompressedFiles, LetTheStreamsErrorThroughTheirLibraries)
{
    for (const auto& [reader, file] : { std::pair<Reader, FileBytes>{ LoadFlac, FlacFile({}) },
                                        { LoadMpeg, SineMp3() },
                                        { LoadMpeg, SineMp3("sine1k-info.mp3") } })
    {
        FailingStream stream(MDataBlock(file.data(), static_cast<std::int32_t>(file.size())));
        AudioSampleBuffer buffer;
        EXPECT_EQ(ErrorOf([&, read = reader] { read(buffer, stream, {}); }), "The disk has failed.");
    }
}

TEST(Mpeg, RefusesWhatItCannotRead)
{
    const char* const detail = "Error initializing MPEG decoder.";
    ExpectRefusals({
        { LoadMpeg, {}, detail },
        { LoadMpeg, FileBytes().Text("ID"), detail },
        { LoadMpeg, FileBytes().Text("INFO12"), detail },
        { LoadMpeg, FileBytes().Text("ID3\x03").Big(0, 5), detail },
        { LoadMpeg, FileBytes().Text(std::string(1024, 'n')).Append(SineMp3()), detail },
        { LoadMpeg, FileBytes().Text("RIFF1234WAVEfmt "), "Invalid MPEG header in WAVe file." },
        { LoadMpeg, FileBytes().Text("RIFF1234"), "Invalid MPEG header in WAVe file." },
        { LoadMpeg, FileBytes().Big(0x1BA, 4).Big(0x1E0, 4).Big(0, 2), "MPEG stream header error." },
        { LoadMpeg, FileBytes().Big(0xFFFF, 2).Text(std::string(500, 'n')), detail },
    });
}
}   // namespace
