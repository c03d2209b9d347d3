// SPDX-License-Identifier: GPL-3.0-or-later
// Layout by what must hold for any text at any width and scale, and by numbers where the mark-up states them.
#include <cmath>
#include <functional>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/richtext/MSTMLObject.h"
#include "gui/richtext/MSTMLParagraph.h"
#include "gui/richtext/MSTMLTableRow.h"
#include "tests/gui/richtext/RichTextStyle.h"

using ::testing::ElementsAre;

namespace
{
class RandomText
{
public:
    explicit RandomText(unsigned seed) : random(seed) {}

    std::string Make(int depth, bool withTables = true)
    {
        std::string text;
        for (int count = Number(1, 8); count > 0; --count)
        {
            const int kind = Number(0, 9);
            if (kind == 0 && depth > 0 && withTables)
                text += Row(depth);
            else if (kind <= 2)
                text += Paragraph();
            else
                text += Words();
        }
        return text;
    }

private:
    int Number(int from, int to) { return std::uniform_int_distribution<>(from, to)(random); }
    const char* OneOf(std::initializer_list<const char*> texts)
    {
        return *(texts.begin() + Number(0, static_cast<int>(texts.size()) - 1));
    }
    std::string Paragraph()
    {
        return OneOf({ "<p>", "<p fill=red>", "<center>", "<right>", "<justify>", "<left>", "</center>",
                       "<li>", "</li>", "<p>", "<hline hspace=3>" });
    }
    std::string Words()
    {
        std::string text;
        for (int count = Number(1, 12); count > 0; --count)
            text += OneOf({ "a",
                            "the ",
                            "level ",
                            "frequency ",
                            "response ",
                            "of ",
                            " 20 kHz ",
                            "i",
                            "ii ",
                            "-5.10 ",
                            "<b>",
                            "</b>",
                            "<l3>",
                            "</l3>",
                            "<control>Ctrl+",
                            "</control>",
                            "<img icon=plus> ",
                            "<img bitmap=logo>",
                            "<name>name</name> ",
                            "<reference>see that</reference>, ",
                            "Donaudampfschifffahrt ",
                            "\xC3\xA9t\xC3\xA9 ",
                            "\xF0\x9D\x84\x9E",
                            "<s>",
                            "</s>",
                            "&#10;",
                            "<indicator value=0.3>",
                            "<rectangle width=50%>",
                            "<ci>",
                            "<i>slanted </i>" });
        return text;
    }
    std::string Row(int depth)
    {
        std::string text = std::string("<tr") +
                           OneOf({ "", " padding=0", " cellspaces=9", " border=2", " height=30" }) + ">";
        for (int count = Number(1, 4); count > 0; --count)
            text += std::string("<td") +
                    OneOf({ "", " autosize=1", " width=30", " width=40%", " width=MaxStdIconSizeX",
                            " padding=5" }) +
                    OneOf({ "", " valign=center", " border=1", " fillalpha=40" }) + ">" + Make(depth - 1) +
                    "</td>";
        return text + "</tr>";
    }

