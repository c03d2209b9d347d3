// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MTreeControl.h"

#include <algorithm>
#include <utility>

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"
#include "state/tree/MAttribute.h"

namespace
{
constexpr double IndentUnits = 14;
constexpr double InsetUnits = 3;
constexpr double IconGapUnits = 4;
constexpr double BarUnits = 10;
}   // namespace

MTreeControl::MTreeControl()
{
    controlType = MControlType::TreeControl;
    font = MStdFont::Control;
    tabStop = true;
    root.expanded = true;
    bar = &Make<MScrollBar>();
    bar->overlay = true;
    bar->OnScroll().AddHandler<&MTreeControl::OnScrolled>(*this);
}

void MTreeControl::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    ReadItems(root, node);
    ItemsChanged();
}

void MTreeControl::ReadItems(MTreeItem& parentItem, const MAttribute& node)
{
    for (int i = 0; i < node.SubItemCount(); ++i)
    {
        const XmlAttributes attributes(node.SubItemAt(i));
        MTreeItem& item = parentItem.Add({});
        attributes.Read("text", item.text);
        attributes.Read("expanded", item.expanded);
        attributes.ReadName("icon", item.icon, "MStdIcon");
        ReadItems(item, node.SubItemAt(i));
    }
}

std::int32_t MTreeControl::RowHeight() const
{
    return Style() != nullptr ? std::max(1, Style()->GetSize(MStyleSize::TreeItemHeight)) : 1;
}

MSize MTreeControl::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    return WidgetText::Inside(*this,
                              { Style()->Pixels(60), 3 * RowHeight() + 2 * Style()->Pixels(InsetUnits) });
}

void MTreeControl::ListRows(MTreeItem& item, std::int32_t depth)
{
    for (const auto& each : item.children)
    {
        rows.push_back({ each.get(), depth });
        if (each->expanded)
            ListRows(*each, depth + 1);
    }
}

void MTreeControl::ItemsChanged()
{
    rows.clear();
    ListRows(root, 0);
    if (IndexOf(current) < 0)
        current = nullptr;
    hovered = -1;
    OnPlaced();
    Invalidate();
}

std::int32_t MTreeControl::IndexOf(const MTreeItem* item) const
{
    const auto found =
        std::find_if(rows.begin(), rows.end(), [item](const Row& each) { return each.item == item; });
    return found != rows.end() ? static_cast<std::int32_t>(found - rows.begin()) : -1;
}

void MTreeControl::OnPlaced()
{
    if (Style() == nullptr)
        return;
    const std::int32_t inset = Style()->Pixels(InsetUnits);
    const std::int32_t wide = Style()->Pixels(BarUnits);
    bar->line = RowHeight();
    bar->SetRange(static_cast<std::int32_t>(rows.size()) * RowHeight(), Height() - 2 * inset);
    bar->SetVisible(bar->IsNeeded());
    bar->SetPosition(Width() - wide - Style()->Hairline(), inset);
    bar->SetSize(wide, Height() - 2 * inset);
}

MRectangle MTreeControl::ListArea() const
{
    const std::int32_t inset = Style() != nullptr ? Style()->Pixels(InsetUnits) : 0;
    MRectangle area = OwnRectangle().Inset(inset, inset);
    if (bar->IsVisible())
        area.right -= bar->Width();
    return area;
}

MRectangle MTreeControl::RowArea(std::int32_t index) const
{
    const MRectangle area = ListArea();
    const std::int32_t top = area.top + index * RowHeight() - bar->First();
    return { area.left, top, area.right, top + RowHeight() - 1 };
}

MRectangle MTreeControl::SignArea(std::int32_t index) const
{
    const MRectangle area = RowArea(index);
    const std::int32_t indent = Style() != nullptr ? Style()->Pixels(IndentUnits) : 1;
    const std::int32_t left = area.left + rows[static_cast<std::size_t>(index)].depth * indent;
    return { left, area.top, left + indent - 1, area.bottom };
}

std::int32_t MTreeControl::RowAt(std::int32_t x, std::int32_t y) const
{
    const MRectangle area = ListArea();
    if (!area.Contains(x, y))
        return -1;
    const std::int32_t row = (y - area.top + bar->First()) / RowHeight();
    return row < static_cast<std::int32_t>(rows.size()) ? row : -1;
}

void MTreeControl::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    style.PaintFace(drawer, OwnRectangle(), controlType, GetDrawState() & DrawEnabled);
    const MRectangle area = ListArea();
    const MRectangle clip = drawer.GetClip();
    drawer.SetClip(clip.Intersection(area));
    for (std::int32_t i = bar->First() / RowHeight();
         i < static_cast<std::int32_t>(rows.size()) && RowArea(i).top <= area.bottom; ++i)
        PaintRow(drawer, i);
    drawer.SetClip(clip);
}

