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

const char* const ColorsNode = "<Colors Color0=\"00000000\" Color1=\"00000080\" Color2=\"0000FFFF\" "
                               "Color3=\"00FF00FF\" Color4=\"FF0000FF\"/>";

TEST(AnalyzerSettings, FreshOnesWriteJustTheseKeys)
{
    AnalyzerSettings settings;
    EXPECT_EQ(Written(settings),
              "<Analyzer AnalyzerChannelMode=\"Mix\" Enabled=\"1\" EnableWhenHidden=\"1\" Pre=\"0\" "
              "UseSideChain=\"0\" "
              "WindowType=\"Hann\">"
              "<Prefiltering/>"
              "<Processor0 Color=\"0000ACFF\" Enabled=\"1\" Fill=\"1\" OverrideColor=\"0\" Peaks=\"1\" "
              "ShowColorValues=\"1\" ShowColorValuesFill=\"0\"/>"
              "<Processor1 Color=\"00AC00FF\" Enabled=\"0\" Fill=\"0\" OverrideColor=\"1\" Peaks=\"0\" "
              "ShowColorValues=\"0\" ShowColorValuesFill=\"0\"/>"
              "<Processor2 Color=\"AC0000FF\" Enabled=\"0\" Fill=\"0\" OverrideColor=\"1\" Peaks=\"0\" "
              "ShowColorValues=\"0\" ShowColorValuesFill=\"0\"/>"
              "<Processor3 Color=\"AC00ACFF\" Enabled=\"0\" Fill=\"0\" OverrideColor=\"1\" Peaks=\"0\" "
              "ShowColorValues=\"0\" ShowColorValuesFill=\"0\"/>"
              "<Sonogram Alpha=\"1\" Enabled=\"0\"/>" +
                  std::string(ColorsNode) + "</Analyzer>");
}

AnalyzerSettings Unusual()
{
    AnalyzerSettings settings;
    settings.enabled = false;
    settings.useSideChain = true;
    settings.pre = true;
    settings.slope = 4.5;
    settings.gain = -1.0 / 3.0;
    settings.deharmonize = 0.25;
    settings.decay = 0.5;
    settings.channelMode = ChannelModeLeftAndRight;
    settings.normalize = false;
    settings.freeze = true;
    settings.superResolution = true;
    settings.viewType = 2;
    settings.alpha = 0.75;
    settings.averageLength = 0.35;
    settings.smoothness = 0.125;
    settings.timeResolution = 0.0625;
    settings.peakDetection = 0.1;
    settings.peakDetectionThreshold = -55.5;
    settings.maximizedSmoothing = true;
    settings.enableWhenHidden = false;
    settings.resolutionDb = -90;
    settings.fftSizePow = 14;
    settings.overlapPow = 3;
    settings.windowType = 8;
    MEnvelopePoint point;
    point.x = 3.0;
    point.y = -12.0;
    settings.prefilter.Edit([&](MArray<MEnvelopePoint>& points) { points.Add(point); });
    settings.prefilterDepth = 0.5;
    settings.processors[1].enabled = true;
    settings.processors[2].color = 0x12345678;
    settings.comparisonEnable = true;
    settings.comparison[0] = 1.0f;
    settings.comparison[1023] = -0.5f;
    settings.comparisonCurve.fill = true;
    settings.sonogramEnabled = true;
    settings.sonogramAlpha = 0.5;
    settings.colors[4] = 0x80FFFFFE;
    return settings;
}

