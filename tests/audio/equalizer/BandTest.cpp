// SPDX-License-Identifier: GPL-3.0-or-later
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
    MAttribute node("point");
    band.Save(node);
    EXPECT_EQ(AsXML(node), "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                           "<point q=\"0.707107\" type=\"Peak\" x=\"3\" y=\"-1.5\"><Harmonics/>\n</point>\n");
    band.enabled = false;
    band.type = MAudioFilters::HighPass6;
    band.order = 2;
    band.left = false;
    band.harmonicsDepth = 0.5;
    band.harmonicsMaxCount = 3;
    band.harmonicsSemitones = 7.0;
    band.harmonicsLinear = true;
    band.harmonicsEnabled[15] = false;
    band.Save(node);
    for (const auto& [key, value] : { std::pair{ "enabled", "0" },
                                      { "type", "HighPass6" },
                                      { "Order", "2" },
                                      { "L", "0" },
                                      { "Harmonics.Depth", "0.5" },
                                      { "Harmonics.MaxCount", "3" },
                                      { "Harmonics.Semitones", "7" },
                                      { "Harmonics.Linear", "1" } })
        EXPECT_EQ(node.GetAttribute(key).ToUTF8(), value) << key;
    EXPECT_EQ(node.RequireSubItem("Harmonics").GetAttribute("Item15").ToUTF8(), "0");

    BandPoint read;
    read.Load(node);
    EXPECT_FALSE(read.enabled);
    EXPECT_EQ(read.type, MAudioFilters::HighPass6);
    EXPECT_FALSE(read.harmonicsEnabled[15]);
    EXPECT_TRUE(read.harmonicsEnabled[14]);
    EXPECT_NEAR(read.Q(), 0.7071067, 1e-6);
    MAttribute again("point");
    read.Save(again);
    EXPECT_EQ(AsXML(again), AsXML(node)) << "a band that was read is written as it stood";
}

TEST(Bands, NonsenseInAStoreIsBroughtToSoundValues)
{
    MAttribute tree("MEqualizerSettings");
    const char* numbers[] = { "nan", "inf", "-1e308", "abc", "" };
    for (int index = 0; index < 12; ++index)
    {
        MAttribute& point = tree.AddSubItem("point");
        const char* number = numbers[index % 5];
        for (const char* key : { "x", "y", "q", "Harmonics.Depth", "Harmonics.Semitones" })
            point.SetAttribute(key, number);
        point.SetAttribute("type", "Nonsense");
        point.SetAttribute("Order", "99999999999999999999");
    }
    MEqualizerBase equalizer;
    equalizer.LoadPoints(tree);
    for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
    {
        const BandPoint& band = equalizer.Band(index);
        EXPECT_GE(band.x, BandMinimumX);
        EXPECT_LE(band.x, BandMaximumX);
        EXPECT_LE(std::fabs(band.y), 24);
        EXPECT_TRUE(band.width >= 0 && band.width <= 1);
        EXPECT_EQ(band.type, 0);
        EXPECT_TRUE(std::isfinite(band.harmonicsDepth) && std::isfinite(band.harmonicsSemitones));
    }
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
