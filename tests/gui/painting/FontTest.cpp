// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include <gtest/gtest.h>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MStdFileStream.h"
#include "gui/painting/MDrawerToMBitmap.h"
#include "tests/ErrorOf.h"

namespace
{
const MString interRegular = "/usr/share/fonts/opentype/inter/Inter-Regular.otf";

std::shared_ptr<FontFace> Inter()
{
    static const std::shared_ptr<FontFace> face = []
    {
        MStdFileStream file(interRegular, MStdFileStream::ReadAccess);
        return FontFace::Read(file);
    }();
    return face;
}

MFont Font(double height, bool tabular = false)
{
    MFontDescriptor descriptor;
    descriptor.height = height;
    descriptor.tabularDigits = tabular;
    return { Inter(), descriptor };
}

// The columns that white text on black reaches, and how much it covers.
struct Ink
{
    std::int32_t left = 1000;
    std::int32_t right = -1;
    std::int32_t bottom = -1;
    double area = 0;
    double middle = 0;
};

Ink InkOf(MFont& font, const MString& text, double x, std::int32_t baseline = 60,
          const MRectangle& clip = { 0, 0, 399, 99 }, bool dark = false)
{
    MBitmap bitmap(400, 100);
    MDrawerToMBitmap painter(bitmap);
    MDrawer& drawer = painter;
    const MColor paper = dark ? MColor(255, 255, 255) : MColor(0, 0, 0);
    const MColor color = dark ? MColor(0, 0, 0) : MColor(255, 255, 255);
    drawer.FillRectangle(bitmap.Bounds(), paper);
    drawer.SetClip(clip);
    drawer.TextOut(x, baseline, text, font, color);
    Ink ink;
    for (std::int32_t column = 0; column < 400; ++column)
        for (std::int32_t row = 0; row < 100; ++row)
            if (const int share = std::abs(bitmap.Pixel(column, row).Red() - paper.Red()); share > 0)
            {
                ink.left = std::min(ink.left, column);
                ink.right = std::max(ink.right, column);
                ink.bottom = std::max(ink.bottom, row);
                ink.area += share / 255.0;
                ink.middle += share / 255.0 * (column + 0.5);
            }
    ink.middle /= ink.area;
    return ink;
}
}   // namespace

TEST(Font, TextStandsWhereItsMeasuresSay)
{
    for (const double height : { 8.5, 10.0, 11.0, 15.0, 22.0, 33.0 })
    {
        SCOPED_TRACE(height);
        MFont font = Font(height);
        const MString text = "Hamburgefonstiv 20 kHz";
        const double width = font.Width(text);
        EXPECT_NEAR(width, height * font.Width(text) / height, 1e-9);
        EXPECT_NEAR(width / height, Font(20).Width(text) / 20, 0.01) << "spacing is the same at every size";
        const Ink ink = InkOf(font, text, 10);
        EXPECT_GE(ink.left, 10);
        EXPECT_LE(ink.right, std::ceil(10 + width));
        EXPECT_GE(ink.right, 10 + width - height);
        EXPECT_GE(ink.bottom, 60) << "g reaches below the baseline";
        EXPECT_LE(ink.bottom, 60 + font.Descent());
        EXPECT_EQ(InkOf(font, "H", 10).bottom, 59) << "H stands on it";
        // A quarter of a pixel is seen, in steps.
        const auto middle = [&](double x)
        {
            return InkOf(font, text, x, 60, { 0, 0, 399, 99 }, true).middle;
        };
        EXPECT_NEAR(middle(10.5) - middle(10), 0.5, 0.05);
        EXPECT_NEAR(middle(10.25) - middle(10), 0.25, 0.05);

        std::vector<float> widths;
        font.MeasureCharacters(text, widths);
        ASSERT_EQ(widths.size(), static_cast<std::size_t>(text.Length()));
        double pen = 0;
        double sum = 0;
        for (int index = 0; index <= text.Length(); ++index)
        {
            const double position = font.PositionOf(text, index);
            EXPECT_NEAR(position, pen, 1e-6);
            EXPECT_NEAR(position, sum, 1e-4) << "widths are floats";
            sum += index < text.Length() ? widths[static_cast<std::size_t>(index)] : 0.0f;
            EXPECT_EQ(font.IndexAt(text, position + 0.1), index);
            pen += index < text.Length() ? font.Width(text.SubString(index, 1)) : 0;
        }
        EXPECT_NEAR(pen, width, 1e-6);
    }
    MFont spaced = Font(11);
    EXPECT_EQ(spaced.LineHeight(), spaced.Ascent() + spaced.Descent());
    spaced.lineHeight = 20.5;
    EXPECT_EQ(spaced.LineHeight(), 21);
    std::vector<float> pair;
    spaced.MeasureCharacters(MString(u"\U0001D11Ea"), pair);
    EXPECT_GT(pair[0], 0);
    EXPECT_EQ(pair[1], 0) << "the second half of a pair";
    EXPECT_NEAR(pair[2], spaced.Width("a"), 1e-6);
    spaced.spaceBetweenChars = 2;
    EXPECT_NEAR(spaced.Width("abc"), Font(11).Width("abc") + 6, 1e-6);
}