    std::mt19937 random;
};

void EachParagraph(const MSTMLContainer& container, const std::function<void(const MSTMLParagraph&)>& visit)
{
    for (const auto& item : container.Items())
        if (const auto* row = dynamic_cast<const MSTMLTableRow*>(item.get()))
            for (const auto& cell : row->Cells())
                EachParagraph(*cell, visit);
        else
            visit(dynamic_cast<const MSTMLParagraph&>(*item));
}

// What stands in the lines, with `between` them, or in the pieces; without blanks.
std::string WithoutBlanks(const MString& text)
{
    std::string bytes = text.ToUTF8();
    std::erase_if(bytes, [](char character) { return character == ' ' || character == '\n'; });
    return bytes;
}

std::string TextOfPieces(const MSTMLParagraph& paragraph)
{
    std::string text;
    for (const STMLPiece& piece : paragraph.Pieces())
        text += piece.object != nullptr ? "*" : WithoutBlanks(piece.text);
    return text;
}

std::string TextOfLines(const MSTMLParagraph& paragraph)
{
    std::string text;
    for (const STMLRun& run : paragraph.Lines().runs)
        text += paragraph.Pieces()[run.piece].object != nullptr ? "*" : WithoutBlanks(run.text);
    return text;
}

double WidestLine(const MSTMLParagraph& paragraph)
{
    double widest = 0;
    for (const STMLRun& run : paragraph.Lines().runs)
        widest = std::max(widest, run.x + run.width);
    return widest;
}

void CheckLines(const MSTMLParagraph& paragraph)
{
    std::int32_t bottom = 0;
    for (const STMLLine& line : paragraph.Lines().lines)
    {
        ASSERT_EQ(line.top, bottom);
        ASSERT_GE(line.height, 0);
        ASSERT_LE(line.baseline, line.top + line.height);
        bottom += line.height;
        double end = 0;
        for (std::size_t index = line.firstRun; index < line.endRun; ++index)
        {
            const STMLRun& run = paragraph.Lines().runs[index];
            ASSERT_GE(run.x, end - 0.01);
            end = run.x + run.width;
            if (paragraph.Pieces()[run.piece].object == nullptr)
                continue;
            ASSERT_GE(run.top, line.top);
            ASSERT_LE(run.top + run.height, line.top + line.height);
        }
    }
    ASSERT_EQ(paragraph.Lines().height, bottom);
    ASSERT_EQ(TextOfLines(paragraph), TextOfPieces(paragraph)) << "nothing is lost";
}

void CheckRows(const MSTMLContainer& container, std::int32_t width, std::int32_t minimalWidth)
{
    for (const auto& item : container.Items())
    {
        const auto* row = dynamic_cast<const MSTMLTableRow*>(item.get());
        if (row == nullptr)
            continue;
        std::int32_t end = 0;
        for (std::size_t index = 0; index < row->Cells().size(); ++index)
        {
            const MSTMLTableRow::Column& column = row->Columns()[index];
            ASSERT_GE(column.x, end) << "no cell lies on another";
            ASSERT_GE(column.width, 0);
            end = column.x + column.width;
            if (width >= minimalWidth)
            {
                ASSERT_GE(column.width, row->Cells()[index]->GetMinimalWidth());
            }
            CheckRows(*row->Cells()[index], column.width, row->Cells()[index]->GetMinimalWidth());
        }
        ASSERT_LE(end, std::max(1, width));
    }
}

class RichLayout : public ::testing::Test
{
protected:
    const MSTMLParagraph& Paragraph(const char* text, std::int32_t width)
    {
        document.Parse(MString::Literal(text));
        document.Layout(width);
        return dynamic_cast<const MSTMLParagraph&>(*document.Items().front());
    }
    std::vector<std::int32_t> Widths(const char* text, std::int32_t width)
    {
        document.Parse(MString::Literal(text));
        document.Layout(width);
        std::vector<std::int32_t> widths;
        for (const auto& column : dynamic_cast<const MSTMLTableRow&>(*document.Items().front()).Columns())
            widths.push_back(column.width);
        return widths;
    }

    RichTextStyle style;
    MSTML document{ style, style };
};
}   // namespace

TEST_F(RichLayout, NothingIsLostOrOverlapsInAnyTextAtAnyWidth)
{
    for (const double scale : { 1.0, 1.25, 2.0, 3.0 })
    {
        const RichTextStyle scaled(scale);
        for (unsigned seed = 0; seed < 60; ++seed)
        {
            const std::string text = RandomText(seed).Make(3);
            SCOPED_TRACE(text + " at " + std::to_string(scale));
            MSTML page(scaled, scaled);
            page.Parse(MString::FromUTF8(text));
            const std::int32_t minimal = page.GetMinimalWidth();
            const std::int32_t preferred = page.GetPreferredWidth();
            ASSERT_LE(minimal, preferred);
            for (std::int32_t width = 1; width < preferred + 50; width += 1 + width / 6)
            {
                const std::int32_t height = page.GetHeight(width);
                std::int32_t sum = 0;
                for (const auto& item : page.Items())
                    sum += item->GetHeight(width);
                ASSERT_EQ(height, sum);
                EachParagraph(page, &CheckLines);
                CheckRows(page, width, minimal);
                if (HasFatalFailure())
                    return;
            }
            // Measures are the same after any layout, and layouts after any other.
            ASSERT_EQ(page.GetMinimalWidth(), minimal);
            ASSERT_EQ(page.GetPreferredWidth(), preferred);
            MSTML fresh(scaled, scaled);
            fresh.Parse(MString::FromUTF8(text));
            const auto clone = page.Clone();
            for (const std::int32_t width : { minimal, 1, preferred })
            {
                ASSERT_EQ(page.GetHeight(width), fresh.GetHeight(width));
                ASSERT_EQ(clone->GetHeight(width), fresh.GetHeight(width));
            }
        }
    }
}

