// SPDX-License-Identifier: GPL-3.0-or-later
// Shapes by what can be said of them without drawing: their area, their middle, their bounds.
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "foundation/text/Boundary.h"
#include "gui/painting/MAlphaMask.h"
#include "gui/painting/MDrawerToMBitmap.h"

namespace
{
constexpr std::int32_t size = 120;
const MColor white(255, 255, 255);

struct Measured
{
    double area = 0;
    double middleX = 0;
    double middleY = 0;
    MRectangle bounds;
};

// What white on black covers, exact to the eighth bit of a pixel.
Measured Measure(const MBitmap& bitmap)
{
    Measured measured;
    for (std::int32_t y = 0; y < bitmap.Height(); ++y)
        for (std::int32_t x = 0; x < bitmap.Width(); ++x)
            if (const double share = bitmap.Pixel(x, y).Green() / 255.0; share > 0)
            {
                measured.area += share;
                measured.middleX += share * (x + 0.5);
                measured.middleY += share * (y + 0.5);
                measured.bounds = measured.bounds.Union({ x, y, x, y });
            }
    measured.middleX /= measured.area;
    measured.middleY /= measured.area;
    return measured;
}

MBitmap Drawn(const std::function<void(MDrawer&)>& draw)
{
    MBitmap bitmap(size, size);
    MDrawerToMBitmap painter(bitmap);
    MDrawer& drawer = painter;
    drawer.FillRectangle(bitmap.Bounds(), MColor(0, 0, 0), MColorOp::Copy);
    draw(drawer);
    return bitmap;
}

std::string lastLine;
}   // namespace

TEST(Shapes, CoverTheirAreaWhereverTheyStand)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(50, 70), large(8, 40), thin(0.7, 6), angle(0, 360);
    for (int round = 0; round < 60; ++round)
    {
        const MPointF c{ place(random), place(random) };
        const double r = large(random), t = thin(random), start = angle(random), sweep = angle(random);
        const double pi = std::numbers::pi;
        struct Case
        {
            const char* name;
            double area;
            double reach;   // from the middle; 0: not centred on c
            std::function<void(MDrawer&)> draw;
        };
        const MPointF corner{ c.x + r, c.y }, third{ c.x, c.y + r / 2 };
        const std::array<MPointF, 3> triangle{ c, corner, third };
        const std::array<MPointF, 2> line{ MPointF{ c.x - r, c.y - r / 3 }, MPointF{ c.x + r, c.y + r / 3 } };
        const Case cases[] = {
            { "disc", pi * r * r, r,
              [&](MDrawer& d)
              {
                  d.FillCircle(c, r, white);
              } },
            { "circle", 2 * pi * r * t, r + t / 2,
              [&](MDrawer& d)
              {
                  d.Circle(c, r, t, white);
              } },
            { "arc", sweep / 360 * 2 * pi * r * t, 0,
              [&](MDrawer& d)
              {
                  d.Arc(c, r, t, start, sweep, white);
              } },
            { "triangle", r * r / 4, 0,
              [&](MDrawer& d)
              {
                  d.FillPolygon(triangle, white);
              } },
            { "stroke", std::hypot(2 * r, 2 * r / 3) * t, r + t,
              [&](MDrawer& d)
              {
                  d.PolyLine(line, t, white);
              } },
            { "line", std::hypot(2 * r, 2 * r / 3) * t, r + t,
              [&](MDrawer& d)
              {
                  d.MoveToF(line[0]);
                  d.LineToF(line[1], white, t);
              } },
        };
        const double edge = 4 * std::numbers::pi * (r + t);
        for (const Case& each : cases)
        {
            SCOPED_TRACE(each.name);
            const Measured measured = Measure(Drawn(each.draw));
            // Each pixel of the edge is rounded down by 1 / 255 or two.
            EXPECT_NEAR(measured.area, each.area, 0.008 * edge + 0.002 * each.area + 0.3);
            if (each.reach == 0)
                continue;
            EXPECT_NEAR(measured.middleX, c.x, 0.1);
            EXPECT_NEAR(measured.middleY, c.y, 0.1);
            EXPECT_GE(measured.bounds.left, std::floor(c.x - each.reach));
            EXPECT_LE(measured.bounds.bottom, std::ceil(c.y + each.reach));
        }
    }
}

