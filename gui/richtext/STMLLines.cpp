// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/STMLLines.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "gui/richtext/MSTMLObject.h"

namespace
{
constexpr double tolerance = 1e-3;   // pixels: what sums of float widths are off
constexpr char16_t ellipsis = 0x2026;

/// A segment on the line that is being filled.
struct Placed
{
    STMLSegment segment;
    double x = 0;   // from the line's start
    double gap = 0;   // blanks before it
    bool isCut = false;   // an ellipsis follows
};

class LineBreaker
{
public:
    LineBreaker(const std::vector<STMLPiece>& textPieces, const STMLWords& textWords,
                const STMLOwner& textOwner, const STMLParagraphFormat& paragraphFormat,
                const STMLTextStyle& paragraphStyle, std::int32_t leftEnd, std::int32_t width)
        : pieces(textPieces), words(textWords), owner(textOwner), format(paragraphFormat),
          style(&paragraphStyle), left(leftEnd), room(width)
    {
    }

    STMLLines Break()
    {
        bool isOpen = true;   // the paragraph's end ends a line
        for (const STMLWord& word : words.words)
        {
            isOpen = word.kind != STMLWord::Kind::LineStart;
            if (word.kind == STMLWord::Kind::Text)
                TakeWord(word);
            else if (isOpen || !placed.empty())
                FinishLine(true);
            if (word.kind == STMLWord::Kind::LineFeed)
                style = &pieces[word.piece].style;
        }
        if (isOpen || made.lines.empty())
            FinishLine(true);
        return std::move(made);
    }

private:
    bool Fits(double right) const { return format.singleLine || right <= room + tolerance; }
    const STMLPiece& PieceOf(const Placed& item) const { return pieces[item.segment.piece]; }

    bool IsPadding(const STMLSegment& segment) const
    {
        return pieces[segment.piece].kind == STMLPiece::Kind::Padding;
    }

    /// Whether it is what a field has behind its last blank.
    bool IsPadding(const STMLWord& word) const
    {
        return std::all_of(words.segments.begin() + static_cast<std::ptrdiff_t>(word.firstSegment),
                           words.segments.begin() + static_cast<std::ptrdiff_t>(word.endSegment),
                           [this](const STMLSegment& segment) { return IsPadding(segment); });
    }

    void TakeWord(const STMLWord& word)
    {
        if (IsPadding(word) && (placed.empty() || !Fits(end + word.gap + word.width)))
            return;   // a line has more than that
        double gap = placed.empty() ? 0 : word.gap;
        if (!placed.empty() && !Fits(end + gap + word.width))
        {
            FinishLine(false);
            gap = 0;
        }
        const bool isWhole = Fits(end + gap + word.width);
        for (std::size_t index = word.firstSegment; index < word.endSegment; ++index)
        {
            const STMLSegment& segment = words.segments[index];
            if (!isWhole && IsPadding(segment))
                continue;   // the letters need the room
            if (isWhole || Fits(end + gap + segment.width))
                Place(segment, gap);
            else if (pieces[segment.piece].kind == STMLPiece::Kind::Text)
                PlaceByCharacters(segment);
            else
            {
                if (!placed.empty())
                    FinishLine(false);
                Place(segment, 0);
            }
            gap = 0;
        }
    }

    void Place(const STMLSegment& segment, double gap)
    {
        placed.push_back({ .segment = segment, .x = end + gap, .gap = gap });
        end += gap + segment.width;
    }

    void PlaceByCharacters(const STMLSegment& segment)
    {
        const STMLPiece& piece = pieces[segment.piece];
        STMLSegment part{ .piece = segment.piece, .first = segment.first, .end = segment.first };
        for (int index = segment.first; index < segment.end; ++index)
        {
            const double width = piece.widths[static_cast<std::size_t>(index)];
            const bool isFirst = placed.empty() && part.end == part.first;
            // What adds no width belongs to the character before it: a pair's second half, an accent.
            if (width > 0 && !isFirst && !Fits(end + part.width + width))
            {
                if (part.end > part.first)
                    Place(part, 0);
                FinishLine(false);
                part = { .piece = segment.piece, .first = index, .end = index };
            }
            ++part.end;
            part.width += width;
        }
        Place(part, 0);
    }

