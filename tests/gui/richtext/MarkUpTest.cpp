// SPDX-License-Identifier: GPL-3.0-or-later
// What tags make of a text, told in one line each.
#include <chrono>

#include <gtest/gtest.h>

#include "gui/richtext/MSTMLObject.h"
#include "gui/richtext/MSTMLParagraph.h"
#include "gui/richtext/MSTMLTableRow.h"
#include "tests/ErrorOf.h"
#include "tests/gui/richtext/RichTextStyle.h"

namespace
{
// font.colour, then alpha, field and underline where they aren't usual, then the text.
std::string Described(const STMLPiece& piece)
{
    if (piece.kind == STMLPiece::Kind::Padding)
        return "_";
    std::string text = std::to_string(piece.style.font) + "." + std::to_string(piece.style.color);
    if (piece.style.alpha != 255)
        text += "@" + std::to_string(piece.style.alpha);
    if (piece.style.decoration != nullptr)
        text += piece.style.decoration->underlined ? "u" : "f";
    return text + (piece.kind == STMLPiece::Kind::Object ? "*" : "'" + piece.text.ToUTF8() + "'");
}

std::string Described(const MSTMLItem& item);

std::string Described(const MSTMLContainer& container)
{
    std::string text;
    for (const auto& item : container.Items())
        text += Described(*item);
    return text;
}

std::string Described(const MSTMLItem& item)
{
    if (const auto* row = dynamic_cast<const MSTMLTableRow*>(&item))
    {
        std::string text = "{";
        for (const auto& cell : row->Cells())
            text += "(" + Described(static_cast<const MSTMLContainer&>(*cell)) + ")";
        return text + "}";
    }
    const auto& paragraph = dynamic_cast<const MSTMLParagraph&>(item);
    const STMLParagraphFormat& format = paragraph.Format();
    std::string text = std::string("[") + "lcrj"[static_cast<int>(format.alignment)];
    text += format.singleLine ? "1" : "";
    text += format.followsInk ? "i" : "";
    text += format.HasFill() ? "F" : "";
    text += format.bulletSize > 0 ? "*" : "";
    for (const STMLPiece& piece : paragraph.Pieces())
        text += " " + Described(piece);
    return text + "]";
}

class MarkUpTest : public ::testing::Test
{
protected:
    std::string Parsed(const std::string& text)
    {
        document.Parse(MString::FromUTF8(text));
        return Described(static_cast<const MSTMLContainer&>(document));
    }

    RichTextStyle style;
    MSTML document{ style, style };
};
}   // namespace