TEST(Shapes, RoundRectanglesLoseTheirCornersAndFramesLieInside)
{
    const MRectangle area{ 10, 20, 69, 59 };
    for (const double radius : { 0.0, 4.0, 7.5, 20.0, 100.0 })
    {
        const double r = std::min(radius, 20.0);
        const double corners = (4 - std::numbers::pi) * r * r;
        const Measured whole = Measure(Drawn([&](MDrawer& d) { d.FillRoundRectangle(area, radius, white); }));
        EXPECT_NEAR(whole.area, 60 * 40 - corners, 2.5);
        EXPECT_EQ(whole.bounds, area);
        const double t = 1.5;
        const double inner = std::max(0.0, r - t);
        const Measured frame = Measure(Drawn([&](MDrawer& d) { d.RoundRectangle(area, radius, t, white); }));
        EXPECT_NEAR(frame.area, whole.area - (57 * 37 - (4 - std::numbers::pi) * inner * inner), 2);
        EXPECT_EQ(frame.bounds, area);
        EXPECT_NEAR(frame.middleX, 40, 0.05);
    }
}

TEST(Shapes, RectanglesAreExactAndTouchEachPixelOnce)
{
    for (const std::int32_t thickness : { 1, 2, 5, 100 })
        for (const MRectangle area :
             { MRectangle{ 3, 4, 3, 4 }, MRectangle{ 3, 4, 9, 6 }, MRectangle{ 0, 0, 119, 119 } })
        {
            const MBitmap bitmap =
                Drawn([&](MDrawer& d)
                      { d.Rectangle(area, white.WithAlpha(127), MColorOp::Alphablend, thickness); });
            for (std::int32_t y = 0; y < size; ++y)
                for (std::int32_t x = 0; x < size; ++x)
                {
                    const std::int32_t in =
                        std::min({ x - area.left, y - area.top, area.right - x, area.bottom - y });
                    ASSERT_EQ(bitmap.Pixel(x, y).Green(), in >= 0 && in < thickness ? (255 * 127) >> 8 : 0)
                        << x << " " << y;
                }
        }
    const MBitmap empty = Drawn(
        [](MDrawer& d)
        {
            d.FillRectangle({ 5, 5, 4, 8 }, white);
            d.SetClip({ 90, 90, 10, 10 });
            d.FillRectangle({ 0, 0, 100, 100 }, white);
            d.FillCircle({ 50, 50 }, 40, white);
        });
    EXPECT_TRUE(Measure(empty).bounds.IsEmpty());
}

TEST(Shapes, NothingLeavesTheClipAndAPartHasItsOwnOrigin)
{
    const auto everything = [](MDrawer& d)
    {
        const std::array<MPointF, 3> points{ MPointF{ -1e9, 20 }, MPointF{ 60, -1e7 },
                                             MPointF{ 1e300, std::nan("") } };
        d.FillCircle({ 40, 30 }, 50, MFill::Down(white, MColor(1, 2, 3)));
        d.FillPolygon(points, white);
        d.PolyLine(points, 3, white);
        d.Arc({ 40, 30 }, 30, 8, -30, 700, white);
        d.FillRectangleGradient({ -5, -5, 200, 200 }, MFill::Right(white, MColor(9, 9, 9)));
        d.MoveTo(-50, -20);
        d.LineTo(200, 100, white);
        d.LineTo(2000000000, 7, white);
        d.SetPixel(-3, 2, white);
    };
    for (const MRectangle clip :
         { MRectangle{ 0, 0, 79, 59 }, MRectangle{ 17, 5, 31, 40 }, MRectangle{ -9, -9, 3, 200 } })
    {
        const MBitmap bitmap = Drawn(
            [&](MDrawer& d)
            {
                MDrawerToMBitmap part = dynamic_cast<MDrawerToMBitmap&>(d).Part({ 25, 30, 104, 89 });
                EXPECT_EQ(part.GetWidth(), 80);
                EXPECT_EQ(part.GetHeight(), 60);
                part.SetClip(clip);
                everything(part);
            });
        const MRectangle seen = clip.Intersection({ 0, 0, 79, 59 }).Moved(25, 30);
        EXPECT_EQ(Measure(bitmap).bounds, seen);
    }
}