TEST_F(RichLayout, LinesAreAsLongAsTheyCanBeAndBreakAtBlanks)
{
    for (unsigned seed = 100; seed < 160; ++seed)
    {
        std::string text = RandomText(seed).Make(0, false);
        for (std::size_t place = 0; (place = text.find("50%", place)) != std::string::npos;)
            text.erase(place + 2, 1);   // a share of the line is always another width
        SCOPED_TRACE(text);
        document.Parse(MString::FromUTF8(text));
        const std::int32_t minimal = document.GetMinimalWidth();
        const std::int32_t preferred = document.GetPreferredWidth();
        document.Layout(minimal);
        EachParagraph(document,
                      [&](const MSTMLParagraph& paragraph)
                      {
                          EXPECT_LE(WidestLine(paragraph), minimal + 0.01) << "every word fits";
                          const auto& runs = paragraph.Lines().runs;
                          for (const STMLLine& line : paragraph.Lines().lines)
                          {
                              if (line.endRun == line.firstRun || line.endRun == runs.size())
                                  continue;
                              const STMLRun& last = runs[line.endRun - 1];
                              const STMLRun& next = runs[line.endRun];
                              const MString& whole = paragraph.Pieces()[last.piece].text;
                              if (last.piece == next.piece && !last.text.IsEmpty())
                              {
                                  EXPECT_EQ(whole.Find(last.text + next.text), -1) << "no word is broken";
                              }
                          }
                      });
        // The whole text on its preferred width needs no line more than on any larger one.
        EXPECT_EQ(document.GetHeight(preferred), document.GetHeight(preferred + 1000));
        std::vector<std::size_t> counts;
        for (std::int32_t width = minimal; width <= preferred; width += 7)
        {
            document.Layout(width);
            std::size_t count = 0;
            EachParagraph(document,
                          [&](const MSTMLParagraph& paragraph) { count += paragraph.Lines().lines.size(); });
            EXPECT_TRUE(counts.empty() || count <= counts.back());
            counts.push_back(count);
        }
    }
}

TEST_F(RichLayout, AlignmentsFillTheLineAsTheySay)
{
    const std::string words =
        "several words of different lengths that make some lines of text, the last one short";
    for (std::int32_t width = 80; width < 300; width += 11)
        for (const std::string tag : { "left", "center", "right", "justify" })
        {
            SCOPED_TRACE(tag + " " + std::to_string(width));
            document.Parse(MString::FromUTF8("<" + tag + ">" + words + "&#10;" + words));
            document.Layout(width);
            const auto& paragraph = dynamic_cast<const MSTMLParagraph&>(*document.Items().front());
            const STMLLines& lines = paragraph.Lines();
            int endCount = 0;
            for (const STMLLine& line : lines.lines)
            {
                const STMLRun& first = lines.runs[line.firstRun];
                const STMLRun& last = lines.runs[line.endRun - 1];
                const double left = first.x;
                const double right = width - last.x - last.width;
                const std::string end = last.text.ToUTF8();
                const bool isEnd = end.size() >= 5 && end.substr(end.size() - 5) == "short";
                endCount += isEnd ? 1 : 0;
                const bool isStraight = tag == "justify" && !isEnd;
                EXPECT_TRUE(left == 0 || tag == "center" || tag == "right");
                EXPECT_TRUE(tag != "center" || std::abs(left - right) <= 1) << "begins on a whole pixel";
                EXPECT_TRUE((tag != "right" && !isStraight) || std::abs(right) < 0.01);
                if (isStraight)
                {
                    // Every blank is as wide as the others.
                    const auto gap = [&](std::size_t index)
                    {
                        return lines.runs[index + 1].x - lines.runs[index].x - lines.runs[index].width;
                    };
                    for (std::size_t index = line.firstRun; index + 1 < line.endRun; ++index)
                        EXPECT_NEAR(gap(index), gap(line.firstRun), 0.01);
                }
            }
            EXPECT_EQ(endCount, 2);
        }
}

