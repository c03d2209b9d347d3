// SPDX-License-Identifier: GPL-3.0-or-later
// What a style paints, by what must hold at every scale: edges of whole pixels, nothing outside of an area,
// states that can be told apart, values that are shown exactly.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "foundation/streams/MStdFileStream.h"
#include "gui/painting/ImageFiles.h"
#include "gui/painting/MDrawerToMBitmap.h"
#include "tests/AllocationCounter.h"
#include "tests/gui/styles/PartsSheet.h"
#include "tests/gui/styles/StyleOf.h"

namespace
{
constexpr const char* looks[] = { "light", "dark" };
constexpr double scales[] = { 1, 1.1, 1.25, 1.5, 1.75, 2, 2.5, 3 };
constexpr double drawnScales[] = { 1, 1.25, 1.5, 2, 2.5, 3 };

MBitmap Painted(const MStyle& style, MColor paper, std::int32_t width, std::int32_t height,
                const std::function<void(MDrawer&)>& paint)
{
    MBitmap bitmap(width, height);
    MDrawerToMBitmap painter(bitmap, &style);
    MDrawer& drawer = painter;
    drawer.FillRectangle(bitmap.Bounds(), paper);
    paint(drawer);
    return bitmap;
}

// The weight of a colour in a bitmap whose other pixels are `paper`, in pixels.
double AreaOf(const MBitmap& bitmap, MColor color, MColor paper)
{
    double area = 0;
    for (std::int32_t y = 0; y < bitmap.Height(); ++y)
        for (std::int32_t x = 0; x < bitmap.Width(); ++x)
            area += static_cast<double>(bitmap.Pixel(x, y).Green() - paper.Green()) /
                    (color.Green() - paper.Green());
    return area;
}

double Grey(const MBitmap& bitmap)
{
    double sum = 0;
    for (std::int32_t y = 0; y < bitmap.Height(); ++y)
        for (std::int32_t x = 0; x < bitmap.Width(); ++x)
        {
            const MColor pixel = bitmap.Pixel(x, y);
            sum += 0.299 * pixel.Red() + 0.587 * pixel.Green() + 0.114 * pixel.Blue();
        }
    return sum / (bitmap.Width() * bitmap.Height());
}

std::vector<std::uint32_t> PixelsOf(const MBitmap& bitmap)
{
    return { bitmap.Row(0), bitmap.Row(0) + std::ptrdiff_t{ bitmap.Width() } * bitmap.Height() };
}

// Every operation, with whatever may come.
void PaintAnything(const MStyle& style, MDrawer& drawer, const MRectangle& area, std::mt19937& random)
{
    const auto any = [&random](int count)
    {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    const auto state = static_cast<std::uint16_t>(any(0x200));
    const auto type = static_cast<MControlType>(any(std::size(MEnumLabels<MControlType>::Labels)));
    const Axis along = any(2) == 0 ? Axis::X : Axis::Y;
    const double values[] = { -1, 0, 0.37, 1, 7, std::nan("") };
    const MStyle::ValueLook look{ values[any(6)], values[any(6)], values[any(6)] };
    switch (any(9))
    {
    case 0:
        return style.PaintFace(drawer, area, type, state);
    case 1:
        return style.PaintItem(drawer, area, type, state);
    case 2:
        return style.PaintKnob(drawer, area, look, state);
    case 3:
        return style.PaintTracker(drawer, area, along, look, state);
    case 4:
        return style.PaintProgress(drawer, area, look.value);
    case 5:
        return style.PaintScrollBar(drawer, area, area.Inset(any(4), any(4)), along, state);
    case 6:
        return style.PaintTab(drawer, area, state);
    case 7:
        return style.PaintFocusRing(drawer, area.Inset(style.FocusRingReach(), style.FocusRingReach()));
    default:
        return style.PaintShadow(drawer, area.Inset(style.ShadowReach(), style.ShadowReach()));
    }
}
}   // namespace

TEST(StylePainting, FillsAnyAreaAndNothingOutsideOfIt)
{
    std::mt19937 random(11);
    const MColor paper(255, 0, 255);
    for (const double scale : scales)
    {
        SCOPED_TRACE(scale);
        const auto style = StyleOf("dark", scale);
        for (int round = 0; round < 600; ++round)
        {
            const auto area = MRectangle::OfSize(8, 8, static_cast<std::int32_t>(random() % 90),
                                                 static_cast<std::int32_t>(random() % 90));
            const std::mt19937 before = random;
            const MBitmap bitmap =
                Painted(*style, paper, 106, 106,
                        [&](MDrawer& drawer) { PaintAnything(*style, drawer, area, random); });
            // Thumbs, boxes and marks have a size of their own: in a smaller area they stand over.
            if (area.Width() < 24 * scale || area.Height() < 24 * scale)
                continue;
            for (std::int32_t y = 0; y < 106; ++y)
                for (std::int32_t x = 0; x < 106; ++x)
                    if (!area.Contains(x, y))
                    {
                        ASSERT_EQ(bitmap.Pixel(x, y).value, paper.value)
                            << x << " " << y << " round " << round;
                    }
            // The same again: what is kept for an area's height doesn't change the picture.
            random = before;
            const MBitmap again =
                Painted(*style, paper, 106, 106,
                        [&](MDrawer& drawer) { PaintAnything(*style, drawer, area, random); });
            ASSERT_EQ(PixelsOf(bitmap), PixelsOf(again)) << "round " << round;
        }
    }
}

TEST(StylePainting, HairlinesAreWholePixelsAtEveryScale)
{
    for (const char* look : looks)
        for (const double scale : drawnScales)
        {
            SCOPED_TRACE(look + std::to_string(scale));
            const auto style = StyleOf(look, scale);
            const struct
            {
                MControlType type;
                int state;
                MStdColor edge;
            } cases[] = { { MControlType::Button, DrawEnabled, MStdColor::RaisedEdge },
                          { MControlType::Button, DrawEnabled | DrawHovered, MStdColor::LineStrong },
                          { MControlType::Edit, DrawEnabled, MStdColor::FieldEdge },
                          { MControlType::Edit, DrawEnabled | DrawFocused, MStdColor::Focus },
                          { MControlType::Panel, DrawEnabled, MStdColor::PanelEdge },
                          { MControlType::Menu, DrawEnabled, MStdColor::LineStrong },
                          { MControlType::Window, DrawEnabled | DrawOn, MStdColor::LineStrong } };
            for (const auto& each : cases)
            {
                const std::int32_t width = style->Pixels(66);
                const std::int32_t height = style->Pixels(32);
                const MBitmap face =
                    Painted(*style, MColor(255, 0, 255), width, height,
                            [&](MDrawer& drawer)
                            {
                                style->PaintFace(drawer, { 0, 0, width - 1, height - 1 }, each.type,
                                                 static_cast<std::uint16_t>(each.state));
                            });
                const MColor edge = style->GetColor(each.edge);
                const std::int32_t hairline = style->Hairline();
                for (std::int32_t i = 0; i <= hairline; ++i)
                {
                    const bool isEdge = i < hairline;
                    EXPECT_EQ(face.Pixel(i, height / 2) == edge, isEdge) << i;
                    EXPECT_EQ(face.Pixel(width - 1 - i, height / 2) == edge, isEdge) << i;
                    EXPECT_EQ(face.Pixel(width / 2, i) == edge, isEdge) << i;
                    EXPECT_EQ(face.Pixel(width / 2, height - 1 - i) == edge, isEdge) << i;
                }
                EXPECT_EQ(face.Pixel(0, 0), MColor(255, 0, 255)) << "the corner is round";
            }
        }
}

TEST(StylePainting, StatesCanBeToldApartWithoutColour)
{
    for (const char* look : looks)
        for (const double scale : scales)
        {
            SCOPED_TRACE(look + std::to_string(scale));
            const auto style = StyleOf(look, scale);
            std::set<std::vector<std::uint32_t>> pictures;
            std::vector<double> greys;
            const int states[] = { DrawEnabled,
                                   DrawEnabled | DrawHovered,
                                   DrawEnabled | DrawPressed,
                                   DrawEnabled | DrawOn,
                                   DrawEnabled | DrawPrimary,
                                   DrawEnabled | DrawLearning,
                                   DrawEnabled | DrawSource,
                                   DrawEnabled | DrawTarget,
                                   0 };
            for (const int state : states)
            {
                const std::int32_t width = style->Pixels(60);
                const std::int32_t height = style->Pixels(22);
                const MBitmap face =
                    Painted(*style, style->GetColor(MStdColor::Panel), width, height,
                            [&](MDrawer& drawer)
                            {
                                style->PaintFace(drawer, { 0, 0, width - 1, height - 1 },
                                                 MControlType::Button, static_cast<std::uint16_t>(state));
                            });
                pictures.insert(PixelsOf(face));
                greys.push_back(Grey(face));
            }
            EXPECT_EQ(pictures.size(), std::size(states));
            // Rest, hover, pressed, on: each darker or lighter than the others on the whole.
            for (std::size_t a = 0; a < 4; ++a)
                for (std::size_t b = a + 1; b < 4; ++b)
                    EXPECT_GT(std::abs(greys[a] - greys[b]), 0.4) << a << " " << b;
        }
}

TEST(StylePainting, KnobsShowTheirValueExactly)
{
    const MColor paper(0, 0, 0);
    for (const double scale : { 1.0, 1.5, 3.0 })
        for (const double diameter : { 20.0, 42.0, 52.0 })
        {
            const auto style = StyleOf("dark", scale);
            const std::int32_t side = style->Pixels(diameter);
            const double width = (diameter >= 32 ? 3 : 2) * scale;
            // Without a value the arc is the track alone: what differs is the arc, when both have one
            // pointer.
            const auto paint = [&](double value, double origin)
            {
                return Painted(*style, paper, side, side,
                               [&](MDrawer& drawer) {
                                   style->PaintKnob(drawer, { 0, 0, side - 1, side - 1 },
                                                    { value, origin, 0 }, DrawEnabled);
                               });
            };
            const MColor accent = style->GetColor(MStdColor::Accent);
            for (const auto& [value, origin] :
                 { std::pair{ 0.3, 0.0 }, { 0.9, 0.5 }, { 0.1, 0.5 }, { 1.0, 0.0 }, { 0.002, 0.0 } })
            {
                SCOPED_TRACE(std::to_string(scale) + " " + std::to_string(diameter) + " " +
                             std::to_string(value));
                const MBitmap with = paint(value, origin);
                const MBitmap without = paint(value, value);
                double arc = 0;
                for (std::int32_t y = 0; y < side; ++y)
                    for (std::int32_t x = 0; x < side; ++x)
                        if (const MColor track = without.Pixel(x, y); track != with.Pixel(x, y))
                        {
                            const double cover = (with.Pixel(x, y).Green() - track.Green()) /
                                                 std::max(1.0, accent.Green() - 0x3B + 0.0);
                            arc += std::min(1.0, cover);
                        }
                const double radius = side / 2.0 - width / 2;
                const double wanted = std::abs(value - origin) * 1.5 * std::numbers::pi * radius * width;
                // At its sides the arc covers the track's own edge, which takes a part of what it adds.
                EXPECT_NEAR(arc, wanted, 0.06 * wanted + 1.5 * scale);
            }
        }
}

TEST(StylePainting, EveryIconAndCursorShowsInItsPlace)
{
    for (const double scale : scales)
    {
        SCOPED_TRACE(scale);
        const auto style = StyleOf("light", scale);
        const MColor paper(0, 0, 0);
        const MColor ink(255, 255, 255);
        std::set<std::vector<std::uint32_t>> pictures;
        for (std::size_t icon = 1; icon < std::size(MEnumLabels<MStdIcon>::Labels); ++icon)
        {
            SCOPED_TRACE(MEnumLabels<MStdIcon>::Labels[icon]);
            const auto id = static_cast<MStdIcon>(icon);
            for (const double room : { 40.0, 11.0 })
            {
                const std::int32_t side = style->Pixels(room);
                const MBitmap picture =
                    Painted(*style, paper, side, side,
                            [&](MDrawer& drawer) {
                                style->PaintIcon(drawer, { 0, 0, side - 1, side - 1 }, id, ink);
                            });
                const double area = AreaOf(picture, ink, paper);
                const double box = std::min({ style->IconSize(id).width, side });
                EXPECT_GT(area, 0.05 * box * box);
                EXPECT_LT(area, 0.6 * box * box);
                EXPECT_TRUE(pictures.insert(PixelsOf(picture)).second) << "like another one";
            }
        }
        for (const MStdCursor cursor : { MStdCursor::Arrow, MStdCursor::Move, MStdCursor::WidthHover,
                                         MStdCursor::WidthDrag, MStdCursor::ColumnLine, MStdCursor::Ear,
                                         MStdCursor::Text, MStdCursor::SizeRising, MStdCursor::Copy })
        {
            const MBaseStyle::Cursor* drawn = style->FindCursor(cursor);
            ASSERT_NE(drawn, nullptr);
            EXPECT_EQ(drawn->image.Width(), scale <= 1.5 ? 24 : 48);
            EXPECT_TRUE(drawn->image.Bounds().Contains(drawn->hotSpot.x, drawn->hotSpot.y));
        }
        EXPECT_EQ(style->FindCursor(MStdCursor::Hidden), nullptr);
        for (int number = 1; number <= 10; ++number)
        {
            const MBitmap* point = style->FindBitmap("EqEqPoint" + MString::FromInt(number));
            ASSERT_NE(point, nullptr);
            EXPECT_EQ(point->Width(), style->Pixels(18));
        }
    }
}

// Also written as pictures, to be looked at: to the folder that TONALIGN_PICTURES names.
TEST(StylePainting, ThePageLooksAlikeAtEveryScale)
{
    for (const MString& look : { MString("light"), MString("dark") })
    {
        MBitmap small;
        for (const int percent : { 100, 150, 200, 300 })
        {
            MBitmap page = PaintPartsSheet(*StyleOf(look, percent / 100.0));
            if (const char* folder = std::getenv("TONALIGN_PICTURES"))
            {
                MStdFileStream file(MString(folder) + "/style-" + look + "-" + MString::FromInt(percent) +
                                        ".png",
                                    MStdFileStream::CreateFile | MStdFileStream::WriteAccess);
                ImageFiles::SavePNG(page, file);
            }
            if (percent == 100)
            {
                small.CopyFrom(page);
                continue;
            }
            page.Resize(small.Width(), small.Height());
            // Edges and text differ by a pixel here and there, which a square's mean doesn't show.
            constexpr std::int32_t Side = 20;
            for (std::int32_t top = 0; top + Side <= small.Height(); top += Side)
                for (std::int32_t left = 0; left + Side <= small.Width(); left += Side)
                {
                    double difference = 0;
                    for (std::int32_t y = top; y < top + Side; ++y)
                        for (std::int32_t x = left; x < left + Side; ++x)
                            difference += page.Pixel(x, y).Green() - small.Pixel(x, y).Green();
                    EXPECT_LT(std::abs(difference) / (Side * Side), 7)
                        << percent << " " << left << " " << top;
                }
        }
    }
}

TEST(StylePainting, NothingIsLeftOfTheStyleBefore)
{
    const auto fresh = StyleOf("dark", 1.25);
    const auto changed = StyleOf("light", 2, "maincolor2", "FF0000FF");
    static_cast<void>(PaintPartsSheet(*changed));
    MAttribute configuration;
    configuration.SetAttribute("Style", "Default (dark)");
    configuration.SetAttribute("ResizeX", "1.25");
    configuration.SetAttribute("ResizeY", "1.25");
    changed->Apply(configuration);
    EXPECT_EQ(PixelsOf(PaintPartsSheet(*changed)), PixelsOf(PaintPartsSheet(*fresh)));
}

TEST(StylePainting, TakesNoMemoryOnceItHasPaintedAThing)
{
    if (!AllocationCounter::IsCounting())
        GTEST_SKIP() << "a sanitizer has its own heap";
    const auto style = StyleOf("light", 1.5);
    MBitmap bitmap(200, 200);
    MDrawerToMBitmap painter(bitmap, style.get());
    MDrawer& drawer = painter;
    const auto paint = [&]
    {
        for (std::size_t type = 0; type < std::size(MEnumLabels<MControlType>::Labels); ++type)
            style->PaintFace(drawer, { 3, 4, 120, 36 }, static_cast<MControlType>(type),
                             DrawEnabled | DrawOn);
        style->PaintFocusRing(drawer, { 20, 20, 120, 60 });
        style->PaintShadow(drawer, { 40, 40, 120, 90 });
        style->PaintCheckBox(drawer, { 0, 0, 30, 30 }, MCheckBoxState::On, DrawEnabled);
        style->PaintTracker(drawer, { 0, 0, 150, 32 }, Axis::X, { 0.4, 0, 0 }, DrawEnabled);
        style->PaintProgress(drawer, { 0, 0, 150, 8 }, 0.5);
    };
    paint();
    const std::int64_t before = AllocationCounter::TakenByThisThread();
    paint();
    EXPECT_EQ(AllocationCounter::TakenByThisThread(), before);
}
