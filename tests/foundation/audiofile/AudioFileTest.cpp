// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/audiofile/AudioFile.h"

#include <cstdlib>
#include <fstream>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/audiofile/AudioFileErrors.h"
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

// The text behind "Invalid file contents. "; empty if nothing was thrown.
std::string Refusal(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const MException& exception)
    {
        const std::string text = exception.Message.ToUTF8();
        const std::string prefix = "Invalid file contents. ";
        EXPECT_EQ(text.substr(0, prefix.size()), prefix);
        EXPECT_EQ(exception.Code, static_cast<int>(MErrorCode::Content));
        return text.substr(std::min(prefix.size(), text.size()));
    }
    return {};
}

std::string Refusal(Reader reader, const std::vector<std::uint8_t>& bytes)
{
    return Refusal([&] { Load(reader, bytes); });
}

void ExpectSignal(const AudioSampleBuffer& buffer, int channels, int frames, double tolerance)
{
    ASSERT_EQ(buffer.channels, channels);
    ASSERT_EQ(buffer.frames, frames);
    EXPECT_EQ(buffer.validFrames, frames);
    for (int channel = 0; channel < channels; ++channel)
    {
        const float* samples = buffer.channelData[static_cast<std::size_t>(channel)];
        EXPECT_EQ(samples[-1], 0.0f);
        EXPECT_EQ(samples[frames], 0.0f);
        for (int frame = 0; frame < frames; ++frame)
            ASSERT_NEAR(samples[frame], TestSample(frame, channel), tolerance)
                << "channel " << channel << ", frame " << frame;
    }
}

// Half a step of the stored integers, and float rounding.
double Tolerance(int bits)
{
    return 0.51 / static_cast<double>((std::int64_t{ 1 } << (bits - 1)) - 1) + 2e-7;
}

std::string TemporaryPath(const std::string& name, const std::vector<std::uint8_t>& bytes)
{
    const std::string path = std::string(std::getenv("TONALIGN_TEST_FOLDER")) + "/" + name;
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
}

TEST(Wave, ReadsEverySampleFormat)
{
    for (const int channels : { 1, 2, 3, 8 })
        for (const int bits : { 8, 16, 24, 32 })
            for (const int tag : { 1, 3 })
                for (const bool extensible : { false, true })
                {
                    if (tag == 3 && bits != 32)
                        continue;
                    SCOPED_TRACE(std::to_string(channels) + " channels, " + std::to_string(bits) +
                                 " bits, tag " + std::to_string(tag) + (extensible ? ", extensible" : ""));
                    WaveOptions options;
                    options.channels = channels;
                    options.bits = bits;
                    options.tag = tag;
                    options.extensibleTag = extensible ? tag : -1;
                    options.frames = 700;   // more than a run of 512
                    const AudioSampleBuffer buffer = Load(LoadWave, WaveFile(options));
                    ExpectSignal(buffer, channels, 700, tag == 3 ? 1e-7 : Tolerance(bits));
                    EXPECT_EQ(buffer.sampleRate, 48000.0);
                    EXPECT_EQ(buffer.bitsPerSample, bits);
                    EXPECT_EQ(buffer.isFloatSource, tag == 3);
                    EXPECT_EQ(buffer.scale, 1.0f);
                }
}

// A file that is read, not changed and written again has to be the same: every integer must come back, 0 be
// silence and the greatest one 1.
TEST(Wave, KeepsEveryIntegerApartFromTheNext)
{
    for (const int bits : { 8, 16, 24 })
    {
        SCOPED_TRACE(bits);
        const std::int32_t count = std::int32_t{ 1 } << bits;
        std::vector<std::uint8_t> bytes;
        for (std::int32_t value = -count / 2; value < count / 2; ++value)
            for (int byte = 0; byte < bits / 8; ++byte)
                bytes.push_back(static_cast<std::uint8_t>((bits == 8 ? value + 128 : value) >> (8 * byte)));
        AudioSampleBuffer buffer;
        ConvertSamples(buffer, bytes.data(), static_cast<std::int32_t>(bytes.size()), bits, 1, false);
        ASSERT_EQ(buffer.frames, count);
        const float* samples = buffer.channelData[0];
        EXPECT_EQ(samples[count / 2], 0.0f);
        EXPECT_EQ(samples[count - 1], 1.0f);
        const double fullScale = count / 2 - 1;
        std::int32_t changed = 0;
        for (std::int32_t index = 0; index < count; ++index)
            changed += std::nearbyint(samples[index] * fullScale) != index - count / 2;
        EXPECT_EQ(changed, 0);
    }
}