TEST_F(RichLayout, LinesAreAsHighAsTheLargestFontAndTheObjectsInThem)
{
    EXPECT_EQ(Paragraph("text", 500).Lines().height, 15);
    EXPECT_EQ(Paragraph("text <l4>large</l4> <s>small</s>", 500).Lines().height, 24);
    EXPECT_EQ(Paragraph("<s>small</s>", 500).Lines().height, 13);
    EXPECT_EQ(Paragraph("<l4>A</l4>&#10;&#10;<s>b</s>", 500).Lines().height, 24 + 15 + 13);
    EXPECT_EQ(Paragraph("<img bitmap=logo>", 500).Lines().height, 40) << "a picture alone has no font";
    EXPECT_EQ(Paragraph("a <img bitmap=logo valign=top>", 500).Lines().height, 40);
    EXPECT_EQ(Paragraph("a<hline size=2 vspace=5>b", 500).Lines().height, 15 + 12 + 15);
    EXPECT_EQ(Paragraph("<img number=7>", 500).Lines().height, 0) << "there is no such picture";
    document.Parse("<b>a<p><p></b>");
    EXPECT_EQ(document.GetHeight(100), 45) << "empty paragraphs are a line high";

    // Objects: on the middle of the capitals, or where they say.
    for (const char* place : { "", " valign=top", " valign=center", " valign=bottom" })
        for (const int height : { 4, 30 })
        {
            const std::string text =
                "H<rectangle width=3 height=" + std::to_string(height) + place + "><l4>H</l4>";
            document.Parse(MString::FromUTF8(text));
            document.Layout(500);
            const auto& lines = dynamic_cast<const MSTMLParagraph&>(*document.Items().front()).Lines();
            const STMLLine& line = lines.lines.front();
            const double middle = lines.runs[1].top + lines.runs[1].height / 2.0;
            EXPECT_EQ(lines.runs[1].height, height);
            switch (place[0] == '\0' ? '-' : place[8])
            {
            case '-':
                EXPECT_NEAR(middle, line.baseline - style.GetFont(0).CapitalHeight() / 2, 1) << text;
                break;
            case 't':
                EXPECT_EQ(lines.runs[1].top, line.top);
                break;
            case 'c':
                EXPECT_NEAR(middle, line.height / 2.0, 0.5);
                break;
            default:
                EXPECT_EQ(lines.runs[1].top + height, line.height);
            }
        }
}

