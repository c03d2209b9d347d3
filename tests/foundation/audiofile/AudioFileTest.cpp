// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/ErrorOf.h"
#include "tests/foundation/audiofile/TestFiles.h"

namespace
{
struct Format
{
    Reader reader;
    FileBytes (*file)(const AudioOptions&);
    const char* name;
    int bits;
};

const Format formats[] = {
    { LoadWave, WaveFile, "A.WAV", 16 },
    { LoadAiff, AiffFile, "a.AIFF", 16 },
    { LoadAiff, AiffFile, "a.aifc", 16 },
    { LoadQaf, [](const AudioOptions& options) { return QafFile(options); }, "a.QaF", 32 },
    { LoadFlac, [](const AudioOptions& options) { return FlacFile(options); }, "a.Flac", 16 }
};

TEST(AudioFile, IsNeverReadInPart)
{
    for (const Format& format : formats)
    {
        const FileBytes file = format.file({});
        for (std::size_t length = 0; length < file.size(); ++length)
            EXPECT_NE(Refusal([&] { Load(format.reader, file.Cut(length)); }), "")
                << format.name << " cut to " << length << " of " << file.size();
    }
}

TEST(AudioFile, FindsItsReaderByExtensionOrByTrial)
{
    for (const Format& format : formats)
        for (const char* name : { format.name, "take.xyz", "folder.wav/none" })
        {
            SCOPED_TRACE(std::string(format.name) + " " + name);
            AudioOptions options;
            options.bits = format.bits;
            AudioSampleBuffer buffer;
            LoadAudioFile(buffer, format.file(options).Save(name));
            ExpectSignal(buffer, options);
        }
    const MString noise = FileBytes().Text(std::string(3000, 'x')).Save("noise.bin");
    AudioOptions empty;
    empty.frames = 0;
    AudioSampleBuffer buffer;
    const auto refusal = [&](const MString& path)
    {
        return Refusal([&] { LoadAudioFile(buffer, path); });
    };
    EXPECT_EQ(refusal(WaveFile({}).Save("wrong.aif")), "The stream is not an AIFF standard file.");
    EXPECT_EQ(refusal(AiffFile({}).Save("wrong.wav")), "The stream is not a RIFF standard file.");
    EXPECT_EQ(refusal(noise), "Unknown audio format " + noise.ToUTF8() + ".");
    EXPECT_EQ(refusal(AiffFile(empty).Save("empty.aif")), "Empty audio file.");
    EXPECT_THROW(LoadAudioFile(buffer, MString("/nowhere/at/all.wav")), MException);
}

TEST(AudioFile, ReportsProgressAndStopsWhenTold)
{
    AudioOptions options;
    options.frames = 200000;
    for (const Format& format : formats)
    {
        SCOPED_TRACE(format.name);
        options.bits = format.bits;
        const FileBytes file = format.file(options);
        std::vector<double> fractions;
        const auto collect = [&](double fraction)
        {
            fractions.push_back(fraction);
            return true;
        };
        ExpectSignal(Load(format.reader, file, { collect }), options);
        ASSERT_GT(fractions.size(), 2u);
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
        EXPECT_EQ(fractions.front(), 0.0);
        EXPECT_GT(fractions.back(), 0.6);
        EXPECT_LT(fractions.back(), 1.0);

        // A trial that is cancelled isn't a failure of that format.
        const MString path = file.Save("cancel.xyz");
        for (const bool isTrial : { false, true })
        {
            int calls = 0;
            const auto stop = [&](double)
            {
                return ++calls < 2;
            };
            AudioSampleBuffer buffer;
            EXPECT_EQ(ErrorOf(
                          [&]
                          {
                              if (isTrial)
                                  LoadAudioFile(buffer, path, { stop });
                              else
                                  Load(format.reader, file, { stop });
                          }),
                      "Cancelled.");
            EXPECT_EQ(calls, 2);
        }
    }
}
}   // namespace