TEST(AnalyzerSettings, UnusualOnesWriteTheirKeys)
{
    AnalyzerSettings settings = Unusual();
    const std::string text = Written(settings);
    const std::string comparison = "0000803F" + std::string(8 * 1022, '0') + "000000BF";
    for (const std::string& part :
         { std::string(
               "<Analyzer Alpha=\"0.75\" AnalyzerChannelMode=\"Left and right\" AverageLength=\"0.35\" "
               "ComparisonEnable=\"1\" Decay=\"0.5\" Deharmonize=\"0.25\" Enabled=\"0\" "
               "EnableWhenHidden=\"0\" "
               "FFTSizePow=\"14\" Freeze=\"1\" Gain=\"-0.333333333333\" MaximizedSmoothing=\"1\" "
               "Normalize=\"0\" OverlapPow=\"3\" PeakDetection=\"0.1\" PeakDetectionThreshold=\"-55.5\" "
               "Pre=\"1\" ResolutiondB=\"-90\" Slope=\"4.5\" Smoothness=\"0.125\" SuperResolution=\"1\" "
               "TimeResolution=\"0.0625\" UseSideChain=\"1\" ViewType=\"2\" WindowType=\"Kaiser\">"),
           std::string("<Prefiltering Depth=\"0.5\"><Point Flags=\"12\" x=\"3\" y=\"-12\"/></Prefiltering>"),
           std::string("<Processor1 Color=\"00AC00FF\" Enabled=\"1\""),
           std::string("<Processor2 Color=\"34567812\""),
           "<Comparison Color=\"AC0000FF\" Fill=\"1\" OverrideColor=\"1\" Peaks=\"0\" ShowColorValues=\"0\" "
           "ShowColorValuesFill=\"0\">" +
               comparison + "</Comparison><Sonogram Enabled=\"1\"/><Colors",
           std::string("Color4=\"FFFFFE80\"") })
        EXPECT_THAT(text, testing::HasSubstr(part));
}

TEST(AnalyzerSettings, RoundTripInBothDirections)
{
    AnalyzerSettings source = Unusual();
    const std::string text = Written(source);
    AnalyzerSettings copy;
    Read(copy, text);
    EXPECT_EQ(Written(copy), text);
    EXPECT_EQ(copy.comparison, source.comparison);
    EXPECT_NEAR(copy.gain, -1.0 / 3.0, 1e-12);
    AnalyzerSettings fresh;
    const std::string freshText = Written(fresh);
    Read(copy, freshText);
    // Without its own flag the comparison isn't in a store, so it stays.
    EXPECT_EQ(Written(copy), freshText);
}

TEST(AnalyzerSettings, MissingKeysMeanTheirDefaultsOrLeaveTheField)
{
    AnalyzerSettings settings = Unusual();
    Read(settings, "<Analyzer/>");
    const AnalyzerSettings fresh;
    EXPECT_EQ(settings.slope, fresh.slope);
    EXPECT_EQ(settings.averageLength, fresh.averageLength);
    EXPECT_EQ(settings.fftSizePow, fresh.fftSizePow);
    EXPECT_EQ(settings.channelMode, fresh.channelMode);
    EXPECT_EQ(settings.windowType, fresh.windowType);
    EXPECT_EQ(settings.normalize, fresh.normalize);
    EXPECT_EQ(settings.prefilterDepth, 1.0);
    EXPECT_EQ(settings.prefilter.Points().Count(), 0);
    EXPECT_FALSE(settings.comparisonEnable);
    EXPECT_EQ(settings.sonogramAlpha, 0.5);
    // These keep what they were.
    EXPECT_FALSE(settings.enabled);
    EXPECT_TRUE(settings.useSideChain);
    EXPECT_TRUE(settings.pre);
    EXPECT_FALSE(settings.enableWhenHidden);
    EXPECT_TRUE(settings.processors[1].enabled);
    EXPECT_EQ(settings.processors[2].color, 0x12345678u);
    EXPECT_TRUE(settings.sonogramEnabled);
    EXPECT_EQ(settings.colors[4], 0x80FFFFFEu);
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
    Read(settings, "<Analyzer AnalyzerChannelMode=\"?\" WindowType=\"?\"/>");
    EXPECT_EQ(settings.channelMode, ChannelModeMix);
    EXPECT_EQ(settings.windowType, 0);
    Read(settings, "<Analyzer AnalyzerChannelMode=\"\" WindowType=\"\"/>");
    EXPECT_EQ(settings.channelMode, ChannelModeMix);
    EXPECT_EQ(settings.windowType, 0);
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
