// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/foundation/audiofile/TestFiles.h"

namespace
{
TEST(PlainFiles, HaveEverySampleFormat)
{
    struct Row
    {
        int bits;
        bool isFloat;
        const char* compression;   // AIFF-C
    };
    for (const Row& row : { Row{ 8, false, "" },
                            { 16, false, "" },
                            { 24, false, "" },
                            { 32, false, "" },
                            { 24, false, "NONE" },
                            { 16, false, "twos" },
                            { 16, false, "sowt" },
                            { 24, false, "sowt" },
                            { 32, true, "fl32" },
                            { 32, true, "FL32" } })
        for (const int channels : { 1, 2, 3, 8 })
        {
            SCOPED_TRACE(testing::Message() << row.bits << row.compression << " " << channels);
            AudioOptions options;
            options.bits = row.bits;
            options.isFloat = row.isFloat;
            options.channels = channels;
            for (const bool isExtensible : { false, true })
            {
                options.isExtensible = isExtensible;
                ExpectSignal(Load(LoadWave, WaveFile(options)), options);
            }
            options.compression = row.compression;
            options.offset = channels == 3 ? 6 : 0;
            ExpectSignal(Load(LoadAiff, AiffFile(options)), options);
        }
    AudioOptions options;
    options.bits = 32;
    const AudioSampleBuffer buffer = Load(LoadQaf, QafFile(options, 0.5f));
    EXPECT_EQ(buffer.scale, 0.5f);
    ExpectSignal(buffer, options);
}

// A file that is read, not changed and written again has to be the same: every integer must come back, 0 be
// silence and the greatest one 1.
TEST(PlainFiles, KeepEveryIntegerApartFromTheNext)
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
        EXPECT_EQ(buffer.bitsPerSample, bits);
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

TEST(PlainFiles, MayHoldOtherChunks)
{
    AudioOptions options;
    options.before = std::string("LIST\x05\x00\x00\x00", 8) + "odd!!" + std::string("\0", 1) +
                     std::string("fact\x04\x00\x00\x00"
                                 "1234",
                                 12);
    for (const int formatExtra : { 0, 2, 24 })
        for (const bool isExtensible : { false, true })
        {
            options.formatExtra = formatExtra;
            options.isExtensible = isExtensible;
            ExpectSignal(Load(LoadWave, WaveFile(options)), options);
        }
    // Some tools leave an incomplete frame at the end of the data.
    EXPECT_EQ(Load(LoadWave, WaveFile({}).Patched(40, FileBytes().Little(37 * 4 - 3, 1))).frames, 36);

    // With and without padding.
    options.before = std::string("NAME\0\0\0\x03", 8) + "abc" + std::string("\0", 1) +
                     std::string("ANNO\0\0\0\x01", 8) + "x";
    ExpectSignal(Load(LoadAiff, AiffFile(options)), options);
    // The description is longer than what is known of it.
    const FileBytes longer =
        AiffFile({}).Patched(38, FileBytes().Text("+SSND")).Patched(16, FileBytes().Big(19, 4));
    EXPECT_EQ(Refusal([&] { Load(LoadAiff, longer); }), "Could not load AIFF samples.");
}

TEST(PlainFiles, HaveTheirSampleRatesRounded)
{
    for (const auto& [stored, read] :
         { std::pair{ 8000.0, 8000.0 }, { 22050.5, 22051.0 }, { 44099.49, 44099.0 }, { 192000.0, 192000.0 } })
    {
        AudioOptions options;
        options.sampleRate = stored;
        EXPECT_EQ(Load(LoadAiff, AiffFile(options)).sampleRate, read);
    }
}

TEST(PlainFiles, AreRefusedWhereTheyCannotBeRead)
{
    const FileBytes wave = WaveFile({});
    const auto number = [](std::uint64_t value, int byteCount)
    {
        return FileBytes().Little(value, byteCount);
    };
    const auto word = [](const char* text)
    {
        return FileBytes().Text(text);
    };
    ExpectRefusals({
        { LoadWave, wave.Cut(11), "No WAVe header found." },
        { LoadWave, wave.Patched(0, word("RIFX")), "The stream is not a RIFF standard file." },
        { LoadWave, wave.Patched(0, word("RF64")), "Wave files of more than 4 GB (RF64) are not supported." },
        { LoadWave, wave.Patched(0, word("BW64")), "Wave files of more than 4 GB (RF64) are not supported." },
        { LoadWave, wave.Patched(8, word("AVI ")), "Note a WAVe file." },
        { LoadWave, wave.Cut(14), "No chunk identifier found." },
        { LoadWave, wave.Cut(30), "No format chunk found." },
        { LoadWave, wave.Patched(20, number(2, 2)), "Invalid WAVe file format tag contents." },
        { LoadWave, wave.Patched(20, number(0xFFFE, 2)), "Invalid WAVe file format tag contents." },
        { LoadWave, wave.Cut(42), "No data chunk length found." },
        { LoadWave, wave.Patched(40, number(0, 4)), "Invalid data chunk length." },
        { LoadWave, wave.Patched(40, number(0xFFFFFFFF, 4)),
          "Invalid data chunk length. Files with more than 2 GB of audio are not supported." },
        { LoadWave, wave.Patched(40, number(149, 4)), "Could not load WAV samples." },
        { LoadWave, wave.Patched(34, number(12, 2)), "Invalid source bitrate." },
        { LoadWave, wave.Patched(20, number(3, 2)), "Invalid source bitrate." },
        { LoadWave, wave.Patched(22, number(0, 2)), "The file has 0 channels, but 1 to 8 are supported." },
        { LoadWave, wave.Patched(22, number(9, 2)), "The file has 9 channels, but 1 to 8 are supported." },
        { LoadWave, wave.Patched(24, number(999, 4)),
          "The file has a sample rate of 999 Hz, which is not supported." },
        { LoadWave, wave.Patched(24, number(0x80000000, 4)),
          "The file has a sample rate of -2147483648 Hz, which is not supported." },
        { LoadWave, wave.Patched(12, word("junk")), "No format chunk found." },
    });
    EXPECT_EQ(Load(LoadWave, wave.Patched(24, number(1000, 4))).sampleRate, 1000.0);
    EXPECT_EQ(Load(LoadWave, wave.Patched(24, number(10000000, 4))).sampleRate, 1e7);

    const FileBytes aiff = AiffFile({});
    AudioOptions compressed;
    compressed.compression = "ima4";
    const FileBytes noCommon = FileBytes().Text("FORM").Big(0, 4).Text("AIFFSSND").Big(12, 4).Big(0, 12);
    ExpectRefusals({
        { LoadAiff, aiff.Patched(0, word("RIFF")), "The stream is not an AIFF standard file." },
        { LoadAiff, aiff.Patched(8, word("AIFX")), "The stream is not an AIFF standard file." },
        { LoadAiff, AiffFile(compressed), "The compression of the AIFF-C file is not supported." },
        { LoadAiff, aiff.Patched(38, word("XXXX")), "Could not read required data from stream." },
        { LoadAiff, noCommon, "The AIFF file has samples before their description." },
        { LoadAiff, aiff.Cut(aiff.size() - 1), "Could not load AIFF samples." },
        { LoadAiff, aiff.Patched(42, FileBytes().Big(0xFFFFFFFF, 4)),
          "Files with more than 2 GB of audio are not supported." },
        { LoadAiff, aiff.Patched(20, FileBytes().Big(9, 2)),
          "The file has 9 channels, but 1 to 8 are supported." },
        { LoadAiff, aiff.Patched(26, FileBytes().Big(20, 2)), "Invalid source bitrate." },
        { LoadAiff, aiff.Patched(28, FileBytes().Big(0x7FFF, 2)),
          "The file has a sample rate of inf Hz, which is not supported." },
        { LoadAiff, aiff.Patched(28, FileBytes().Big(0, 10)),
          "The file has a sample rate of 0 Hz, which is not supported." },
    });

    const FileBytes qaf = QafFile({});
    ExpectRefusals(
        { { LoadQaf, qaf.Cut(59), "No QAF header found." },
          { LoadQaf, qaf.Patched(3, word("2")), "Invalid QAF header." },
          { LoadQaf, qaf.Patched(36, number(0, 4)), "Invalid QAF header." },
          { LoadQaf, qaf.Patched(40, number(0, 4)), "Invalid QAF header." },
          { LoadQaf, qaf.Patched(44, number(0, 4)), "Invalid QAF header." },
          { LoadQaf, qaf.Patched(44, number(0x7FFFFFFF, 4)), "Could not load samples." },
          { LoadQaf, qaf.Patched(36, number(1, 4)),
            "The file has a sample rate of 1 Hz, which is not supported." },
          { LoadQaf, qaf.Patched(40, number(9, 4)), "The file has 9 channels, but 1 to 8 are supported." },
          { LoadQaf, qaf.Cut(qaf.size() - 1), "Could not load samples." } });
}
}   // namespace
