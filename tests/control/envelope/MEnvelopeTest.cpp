// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MEnvelope.h"

#include <cmath>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

namespace
{
MEnvelopePoint PointAt(double x, double y, std::uint8_t flags = 12)
{
    return { .x = x, .y = y, .flags = flags };
}

void SetPoints(MEnvelope& envelope, std::initializer_list<MEnvelopePoint> points)
{
    envelope.Edit(
        [&points](MArray<MEnvelopePoint>& edited)
        {
            edited.Clear();
            for (const MEnvelopePoint& point : points)
                edited.Add(point);
        });
}

void Store(MEnvelope& envelope, MAttribute& item, int saving, MLoadMode mode = MLoadMode::Plain)
{
    MStoreParams params;
    params.saving = saving;
    params.item = &item;
    params.mode = mode;
    envelope.Store(params);
}

std::string KeysOf(const MAttribute& item)
{
    std::string keys;
    for (int index = 0; index < item.AttributeCount(); ++index)
        keys += item.AttributeAt(index).key.ToUTF8() + "=" + item.AttributeAt(index).value.ToUTF8() + " ";
    return keys;
}

std::string XsOf(const MEnvelope& envelope)
{
    std::string xs;
    for (const MEnvelopePoint& point : envelope.Points())
        xs += MString::FromDouble(point.x, 11).ToUTF8() + " ";
    return xs;
}

TEST(MEnvelope, NormalizesPointsIntoTheRectangleAndOrder)
{
    const struct
    {
        const char* name;
        double xs[3];
        std::uint8_t flags;   // of the middle one
        const char* expected;
    } cases[] = {
        { "in order", { 0.0, 0.5, 1.0 }, 12, "0 0.5 1 " },
        { "outside", { -5.0, 0.5, 7.0 }, 12, "0 0.5 1 " },
        { "left of the one before", { 0.4, 0.2, 1.0 }, 12, "0.4 0.4000000001 1 " },
        { "right of the one after", { 0.0, 0.9, 0.5 }, 12, "0 0.4999999999 0.5 " },
        { "on the one before", { 0.4, 0.4, 1.0 }, 12, "0.4 0.4000000001 1 " },
        { "on the one after", { 0.0, 0.5, 0.5 }, 12, "0 0.4999999999 0.5 " },
        { "no room beside the limit, and sorted in the end", { 1.0, 1.0, 1.0 }, 12, "0.9999999999 1 1 " },
        { "fixed stays and is sorted", { 0.4, 0.2, 1.0 }, 13, "0.2 0.4 1 " },
        { "locked stays and is sorted", { 0.4, 0.2, 1.0 }, 0x4C, "0.2 0.4 1 " },
    };
    for (const auto& [name, xs, flags, expected] : cases)
    {
        MEnvelope envelope;
        SetPoints(envelope, { PointAt(xs[0], 9.0, 13), PointAt(xs[1], 9.0, flags), PointAt(xs[2], 9.0, 13) });
        envelope.Normalize();
        EXPECT_EQ(XsOf(envelope), expected) << name;
        EXPECT_EQ(envelope.Points()[1].y, 1.0);
    }
    MEnvelope crowded;
    // The middle one moves left of the next, out of the rectangle.
    SetPoints(crowded, { PointAt(0.0, 0.0, 13), PointAt(0.0, 0.0), PointAt(0.0, 0.0, 13) });
    crowded.Normalize();
    EXPECT_EQ(crowded.Points().Count(), 2);
    // Fixed ones above each other are a jump, and keep their order.
    MEnvelope jump;
    SetPoints(jump,
              { PointAt(0.7, 0.1, 13), PointAt(0.5, 0.2, 13), PointAt(0.5, 0.9, 13), PointAt(0.5, 0.4, 13) });
    jump.Normalize();
    EXPECT_EQ(XsOf(jump), "0.5 0.5 0.5 0.7 ");
    EXPECT_EQ(jump.Points()[0].y, 0.2);
    EXPECT_EQ(jump.Points()[2].y, 0.4);
}

TEST(MEnvelope, SurvivesLimitsAndPointsThatAreNoNumbers)
{
    MEnvelope envelope;
    envelope.SetLimits(2.0, -2.0, 0.0, 1.0);
    SetPoints(envelope,
              { PointAt(std::nan(""), std::nan("")), PointAt(std::numeric_limits<double>::infinity(), 0.0) });
    envelope.Normalize();
    for (const MEnvelopePoint& point : envelope.Points())
        EXPECT_TRUE(std::isfinite(point.x) && std::isfinite(point.y));
}

TEST(MEnvelope, StoresOnlyWhatDiffers)
{
    MEnvelope envelope;
    MAttribute item("Curve");
    Store(envelope, item, 1);
    EXPECT_EQ(KeysOf(item), "");
    ASSERT_EQ(item.SubItemCount(), 2);
    EXPECT_EQ(KeysOf(item.SubItemAt(0)) + KeysOf(item.SubItemAt(1)), "Flags=13 Flags=13 x=1 ");

    envelope.DrawingMode = envelope.SnapToGridX = envelope.SnapToGridY = envelope.StoresLimits = true;
    envelope.OverrideUnitsX = envelope.OverrideUnitsY = 2;
    envelope.SetLimits(0.0, 1.0, -24.0, 1.0);
    // Type 2 is what a curved point has anyway, and a locked right side follows the left one.
    MEnvelopePoint point = { .y = 1.0 / 3.0,
                             .flags = 13,
                             .curvatureX = 0.25,
                             .curvature = -0.5,
                             .smoothLeft = 0.5,
                             .smoothRight = 0.75,
                             .type = 2 };
    MEnvelopePoint free = point;
    free.flags = MEnvelopePoint::Proportional;
    free.smoothingType = free.type = 1;
    SetPoints(envelope, { point, free });
    Store(envelope, item, 1);   // over what is there
    EXPECT_EQ(KeysOf(item),
              "DrawingMode=1 MaxX=1 MaxY=1 MinY=-24 OverrideUnitsX=2 OverrideUnitsY=2 SnapToGridX=1 "
              "SnapToGridY=1 ");
    ASSERT_EQ(item.SubItemCount(), 2);
    EXPECT_EQ(KeysOf(item.SubItemAt(0)), "c=-0.5 cx=0.25 Flags=13 SmoothX1=0.5 y=0.333333333333 ");
    EXPECT_EQ(KeysOf(item.SubItemAt(1)),
              "c=-0.5 cx=0.25 Flags=8 SmoothingType=1 SmoothX1=0.5 SmoothX2=0.75 Type=1 y=0.333333333333 ");
}

TEST(MEnvelope, LoadsWhatItStored)
{
    constexpr unsigned Seed = 12;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int round = 0; round < 200; ++round)
    {
        MEnvelope saved;
        saved.Edit([](MArray<MEnvelopePoint>& points) { points.Clear(); });
        double x = 0.0;
        for (int count = 2 + round % 6; count > 0; --count)
        {
            const bool isStraight = unit(random) < 0.3;
            const MEnvelopePoint point = { .x = x += unit(random) / 10.0,
                                           .y = unit(random),
                                           .flags = static_cast<std::uint8_t>(random() % 256),
                                           .curvatureX = isStraight ? 0.0 : 2.0 * unit(random) - 1.0,
                                           .curvature = isStraight ? 0.0 : 2.0 * unit(random) - 1.0,
                                           .smoothLeft = unit(random),
                                           .smoothRight = unit(random),
                                           .type = static_cast<std::int32_t>(random() % 12),
                                           .smoothingType = static_cast<std::int32_t>(random() % 2) };
            saved.Edit([&point](MArray<MEnvelopePoint>& points) { points.Add(point); });
        }
        MAttribute item;
        Store(saved, item, 1);
        MEnvelope loaded;
        Store(loaded, item, 0);
        MAttribute again;
        Store(loaded, again, 1);
        ASSERT_EQ(again.SubItemCount(), saved.Points().Count());
        for (int index = 0; index < again.SubItemCount(); ++index)
        {
            ASSERT_EQ(KeysOf(again.SubItemAt(index)), KeysOf(item.SubItemAt(index)));
            EXPECT_EQ(loaded.Points()[index].type, saved.Points()[index].type);
            EXPECT_NEAR(loaded.Points()[index].SmoothRight(), saved.Points()[index].SmoothRight(), 1e-11);
        }
    }
}

