// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTMLParagraph.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "gui/richtext/MSTMLObject.h"

namespace
{
constexpr double bulletIndent = 12;   // units
constexpr std::int32_t widestLine = 1 << 24;

std::int32_t RoundedUp(double width)
{
    return static_cast<std::int32_t>(std::ceil(std::min(width, double{ widestLine }) - 1e-3));
}
}   // namespace

MSTMLParagraph::MSTMLParagraph(const STMLOwner& itemOwner, const STMLParagraphFormat& paragraphFormat,
                               STMLTextStyle textStyle)
    : MSTMLItem(itemOwner), format(paragraphFormat), style(std::move(textStyle))
{
}

std::unique_ptr<MSTMLItem> MSTMLParagraph::Clone() const
{
    return std::make_unique<MSTMLParagraph>(*this);
}

void MSTMLParagraph::SetOwner(const STMLOwner& newOwner)
{
    MSTMLItem::SetOwner(newOwner);
    isMeasured = false;
    laidOutWidth = -1;
    for (const STMLPiece& piece : pieces)
        if (piece.object != nullptr)
            piece.object->SetOwner(newOwner);
}

void MSTMLParagraph::AddText(const MString& text, const STMLTextStyle& textStyle)
{
    const int skipped = endsInBlank && !text.IsEmpty() && text[0] == u' ' ? 1 : 0;
    if (text.Length() == skipped)
        return;
    if (pieces.empty() || isPieceEnded || pieces.back().kind != STMLPiece::Kind::Text ||
        pieces.back().style != textStyle)
        pieces.emplace_back(STMLPiece::Kind::Text, textStyle);
    isPieceEnded = false;
    pieces.back().text.Append(skipped > 0 ? text.SubString(skipped, text.Length() - skipped) : text);
    endsInBlank = text[text.Length() - 1] == u' ';
}

void MSTMLParagraph::AddObject(std::unique_ptr<MSTMLObject> object)
{
    pieces.emplace_back(STMLPiece::Kind::Object, object->Format().style);
    pieces.back().object = std::move(object);
    endsInBlank = false;
}

void MSTMLParagraph::AddPadding(const STMLTextStyle& textStyle)
{
    pieces.emplace_back(STMLPiece::Kind::Padding, textStyle);
}

void MSTMLParagraph::EndPiece()
{
    isPieceEnded = !pieces.empty() && pieces.back().kind == STMLPiece::Kind::Text;
}

void MSTMLParagraph::Measure()
{
    if (isMeasured)
        return;
    hasShares = false;
    for (STMLPiece& piece : pieces)
    {
        if (piece.kind == STMLPiece::Kind::Text)
            Owner().Font(piece.style.font).MeasureCharacters(piece.text, piece.widths);
        if (piece.object != nullptr)
            hasShares = hasShares || piece.object->Format().width.IsShare();
    }
    words = MakeWords(pieces, Owner(), STMLMeasure::Preferred, format.singleLine);
    minimalWidth = Indent() + RoundedUp(format.singleLine ? words.longest : words.widest);
    preferredWidth = Indent() + RoundedUp(words.longest);
    isMeasured = true;
}

std::int32_t MSTMLParagraph::Indent() const
{
    return format.bulletSize > 0 ? Owner().Pixels(bulletIndent) : 0;
}

std::int32_t MSTMLParagraph::GetMinimalWidth()
{
    Measure();
    return minimalWidth;
}

std::int32_t MSTMLParagraph::GetPreferredWidth()
{
    Measure();
    return preferredWidth;
}

std::int32_t MSTMLParagraph::GetHeight(std::int32_t width)
{
    Layout(width);
    return lines.height;
}

void MSTMLParagraph::Layout(std::int32_t width)
{
    width = std::max(width, 1);
    if (laidOutWidth == width)
        return;
    Measure();
    const std::int32_t left = std::min(Indent(), width / 2);
    for (const STMLPiece& piece : pieces)
        if (piece.object != nullptr)
            piece.object->Layout(width - left);
    if (hasShares)
        words = MakeWords(pieces, Owner(), STMLMeasure::Present, format.singleLine);
    lines = BreakLines(pieces, words, Owner(), format, style, left, width - left);
    laidOutWidth = width;
}