TEST_F(MarkUpTest, BecomesParagraphsTablesAndPieces)
{
    struct Case
    {
        const char* text;
        const char* tree;
    };
    const Case cases[] = {
        { "", "" },
        { " \n ", "" },
        { "plain", "[l 0.0'plain']" },
        { " a \t\n b ", "[l 0.0'a b ']" },
        { "a&lt;b&amp;&gt;&apos;&quot;&copy;&#10;c", "[l 0.0'a<b&>'\"&copy;\nc']" },
        { "a<!-- no -->b<![CDATA[<i>]]>", "[l 0.0'ab<i>']" },
        // Fonts, colours, alphas
        { "<b>1</b><i>2</i><s>3</s><l1>4</l1><l2>5</l2><l3>6</l3><l4>7</l4>",
          "[l 1.0'1' 2.0'2' 3.0'3' 4.0'4' 5.0'5' 6.0'6' 7.0'7']" },
        { "<l1><b>x</b>y</l1>", "[l 1.0'x' 4.0'y']" },
        { "<l1>x<normal>y</normal>z</l1>!", "[l 4.0'x' 0.0'y' 4.0'z' 0.0'!']" },
        { "<cred>1<cgreen>2<cblue>3<clight>4<cdark>5<cd>6</cd>5</cdark></clight></cblue></cgreen></cred>0",
          "[l 0.5'1' 0.6'2' 0.7'3' 0.3'4' 0.4'5' 0.0'6' 0.4'5' 0.0'0']" },
        { "<alpha value=90>a<alpha value=-1>b</alpha>c<alpha value=999>d</alpha><alpha>e</alpha></alpha>f",
          "[l 0.0@90'a' 0.0@0'b' 0.0@90'c' 0.0'd' 0.0@90'e' 0.0'f']" },
        // End tags without a start
        { "a</b>b</cred></alpha></center></td></tr></name></tagset></li>c", "[l 0.0'abc']" },
        { "<l1>a</b>b</name>c</cd>d", "[l 4.0'abcd']" },
        // What isn't known
        { "<x y=1>a</x><B>b</B><Name>c</Name>", "[l 0.0'abc']" },
        { "a<ci>b<ci><ci>c</ci>d", "[l 0.0'a' 0.0'b' 0.0'cd']" },
        // Tag sets
        { "<name>n<value>v</value>n</name> <reference>r</reference>",
          "[l 1.0'n' 1.8'v' 1.0'n' 0.0' ' 0.0u'r']" },
        { "<control>a<b>b</b>c</control>d", "[l _ 0.0f'a' 1.0f'b' 0.0f'c' _ 0.0'd']" },
        { "<control></control><shortcut> </shortcut>d", "[l 0.0'd']" },
        { "<tagset name=value>a<tagset name=none>b</tagset>c</tagset>d", "[l 1.8'abc' 0.0'd']" },
        { "<example>e</example>", "[l 0.2@180'e']" },
        // Paragraphs
        { "a<p>b", "[l 0.0'a'][l 0.0'b']" },
        { "<p>a</p> b", "[l 0.0'a b']" },
        { "a<p><p>b", "[l 0.0'a'][l][l 0.0'b']" },
        { "<p singleline=1 invert=1 fill=red>a<p fillalpha=20>b<p>c", "[l1iF 0.0'a'][lF 0.0'b'][l 0.0'c']" },
        { "<b>a<p>b</b>", "[l 1.0'a'][l 1.0'b']" },
        { "<center invert=1 singleline=1><l2>t", "[c1i 5.0't']" },
        { "<center><l1>A</l1><p>b</center>c", "[c 4.0'A'][c 0.0'b'][l 0.0'c']" },
        { "<center>a<center>b", "[c 0.0'a'][c 0.0'b']" },
        { "<p><right>a</right><justify>b</justify><left>c", "[r 0.0'a'][j 0.0'b'][l 0.0'c']" },
        { "<li>a<li size=6>b</li>c", "[l* 0.0'a'][l* 0.0'b'][l 0.0'c']" },
        // Tables
        { "<tr><td>a</td><td>b</td></tr>c", "{([l 0.0'a'])([l 0.0'b'])}[l 0.0'c']" },
        { "<tr><td>a<td>b<tr><td>c</tr></tr>d", "{([l 0.0'a'])([l 0.0'b']{([l 0.0'c'])})}[l 0.0'd']" },
        { "<tr> <td/> <td></td> </tr> <tr/>", "{()()}{}" },
        { "<td>a</td>b", "[l 0.0'ab']" },
        { "<tr><td><b><center>a</td><td>b</b>c</td></tr>d", "{([c 1.0'a'])([l 0.0'bc'])}[l 0.0'd']" },
        { "<b><tr><td>a</b>b</td></tr>c", "{([l 1.0'ab'])}[l 1.0'c']" },
        { "<tr><td singleline=1 invert=1 fill=red>a<p>b</td></tr>c",
          "{([l1i 0.0'a'][l1i 0.0'b'])}[l 0.0'c']" },
        { "a<tr>b<td>c</td></tr>", "[l 0.0'a']{([l 0.0'c'])}[l 0.0'b']" },
        // Objects
        { "a<img number=0><b><rectangle></b><indicator/>b<hline>", "[l 0.0'a' 0.0* 1.0* 0.0* 0.0'b' 0.0*]" },
        { "<control><img icon=PLUS></control><img bitmap=logo>", "[l _ 0.0f* _ 0.0*]" },
    };
    for (const Case& each : cases)
        EXPECT_EQ(Parsed(each.text), each.tree) << each.text;

    for (const std::string plain : { "a <b>&amp;</b> \"c\" 'd'", "<p>", "1 < 2 > 0", "two\nlines" })
        EXPECT_EQ(Parsed(MSTML::Escaped(MString::FromUTF8(plain)).ToUTF8()), "[l 0.0'" + plain + "']");
}