TEST(Wave, PassesOverOtherChunks)
{
    WaveOptions options;
    options.before = std::string("LIST\x05\x00\x00\x00", 8) + "odd!!" + std::string("\0", 1) +
                     std::string("fact\x04\x00\x00\x00"
                                 "1234",
                                 12);
    for (const int formatExtra : { 0, 2, 24 })
    {
        options.formatExtra = formatExtra;
        ExpectSignal(Load(LoadWave, WaveFile(options)), 2, 37, Tolerance(16));
    }
    // Some tools leave an incomplete frame at the end of the data.
    FileBytes file = WaveFile({});
    file[40] = static_cast<std::uint8_t>(file[40] - 3);
    EXPECT_EQ(Load(LoadWave, file).frames, 36);
}

TEST(Wave, RefusesWhatItCannotRead)
{
    const auto patched = [](std::size_t position, const FileBytes& bytes)
    {
        FileBytes file = WaveFile({});
        std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(position));
        return file;
    };
    const auto cut = [](std::size_t length)
    {
        FileBytes file = WaveFile({});
        file.resize(length);
        return file;
    };
    struct Row
    {
        FileBytes file;
        const char* detail;
    };
    const Row rows[] = {
        { {}, "No WAVe header found." },
        { cut(11), "No WAVe header found." },
        { patched(0, FileBytes().Text("RIFX")), "The stream is not a RIFF standard file." },
        { patched(0, FileBytes().Text("RF64")), "Wave files of more than 4 GB (RF64) are not supported." },
        { patched(8, FileBytes().Text("AVI ")), "Note a WAVe file." },
        { cut(14), "No chunk identifier found." },
        { cut(30), "No format chunk found." },
        { patched(20, FileBytes().Little(2, 2)), "Invalid WAVe file format tag contents." },
        { patched(20, FileBytes().Little(0xFFFE, 2)), "Invalid WAVe file format tag contents." },
        { cut(36), "No chunk identifier found." },
        { patched(36, FileBytes().Text("LIST")), "No chunk identifier found." },
        { cut(38), "No chunk identifier found." },
        { cut(42), "No data chunk length found." },
        { patched(40, FileBytes().Little(0, 4)), "Invalid data chunk length." },
        { patched(40, FileBytes().Little(0xFFFFFFFF, 4)),
          "Invalid data chunk length. Files with more than 2 GB of audio are not supported." },
        { patched(40, FileBytes().Little(0x7FFFFFFF, 4)), "Could not load WAV samples." },
        { patched(40, FileBytes().Little(149, 4)), "Could not load WAV samples." },
        { patched(34, FileBytes().Little(12, 2)), "Invalid source bitrate." },
        { patched(34, FileBytes().Little(64, 2)), "Invalid source bitrate." },
        { patched(20, FileBytes().Little(3, 2)), "Invalid source bitrate." },
        { patched(22, FileBytes().Little(0, 2)), "The file has 0 channels, but 1 to 8 are supported." },
        { patched(22, FileBytes().Little(9, 2)), "The file has 9 channels, but 1 to 8 are supported." },
        { patched(24, FileBytes().Little(0, 4)),
          "The file has a sample rate of 0 Hz, which is not supported." },
        { patched(24, FileBytes().Little(0x80000000, 4)),
          "The file has a sample rate of -2147483648 Hz, which is not supported." },
        { patched(12, FileBytes().Text("junk")), "No format chunk found." },
    };
    for (const Row& row : rows)
        EXPECT_EQ(Refusal(LoadWave, row.file), row.detail);
}

TEST(Aiff, ReadsEverySampleFormat)
{
    struct Row
    {
        const char* type;
        const char* compression;
        int bits;
        bool isFloat;
    };
    const Row rows[] = { { "AIFF", "", 8, false },      { "AIFF", "", 16, false },
                         { "AIFF", "", 24, false },     { "AIFF", "", 32, false },
                         { "AIFC", "NONE", 24, false }, { "AIFC", "twos", 16, false },
                         { "AIFC", "sowt", 16, false }, { "AIFC", "sowt", 24, false },
                         { "AIFC", "fl32", 32, true },  { "AIFC", "FL32", 32, true } };
    for (const Row& row : rows)
        for (const int channels : { 1, 2, 5 })
        {
            SCOPED_TRACE(std::string(row.type) + " " + row.compression + " " + std::to_string(row.bits));
            AiffOptions options;
            options.type = row.type;
            options.compression = row.compression;
            options.bits = row.bits;
            options.channels = channels;
            options.offset = channels == 5 ? 6 : 0;
            const AudioSampleBuffer buffer = Load(LoadAiff, AiffFile(options));
            ExpectSignal(buffer, channels, 37, row.isFloat ? 1e-7 : Tolerance(row.bits));
            EXPECT_EQ(buffer.sampleRate, 44100.0);
            EXPECT_EQ(buffer.bitsPerSample, row.bits);
            EXPECT_EQ(buffer.isFloatSource, row.isFloat);
        }
}

