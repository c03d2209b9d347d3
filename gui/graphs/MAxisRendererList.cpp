// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/MAxisRendererList.h"

#include <algorithm>
#include <cmath>

#include "gui/controls/StyleNames.h"

namespace
{
// Units at 100 %.
constexpr double LabelTick = 4;
constexpr double MarkTick = 2;
constexpr double BaselineBelow = 13;   // of captions below a graph
constexpr double TextBeside = 6;   // of captions beside one
constexpr std::uint8_t TickAlpha = 89;   // 35 %: ticks stand outside of the grid and its curves
// A position counts as an end up to there: views come from products of factors.
constexpr double EndTolerance = 1e-9;

MFont& FontOf(const MDrawer& drawer, bool strong)
{
    return drawer.GetFont(static_cast<std::int32_t>(strong ? MStdFont::Label : MStdFont::Axis));
}

std::int32_t Rounded(double value)
{
    return static_cast<std::int32_t>(std::floor(value + 0.5));
}

bool IsSeen(double viewPosition)
{
    return viewPosition >= -EndTolerance && viewPosition <= 1 + EndTolerance;
}
}   // namespace

/// The room along an axis.
struct MAxisRendererList::Space
{
    MRectangle rectangle;
    bool isHorizontal;
    bool isMirrored;

    std::int32_t Length() const { return isHorizontal ? rectangle.Width() : rectangle.Height(); }
    std::int32_t PixelOf(double viewPosition) const { return Rounded(viewPosition * (Length() - 1)); }
    /// In the drawer's places.
    std::int32_t AtPixel(std::int32_t pixel) const
    {
        return isHorizontal ? rectangle.left + pixel : rectangle.bottom - pixel;
    }
    MRectangle Tick(double viewPosition, std::int32_t length) const
    {
        const std::int32_t at = AtPixel(PixelOf(viewPosition));
        if (isHorizontal)
            return isMirrored ? MRectangle{ at, rectangle.bottom - length + 1, at, rectangle.bottom }
                              : MRectangle{ at, rectangle.top, at, rectangle.top + length - 1 };
        return isMirrored ? MRectangle{ rectangle.right - length + 1, at, rectangle.right, at }
                          : MRectangle{ rectangle.left, at, rectangle.left + length - 1, at };
    }
};

void MAxisRendererList::AddLabel(const MString& text, double position, bool strong)
{
    MAxisLabel label;
    label.text = text;
    label.position = position;
    label.strong = strong;
    list.push_back(label);
}

void MAxisRendererList::Clear()
{
    list.clear();
    marks.clear();
}

void MAxisRendererList::Render(MDrawer& drawer, const MRectangle& rectangle, bool isHorizontal,
                               std::vector<MAxisLabel>& placed, const Options& options, double viewFrom,
                               double viewTo) const
{
    placed.clear();
    const double view = viewTo - viewFrom;
    if (rectangle.IsEmpty() || !(view > 0))
        return;
    const Space space{ rectangle, isHorizontal, options.isMirrored };
    std::vector<MAxisLabel> seen;
    const MAxisLabel* before = nullptr;   // the last outside of the view's near end
    const MAxisLabel* behind = nullptr;
    for (const MAxisLabel& each : list)
    {
        MAxisLabel label = each;
        label.viewPosition = (each.position - viewFrom) / view;
        MFont& font = FontOf(drawer, label.strong);
        label.size = static_cast<std::int32_t>(
            std::ceil(isHorizontal ? font.Width(label.text) : font.CapitalHeight()));
        label.start = Rounded(label.viewPosition * (space.Length() - 1) - (label.size - 1) / 2.0);
        if (IsSeen(label.viewPosition))
            seen.push_back(label);
        else if (label.viewPosition < 0)
            before = &each;
        else if (behind == nullptr)
            behind = &each;
    }

    std::vector<double> seenMarks;
    const auto place = [&](MAxisLabel& label)
    {
        // Centred, but inside.
        label.start = std::clamp(label.start, 0, std::max(0, space.Length() - label.size));
        const bool fits = label.size <= space.Length() &&
                          std::none_of(placed.begin(), placed.end(),
                                       [&](const MAxisLabel& other)
                                       {
                                           return label.start < other.start + other.size + options.gap &&
                                                  other.start < label.start + label.size + options.gap;
                                       });
        if (fits)
            placed.push_back(label);
        else if (options.subdivides)
            seenMarks.push_back(label.viewPosition);
    };
    const auto isAt = [](const MAxisLabel& label, double end)
    {
        return std::abs(label.viewPosition - end) <= EndTolerance;
    };
    // The ends first.
    for (MAxisLabel& label : seen)
        if (isAt(label, 1))
            place(label);
    if (seen.size() > 1 && isAt(seen.front(), 0))
        place(seen.front());
    for (auto label = seen.rbegin(); label != seen.rend(); ++label)
        if (!isAt(*label, 1) && (seen.size() == 1 || &*label != &seen.front() || !isAt(*label, 0)))
            place(*label);
    std::sort(placed.begin(), placed.end(),
              [](const MAxisLabel& a, const MAxisLabel& b) { return a.viewPosition > b.viewPosition; });

    for (const double mark : marks)
        if (IsSeen((mark - viewFrom) / view))
            seenMarks.push_back((mark - viewFrom) / view);
    if (options.paints)
        Paint(drawer, space, placed, seenMarks);

    for (const MAxisLabel* outside : { before, behind })
        if (outside != nullptr)
        {
            MAxisLabel label;
            label.position = outside->position;
            label.viewPosition = (outside->position - viewFrom) / view;
            placed.insert(outside == before ? placed.end() : placed.begin(), label);
        }
}

void MAxisRendererList::Paint(MDrawer& drawer, const Space& space, const std::vector<MAxisLabel>& placed,
                              const std::vector<double>& seenMarks) const
{
    const auto units = [&drawer](double count)
    {
        return std::max(1, Rounded(count * drawer.GetScale()));
    };
    const auto colorOf = [&drawer](MStdColor role)
    {
        return drawer.GetColor(static_cast<std::int32_t>(role));
    };
    const MColor tick = colorOf(MStdColor::Grid).WithAlpha(TickAlpha);
    for (const double mark : seenMarks)
        drawer.FillRectangle(space.Tick(mark, units(MarkTick)), tick);
    const MRectangle& area = space.rectangle;
    for (const MAxisLabel& label : placed)
    {
        drawer.FillRectangle(space.Tick(label.viewPosition, units(LabelTick)), tick);
        const MColor ink = colorOf(label.strong ? MStdColor::Text2 : MStdColor::Text3);
        MFont& font = FontOf(drawer, label.strong);
        const double width = font.Width(label.text);
        if (space.isHorizontal)
            drawer.TextOut(area.left + label.start,
                           space.isMirrored ? area.bottom - units(BaselineBelow) + label.size
                                            : area.top + units(BaselineBelow),
                           label.text, font, ink);
        else
            drawer.TextOut(space.isMirrored ? area.right + 1 - units(TextBeside) - width
                                            : area.left + units(TextBeside),
                           area.bottom - label.start, label.text, font, ink);
    }
}