TEST(Shapes, LinesReachBothEndsInEveryDirection)
{
    for (std::int32_t dx = -9; dx <= 9; dx += 3)
        for (std::int32_t dy = -9; dy <= 9; dy += 2)
        {
            const MBitmap bitmap = Drawn(
                [&](MDrawer& d)
                {
                    d.MoveTo(50, 50);
                    d.LineTo(50 + dx, 50 + dy, white);
                });
            const Measured line = Measure(bitmap);
            EXPECT_EQ(line.area, std::max(std::abs(dx), std::abs(dy)) + 1);
            EXPECT_EQ(bitmap.Pixel(50, 50), white);
            EXPECT_EQ(bitmap.Pixel(50 + dx, 50 + dy), white);
        }
}

TEST(Shapes, GradientsRunOverTheShape)
{
    const MColor red(255, 0, 0), blue(0, 0, 255);
    const MBitmap down = Drawn(
        [&](MDrawer& d) {
            d.FillRoundRectangle({ 10, 10, 109, 109 }, 0, MFill::Down(red, blue));
        });
    const MBitmap right = Drawn(
        [&](MDrawer& d) {
            d.FillRectangleGradient({ 10, 10, 109, 109 }, MFill::Right(red, blue));
        });
    const MBitmap shape = Drawn(
        [&](MDrawer& d) {
            d.FillRoundRectangle({ 10, 10, 109, 109 }, 3, MFill::Right(red, blue));
        });
    for (std::int32_t at = 0; at < 100; ++at)
    {
        const double share = (at + 0.5) / 100;
        EXPECT_NEAR(down.Pixel(60, 10 + at).Blue(), 255 * share, 1);
        EXPECT_NEAR(right.Pixel(10 + at, 60).Red(), 255 * (1 - share), 1);
        EXPECT_NEAR(shape.Pixel(10 + at, 60).Red(), 255 * (1 - share), 1);
    }
}

TEST(Images, StandWhereTheFlagsSay)
{
    MBitmap image(4, 6);
    MDrawerToMBitmap(image).FillRectangle(image.Bounds(), white, MColorOp::Copy);
    const MRectangle area{ 20, 30, 49, 69 };
    struct Case
    {
        std::int32_t flags;
        MRectangle wanted;
    };
    for (const Case& each : { Case{ 0, { 20, 30, 23, 35 } }, Case{ 1 | 1 << 3, { 33, 47, 36, 52 } },
                              Case{ 2 | 2 << 3, { 46, 64, 49, 69 } }, Case{ 3 | 3 << 3, area },
                              Case{ 4, { 20, 30, 49, 35 } }, Case{ 4 << 3, { 20, 30, 23, 69 } } })
        EXPECT_EQ(Measure(Drawn([&](MDrawer& d) { d.BitmapLayout(area, image, each.flags); })).bounds,
                  each.wanted)
            << each.flags;
    for (const MBitmapFill fill :
         { MBitmapFill::Stretch, MBitmapFill::HPattern, MBitmapFill::VPattern, MBitmapFill::Pattern })
    {
        const Measured filled = Measure(Drawn([&](MDrawer& d) { d.PatBlt(area, image, fill); }));
        EXPECT_EQ(filled.bounds, area);
        EXPECT_EQ(filled.area, 30 * 40);
    }
    SetLogSink([](const MString& line) { lastLine = line.ToUTF8(); });
    const MBitmap none = Drawn(
        [&](MDrawer& d)
        {
            d.BitmapLayout(area, image, 7);
            d.BitmapLayout(area, image, 64);
            MDrawerToMBitmap().FillRectangle(area, white, MColorOp::Copy);
        });
    SetLogSink(nullptr);
    EXPECT_TRUE(Measure(none).bounds.IsEmpty());
}