TEST_F(MarkUpTest, SaysWhatIsWrongAndKeepsTheDocument)
{
    struct Case
    {
        const char* text;
        const char* error;
    };
    const Case cases[] = {
        { "a < b", "Invalid file contents. No element name found." },
        { "<b", "Invalid file contents. No ending delimiter found." },
        { "<td width=\"1", "Invalid file contents. No ending delimiter found." },
        { "</b x>", "Invalid file contents. Invalid closing element syntax." },
        { "<!b>", "Invalid file contents. Invalid special element sequence." },
        { "<td autosize>", "Invalid file contents. Invalid character found where attribute expected." },
        { "<td width=<b>>", "Invalid file contents. Special character found where attribute expected." },
        { "<b/x>", "Invalid file contents. Invalid element finishing sequence." },
        { "<tagset>a</tagset>", "Could not find required attribute (name)." },
        { "<img>", "Could not find required attribute (number)." },
        { "<img icon=minus>", "Invalid MStdIcon identifier to parse (minus)." },
        { "<img bitmap=plus>", "Invalid MStdBitmap identifier to parse (plus)." },
        { "<img number=0 align=top>", "Invalid MHorizontalObjectLayout identifier to parse (top)." },
        { "<tr><td valign=left>", "Invalid MVerticalObjectLayout identifier to parse (left)." },
        { "<hline color=1234567>", "Invalid MStdColor identifier to parse (1234567)." },
        { "<p fill=FF00FF0G>", "Invalid MStdColor identifier to parse (FF00FF0G)." },
        { "<rectangle width=MaxSize>", "Invalid size identifier to parse (MaxSize)." },
        { "<rectangle width=nan>", "Invalid size identifier to parse (nan)." },
    };
    const std::string kept = Parsed("<b>kept</b>");
    const std::int32_t height = document.GetHeight(50);
    for (const Case& each : cases)
    {
        EXPECT_EQ(ErrorOf([&] { document.Parse(MString::FromUTF8(std::string("new ") + each.text)); }),
                  each.error)
            << each.text;
        EXPECT_EQ(Described(static_cast<const MSTMLContainer&>(document)), kept) << each.text;
        EXPECT_EQ(document.GetHeight(50), height);
        EXPECT_EQ(document.Text(), MString("<b>kept</b>"));
    }

    std::string deep;
    for (int depth = 0; depth < 64; ++depth)
        deep += "<tr><td>";
    Parsed(deep);
    EXPECT_GT(document.GetHeight(1), 0);
    EXPECT_EQ(ErrorOf([&] { Parsed(deep + "<tr><td>"); }),
              "Invalid file contents. Elements are nested too deeply.");
}

TEST_F(MarkUpTest, TakesTimeInProportionToTheText)
{
    // A quarter of a megabyte each. What grows with the square of the length takes minutes.
    const std::string pieces[] = { "word ",
                                   "unbroken",
                                   "<b>",
                                   "<b></b>",
                                   "<name>n</i>",
                                   "<p>",
                                   "<li>a",
                                   "<x>a",
                                   "&#10;",
                                   "<tr/>",
                                   "<hline>",
                                   "<control>k</control>",
                                   "<tr height=99999999999><td/>",
                                   "<img icon=plus width=100% align=right>",
                                   "<justify>\xC3\xA9 a",
                                   "a<![CDATA[ ]]>" };
    const auto start = std::chrono::steady_clock::now();
    for (const std::string& piece : pieces)
        for (const std::string before : { "", "<p singleline=1>", "<tr><td>", "<tr><td autosize=1>x<td>" })
        {
            SCOPED_TRACE(before + piece);
            std::string text = before;
            while (text.size() < (1u << 18))
                text += piece;
            document.Parse(MString::FromUTF8(text));
            EXPECT_GE(document.GetMinimalWidth(), 0);
            EXPECT_GE(document.GetPreferredWidth(), document.GetMinimalWidth());
            MBitmap bitmap(200, 50);
            MDrawerToMBitmap drawer(bitmap);
            for (const std::int32_t width : { 1, 200 })
            {
                EXPECT_GE(document.GetHeight(width), 0);
                document.Paint(drawer, MRectangle::OfSize(0, -1000, width, 5000));
            }
        }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    EXPECT_LT(seconds.count(), 120);
}
