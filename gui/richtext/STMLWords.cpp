// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/STMLWords.h"

#include <algorithm>
#include <utility>

#include "gui/richtext/MSTMLObject.h"

namespace
{
constexpr double fieldPadding = 4;   // units, before and behind its text

class WordMaker
{
public:
    WordMaker(const std::vector<STMLPiece>& textPieces, const STMLOwner& textOwner,
              STMLMeasure widthOfObjects, bool inOneLine)
        : pieces(textPieces), owner(textOwner), measure(widthOfObjects), singleLine(inOneLine)
    {
    }

    STMLWords Make()
    {
        for (piece = 0; piece < pieces.size(); ++piece)
            switch (pieces[piece].kind)
            {
            case STMLPiece::Kind::Text:
                TakeText(pieces[piece]);
                break;
            case STMLPiece::Kind::Object:
                TakeObject(*pieces[piece].object);
                break;
            case STMLPiece::Kind::Padding:
                Extend(0, 0, owner.Pixels(fieldPadding), owner.Pixels(fieldPadding));
                break;
            }
        Close();
        made.longest = std::max(made.longest, line);
        return std::move(made);
    }

private:
    void TakeText(const STMLPiece& taken)
    {
        const int length = taken.text.Length();
        for (int index = 0; index < length;)
        {
            const char16_t character = taken.text[index];
            if (character == u'\n' && !singleLine)
                Break(STMLWord::Kind::LineFeed);
            else if (character == u' ' || character == u'\n')
                AddBlank(taken.widths[static_cast<std::size_t>(index)]);
            else
            {
                index = TakeWord(taken, index);
                continue;
            }
            ++index;
        }
    }

    int TakeWord(const STMLPiece& taken, int first)
    {
        double width = 0;
        int end = first;
        for (; end < taken.text.Length() && taken.text[end] != u' ' && taken.text[end] != u'\n'; ++end)
            width += taken.widths[static_cast<std::size_t>(end)];
        Extend(first, end, width, width);
        return end;
    }

    void TakeObject(MSTMLObject& object)
    {
        const bool alone = object.IsAlone() && !singleLine;
        if (alone)
            Break(STMLWord::Kind::LineStart);
        else if (isOpen && (object.Format().width.IsShare() || IsObject(made.segments.back().piece)))
            Close();   // between two pictures a line may end, and at one that is as wide as there is room
        const std::int32_t width =
            measure == STMLMeasure::Present ? object.GetWidth() : object.GetPreferredWidth();
        Extend(0, 0, width, object.GetMinimalWidth());
        if (object.Format().width.IsShare())
            Close();
        if (alone)
            Break(STMLWord::Kind::LineStart);
    }

    bool IsObject(std::size_t index) const { return pieces[index].kind == STMLPiece::Kind::Object; }

    void AddBlank(double width)
    {
        Close();
        gap += width;
    }

    void Extend(int first, int end, double width, double least)
    {
        if (!isOpen)
            made.words.push_back({ .firstSegment = made.segments.size(), .gap = std::exchange(gap, 0) });
        isOpen = true;
        made.segments.push_back({ .piece = piece, .first = first, .end = end, .width = width });
        made.words.back().width += width;
        leastWidth += least;
    }

    void Close()
    {
        if (!isOpen)
            return;
        isOpen = false;
        STMLWord& word = made.words.back();
        word.endSegment = made.segments.size();
        // In the order in which a line adds them up, so that the longest line fits its own width.
        line = (line == 0 ? 0 : line + word.gap) + word.width;
        made.widest = std::max(made.widest, std::exchange(leastWidth, 0));
    }

    void Break(STMLWord::Kind kind)
    {
        Close();
        made.words.push_back({ .kind = kind, .piece = piece });
        made.longest = std::max(made.longest, std::exchange(line, 0));
        gap = 0;
    }

    const std::vector<STMLPiece>& pieces;
    const STMLOwner& owner;
    STMLMeasure measure;
    bool singleLine;
    STMLWords made;
    std::size_t piece = 0;   // at which it is
    bool isOpen = false;   // the last word goes on
    double gap = 0;   // before the next one
    double leastWidth = 0;   // of the open word
    double line = 0;   // so far
};
}   // namespace

STMLWords MakeWords(const std::vector<STMLPiece>& pieces, const STMLOwner& owner, STMLMeasure measure,
                    bool singleLine)
{
    return WordMaker(pieces, owner, measure, singleLine).Make();
}
