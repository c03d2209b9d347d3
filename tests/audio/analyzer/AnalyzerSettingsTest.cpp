// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/AnalyzerSettings.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XML.h"

namespace
{
// The compact XML: attributes sorted, children in the order of their making.
std::string Written(AnalyzerSettings& settings)
{
    MAttribute item("Analyzer");
    settings.Store({ 1, &item });
    MMemoryStream stream;
    WriteXML(item, stream, true, "utf-8");
    stream.Seek(0, MStream::Begin);
    std::string text(static_cast<std::size_t>(stream.GetSize()), ' ');
    stream.Read(text.data(), static_cast<std::int32_t>(text.size()));
    text.erase(0, text.find('\n') + 1);
    std::erase(text, '\n');
    return text;
}

void Read(AnalyzerSettings& settings, const std::string& xml)
{
    MAttribute item;
    MMemoryStream stream = MMemoryStream::Borrow(xml.data(), static_cast<std::int32_t>(xml.size()));
    ReadXML(item, stream);
    settings.Store({ 0, &item });
}

// Every key with something else than what a fresh object has.
std::string Kept()
{
    std::string text =
        "<Analyzer Alpha=\"0.75\" AnalyzerChannelMode=\"Left and right\" AverageLength=\"0.35\" "
        "ComparisonEnable=\"1\" Decay=\"0.5\" Deharmonize=\"0.25\" Enabled=\"0\" EnableWhenHidden=\"0\" "
        "FFTSizePow=\"14\" Freeze=\"1\" Gain=\"-0.333333333333\" MaximizedSmoothing=\"1\" Normalize=\"0\" "
        "OverlapPow=\"3\" PeakDetection=\"0.1\" PeakDetectionThreshold=\"-55.5\" Pre=\"1\" "
        "ResolutiondB=\"-90\" "
        "Slope=\"4.5\" Smoothness=\"0.125\" SuperResolution=\"1\" TimeResolution=\"0.0625\" "
        "UseSideChain=\"1\" "
        "ViewType=\"2\" WindowType=\"Kaiser\"><Prefiltering Depth=\"0.5\"><Point Flags=\"12\" x=\"3\" "
        "y=\"-12\"/>"
        "</Prefiltering>";
    for (const char* p : { "0", "1", "2", "3" })
        text = text + "<Processor" + p + " Color=\"" + p + "23456FF\" Enabled=\"" + (*p == '0' ? "0" : "1") +
               "\" Fill=\"" + (*p == '0' ? "0" : "1") + "\" OverrideColor=\"" + (*p == '0' ? "1" : "0") +
               "\" Peaks=\"" + (*p == '0' ? "0" : "1") + "\" ShowColorValues=\"" + (*p == '0' ? "0" : "1") +
               "\" ShowColorValuesFill=\"1\"/>";
    return text +
           "<Comparison Color=\"AC0001FF\" Fill=\"1\" OverrideColor=\"0\" Peaks=\"1\" ShowColorValues=\"1\" "
           "ShowColorValuesFill=\"1\">0000803F" +
           std::string(8 * 1022, '0') +
           "000000BF</Comparison><Sonogram Enabled=\"1\"/><Colors Color0=\"00000001\" Color1=\"00000180\" "
           "Color2=\"0001FFFF\" Color3=\"01FF00FF\" Color4=\"FFFFFE80\"/></Analyzer>";
}

TEST(AnalyzerSettings, WriteWhatTheyRead)
{
    AnalyzerSettings settings;
    const std::string fresh = Written(settings);
    Read(settings, Kept());
    EXPECT_EQ(Written(settings), Kept());
    EXPECT_EQ(settings.channelMode, ChannelModeLeftAndRight);
    EXPECT_EQ(settings.windowType, 8);
    EXPECT_EQ(settings.comparison[0], 1.0f);
    EXPECT_EQ(settings.comparison[1023], -0.5f);
    EXPECT_EQ(settings.colors[4], 0x80FFFFFEu);

    // Fresh ones write no number that is as it always was, and reading them gives them back.
    EXPECT_THAT(fresh, testing::StartsWith(
                           "<Analyzer AnalyzerChannelMode=\"Mix\" Enabled=\"1\" EnableWhenHidden=\"1\" "
                           "Pre=\"0\" UseSideChain=\"0\" WindowType=\"Hann\"><Prefiltering/>"));
    Read(settings, fresh);
    EXPECT_EQ(Written(settings), fresh);
}

TEST(AnalyzerSettings, MissingKeysMeanTheirDefaultsOrLeaveTheField)
{
    AnalyzerSettings settings;
    Read(settings, Kept());
    Read(settings, "<Analyzer/>");
    // What is written in every case stays. The older default of the window is none, of the sonogram's opacity
    // a half.
    const std::string kept = Kept();
    EXPECT_EQ(Written(settings),
              "<Analyzer AnalyzerChannelMode=\"Mix\" Enabled=\"0\" EnableWhenHidden=\"0\" Pre=\"1\" "
              "UseSideChain=\"1\" WindowType=\"Hann\"><Prefiltering/>" +
                  kept.substr(kept.find("<Processor0"), kept.find("<Comparison") - kept.find("<Processor0")) +
                  kept.substr(kept.find("<Sonogram")));
    const AnalyzerSettings fresh;
    EXPECT_EQ(settings.slope, fresh.slope);
    EXPECT_EQ(settings.averageLength, fresh.averageLength);
    EXPECT_EQ(settings.fftSizePow, fresh.fftSizePow);
    EXPECT_EQ(settings.normalize, fresh.normalize);
    EXPECT_EQ(settings.sonogramAlpha, 0.5);
    EXPECT_EQ(settings.comparison[0], 1.0f) << "isn't in a store without its flag";
}

TEST(AnalyzerSettings, ReadsOlderStoresAndOddValues)
{
    struct Row
    {
        const char* attributes;
        std::int32_t fftSizePow;
        std::int32_t overlapPow;
        bool comparison;
    };
    const Row rows[] = {
        { "FFTSize=\"4096\" Overlap=\"8\"", 12, 3, false },
        { "FFTSize=\"8192\" FFTSizePow=\"10\" OverlapPow=\"5\"", 13, 5, false },
        { "FFTSize=\"1\" Overlap=\"0\"", 0, 0, false },
        { "FFTSize=\"rubbish\" Overlap=\"3\"", 0, 1, false },
        { "ShowComparison=\"1\"", 12, 2, true },
        { "ShowComparison=\"0\" ComparisonEnable=\"1\"", 12, 2, false },
        { "FFTSizePow=\"x\" OverlapPow=\"\"", 12, 2, false },
        { "FFTSizePow=\"999\" OverlapPow=\"-7\"", 999, -7, false },
    };
    for (const Row& row : rows)
    {
        AnalyzerSettings settings;
        Read(settings, std::string("<Analyzer ") + row.attributes + "/>");
        EXPECT_EQ(settings.fftSizePow, row.fftSizePow) << row.attributes;
        EXPECT_EQ(settings.overlapPow, row.overlapPow) << row.attributes;
        EXPECT_EQ(settings.comparisonEnable, row.comparison) << row.attributes;
        const std::string text = Written(settings);
        for (const char* older : { "FFTSize=", "Overlap=", "ShowComparison" })
            EXPECT_THAT(text, testing::Not(testing::HasSubstr(older)));
    }
    AnalyzerSettings settings;
    for (const char* odd : { "?", "" })
    {
        Read(settings,
             std::string("<Analyzer AnalyzerChannelMode=\"") + odd + "\" WindowType=\"" + odd + "\"/>");
        EXPECT_EQ(settings.channelMode, ChannelModeMix);
        EXPECT_EQ(settings.windowType, 0);
    }
    Read(settings, "<Analyzer AnalyzerChannelMode=\"RIGHT\" WindowType=\"Blackman\"/>");
    EXPECT_EQ(settings.channelMode, ChannelModeRight);
    EXPECT_EQ(settings.windowType, 3);
}

TEST(AnalyzerSettings, ComparisonOfAnotherLengthReadsAsZeros)
{
    for (const std::string& digits : { std::string(), std::string("0000803F"), std::string(8194, 'A') })
    {
        AnalyzerSettings settings;
        settings.comparison.fill(1.0f);
        Read(settings, "<Analyzer ComparisonEnable=\"1\"><Comparison>" + digits + "</Comparison></Analyzer>");
        EXPECT_THAT(settings.comparison, testing::Each(0.0f));
    }
    AnalyzerSettings settings;
    EXPECT_THROW(Read(settings, "<Analyzer ComparisonEnable=\"1\"><Comparison>" + std::string(8192, 'X') +
                                    "</Comparison></Analyzer>"),
                 MException);
}
}   // namespace