TEST(Aiff, RoundsItsExtendedSampleRate)
{
    struct Row
    {
        double stored;
        double read;
    };
    for (const Row& row :
         { Row{ 8000, 8000 }, Row{ 22050.5, 22051 }, Row{ 44099.49, 44099 }, Row{ 192000, 192000 } })
    {
        AiffOptions options;
        options.sampleRate = row.stored;
        EXPECT_EQ(Load(LoadAiff, AiffFile(options)).sampleRate, row.read);
    }
}

TEST(Aiff, PassesOverOddChunksWithAndWithoutPadding)
{
    AiffOptions options;
    options.before = std::string("NAME\0\0\0\x03", 8) + "abc" + std::string("\0", 1) +
                     std::string("ANNO\0\0\0\x01", 8) + "x";
    ExpectSignal(Load(LoadAiff, AiffFile(options)), 2, 37, Tolerance(16));
}

TEST(Aiff, RefusesWhatItCannotRead)
{
    const FileBytes good = AiffFile({});
    const auto patched = [&](std::size_t position, const FileBytes& bytes)
    {
        FileBytes file = good;
        std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(position));
        return file;
    };
    FileBytes cut = good;
    cut.pop_back();
    AiffOptions compressed;
    compressed.type = "AIFC";
    compressed.compression = "ima4";
    FileBytes noCommon;
    noCommon.Text("FORM").Big(0, 4).Text("AIFF").Text("SSND").Big(12, 4).Big(0, 8).Big(0, 4);
    struct Row
    {
        FileBytes file;
        const char* detail;
    };
    const Row rows[] = {
        { {}, "Could not read required data from stream." },
        { patched(0, FileBytes().Text("RIFF")), "The stream is not an AIFF standard file." },
        { patched(8, FileBytes().Text("AIFX")), "The stream is not an AIFF standard file." },
        { AiffFile(compressed), "The compression of the AIFF-C file is not supported." },
        { patched(38, FileBytes().Text("XXXX")), "Could not read required data from stream." },
        { noCommon, "The AIFF file has samples before their description." },
        { cut, "Could not load AIFF samples." },
        { patched(42, FileBytes().Big(0x7FFFFFFF, 4)), "Could not load AIFF samples." },
        { patched(42, FileBytes().Big(0xFFFFFFFF, 4)),
          "Files with more than 2 GB of audio are not supported." },
        { patched(20, FileBytes().Big(9, 2)), "The file has 9 channels, but 1 to 8 are supported." },
        { patched(26, FileBytes().Big(20, 2)), "Invalid source bitrate." },
        { patched(28, FileBytes().Big(0x7FFF, 2)),
          "The file has a sample rate of inf Hz, which is not supported." },
    };
    for (const Row& row : rows)
        EXPECT_EQ(Refusal(LoadAiff, row.file), row.detail);
}

TEST(Qaf, ScalesItsSamples)
{
    const AudioSampleBuffer buffer = Load(LoadQaf, QafFile(3, 50, 0.5f));
    ASSERT_EQ(buffer.channels, 3);
    ASSERT_EQ(buffer.frames, 50);
    EXPECT_EQ(buffer.scale, 0.5f);
    EXPECT_EQ(buffer.bitsPerSample, 32);
    for (int channel = 0; channel < 3; ++channel)
        for (int frame = 0; frame < 50; ++frame)
            ASSERT_NEAR(buffer.channelData[static_cast<std::size_t>(channel)][frame],
                        0.5 * TestSample(frame, channel), 1e-7);
}

TEST(Qaf, RefusesWhatItCannotRead)
{
    const FileBytes good = QafFile(2, 10, 1.0f);
    const auto patched = [&](std::size_t position, std::uint32_t value)
    {
        FileBytes file = good;
        const FileBytes bytes = FileBytes().Little(value, 4);
        std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(position));
        return file;
    };
    FileBytes cut = good;
    cut.pop_back();
    FileBytes head = good;
    head.resize(59);
    struct Row
    {
        FileBytes file;
        const char* detail;
    };
    const Row rows[] = { { head, "No QAF header found." },
                         { patched(0, 0x32464151), "Invalid QAF header." },
                         { patched(36, 0), "Invalid QAF header." },
                         { patched(40, 0), "Invalid QAF header." },
                         { patched(44, 0xFFFFFFFF), "Invalid QAF header." },
                         { patched(44, 0x7FFFFFFF), "Could not load samples." },
                         { patched(40, 9), "The file has 9 channels, but 1 to 8 are supported." },
                         { cut, "Could not load samples." } };
    for (const Row& row : rows)
        EXPECT_EQ(Refusal(LoadQaf, row.file), row.detail);
}