    void FinishLine(bool isLast)
    {
        if (format.singleLine && end > room + tolerance)
            Cut();
        Spread(isLast);
        Emit(MeasureLine());
        placed.clear();
        end = 0;
    }

    /// Leaves what fits in front of an ellipsis.
    void Cut()
    {
        std::size_t last = placed.size();
        int keptEnd = 0;
        double keptWidth = 0;
        for (std::size_t index = 0; index < placed.size(); ++index)
        {
            const Placed& item = placed[index];
            const STMLPiece& piece = PieceOf(item);
            if (piece.kind != STMLPiece::Kind::Text)
                continue;
            const double limit = room + tolerance - owner.Font(piece.style.font).Width(MString(ellipsis));
            if (last == placed.size())
            {
                last = index;
                keptEnd = item.segment.first;
            }
            double width = 0;
            for (int place = item.segment.first; item.x + width <= limit; ++place)
            {
                last = index;
                keptEnd = place;
                keptWidth = width;
                if (place == item.segment.end)
                    break;
                width += piece.widths[static_cast<std::size_t>(place)];
            }
            if (item.x > limit)
                break;
        }
        if (last == placed.size())
            return;   // pictures alone
        placed.resize(last + 1);
        Placed& cut = placed.back();
        cut.isCut = true;
        cut.segment.end = keptEnd;
        cut.segment.width = keptWidth + owner.Font(PieceOf(cut).style.font).Width(MString(ellipsis));
        end = cut.x + cut.segment.width;
    }

    bool TakesFreeWidth(const Placed& item) const
    {
        return PieceOf(item).kind == STMLPiece::Kind::Object && PieceOf(item).object->TakesFreeWidth();
    }

    /// Gives what the line leaves free to objects that want it, to the blanks, or to the sides.
    void Spread(bool isLast)
    {
        lineLeft = left;
        const double free = room - end;
        if (free <= 0 || placed.empty())
            return;
        const auto takers = std::count_if(placed.begin(), placed.end(),
                                          [this](const Placed& item) { return TakesFreeWidth(item); });
        const auto gaps =
            std::count_if(placed.begin() + 1, placed.end(), [](const Placed& item) { return item.gap > 0; });
        double moved = 0;
        if (takers > 0)
            for (Placed& item : placed)
            {
                item.x += moved;
                if (!TakesFreeWidth(item))
                    continue;
                item.segment.width += free / static_cast<double>(takers);
                moved += free / static_cast<double>(takers);
            }
        else if (format.alignment == STMLAlignment::Justify && !isLast && gaps > 0)
            for (std::size_t index = 1; index < placed.size(); ++index)
            {
                if (placed[index].gap > 0)
                    moved += free / static_cast<double>(gaps);
                placed[index].gap += placed[index].gap > 0 ? free / static_cast<double>(gaps) : 0;
                placed[index].x += moved;
            }
        // What is centred begins on a whole pixel: lines of equal labels look alike.
        else if (format.alignment == STMLAlignment::Center)
            lineLeft += std::round(free / 2);
        else if (format.alignment == STMLAlignment::Right)
            lineLeft += free;
    }

    /// How far an object on the capitals' middle reaches above the baseline.
    std::int32_t AboveOf(const MSTMLObject& object) const
    {
        const std::int32_t capital = owner.HeightsOf(object.Format().style.font).capital;
        return (object.GetObjectHeight() + capital + 1) / 2;
    }