TEST(Font, NumbersStandStill)
{
    MFont font = Font(11, true);
    MFont plain = Font(11);
    EXPECT_NE(plain.Width("111"), plain.Width("000"));
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
    {
        EXPECT_NEAR(font.Width(MString(digit)), font.Width("0"), 1e-6);
        // Centred in its place.
        const Ink ink = InkOf(font, MString(digit), 100);
        EXPECT_NEAR((ink.left + ink.right + 1) / 2.0, 100 + font.Width("0") / 2, 1.0)
            << static_cast<char>(digit);
    }
    EXPECT_NEAR(font.Width("+5.0"), font.Width("-5.0"), 1e-6);
    EXPECT_GT(InkOf(font, "-5", 50).area,
              InkOf(font, "-x", 50).area - InkOf(font, "x", 50).area + InkOf(font, "5", 50).area + 0.5)
        << "a minus before a digit is a longer one";
}

TEST(Font, WhatIsTooLongEndsInAnEllipsis)
{
    MFont font = Font(11);
    const MString text = "Linear-phase FFT based";
    EXPECT_EQ(font.Shortened(text, font.Width(text)).ToUTF8(), text.ToUTF8());
    for (double width = 12; width < font.Width(text); width += 3.7)
    {
        const MString shown = font.Shortened(text, width);
        EXPECT_LE(font.Width(shown), width);
        EXPECT_EQ(shown[shown.Length() - 1], u'\u2026');
        EXPECT_EQ(shown.SubString(0, shown.Length() - 1).ToUTF8(),
                  text.SubString(0, shown.Length() - 1).ToUTF8());
        EXPECT_GT(font.Width(shown) + 12, width) << "and no more is cut than must be";
    }
    MBitmap bitmap(60, 20);
    MDrawerToMBitmap painter(bitmap);
    MDrawer& drawer = painter;
    drawer.AlignedTextOut({ 5, 0, 44, 19 }, text, font, MColor(255, 255, 255), MPlacement::End);
    for (std::int32_t y = 0; y < 20; ++y)
        for (const std::int32_t x : { 0, 2, 47, 59 })
            EXPECT_EQ(bitmap.Pixel(x, y).value, 0u) << "beside its place";
}

TEST(Font, AlignsByItsInkAndLiftsLightText)
{
    MFont font = Font(12);
    const MRectangle area{ 100, 20, 299, 59 };
    const auto drawn = [&](MPlacement across, MPlacement down)
    {
        MBitmap bitmap(400, 100);
        MDrawerToMBitmap painter(bitmap);
        MDrawer& drawer = painter;
        drawer.AlignedTextOut(area, "HHH", font, MColor(255, 255, 255), across, down);
        MRectangle ink;
        for (std::int32_t y = 0; y < 100; ++y)
            for (std::int32_t x = 0; x < 400; ++x)
                if (bitmap.Pixel(x, y).Red() > 60)
                    ink = ink.Union({ x, y, x, y });
        return ink;
    };
    const MRectangle middle = drawn(MPlacement::Middle, MPlacement::Middle);
    EXPECT_NEAR((middle.left + middle.right) / 2.0, 199.5, 1);
    EXPECT_NEAR((middle.top + middle.bottom) / 2.0, 39.5, 1);
    EXPECT_NEAR(drawn(MPlacement::Begin, MPlacement::Begin).left, 101, 1);
    EXPECT_NEAR(drawn(MPlacement::End, MPlacement::End).right, 298, 1);
    EXPECT_LT(drawn(MPlacement::Begin, MPlacement::Begin).bottom, middle.top);
    EXPECT_GT(drawn(MPlacement::End, MPlacement::End).top, middle.bottom);
    const Ink light = InkOf(font, "Hamburg", 10),
              dark = InkOf(font, "Hamburg", 10, 60, { 0, 0, 399, 99 }, true);
    EXPECT_GT(light.area, 1.02 * dark.area);
    EXPECT_LT(light.area, 1.3 * dark.area);
    EXPECT_EQ(InkOf(font, "Hamburg", 10, 60, { 20, 0, 30, 99 }).left, 20);
    EXPECT_EQ(InkOf(font, "Hamburg", 10, 60, { 20, 0, 30, 99 }).right, 30);
}

TEST(Font, FilesThatAreNoneAreRefusedAndLeaveTheFont)
{
    MFont font = Font(11);
    const double width = font.Width("x");
    MMemoryStream text = MMemoryStream::Borrow("no font at all", 14);
    EXPECT_EQ(ErrorOf([&] { font.Load(text); }), "Unknown font file format.");
    std::vector<std::uint8_t> half(3000);
    MStdFileStream file(interRegular, MStdFileStream::ReadAccess);
    file.Read(half.data(), static_cast<std::int32_t>(half.size()));
    MMemoryStream cut = MMemoryStream::Borrow(half.data(), static_cast<std::int32_t>(half.size()));
    EXPECT_NE(ErrorOf([&] { font.Load(cut); }), "");
    EXPECT_EQ(font.Width("x"), width);
    MFont larger;
    EXPECT_EQ(ErrorOf([&] { larger.Width("x"); }), "Not initialized GDI object specified to select.");
    larger.height = 15;
    larger.Load(interRegular);
    EXPECT_GT(larger.Width("x"), width);
    larger.height = 1e9;
    EXPECT_EQ(ErrorOf([&] { larger.Load(interRegular); }), "Unable to accept required font size.");
}
