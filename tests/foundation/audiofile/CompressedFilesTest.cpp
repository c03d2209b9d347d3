// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <numbers>

#include <FLAC/stream_encoder.h>
#include <gtest/gtest.h>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "tests/foundation/audiofile/FileBytes.h"

namespace
{
using Reader = void (*)(AudioSampleBuffer&, MStream&, const LoadProgress&);

AudioSampleBuffer Load(Reader reader, const std::vector<std::uint8_t>& bytes,
                       const LoadProgress& progress = {})
{
    MMemoryStream stream = MMemoryStream::Borrow(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    AudioSampleBuffer buffer;
    reader(buffer, stream, progress);
    return buffer;
}

std::string Message(Reader reader, const std::vector<std::uint8_t>& bytes)
{
    try
    {
        Load(reader, bytes);
    }
    catch (const MException& exception)
    {
        EXPECT_EQ(exception.Code, static_cast<int>(MErrorCode::Content));
        return exception.Message.ToUTF8();
    }
    return {};
}

struct MemoryFile
{
    FileBytes bytes;
    std::size_t position = 0;
};

FLAC__StreamEncoderWriteStatus WriteFlac(const FLAC__StreamEncoder*, const FLAC__byte* buffer,
                                         std::size_t size, std::uint32_t, std::uint32_t, void* client)
{
    auto& file = *static_cast<MemoryFile*>(client);
    if (file.bytes.size() < file.position + size)
        file.bytes.resize(file.position + size);
    std::copy_n(buffer, size, file.bytes.begin() + static_cast<std::ptrdiff_t>(file.position));
    file.position += size;
    return FLAC__STREAM_ENCODER_WRITE_STATUS_OK;
}

FLAC__StreamEncoderSeekStatus SeekFlac(const FLAC__StreamEncoder*, FLAC__uint64 offset, void* client)
{
    static_cast<MemoryFile*>(client)->position = offset;
    return FLAC__STREAM_ENCODER_SEEK_STATUS_OK;
}

FLAC__StreamEncoderTellStatus TellFlac(const FLAC__StreamEncoder*, FLAC__uint64* offset, void* client)
{
    *offset = static_cast<MemoryFile*>(client)->position;
    return FLAC__STREAM_ENCODER_TELL_STATUS_OK;
}

FileBytes FlacFile(int channels, int bits, int frames, int sampleRate, std::uint32_t blockSize = 1024,
                   bool isSilent = false)
{
    MemoryFile file;
    FLAC__StreamEncoder* encoder = FLAC__stream_encoder_new();
    FLAC__stream_encoder_set_channels(encoder, static_cast<std::uint32_t>(channels));
    FLAC__stream_encoder_set_bits_per_sample(encoder, static_cast<std::uint32_t>(bits));
    FLAC__stream_encoder_set_sample_rate(encoder, static_cast<std::uint32_t>(sampleRate));
    FLAC__stream_encoder_set_streamable_subset(encoder, 0);
    FLAC__stream_encoder_set_blocksize(encoder, blockSize);
    FLAC__stream_encoder_init_stream(encoder, WriteFlac, SeekFlac, TellFlac, nullptr, &file);
    std::vector<FLAC__int32> interleaved;
    for (int frame = 0; frame < frames; ++frame)
        for (int channel = 0; channel < channels; ++channel)
            interleaved.push_back(isSilent ? 0 : static_cast<FLAC__int32>(TestInteger(frame, channel, bits)));
    EXPECT_TRUE(FLAC__stream_encoder_process_interleaved(encoder, interleaved.data(),
                                                         static_cast<std::uint32_t>(frames)));
    EXPECT_TRUE(FLAC__stream_encoder_finish(encoder));
    FLAC__stream_encoder_delete(encoder);
    return file.bytes;
}

TEST(Flac, ReadsEveryDepthAtTheSameFullScale)
{
    for (const int bits : { 8, 16, 20, 24 })
        for (const int channels : { 1, 2, 8 })
        {
            SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(channels) + " channels");
            const AudioSampleBuffer buffer = Load(LoadFlac, FlacFile(channels, bits, 5000, 44100));
            ASSERT_EQ(buffer.channels, channels);
            ASSERT_EQ(buffer.frames, 5000);
            EXPECT_EQ(buffer.validFrames, 5000);
            EXPECT_EQ(buffer.sampleRate, 44100.0);
            EXPECT_EQ(buffer.bitsPerSample, bits);
            const int wholeBits = bits == 20 ? 24 : bits;
            const double fullScale = std::ldexp(1.0, wholeBits - 1) - 1;
            for (int channel = 0; channel < channels; ++channel)
            {
                const float* samples = buffer.channelData[static_cast<std::size_t>(channel)];
                EXPECT_EQ(samples[-1], 0.0f);
                EXPECT_EQ(samples[5000], 0.0f);
                for (int frame = 0; frame < 5000; ++frame)
                    ASSERT_EQ(std::nearbyint(samples[frame] * fullScale), TestInteger(frame, channel, bits)
                                                                              << (wholeBits - bits))
                        << frame;
            }
        }
}

// Long blocks of silence are what the format compresses best.
TEST(Flac, ReadsBlocksOfEveryLength)
{
    for (const std::uint32_t blockSize : { 16u, 4608u, 16384u, 65535u })
        for (const int channels : { 1, 8 })
            for (const bool isSilent : { false, true })
            {
                SCOPED_TRACE(testing::Message() << blockSize << " " << channels << isSilent);
                const AudioSampleBuffer buffer =
                    Load(LoadFlac, FlacFile(channels, 16, 500000, 44100, blockSize, isSilent));
                EXPECT_EQ(buffer.frames, 500000);
                EXPECT_NEAR(buffer.channelData[0][499999], isSilent ? 0.0 : TestSample(499999, 0), 2e-5);
            }
}

TEST(Flac, RefusesWhatIsNotWhole)
{
    const char* const detail = "Invalid file contents. Could not load flac file.";
    const FileBytes good = FlacFile(2, 16, 5000, 44100);
    for (std::size_t length = 0; length < good.size(); length += 97)
    {
        FileBytes part = good;
        part.resize(length);
        EXPECT_EQ(Message(LoadFlac, part), detail) << "cut to " << length << " of " << good.size();
    }
    // STREAMINFO: 18 + 8 bytes in there are rate, channels, depth and the total of samples; behind it the
    // checksum.
    const auto patched = [&](std::size_t position, std::uint8_t mask)
    {
        FileBytes file = good;
        file[position] ^= mask;
        return file;
    };
    EXPECT_EQ(Message(LoadFlac, patched(26, 0xFF)), detail) << "checksum of the audio";
    EXPECT_EQ(Message(LoadFlac, patched(25, 0x01)), detail) << "more samples than there are";
    EXPECT_EQ(Message(LoadFlac, patched(21, 0x0F)), detail) << "as many as 2^36 samples";
    EXPECT_EQ(Message(LoadFlac, patched(good.size() - 200, 0x10)), detail) << "a damaged frame";
    FileBytes unknownTotal = good;
    for (std::size_t i = 22; i < 26; ++i)
        unknownTotal[i] = 0;
    EXPECT_EQ(Message(LoadFlac, unknownTotal), detail);
    EXPECT_EQ(Message(LoadFlac, FlacFile(1, 16, 3000, 8000)), detail) << "a rate below 11000 Hz";
    EXPECT_EQ(Message(LoadFlac, FileBytes().Text(std::string(5000, 'f'))), detail);
}

TEST(Flac, StopsWhenTold)
{
    int calls = 0;
    const auto stop = [&](double)
    {
        return ++calls < 3;
    };
    try
    {
        Load(LoadFlac, FlacFile(2, 16, 20000, 44100), { stop });
        ADD_FAILURE() << "went on";
    }
    catch (const MException& exception)
    {
        EXPECT_EQ(exception.Message.ToUTF8(), "Cancelled.");
    }
    EXPECT_EQ(calls, 3);
}

// Half a second of a sine of 1 kHz at half of full scale, 44.1 kHz, mono, 64 kbit/s, layer III.
FileBytes SineMp3(const char* name = "sine1k.mp3")
{
    const std::string path = std::string(std::getenv("TONALIGN_SOURCE_DIR")) + "/tests/data/" + name;
    std::ifstream file(path, std::ios::binary);
    FileBytes bytes;
    bytes.assign(std::istreambuf_iterator<char>(file), {});
    return bytes;
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

void ExpectSine(const AudioSampleBuffer& buffer)
{
    EXPECT_EQ(buffer.channels, 1);
    EXPECT_EQ(buffer.sampleRate, 44100.0);
    EXPECT_EQ(buffer.bitsPerSample, 16);
    ASSERT_NEAR(buffer.frames, 22050, 2400);   // encoders add up to two frames of delay and padding
    EXPECT_NEAR(Amplitude(buffer, 1000.0), 0.5, 0.005);
    EXPECT_LT(Amplitude(buffer, 3000.0), 0.005);
}

TEST(Mpeg, DecodesAudioInEveryContainer)
{
    const FileBytes mp3 = SineMp3();
    ASSERT_GT(mp3.size(), 1000u);
    ExpectSine(Load(LoadMpeg, mp3));

    SCOPED_TRACE("noise in front");
    ExpectSine(Load(LoadMpeg, FileBytes().Text(std::string(700, 'n')).Append(mp3)));

    SCOPED_TRACE("ID3");
    FileBytes id3;
    id3.Text("ID3")
        .Big(0x030000, 3)
        .Big(0x0000030A, 4)
        .Append(std::vector<std::uint8_t>(3 * 128 + 10, 0xFF))
        .Append(mp3);
    ExpectSine(Load(LoadMpeg, id3));

    SCOPED_TRACE("INFO");
    ExpectSine(
        Load(LoadMpeg, FileBytes().Text("INFO").Little(600, 4).Text(std::string(600, '\xFF')).Append(mp3)));

    SCOPED_TRACE("RIFF");
    FileBytes riff;
    riff.Text("RIFF").Little(0, 4).Text("WAVE").Text("fmt ").Little(5, 4).Text("12345").Little(0, 1);
    riff.Text("data").Little(mp3.size(), 4).Append(mp3).Text("tail").Append(mp3);
    ExpectSine(Load(LoadMpeg, riff));

    SCOPED_TRACE("program stream");
    FileBytes program;
    program.Big(0x1BA, 4).Big(0x2100010001, 5).Big(0x800001, 3);   // ISO/IEC 11172-1 pack
    program.Big(0x1BB, 4).Big(6, 2).Big(0, 6);
    for (std::size_t start = 0, packet = 0; start < mp3.size(); start += 500, ++packet)
    {
        const std::size_t count = std::min<std::size_t>(500, mp3.size() - start);
        FileBytes header;
        if (packet % 3 == 0)
            header.Big(0xFFFF, 2).Big(0x60E0, 2).Big(0x2100010001, 5);   // stuffing, buffer size, time
        else if (packet % 3 == 1)
            header.Big(0x0F, 1);
        else
            header.Big(0x808005, 3).Big(0x2100010001, 5);   // ISO/IEC 13818-1
        program.Big(0x1E0, 4).Big(7, 2).Text("\xFF\xFB\x90\xFF\xFB\x90\x01");   // video
        program.Big(0x1C0, 4).Big(header.size() + count, 2).Append(header);
        program.insert(program.end(), mp3.begin() + static_cast<std::ptrdiff_t>(start),
                       mp3.begin() + static_cast<std::ptrdiff_t>(start + count));
    }
    program.Big(0x1B9, 4);
    ExpectSine(Load(LoadMpeg, program));
}

// Two files in one, and a count of frames that is too small, as tools leave behind that cut and join.
TEST(Mpeg, PlaysToTheEndOfTheBytes)
{
    const FileBytes plain = SineMp3();
    FileBytes announced = SineMp3("sine1k-info.mp3");   // at 32 kHz
    EXPECT_EQ(Load(LoadMpeg, FileBytes(plain).Append(plain)).frames, 2 * Load(LoadMpeg, plain).frames);
    const int announcedFrames = Load(LoadMpeg, announced).frames;
    EXPECT_EQ(announcedFrames, 16000);   // without what the encoder added on both sides
    const FileBytes tag = FileBytes().Text("ID3").Big(0x030000, 3).Big(10, 4).Text(std::string(10, '\0'));
    for (const FileBytes& between : { FileBytes(), tag })
        EXPECT_NEAR(Load(LoadMpeg, FileBytes(announced).Append(between).Append(announced)).frames,
                    2 * announcedFrames, 4 * 1152);
    EXPECT_EQ(Load(LoadMpeg, FileBytes(announced).Text("TAG").Text(std::string(125, ' '))).frames, 16000);
    for (const auto& [first, second] : { std::pair{ plain, announced }, { announced, plain } })
        EXPECT_EQ(Message(LoadMpeg, FileBytes(first).Append(second)),
                  "Invalid file contents. The MPEG stream changes its sample rate or channels.");
    constexpr std::size_t FrameCountAt = 21 + 8;   // behind "Info" and its flags
    ASSERT_EQ(announced[FrameCountAt + 3], 15);
    announced[FrameCountAt + 3] = 5;
    EXPECT_NEAR(Load(LoadMpeg, announced).frames, announcedFrames, 2 * 1152);
}

TEST(Mpeg, RefusesWhatItCannotRead)
{
    const FileBytes mp3 = SineMp3();
    // This one says in its first frame how many there are.
    FileBytes half = SineMp3("sine1k-info.mp3");
    EXPECT_EQ(Message(LoadMpeg, half), "") << "the whole file";
    half.resize(half.size() / 2);
    struct Row
    {
        FileBytes file;
        const char* detail;
    };
    const Row rows[] = {
        { half, "The MPEG stream ends before its last frame." },
        { {}, "Error initializing MPEG decoder." },
        { FileBytes().Text("ID"), "Error initializing MPEG decoder." },
        { FileBytes().Text(std::string(1100, 'n')).Append(mp3), "Error initializing MPEG decoder." },
        { FileBytes().Text("RIFF1234WAVEfmt "), "Invalid MPEG header in WAVe file." },
        { FileBytes().Big(0x1BA, 4).Big(0x1E0, 4).Big(0, 2), "MPEG stream header error." },
        { FileBytes().Big(0xFFFF, 2).Text(std::string(500, 'n')), "Error initializing MPEG decoder." },
    };
    for (const Row& row : rows)
        EXPECT_EQ(Message(LoadMpeg, row.file), std::string("Invalid file contents. ") + row.detail);
}
}   // namespace
