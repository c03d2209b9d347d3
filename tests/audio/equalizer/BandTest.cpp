// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "audio/equalizer/MEqualizerBase.h"
#include "audio/equalizer/MValueQ.h"
#include "audio/filters/FilterTypes.h"
#include "foundation/streams/MMemoryStream.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XML.h"

namespace
{
std::string AsXML(const MAttribute& tree)
{
    MMemoryStream stream;
    WriteXML(tree, stream, true, "utf-8");
    std::string text(static_cast<std::size_t>(stream.GetSize()), '\0');
    stream.Seek(0, MStream::Begin);
    stream.Read(text.data(), static_cast<std::int32_t>(text.size()));
    return text;
}
}   // namespace

TEST(Bands, WidthStandsForQ)
{
    EXPECT_NEAR(QFromWidth(0), 10, 1e-12);
    EXPECT_NEAR(QFromWidth(1), 0.05, 1e-12);
    EXPECT_NEAR(QFromWidth(BandPoint::DefaultWidth), 0.7071067811865, 1e-10);
    for (const double q : { 0.05, 0.1, 0.7, 1.0, 4.0, 10.0 })
        EXPECT_NEAR(QFromWidth(WidthFromQ(q)), q, 1e-9) << q;
}

TEST(Bands, AFreshSetIsFlatWithOneBandOn)
{
    MEqualizerBase equalizer;
    BandPoint changed;
    changed.y = 4.0;
    changed.width = 0.1;
    changed.harmonicsDepth = 0.5;
    changed.harmonicsMaxCount = 2;
    changed.harmonicsSemitones = 5.0;
    changed.harmonicsEnabled[7] = false;
    changed.harmonicsLinear = true;
    changed.order = 4;
    changed.left = false;
    changed.right = false;
    equalizer.Band(3) = changed;
    equalizer.SetDefaults(false);
    EXPECT_DOUBLE_EQ(equalizer.Band(3).y, 4) << "a complete set stays";
    equalizer.SetDefaults(true);
    for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
    {
        const BandPoint& band = equalizer.Band(index);
        EXPECT_EQ(band.enabled, index == 5);
        EXPECT_EQ(band.type, index == 0   ? MAudioFilters::LowShelf
                             : index == 9 ? MAudioFilters::HighShelf
                                          : MAudioFilters::Peak);
        EXPECT_NEAR(band.x, BandMinimumX + (BandMaximumX - BandMinimumX) * (index + 1) / 11, 1e-12);
        EXPECT_NEAR(band.Q(), 0.7071067811865, 1e-10);
    }
    // What isn't written is at its default.
    MAttribute node("point");
    equalizer.Band(3).Save(node);
    EXPECT_EQ(node.AttributeCount(), 5) << AsXML(node);
}

TEST(Bands, AreStoredInTheirFormAndLeaveDefaultsOut)
{
    BandPoint band;
    band.x = 3.0;
    band.y = -1.5;
    band.enabled = true;
    MAttribute fresh("point");
    band.Save(fresh);
    EXPECT_EQ(AsXML(fresh),
              "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
              "<point q=\"0.707107\" type=\"Peak\" x=\"3\" y=\"-1.5\"><Harmonics/>\n</point>\n");
    BandPoint other;
    other.type = MAudioFilters::HighPass6;
    other.order = 2;
    other.left = false;
    other.right = false;
    other.harmonicsDepth = 0.5;
    other.harmonicsMaxCount = 3;
    other.harmonicsSemitones = 7.0;
    other.harmonicsLinear = true;
    other.harmonicsEnabled[15] = false;
    MAttribute node("point");
    other.Save(node);
    EXPECT_EQ(AsXML(node), "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                           "<point enabled=\"0\" Harmonics.Depth=\"0.5\" Harmonics.Linear=\"1\" "
                           "Harmonics.MaxCount=\"3\" Harmonics.Semitones=\"7\" L=\"0\" Order=\"2\" "
                           "q=\"0.707107\" R=\"0\" type=\"HighPass6\" x=\"3\" y=\"0\">"
                           "<Harmonics Item15=\"0\"/>\n</point>\n");
    BandPoint read;
    read.Load(node);
    MAttribute again("point");
    read.Save(again);
    EXPECT_EQ(AsXML(again), AsXML(node)) << "a band that was read is written as it stood";
    band.Save(again);
    EXPECT_EQ(AsXML(again), AsXML(fresh)) << "over what another has left";
    read.Load(fresh);
    read.Save(again);
    EXPECT_EQ(AsXML(again), AsXML(fresh)) << "what is absent is at its default";
    MAttribute bare("point");
    bare.SetAttribute("q", "3");
    read.type = MAudioFilters::Notch;
    read.Load(bare);
    EXPECT_NEAR(read.Q(), 3, 1e-9);
    EXPECT_TRUE(read.x == 3.0 && read.y == -1.5 && read.type == MAudioFilters::Notch) << "but these stay";

    other.x = other.y = std::sqrt(2.0);
    other.width = 0.123456789;
    other.RoundToStored();
    other.Save(node);
    read.Load(node);
    EXPECT_TRUE(read.x == other.x && read.y == other.y && read.width == other.width);
    EXPECT_NEAR(read.x, std::sqrt(2.0), 1e-11);
    EXPECT_NEAR(read.width, 0.123456789, 1e-6);
}