TEST(MEnvelope, LoadsOldDamagedAndMissingKeys)
{
    MAttribute item;
    item.SetAttribute("SnapToGridX", "1");
    item.SetAttribute("MinX", "-4");
    item.SetAttribute("MaxY", "nan");
    MAttribute& old = item.AddSubItem("Point");
    old.SetAttribute("fixed", "1");
    old.SetAttribute("c", "-7");
    old.SetAttribute("x", "inf");
    old.SetAttribute("SmoothX1", "2");
    item.AddSubItem("Other").SetAttribute("x", "1");
    item.AddSubItem("point").SetAttribute("x", "0.5");
    MEnvelope envelope;
    envelope.DrawingMode = true;
    envelope.SetLimits(0.0, 1.0, 0.0, 8.0);
    envelope.StoresLimits = true;
    Store(envelope, item, 0);
    EXPECT_FALSE(envelope.DrawingMode);
    EXPECT_TRUE(envelope.SnapToGridX);
    EXPECT_EQ(envelope.MinX(), -4.0);
    EXPECT_EQ(envelope.MaxX(), 1.0);
    EXPECT_EQ(envelope.MaxY(), 8.0);
    ASSERT_EQ(envelope.Points().Count(), 2);
    EXPECT_EQ(envelope.Points()[0].flags, 0x0D);
    EXPECT_EQ(envelope.Points()[0].curvature, -1.0);
    EXPECT_EQ(envelope.Points()[0].type, 2);
    EXPECT_EQ(envelope.Points()[0].x, 0.0);
    EXPECT_EQ(envelope.Points()[0].smoothRight, 1.0);
    EXPECT_EQ(envelope.Points()[1].flags, 12);
    EXPECT_EQ(envelope.Points()[1].type, 1);
    EXPECT_EQ(envelope.Points()[1].x, 0.5);

    // What is laid over a state may hold no points, then they stay; those that it holds are all there are.
    MAttribute overlay;
    overlay.SetAttribute("MinX", "0.25");
    Store(envelope, overlay, 0, MLoadMode::Overlay);
    EXPECT_EQ(XsOf(envelope), "0.25 0.5 ") << "within the limits";
    overlay.AddSubItem("Point");
    Store(envelope, overlay, 0, MLoadMode::Overlay);
    EXPECT_EQ(XsOf(envelope), "0.25 ");
    EXPECT_EQ(envelope.Points()[0].y, 0.0);
}
}   // namespace