void MSTMLParagraph::Paint(MDrawer& drawer, const MRectangle& area)
{
    Layout(area.Width());
    if (format.HasFill())
        drawer.FillRectangle(area, format.FillColor(Owner()));
    if (format.bulletSize > 0)
        PaintBullet(drawer, area);
    const MRectangle clip = drawer.GetClip();
    const auto firstSeen = std::lower_bound(lines.lines.begin(), lines.lines.end(), clip.top - area.top,
                                            [](const STMLLine& line, std::int32_t top)
                                            { return line.top + line.height <= top; });
    for (auto line = firstSeen; line != lines.lines.end() && area.top + line->top <= clip.bottom; ++line)
    {
        PaintDecorations(drawer, area, *line);
        for (std::size_t index = line->firstRun; index < line->endRun; ++index)
            PaintRun(drawer, area, *line, lines.runs[index]);
    }
}

void MSTMLParagraph::PaintBullet(MDrawer& drawer, const MRectangle& area) const
{
    const STMLTextStyle& text = pieces.empty() ? style : pieces.front().style;
    const std::int32_t capital = Owner().HeightsOf(text.font).capital;
    const double x = std::min(Owner().Scaled(bulletIndent / 2 - 1), area.Width() / 4.0);
    drawer.FillCircle({ area.left + x, area.top + lines.lines.front().baseline - capital / 2.0 },
                      Owner().Scaled(format.bulletSize) / 2,
                      Owner().InkOf(text.color, text.alpha, format.followsInk));
}

void MSTMLParagraph::PaintDecorations(MDrawer& drawer, const MRectangle& area, const STMLLine& line) const
{
    for (std::size_t first = line.firstRun; first < line.endRun;)
    {
        const STMLTextStyle& text = pieces[lines.runs[first].piece].style;
        const STMLDecoration* decoration = text.decoration.get();
        std::size_t end = first + 1;
        while (end < line.endRun && decoration == pieces[lines.runs[end].piece].style.decoration.get())
            ++end;
        const STMLRun& last = lines.runs[end - 1];
        const auto left = static_cast<std::int32_t>(std::lround(lines.runs[first].x));
        const auto right = static_cast<std::int32_t>(std::lround(last.x + last.width)) - 1;
        const std::int32_t baseline = area.top + line.baseline;
        if (decoration != nullptr)
            PaintDecoration(drawer, { area.left + left, baseline, area.left + right, baseline }, text);
        first = end;
    }
}

/// @param area  a row of pixels below the baseline
void MSTMLParagraph::PaintDecoration(MDrawer& drawer, const MRectangle& area, const STMLTextStyle& text) const
{
    const STMLFontHeights heights = Owner().HeightsOf(text.font);
    const std::int32_t hairline = Owner().LinePixels(1);
    if (const std::optional<STMLField>& field = text.decoration->field)
    {
        const MRectangle panel{ area.left, area.top - heights.capital - heights.descent, area.right,
                                area.top + heights.descent - 1 };
        const double radius = Owner().Scaled(field->radius);
        drawer.FillRoundRectangle(panel, radius, Owner().ColorOf(field->color, text.alpha));
        drawer.RoundRectangle(panel, radius, hairline, Owner().ColorOf(field->edgeColor, text.alpha));
    }
    if (text.decoration->underlined)
    {
        const std::int32_t top = area.top + Owner().Pixels(1);
        drawer.FillRectangle({ area.left, top, area.right, top + hairline - 1 },
                             Owner().InkOf(text.color, text.alpha, format.followsInk));
    }
}

void MSTMLParagraph::PaintRun(MDrawer& drawer, const MRectangle& area, const STMLLine& line,
                              const STMLRun& run) const
{
    const STMLPiece& piece = pieces[run.piece];
    if (piece.kind == STMLPiece::Kind::Text)
        drawer.TextOut(area.left + run.x, area.top + line.baseline, run.text, Owner().Font(piece.style.font),
                       Owner().InkOf(piece.style.color, piece.style.alpha, format.followsInk));
    if (piece.kind != STMLPiece::Kind::Object)
        return;
    const auto left = static_cast<std::int32_t>(std::lround(run.x));
    const auto right = static_cast<std::int32_t>(std::lround(run.x + run.width));
    const MRectangle place{ area.left + left, area.top + run.top, area.left + right - 1,
                            area.top + run.top + run.height - 1 };
    if (!place.IsEmpty())
        piece.object->Paint(drawer, place);
}