TEST(Images, KeepTheirMeanWhenStretchedAndTheirEndsAtTheirSize)
{
    std::mt19937 random(5);
    MBitmap image(24, 16);
    double sum = 0;
    for (std::int32_t y = 0; y < 16; ++y)
        for (std::int32_t x = 0; x < 24; ++x)
        {
            const auto grey = static_cast<std::uint8_t>(random() % 256);
            image.Row(y)[x] = MColor(grey, grey, grey).value;
            sum += grey;
        }
    for (const MRectangle area :
         { MRectangle{ 0, 0, 11, 7 }, MRectangle{ 0, 0, 95, 111 }, MRectangle{ 0, 0, 23, 15 } })
    {
        const Measured stretched =
            Measure(Drawn([&](MDrawer& d) { d.StretchBlt(area, image, image.Bounds()); }));
        EXPECT_NEAR(stretched.area * 255 / (area.Width() * area.Height()), sum / (24 * 16), 4);
        EXPECT_EQ(stretched.bounds, area);
    }
    // A ramp stays a ramp.
    MBitmap ramp(20, 1);
    for (std::int32_t x = 0; x < 20; ++x)
    {
        const auto grey = static_cast<std::uint8_t>(10 * x);
        ramp.Row(0)[x] = MColor(grey, grey, grey).value;
    }
    for (const std::int32_t width : { 7, 20, 33, 100 })
    {
        MBitmap stretched;
        stretched.CopyFrom(ramp);
        stretched.Resize(width, 2);
        const double step = 20.0 / width;
        for (std::int32_t x = 0; x < width; ++x)
        {
            // Away from the ends, where there is only one neighbour.
            const double old = std::clamp((x + 0.5) * step - 0.5, step, 19 - step);
            const double at = (old + 0.5) / step - 0.5;
            EXPECT_NEAR(stretched.Pixel(static_cast<std::int32_t>(std::lround(at)), 1).Red(), 10 * old,
                        3 + 5 * step)
                << width;
        }
    }
    const MBitmap wide = Drawn([&](MDrawer& d) { d.StretchBltH({ 5, 5, 104, 20 }, image); });
    const MBitmap high = Drawn([&](MDrawer& d) { d.StretchBltV({ 5, 5, 28, 104 }, image); });
    for (std::int32_t i = 0; i < 7; ++i)
    {
        EXPECT_EQ(wide.Pixel(5 + i, 9), image.Pixel(i, 4));
        EXPECT_EQ(wide.Pixel(104 - i, 9), image.Pixel(23 - i, 4));
        EXPECT_EQ(high.Pixel(9, 5 + i), image.Pixel(4, i));
        EXPECT_EQ(high.Pixel(9, 104 - i), image.Pixel(4, 15 - i));
    }
    // A clear border doesn't darken: its colour counts for nothing.
    MBitmap lone(3, 3);
    lone.Row(1)[1] = white.value;
    MBitmap larger;
    larger.CopyFrom(lone);
    larger.Resize(9, 9);
    for (std::int32_t i = 0; i < 81; ++i)
    {
        const MColor pixel = larger.Pixel(i % 9, i / 9);
        EXPECT_TRUE(pixel.Alpha() == 0 || pixel.WithAlpha(255) == white);
    }
}

TEST(Masks, TakeMemoryOnlyWherePixelsDifferAndPaintAsTheyStand)
{
    MAlphaMask mask;
    mask.Create(50, 40);
    mask.Set(3, 3, 0);
    EXPECT_EQ(mask.ExplicitSectors(), 0);
    std::mt19937 random(9);
    MBitmap bitmap(50, 40);
    for (std::int32_t i = 0; i < 300; ++i)
        bitmap.Row(static_cast<std::int32_t>(random() % 18))[random() % 20] =
            static_cast<std::uint32_t>(random());
    bitmap.CopyAlphaTo(mask);
    EXPECT_EQ(mask.ExplicitSectors(), 4);
    const MBitmap painted = Drawn([&](MDrawer& d) { d.AlphaMask(60, 90, mask, white); });
    for (std::int32_t y = 0; y < size; ++y)
        for (std::int32_t x = 0; x < size; ++x)
        {
            const bool in = x >= 60 && y >= 90 && x < 110;
            const int alpha = in ? bitmap.Pixel(x - 60, y - 90).Alpha() : 0;
            ASSERT_TRUE(!in || mask.Get(x - 60, y - 90) == alpha);
            ASSERT_NEAR(painted.Pixel(x, y).Red(), alpha, 1);
        }
}