    /// The line, without its runs. Text and objects beside it say how high; those at top, middle or bottom
    /// make room below or on both sides.
    STMLLine MeasureLine()
    {
        hasText = placed.empty();
        std::int32_t above = 0;
        std::int32_t below = std::numeric_limits<std::int32_t>::min();
        std::int32_t highest = 0;
        const auto need = [&](const STMLTextStyle& text)
        {
            const STMLFontHeights heights = owner.HeightsOf(text.font);
            above = std::max(above, heights.above);
            below = std::max(below, heights.below);
        };
        if (placed.empty())
            need(*style);
        for (const Placed& item : placed)
            if (PieceOf(item).kind == STMLPiece::Kind::Text)
            {
                need(PieceOf(item).style);
                hasText = true;
            }
        for (const Placed& item : placed)
        {
            if (PieceOf(item).kind != STMLPiece::Kind::Object)
                continue;
            const MSTMLObject& object = *PieceOf(item).object;
            const std::int32_t height = object.GetObjectHeight();
            highest = std::max(highest, height);
            if (hasText && !object.Format().down)
            {
                above = std::max(above, AboveOf(object));
                below = std::max(below, height - AboveOf(object));
            }
        }
        if (!hasText)
            return { .top = made.height, .height = highest, .baseline = made.height + highest };
        const std::int32_t more = std::max(0, highest - above - below);
        return { .top = made.height,
                 .height = above + below + more,
                 .baseline = made.height + above + more / 2 };
    }

    void Emit(STMLLine line)
    {
        line.firstRun = made.runs.size();
        const Placed* previous = nullptr;
        for (const Placed& item : placed)
        {
            if (previous != nullptr && Continues(*previous, item))
                Join(item);
            else
                made.runs.push_back(RunOf(item, line));
            previous = &item;
        }
        line.endRun = made.runs.size();
        made.height = SumOfExtents(made.height, line.height);
        made.lines.push_back(line);
    }

    /// Whether both can be painted at once: one blank of the same piece between them, or nothing.
    bool Continues(const Placed& previous, const Placed& item) const
    {
        const STMLPiece& piece = PieceOf(item);
        const int between = item.segment.first - previous.segment.end;
        return piece.kind == STMLPiece::Kind::Text && previous.segment.piece == item.segment.piece &&
               (between == 0 || (between == 1 && piece.text[previous.segment.end] == u' ')) &&
               format.alignment != STMLAlignment::Justify;
    }

    void Join(const Placed& item)
    {
        STMLRun& run = made.runs.back();
        if (item.gap > 0)
            run.text.Append(u' ');
        run.text.Append(TextOf(item));
        run.width = lineLeft + item.x + item.segment.width - run.x;
    }

    MString TextOf(const Placed& item) const
    {
        const STMLPiece& piece = PieceOf(item);
        MString text = piece.text.SubString(item.segment.first, item.segment.end - item.segment.first);
        return item.isCut ? text.Append(ellipsis) : text;
    }

    STMLRun RunOf(const Placed& item, const STMLLine& line) const
    {
        STMLRun run;
        run.piece = item.segment.piece;
        run.x = lineLeft + item.x;
        run.width = item.segment.width;
        if (PieceOf(item).kind == STMLPiece::Kind::Text)
            run.text = TextOf(item);
        if (PieceOf(item).kind != STMLPiece::Kind::Object)
            return run;
        const MSTMLObject& object = *PieceOf(item).object;
        run.height = object.GetObjectHeight();
        const std::int32_t free = line.height - run.height;
        const std::optional<STMLFit>& down = object.Format().down;
        if (hasText && !down)
            run.top = line.baseline - AboveOf(object);
        else if (down == STMLFit::Begin)
            run.top = line.top;
        else
            run.top = line.top + (down == STMLFit::End ? free : free / 2);
        return run;
    }

    const std::vector<STMLPiece>& pieces;
    const STMLWords& words;
    const STMLOwner& owner;
    const STMLParagraphFormat& format;
    const STMLTextStyle* style;   // of a line without anything
    std::int32_t left;
    double room;
    std::vector<Placed> placed;
    double end = 0;   // of what is placed
    double lineLeft = 0;
    bool hasText = false;
    STMLLines made;
};
}   // namespace

STMLLines BreakLines(const std::vector<STMLPiece>& pieces, const STMLWords& words, const STMLOwner& owner,
                     const STMLParagraphFormat& format, const STMLTextStyle& style, std::int32_t left,
                     std::int32_t width)
{
    return LineBreaker(pieces, words, owner, format, style, left, width).Break();
}