void MTreeControl::PaintRow(MDrawer& drawer, std::int32_t index) const
{
    MStyle& style = *Style();
    const MTreeItem& item = *rows[static_cast<std::size_t>(index)].item;
    std::uint16_t state = GetDrawState() & DrawEnabled;
    if (&item == current)
        state |= DrawOn;
    if (index == hovered)
        state |= DrawHovered;
    style.PaintItem(drawer, RowArea(index), controlType, state);
    const MRectangle sign = SignArea(index);
    if (CanExpand(item))
        style.PaintIcon(drawer, sign, item.expanded ? MStdIcon::CaretDown : MStdIcon::CaretRight,
                        style.GetColor(WidgetText::ColorOf(state & DrawEnabled, MStdColor::Text2)));
    MRectangle room = RowArea(index);
    room.left = sign.right + 1 + style.Pixels(IconGapUnits);
    const MColor text = style.GetColor(WidgetText::ColorOf(state & DrawEnabled));
    if (item.icon != MStdIcon::None)
    {
        const std::int32_t wide = style.IconSize(item.icon).width;
        style.PaintIcon(drawer, { room.left, room.top, room.left + wide - 1, room.bottom }, item.icon,
                        style.GetColor(WidgetText::ColorOf(state & DrawEnabled, MStdColor::Icon)));
        room.left += wide + style.Pixels(IconGapUnits);
    }
    drawer.AlignedTextOut(room, item.text, style.GetFont(font), text);
}

void MTreeControl::Tell(MEvent<MOnItemParams<MTreeItem*>>& event, MTreeItem* item)
{
    MOnItemParams<MTreeItem*> params;
    params.source = this;
    params.item = item;
    event.Post(GlobalEventProcessor(), params);
}

void MTreeControl::SetExpanded(MTreeItem& item, bool expands)
{
    if (item.expanded == expands)
        return;
    if (expands)
    {
        MOnItemParams<MTreeItem*> params;
        params.source = this;
        params.item = &item;
        expand.Call(params);
    }
    item.expanded = expands;
    // What was chosen inside of it goes out of sight: its line is chosen instead.
    for (const MTreeItem* each = current; !expands && each != nullptr; each = each->parent)
        if (each == &item && current != &item)
        {
            current = &item;
            Tell(select, current);
        }
    ItemsChanged();
}

void MTreeControl::SetCurrent(MTreeItem* item)
{
    for (MTreeItem* each = item != nullptr ? item->parent : nullptr; each != nullptr && each != &root;
         each = each->parent)
        SetExpanded(*each, true);
    current = item;
    ShowRow(IndexOf(item));
    Invalidate();
}

void MTreeControl::ShowRow(std::int32_t index)
{
    if (index >= 0)
        bar->ShowPart(index * RowHeight(), RowHeight());
}

void MTreeControl::Choose(std::int32_t index)
{
    if (index < 0 || index >= static_cast<std::int32_t>(rows.size()))
        return;
    MTreeItem* chosen = rows[static_cast<std::size_t>(index)].item;
    ShowRow(index);
    if (chosen == current)
        return;
    current = chosen;
    Invalidate();
    Tell(select, current);
}

bool MTreeControl::OnEvent(const MControlEvent& event)
{
    const std::int32_t row = event.IsMouse() ? RowAt(event.x, event.y) : -1;
    MTreeItem* item = row >= 0 ? rows[static_cast<std::size_t>(row)].item : nullptr;
    switch (event.code)
    {
    case MEventCode::LeftDown:
        if (item != nullptr && CanExpand(*item) && SignArea(row).Contains(event.x, event.y))
            SetExpanded(*item, !item->expanded);
        else
            Choose(row);
        return true;
    case MEventCode::LeftDoubleClick:
        if (item == nullptr || SignArea(row).Contains(event.x, event.y))
            return false;
        if (CanExpand(*item))
            SetExpanded(*item, !item->expanded);
        Tell(activate, item);
        return true;
    case MEventCode::RightDown:
        Choose(row);
        return true;
    case MEventCode::RightUp:
        Tell(context, item);
        return true;
    case MEventCode::Move:
        if (row != hovered)
        {
            hovered = row;
            Invalidate();
        }
        return false;
    case MEventCode::Wheel:
        return bar->OnEvent(event);
    case MEventCode::KeyDown:
        return OnKey(event) || MControl::OnEvent(event);
    case MEventCode::Focus:
        Invalidate();
        return true;
    default:
        return MControl::OnEvent(event);
    }
}

void MTreeControl::OnMouseLeave()
{
    hovered = -1;
    Invalidate();
}

bool MTreeControl::OnKey(const MControlEvent& event)
{
    const std::int32_t here = IndexOf(current);
    const std::int32_t last = static_cast<std::int32_t>(rows.size()) - 1;
    const std::int32_t page = std::max(1, ListArea().Height() / RowHeight() - 1);
    switch (event.key)
    {
    case MKey::Up:
        Choose(std::max(0, here - 1));
        return true;
    case MKey::Down:
        Choose(std::min(last, here + 1));
        return true;
    case MKey::PageUp:
        Choose(std::max(0, here - page));
        return true;
    case MKey::PageDown:
        Choose(std::min(last, here + page));
        return true;
    case MKey::Home:
        Choose(0);
        return true;
    case MKey::End:
        Choose(last);
        return true;
    case MKey::Right:
        if (current != nullptr && CanExpand(*current) && !current->expanded)
            SetExpanded(*current, true);
        else if (current != nullptr && !current->children.empty())
            Choose(here + 1);
        return true;
    case MKey::Left:
        if (current != nullptr && current->expanded && CanExpand(*current))
            SetExpanded(*current, false);
        else if (current != nullptr && current->parent != &root)
            Choose(IndexOf(current->parent));
        return true;
    case MKey::Enter:
        if (current != nullptr)
            Tell(activate, current);
        return current != nullptr;
    default:
        return false;
    }
}
