// SPDX-License-Identifier: GPL-3.0-or-later
// What a text looks like, by its pixels.
#include <functional>

#include <gtest/gtest.h>

#include "tests/gui/richtext/RichTextStyle.h"

namespace
{
constexpr MColor paper(27, 31, 36);

class RichPainting : public ::testing::Test
{
protected:
    static MBitmap Canvas(std::int32_t width, std::int32_t height, const std::function<void(MDrawer&)>& paint)
    {
        MBitmap bitmap(width, height);
        MDrawerToMBitmap painter(bitmap);
        MDrawer& drawer = painter;
        drawer.FillRectangle(bitmap.Bounds(), paper);
        paint(drawer);
        EXPECT_EQ(drawer.GetClip(), bitmap.Bounds()) << "the clip is as it was";
        return bitmap;
    }
    static MBitmap Painted(MSTMLItem& item, const MRectangle& area, std::int32_t width = 300,
                           std::int32_t height = 120)
    {
        return Canvas(width, height, [&](MDrawer& drawer) { item.Paint(drawer, area); });
    }
    MBitmap Painted(const char* text, const MRectangle& area)
    {
        document.Parse(MString::Literal(text));
        return Painted(document, area);
    }
    static MRectangle Seen(const MBitmap& bitmap, const std::function<bool(MColor)>& counts)
    {
        MRectangle seen;
        for (std::int32_t y = 0; y < bitmap.Height(); ++y)
            for (std::int32_t x = 0; x < bitmap.Width(); ++x)
                if (counts(bitmap.Pixel(x, y)))
                    seen = seen.Union({ x, y, x, y });
        return seen;
    }
    static MRectangle Ink(const MBitmap& bitmap)
    {
        return Seen(bitmap, [](MColor color) { return color != paper; });
    }
    static MRectangle Of(const MBitmap& bitmap, MColor wanted)
    {
        return Seen(bitmap, [wanted](MColor color) { return color == wanted; });
    }
    static ::testing::AssertionResult Same(const MBitmap& one, const MBitmap& other)
    {
        for (std::int32_t y = 0; y < one.Height(); ++y)
            for (std::int32_t x = 0; x < one.Width(); ++x)
                if (one.Pixel(x, y) != other.Pixel(x, y))
                    return ::testing::AssertionFailure() << x << ", " << y;
        return ::testing::AssertionSuccess();
    }

    RichTextStyle style;
    MSTML document{ style, style };
};

const char* const page =
    "<l2>Head <img icon=plus></l2><hline><name>Gain</name> is <value>-5.10 dB</value>, press <control>Ctrl+G"
    "</control> or see <reference>this</reference>.<li>one<li>two <indicator value=0.4 middle=0.5 "
    "bordercolor=red></li><tr border=1><td width=60 border=1 fillalpha=40>cell<td valign=bottom><right>right"
    "</tr><p fill=FF000080 singleline=1>far too long for this <b>line</b> of text, which is cut";
}   // namespace

TEST_F(RichPainting, OneLineLooksAsTheDrawerPaintsIt)
{
    const MString text = "Never amplify 20 kHz";
    const struct
    {
        const char* tag;
        MPlacement across;
    } cases[] = { { "left", MPlacement::Begin },
                  { "center", MPlacement::Middle },
                  { "right", MPlacement::End } };
    for (const auto& each : cases)
        for (std::int32_t width = 12; width < 160; ++width)   // from the ellipsis on
        {
            SCOPED_TRACE(std::string(each.tag) + " " + std::to_string(width));
            const MRectangle area = MRectangle::OfSize(40, 30, width, 15);
            const std::string marked = std::string("<") + each.tag + " singleline=1>" + text.ToUTF8();
            document.Parse(MString::FromUTF8(marked));
            // Down, the document puts the baseline where its lines have it.
            const std::int32_t ascent = style.GetFont(0).Ascent();
            const MBitmap expected =
                Canvas(300, 120,
                       [&](MDrawer& drawer)
                       {
                           drawer.SetClip({ 39, 30, 40 + width, 44 });
                           drawer.AlignedTextOut(
                               { 40, 30, 39 + width, 29 + ascent + style.GetFont(0).Descent() }, text,
                               style.GetFont(0), style.GetColor(0), each.across, MPlacement::Begin);
                           drawer.SetClip({ 0, 0, 299, 119 });
                       });
            ASSERT_TRUE(Same(Painted(document, area), expected));
        }
}

