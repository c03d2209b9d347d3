// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MSplitter.h"

#include <algorithm>

namespace
{
constexpr std::int32_t KeyPixels = 8;
}

MSplitter::MSplitter()
{
    controlType = MControlType::NoBackground;
    tabStop = true;
}

MSize MSplitter::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const std::int32_t thick = Style()->GetSize(MStyleSize::VSplitter);
    return { thick, thick };
}

MStdCursor MSplitter::GetCursor(std::int32_t, std::int32_t) const
{
    return Along() == Axis::X ? MStdCursor::ColumnLine : MStdCursor::RowLine;
}

void MSplitter::Paint(MDrawer& drawer)
{
    if (!IsHovered() && !IsPressed())
        return;
    const std::int32_t line = Style()->Hairline();
    MRectangle area = OwnRectangle();
    std::int32_t& first = Along() == Axis::X ? area.left : area.top;
    std::int32_t& last = Along() == Axis::X ? area.right : area.bottom;
    first += (last - first + 1 - line) / 2;
    last = first + line - 1;
    drawer.FillRectangle(area, Style()->GetColor(MStdColor::LineStrong));
}

void MSplitter::MoveBy(std::int32_t pixels)
{
    if (layout.layout == nullptr || pixels == 0)
        return;
    const Axis axis = Along();
    const std::vector<MControl*>& row = layout.layout->Controls();
    const auto self = std::find(row.begin(), row.end(), this);
    if (self == row.begin() || self == row.end() || self + 1 == row.end())
        return;
    MControl& before = **(self - 1);
    MControl& after = **(self + 1);
    const std::int32_t both = before.Size(axis) + after.Size(axis);
    const std::int32_t least = before.MinimalSize(axis);
    const std::int32_t most = std::max(least, both - after.MinimalSize(axis));
    const std::int32_t wanted = std::clamp(before.Size(axis) + pixels, least, most);
    // Ratios become pixels, all in the row, so that the rest keeps its share.
    for (MControl* each : row)
        if (each->layout.Along(axis).ratio > 0)
            each->layout.Along(axis).ratio = std::max(1, each->Size(axis));
    if (before.layout.Along(axis).ratio > 0)
        before.layout.Along(axis).ratio = std::max(1, wanted);
    if (after.layout.Along(axis).ratio > 0)
        after.layout.Along(axis).ratio = std::max(1, both - wanted);
    Parent()->Relayout();
}

bool MSplitter::OnEvent(const MControlEvent& event)
{
    const bool across = Along() == Axis::X;
    const std::int32_t at = across ? event.x : event.y;
    switch (event.code)
    {
    case MEventCode::LeftDown:
        grabbedAt = at;
        return true;
    case MEventCode::Move:
        if (!IsPressed())
            return false;
        // The line has moved with the pointer: places count from where it is now.
        MoveBy(at - grabbedAt);
        return true;
    case MEventCode::KeyDown:
        if (event.key == (across ? MKey::Left : MKey::Up) || event.key == (across ? MKey::Right : MKey::Down))
        {
            MoveBy(event.key == MKey::Left || event.key == MKey::Up ? -KeyPixels : KeyPixels);
            return true;
        }
        return MControl::OnEvent(event);
    default:
        return MControl::OnEvent(event);
    }
}