TEST(AudioFile, NeverTakesAPartForTheWhole)
{
    struct Row
    {
        Reader reader;
        FileBytes file;
    };
    for (const Row& row : { Row{ LoadWave, WaveFile({}) }, Row{ LoadAiff, AiffFile({}) },
                            Row{ LoadQaf, QafFile(2, 20, 1.0f) } })
        for (std::size_t length = 0; length < row.file.size(); ++length)
        {
            const FileBytes part = [&]
            {
                FileBytes bytes = row.file;
                bytes.resize(length);
                return bytes;
            }();
            EXPECT_NE(Refusal(row.reader, part), "") << "cut to " << length << " of " << row.file.size();
        }
}

TEST(AudioFile, FindsTheReaderByExtensionOrByTrial)
{
    const FileBytes wave = WaveFile({});
    const FileBytes aiff = AiffFile({});
    const FileBytes qaf = QafFile(2, 37, 1.0f);
    struct Row
    {
        const char* name;
        const FileBytes& file;
        const char* detail;
    };
    const std::string folder = std::string(std::getenv("TONALIGN_TEST_FOLDER")) + "/";
    const std::string unknown = "Unknown audio format " + folder + "noise.bin.";
    const FileBytes noise = FileBytes().Text(std::string(3000, 'x'));
    const Row rows[] = {
        { "A.WAV", wave, "" },
        { "a.AIFF", aiff, "" },
        { "a.aifc", aiff, "" },
        { "a.QaF", qaf, "" },
        { "take.xyz", aiff, "" },
        { "wave", wave, "" },
        { "wrong.wav", aiff, "The stream is not a RIFF standard file." },
        { "wrong.aif", wave, "The stream is not an AIFF standard file." },
        { "noise.bin", noise, unknown.c_str() },
    };
    for (const Row& row : rows)
    {
        const MString path = MString::FromUTF8(TemporaryPath(row.name, row.file));
        AudioSampleBuffer buffer;
        EXPECT_EQ(Refusal([&] { LoadAudioFile(buffer, path); }), row.detail) << row.name;
        if (*row.detail == '\0')
            ExpectSignal(buffer, 2, 37, Tolerance(16));
    }
}

TEST(AudioFile, RefusesAnEmptyFileAndAMissingOne)
{
    AiffOptions empty;
    empty.frames = 0;
    const MString path = MString::FromUTF8(TemporaryPath("empty.aif", AiffFile(empty)));
    AudioSampleBuffer buffer;
    EXPECT_EQ(Refusal([&] { LoadAudioFile(buffer, path); }), "Empty audio file.");
    EXPECT_THROW(LoadAudioFile(buffer, MString("/nowhere/at/all.wav")), MException);
}

TEST(AudioFile, ReportsProgressAndStopsWhenTold)
{
    WaveOptions wave;
    wave.frames = 300000;
    AiffOptions aiff;
    aiff.frames = 300000;
    struct Row
    {
        Reader reader;
        FileBytes file;
    };
    for (const Row& row : { Row{ LoadWave, WaveFile(wave) }, Row{ LoadAiff, AiffFile(aiff) },
                            Row{ LoadQaf, QafFile(2, 300000, 1.0f) } })
    {
        std::vector<double> fractions;
        const auto collect = [&](double fraction)
        {
            fractions.push_back(fraction);
            return true;
        };
        Load(row.reader, row.file, { collect });
        ASSERT_GT(fractions.size(), 3u);
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
        EXPECT_GE(fractions.front(), 0.0);
        EXPECT_LE(fractions.back(), 1.0);

        int calls = 0;
        const auto stop = [&](double)
        {
            return ++calls < 2;
        };
        try
        {
            Load(row.reader, row.file, { stop });
            ADD_FAILURE() << "went on";
        }
        catch (const MException& exception)
        {
            EXPECT_EQ(exception.Message.ToUTF8(), "Cancelled.");
        }
        EXPECT_EQ(calls, 2);
    }
    // A trial that is cancelled isn't a failure of that format.
    const MString path = MString::FromUTF8(TemporaryPath("cancel.xyz", WaveFile(wave)));
    AudioSampleBuffer buffer;
    int calls = 0;
    const auto stop = [&](double)
    {
        ++calls;
        return false;
    };
    try
    {
        LoadAudioFile(buffer, path, { stop });
        ADD_FAILURE() << "went on";
    }
    catch (const MException& exception)
    {
        EXPECT_EQ(exception.Message.ToUTF8(), "Cancelled.");
    }
    EXPECT_EQ(calls, 1);
}
}   // namespace