TEST_F(RichPainting, IsTheSameAfterAnythingAndStaysInItsArea)
{
    for (const double scale : { 1.0, 2.0 })
    {
        RichTextStyle scaled(scale);
        MSTML text(scaled, scaled);
        text.Parse(MString::Literal(page));
        for (const std::int32_t width : { 1, 5, 40, 130, 400 })
        {
            SCOPED_TRACE(std::to_string(scale) + " " + std::to_string(width));
            const std::int32_t height = text.GetHeight(width);
            const MRectangle area = MRectangle::OfSize(20, 10, width, height);
            const MBitmap expected = Painted(text, area, width + 40, height + 20);
            const MRectangle ink = Ink(expected);
            EXPECT_EQ(ink.Intersection(area.Inset(-1, 0)), ink);
            EXPECT_EQ(ink.bottom, area.bottom) << "the last paragraph is filled";

            const auto clone = text.Clone();
            text.Layout(77);
            EXPECT_TRUE(Same(Painted(text, area, width + 40, height + 20), expected));
            EXPECT_TRUE(Same(Painted(*clone, area, width + 40, height + 20), expected));
            text.StyleChanged();
            EXPECT_TRUE(Same(Painted(text, area, width + 40, height + 20), expected));
            // A strip at a time, as a window repaints.
            const MBitmap strips = Canvas(width + 40, height + 20,
                                          [&](MDrawer& drawer)
                                          {
                                              for (std::int32_t top = 0; top < height + 20; top += 7)
                                              {
                                                  drawer.SetClip({ 0, top, width + 39, top + 6 });
                                                  text.Paint(drawer, area);
                                              }
                                              drawer.SetClip({ 0, 0, width + 39, height + 19 });
                                          });
            EXPECT_TRUE(Same(strips, expected));
        }
    }
}

TEST_F(RichPainting, ColorsAlphasAndTheOwnersStateAreSeen)
{
    const MRectangle area = MRectangle::OfSize(10, 10, 200, 60);
    const auto fill = [&](const char* text)
    {
        return Painted(text, area).Pixel(12, 12);
    };
    const auto mixed = [](MColor color, int alpha)
    {
        return Canvas(1, 1,
                      [&](MDrawer& drawer) {
                          drawer.FillRectangle({ 0, 0, 0, 0 }, color.Faded(alpha / 255.0));
                      })
            .Pixel(0, 0);
    };
    EXPECT_EQ(fill("<p fill=102030FF>."), MColor(0x10, 0x20, 0x30));
    EXPECT_EQ(fill("<p fill=10203080>."), mixed(MColor(0x10, 0x20, 0x30, 0x80), 255));
    EXPECT_EQ(fill("<p fill=Red fillalpha=100>."), mixed(style.GetColor(RichTextStyle::Danger), 100));
    EXPECT_EQ(fill("<p fillalpha=50>."), mixed(style.GetColor(0), 50));
    EXPECT_EQ(fill("<tr padding=4><td fillalpha=50>.</tr>"), mixed(style.GetColor(0), 50)) << "padding, too";
    EXPECT_EQ(fill("<rectangle width=20 height=20 color=accent>"), style.GetColor(RichTextStyle::Accent));
    EXPECT_EQ(fill("<cgreen><rectangle width=20 height=20>"), style.GetColor(RichTextStyle::Success));
    EXPECT_EQ(fill("<alpha value=80><rectangle width=20 height=20>"), mixed(style.GetColor(0), 80));
    EXPECT_EQ(fill("<hline size=9 vspace=0>"), mixed(style.GetColor(0), 40));
    EXPECT_EQ(fill("<hline size=9 vspace=0 color=red>"), style.GetColor(RichTextStyle::Danger));
    document.SetState(102);
    EXPECT_EQ(fill("<rectangle width=20 height=20>"), mixed(style.GetColor(0), 102));
    EXPECT_EQ(fill("<p fill=102030FF>."), mixed(MColor(0x10, 0x20, 0x30), 102));

    // The ink is for paragraphs that ask for it, and for what has the colour of texts there.
    const MColor ink(1, 2, 3);
    document.SetState(255, ink);
    EXPECT_EQ(fill("<p invert=1><rectangle width=20 height=20>"), ink);
    EXPECT_EQ(fill("<rectangle width=20 height=20>"), style.GetColor(0));
    EXPECT_EQ(fill("<p invert=1><cred><rectangle width=20 height=20>"),
              style.GetColor(RichTextStyle::Danger));
    const MBitmap bold = Painted("<p invert=1><l4>HHH", area);
    EXPECT_FALSE(Of(bold, ink).IsEmpty());
    EXPECT_TRUE(Of(bold, style.GetColor(0)).IsEmpty());
    style.SetDark(false);
    EXPECT_EQ(fill("<rectangle width=20 height=20>"), MColor(0x1A, 0x1D, 0x21));
}