TEST(Bands, NonsenseInAStoreIsBroughtToSoundValues)
{
    // What is no number counts as absent.
    const auto expected = [](const MString& text, double low, double high, double absent)
    {
        int digits = 0;
        const double value = text.ToDouble(&digits);
        return digits > 0 && std::isfinite(value) ? std::clamp(value, low, high) : absent;
    };
    MAttribute tree("MEqualizerSettings");
    const char* numbers[] = { "nan", "inf", "-1e308", "abc", "0.5", "3", "1e99" };
    for (int index = 0; index < 12; ++index)
    {
        tree.AddSubItem("other");
        MAttribute& point = tree.AddSubItem("point");
        for (const char* key : { "x", "y", "q", "Harmonics.Depth", "Harmonics.Semitones" })
            point.SetAttribute(key, numbers[index % 7]);
        point.SetAttribute("type", index % 2 == 0 ? "Nonsense" : "Notch");
        point.SetAttribute("Order", "99999999999999999999");
    }
    MEqualizerBase equalizer;
    equalizer.Paste(tree);
    for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
    {
        const BandPoint& band = equalizer.Band(index);
        SCOPED_TRACE(numbers[index % 7]);
        const MString number = MString::Literal(numbers[index % 7]);
        EXPECT_EQ(band.x, expected(number, BandMinimumX, BandMaximumX, MEqualizerBase().Band(index).x));
        EXPECT_EQ(band.y, expected(number, -24, 24, MEqualizerBase().Band(index).y));
        const double q = number.ToDouble();
        EXPECT_NEAR(band.Q(), std::isfinite(q) && q < 10 ? std::max(q, 0.05) : band.Q(), 1e-9);
        EXPECT_EQ(band.harmonicsDepth, expected(number, -1, 1, 0));
        EXPECT_EQ(band.harmonicsSemitones, expected(number, 1, 48, 12));
        EXPECT_EQ(band.type, index % 2 == 0 ? MAudioFilters::Peak : MAudioFilters::Notch);
    }
    MAttribute copied;
    equalizer.Copy(copied);
    MEqualizerBase pasted;
    pasted.Paste(copied);
    MAttribute again;
    pasted.Copy(again);
    EXPECT_EQ(AsXML(again), AsXML(copied));
}

TEST(MValueQ, EditsABandsWidthByItsQ)
{
    BandPoint band;
    MValueQ value(&band.width);
    EXPECT_EQ(value.ToText().ToUTF8(), "0.71");
    for (const auto& [text, q] : std::initializer_list<std::pair<const char*, double>>{
             { "2", 2.0 }, { "0.05", 0.05 }, { "10", 10.0 }, { "99", 10.0 }, { "0", 0.05 }, { "-3", 0.05 } })
    {
        EXPECT_TRUE(value.SetDisplayText(text)) << text;
        EXPECT_NEAR(band.Q(), q, 1e-9) << text;
    }
    EXPECT_FALSE(value.SetDisplayText("wide"));
    value.SetNormalized(0.25);   // the place on the scale is the width
    EXPECT_EQ(band.width, 0.25);
    MValueQ percent(&band.width, MValueQ::Display::Percent);
    EXPECT_EQ(percent.ToText().ToUTF8(), "25.0%");
    EXPECT_TRUE(percent.SetDisplayText("50%"));
    EXPECT_EQ(band.width, 0.5);
    value.SetDefault();
    EXPECT_NEAR(band.Q(), 0.7071067811865, 1e-9);
}