TEST_F(RichLayout, ObjectsHaveTheSizesThatTheyState)
{
    const auto widthOf = [&](const char* text, std::int32_t width)
    {
        const STMLRun& run = Paragraph(text, width).Lines().runs.front();
        return std::pair(static_cast<std::int32_t>(std::lround(run.width)), run.height);
    };
    EXPECT_EQ(widthOf("<img icon=plus>", 200), std::pair(14, 14));
    EXPECT_EQ(widthOf("<img icon=none>", 200), std::pair(0, 0));
    EXPECT_EQ(widthOf("<img icon=plus width=28>", 200), std::pair(28, 28)) << "in proportion";
    EXPECT_EQ(widthOf("<img icon=plus height=7>", 200), std::pair(7, 7));
    EXPECT_EQ(widthOf("<img icon=plus width=28 height=7>", 200), std::pair(28, 7));
    EXPECT_EQ(widthOf("<img icon=plus width=MaxStdIconSizeX align=right>", 200), std::pair(20, 14));
    EXPECT_EQ(widthOf("<rectangle width=50% height=3>", 200), std::pair(100, 3));
    EXPECT_EQ(widthOf("<rectangle width=-5 height=99999>", 200), std::pair(0, 1024)) << "within limits";
    EXPECT_EQ(widthOf("<hline>", 200).first, 200);
    EXPECT_EQ(widthOf("<p singleline=1><hline>a", 200).first,
              200 - static_cast<int>(std::lround(style.GetFont(0).Width("a"))));
    // What is free goes to objects with a place: text at the left, a picture at the right.
    const auto& runs = Paragraph("text <img icon=plus align=right>", 200).Lines().runs;
    EXPECT_NEAR(runs.back().x + runs.back().width, 200, 0.01);
    EXPECT_LT(runs.back().x, 40);
    // Pictures without a blank between them wrap, words beside one don't.
    EXPECT_EQ(Paragraph("<img icon=plus><img icon=plus>a", 24).Lines().lines.size(), 2u);
    EXPECT_EQ(document.GetMinimalWidth(), 14 + static_cast<int>(std::ceil(style.GetFont(0).Width("a"))));
}

TEST_F(RichLayout, ColumnsTakeWhatTheyStateAndShareTheRest)
{
    EXPECT_THAT(Widths("<tr cellspaces=0><td>a<td>b<td>c</tr>", 100), ElementsAre(33, 34, 33));
    EXPECT_THAT(Widths("<tr cellspaces=5 border=1><td>a<td>b</tr>", 107), ElementsAre(50, 50));
    EXPECT_THAT(Widths("<tr padding=3 cellspaces=0><td width=20>a<td>b<td width=25%>c</tr>", 200),
                ElementsAre(26, 124, 50));
    EXPECT_THAT(Widths("<tr padding=0 cellspaces=0><td width=MaxStdIconSizeX padding=3>a<td>b</tr>", 100),
                ElementsAre(26, 74));
    EXPECT_THAT(Widths("<tr padding=1 cellspaces=0><td autosize=1><img icon=plus><td>b</tr>", 100),
                ElementsAre(16, 84));
    // A word that needs more than its part gets it; the others share the rest.
    EXPECT_THAT(Widths("<tr padding=0 cellspaces=0><td><rectangle width=60><td>a<td>b</tr>", 100),
                ElementsAre(60, 20, 20));
    // Too narrow: first a stated width goes down to its content, then all lose alike.
    EXPECT_THAT(
        Widths("<tr padding=0 cellspaces=0><td width=90><rectangle width=20><td><rectangle width=30></tr>",
               60),
        ElementsAre(30, 30));
    EXPECT_THAT(Widths("<tr padding=0 cellspaces=0><td autosize=1><rectangle width=40><td "
                       "autosize=1><rectangle width=20></tr>",
                       30),
                ElementsAre(20, 10));
    // A caption that could be cut does so before a value beside it.
    EXPECT_THAT(Widths("<tr padding=0 cellspaces=0><td singleline=1><rectangle width=300><td "
                       "autosize=1><rectangle width=40></tr>",
                       100),
                ElementsAre(60, 40));
    EXPECT_EQ(document.GetMinimalWidth(), 340);
    EXPECT_EQ(document.GetPreferredWidth(), 340);

    document.Parse(
        "<tr padding=0 cellspaces=0><td>a<td width=9><rectangle width=30><td><rectangle width=50></tr>");
    EXPECT_EQ(document.GetPreferredWidth(), 130) << "equal parts";
    document.Parse("<tr padding=3 border=1><td border=1><img icon=plus>");
    EXPECT_EQ(document.GetHeight(100), 14 + 2 * (1 + 1 + 3));
    document.Parse("<tr padding=0 height=30><td><img icon=plus>");
    EXPECT_EQ(document.GetHeight(100), 30);
    document.Parse("<tr padding=0 height=10><td><img icon=plus>");
    EXPECT_EQ(document.GetHeight(100), 14) << "nothing is cut";
}
