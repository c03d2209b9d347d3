// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MTabSet.h"

#include <algorithm>

#include "gui/fields/WidgetText.h"

namespace
{
constexpr double RowUnits = 28;
constexpr double PaddingUnits = 10;
}   // namespace

MTabSet::MTabSet()
{
    controlType = MControlType::TabSet;
    font = MStdFont::Large1;
    tabStop = true;
}

std::int32_t MTabSet::RowHeight() const
{
    return Style() != nullptr ? Style()->Pixels(RowUnits) : 0;
}

void MTabSet::Realize()
{
    SetPage(page);
}

void MTabSet::OnLoaded()
{
    SetPage(page);
}

MSize MTabSet::ContentMinimum() const
{
    MSize least{ 0, RowHeight() };
    if (Count() > 0)
        least.width = TabArea(Count() - 1).right + 1;
    for (const auto& each : Children())
    {
        least.width = std::max(least.width, each->MinimalSize(Axis::X));
        least.height = std::max(least.height, RowHeight() + each->MinimalSize(Axis::Y));
    }
    return least;
}

void MTabSet::OnPlaced()
{
    for (const auto& each : Children())
    {
        each->SetPosition(0, RowHeight());
        each->SetSize(Width(), Height() - RowHeight());
    }
}

void MTabSet::SetPage(std::int32_t index)
{
    page = std::clamp(index, 0, std::max(0, Count() - 1));
    for (std::int32_t i = 0; i < Count(); ++i)
        Children()[static_cast<std::size_t>(i)]->SetVisible(i == page);
    Invalidate();
}

MRectangle MTabSet::TabArea(std::int32_t index) const
{
    const std::int32_t padding = Style() != nullptr ? Style()->Pixels(PaddingUnits) : 0;
    std::int32_t left = 0;
    for (std::int32_t i = 0; i < index; ++i)
        left +=
            WidgetText::Width(*this, font, Children()[static_cast<std::size_t>(i)]->caption) + 2 * padding;
    const std::int32_t width =
        WidgetText::Width(*this, font, Children()[static_cast<std::size_t>(index)]->caption) + 2 * padding;
    return MRectangle::OfSize(left, 0, width, RowHeight());
}

std::int32_t MTabSet::TabAt(std::int32_t x, std::int32_t y) const
{
    for (std::int32_t i = 0; i < Count(); ++i)
        if (TabArea(i).Contains(x, y))
            return i;
    return -1;
}

void MTabSet::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const std::int32_t line = style.Hairline();
    drawer.FillRectangle({ 0, RowHeight() - line, Width() - 1, RowHeight() - 1 },
                         style.GetColor(MStdColor::Line));
    for (std::int32_t i = 0; i < Count(); ++i)
    {
        const MControl& child = *Children()[static_cast<std::size_t>(i)];
        std::uint16_t state = IsUsable() && child.IsEnabled() ? DrawEnabled : 0;
        state |= i == page ? DrawOn : 0;
        state |= i == hoveredTab ? DrawHovered : 0;
        style.PaintTab(drawer, TabArea(i), state);
        const MStdColor text = state == 0  ? MStdColor::TextDisabled
                               : i == page ? MStdColor::Text
                                           : MStdColor::Text2;
        drawer.AlignedTextOut(TabArea(i), child.caption, style.GetFont(font), style.GetColor(text),
                              MPlacement::Middle);
    }
}

void MTabSet::Choose(std::int32_t index)
{
    if (index < 0 || index >= Count() || index == page ||
        !Children()[static_cast<std::size_t>(index)]->IsEnabled())
        return;
    SetPage(index);
    MOnItemParams<std::int32_t> params;
    params.source = this;
    params.item = index;
    changed.Post(GlobalEventProcessor(), params);
}

bool MTabSet::OnEvent(const MControlEvent& event)
{
    if (event.code == MEventCode::LeftDown)
    {
        const std::int32_t tab = TabAt(event.x, event.y);
        Choose(tab);
        return tab >= 0;
    }
    if (event.code == MEventCode::Move)
    {
        const std::int32_t tab = TabAt(event.x, event.y);
        if (tab != hoveredTab)
        {
            hoveredTab = tab;
            Invalidate({ 0, 0, Width() - 1, RowHeight() - 1 });
        }
        return false;
    }
    if (event.code == MEventCode::KeyDown && (event.key == MKey::Left || event.key == MKey::Right))
    {
        const std::int32_t step = event.key == MKey::Left ? -1 : 1;
        for (std::int32_t i = page + step; i >= 0 && i < Count(); i += step)
            if (Children()[static_cast<std::size_t>(i)]->IsEnabled())
            {
                Choose(i);
                break;
            }
        return true;
    }
    return MControl::OnEvent(event);
}

void MTabSet::OnMouseLeave()
{
    hoveredTab = -1;
    Invalidate({ 0, 0, Width() - 1, RowHeight() - 1 });
}