TEST_F(RichPainting, ObjectsAndDecorationsStandWhereTheyBelong)
{
    const MColor red = style.GetColor(RichTextStyle::Danger);
    const MRectangle area = MRectangle::OfSize(10, 10, 200, 40);
    const MBitmap picture = [&]
    {
        MBitmap bitmap(8, 4);
        MDrawerToMBitmap painter(bitmap);
        static_cast<MDrawer&>(painter).FillRectangle(bitmap.Bounds(), red);
        return bitmap;
    }();
    const auto at = [&](const char* text)
    {
        document.SetImages({ nullptr, std::shared_ptr<const MBitmap>(&picture, [](const MBitmap*) {}) });
        return Of(Painted(text, area), red);
    };
    EXPECT_EQ(at("<img number=1>"), MRectangle::OfSize(10, 10, 8, 4));
    EXPECT_TRUE(at("<img number=0><img number=2><img number=-1>").IsEmpty());
    EXPECT_EQ(at("<img number=1 width=16>"), MRectangle::OfSize(10, 10, 16, 8));
    EXPECT_EQ(at("<img number=1 align=center>"), MRectangle::OfSize(106, 10, 8, 4));
    EXPECT_EQ(at("<img number=1 align=right valign=bottom width=100% height=20>"),
              MRectangle::OfSize(202, 26, 8, 4));
    EXPECT_EQ(at("<img number=1 align=stretch valign=top height=20>"), MRectangle::OfSize(10, 10, 200, 4));
    EXPECT_EQ(at("<right><img number=1>"), MRectangle::OfSize(202, 10, 8, 4));
    EXPECT_EQ(at("<tr padding=0 height=100%><td valign=center width=20><img number=1 align=center></tr>"),
              MRectangle::OfSize(16, 28, 8, 4));
    EXPECT_EQ(at("<tr padding=0 height=50%><td valign=bottom><img number=1></tr>"),
              MRectangle::OfSize(10, 26, 8, 4));
    EXPECT_EQ(at("<hline size=3 vspace=5 hspace=7 color=red>"), MRectangle::OfSize(17, 15, 186, 3));
    EXPECT_EQ(at("<rectangle width=20 height=10 color=102030FF bordercolor=red>"),
              MRectangle::OfSize(10, 10, 20, 10));
    EXPECT_EQ(at("<indicator width=100 height=4 value=0.75 middle=50% color=red>").Inset(-2, 0),
              MRectangle::OfSize(60 - 1, 10, 25 + 2, 4).Inset(0, 0))
        << "but its round ends";
    EXPECT_EQ(
        at("<tr padding=0><td border=2 borderalpha=0>a<td><rectangle width=3 height=3 color=red></tr>").left,
        112);

    // Lines of a unit: 1 pixel to 150 %, 2 to 250 %, 3 at 300 %.
    const std::pair<double, std::int32_t> thickness[] = { { 1, 1 }, { 1.25, 1 }, { 1.5, 1 },
                                                          { 2, 2 }, { 2.5, 2 },  { 3, 3 } };
    for (const auto& [scale, pixels] : thickness)
    {
        const RichTextStyle scaled(scale);
        MSTML text(scaled, scaled);
        SCOPED_TRACE(scale);
        text.Parse("<hline color=red>");
        EXPECT_EQ(Of(Painted(text, area), red).Height(), pixels) << scale;
        // An underline below the letters, from the first to the last of them.
        text.Parse("<cred><reference>HHH <b>HH</b></reference> <l4>HHH");
        const MBitmap underlined = Painted(text, MRectangle::OfSize(10, 10, 280, 100));
        const MRectangle letters = Of(underlined, red);
        const auto isLine = [&](std::int32_t y)
        {
            std::int32_t longest = 0;
            for (std::int32_t x = 0, run = 0; x < underlined.Width(); ++x)
                longest = std::max(longest, run = underlined.Pixel(x, y) == scaled.GetColor(0) ? run + 1 : 0);
            return longest > 40;
        };
        std::int32_t count = 0;
        for (std::int32_t y = 0; y < underlined.Height(); ++y)
            count += isLine(y) ? 1 : 0;
        EXPECT_EQ(count, pixels);
        EXPECT_TRUE(isLine(letters.bottom + 1 + std::max(1, static_cast<int>(scale + 0.5))));
    }

    // A field begins before its text and ends behind it, over several looks, and is as high as the line.
    const MBitmap key = Painted("<control>HH<cred><rectangle width=9></cred></control>", area);
    const MRectangle panel = Of(key, style.GetColor(RichTextStyle::Field));
    EXPECT_EQ(panel.left, 11) << "within the edge";
    EXPECT_NEAR(panel.right - Of(key, red).right, 4, 1);
    EXPECT_LE(panel.Height(), 15);
    EXPECT_TRUE(Ink(Painted("<control></control>", area)).IsEmpty());
}
