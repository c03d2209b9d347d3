// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MListBox.h"

#include <algorithm>
#include <utility>

#include "gui/controls/MWindow.h"
#include "gui/controls/MWindows.h"
#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"
#include "state/tree/MAttribute.h"

namespace
{
constexpr double PaddingUnits = 8;
constexpr double InsetUnits = 3;   // of lines from the field's edge
constexpr double IconGapUnits = 6;
constexpr std::uint64_t TypedMilliseconds = 900;
}   // namespace

MListBox::MListBox()
{
    controlType = MControlType::ListBox;
    font = MStdFont::Control;
    tabStop = true;
    bar = &Make<MScrollBar>();
    bar->overlay = true;
    bar->OnScroll().AddHandler<&MListBox::OnScrolled>(*this);
}

void MListBox::Realize()
{
    bar->line = RowHeight();
}

std::int32_t MListBox::RowHeight() const
{
    return Style() != nullptr ? std::max(1, Style()->GetSize(MStyleSize::ListItemHeight)) : 1;
}

MSize MListBox::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const std::int32_t inset = Style()->Pixels(InsetUnits);
    return WidgetText::Inside(*this,
                              { Style()->Pixels(60), minimalRows * RowHeight() + HeadHeight() + 2 * inset });
}

MRectangle MListBox::ListArea() const
{
    const std::int32_t inset = Style() != nullptr ? Style()->Pixels(InsetUnits) : 0;
    MRectangle area = OwnRectangle().Inset(inset, inset);
    area.top += HeadHeight();
    if (bar->IsVisible())
        area.right -= bar->Width();
    return area;
}

MRectangle MListBox::HeadArea() const
{
    const MRectangle lines = ListArea();
    return { lines.left, lines.top - HeadHeight(), lines.right, lines.top - 1 };
}

void MListBox::OnPlaced()
{
    if (Style() == nullptr)
        return;
    const std::int32_t inset = Style()->Pixels(InsetUnits);
    const std::int32_t page = std::max(0, Height() - 2 * inset - HeadHeight());
    bar->SetRange(Count() * RowHeight(), page);
    bar->SetVisible(bar->IsNeeded());
    const std::int32_t wide = Style()->Pixels(10);
    bar->SetPosition(Width() - wide - Style()->Hairline(), inset + HeadHeight());
    bar->SetSize(wide, page);
}

void MListBox::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("emptytext", emptyText);
    attributes.Read("multiple", multiple);
    attributes.Read("rows", minimalRows);
    std::vector<MListItem> lines;
    for (int i = 0; i < node.SubItemCount(); ++i)
    {
        const XmlAttributes own(node.SubItemAt(i));
        MListItem& line = lines.emplace_back();
        own.Read("text", line.text);
        own.Read("detail", line.detail);
        own.Read("enabled", line.enabled);
        own.ReadName("icon", line.icon, "MStdIcon");
    }
    SetItems(std::move(lines));
    if (std::int32_t chosen = -1; attributes.Read("current", chosen))
        SetCurrent(chosen);
}

void MListBox::SetItems(std::vector<MListItem> newItems)
{
    items = std::move(newItems);
    current = std::min(current, Count() - 1);
    anchor = current;
    hovered = -1;
    if (current >= 0)
        items[static_cast<std::size_t>(current)].selected = true;
    OnPlaced();
    Invalidate();
}

void MListBox::SetItems(std::vector<MListItem> newItems, std::int32_t newCurrent)
{
    items = std::move(newItems);
    current = std::clamp(newCurrent, -1, Count() - 1);
    anchor = current;
    hovered = -1;
    OnPlaced();
    if (current < 0)
        bar->SetFirst(0);
    ShowItem(current);
    Invalidate();
}

MRectangle MListBox::RowArea(std::int32_t index) const
{
    const MRectangle area = ListArea();
    const std::int32_t top = area.top + index * RowHeight() - bar->First();
    return { area.left, top, area.right, top + RowHeight() - 1 };
}

std::int32_t MListBox::RowAt(std::int32_t x, std::int32_t y) const
{
    const MRectangle area = ListArea();
    if (!area.Contains(x, y))
        return -1;
    const std::int32_t row = (y - area.top + bar->First()) / RowHeight();
    return row < Count() ? row : -1;
}

void MListBox::InvalidateRow(std::int32_t index)
{
    if (index >= 0)
        Invalidate(RowArea(index).Intersection(ListArea()));
}

void MListBox::SetCurrent(std::int32_t index)
{
    current = std::clamp(index, -1, Count() - 1);
    anchor = current;
    for (std::int32_t i = 0; i < Count(); ++i)
        items[static_cast<std::size_t>(i)].selected = i == current;
    ShowItem(current);
    Invalidate();
}

void MListBox::ShowItem(std::int32_t index)
{
    if (index >= 0)
        bar->ShowPart(index * RowHeight(), RowHeight());
}

void MListBox::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const std::uint16_t state = GetDrawState();
    style.PaintFace(drawer, OwnRectangle(), controlType, state & DrawEnabled);
    const MRectangle area = ListArea();
    if (HeadHeight() > 0)
        PaintHead(drawer, HeadArea());
    if (items.empty())
    {
        drawer.AlignedTextOut(area, emptyText, style.GetFont(MStdFont::Normal),
                              style.GetColor(MStdColor::Text3), MPlacement::Middle);
        return;
    }
    const MRectangle clip = drawer.GetClip();
    drawer.SetClip(clip.Intersection(area));
    const std::int32_t first = std::max(0, bar->First() / RowHeight());
    for (std::int32_t i = first; i < Count() && RowArea(i).top <= area.bottom; ++i)
    {
        const MListItem& item = items[static_cast<std::size_t>(i)];
        std::uint16_t own = item.enabled ? state & DrawEnabled : 0;
        if (item.selected)
            own |= DrawOn;
        if (i == hovered)
            own |= DrawHovered;
        if (i == current && HasFocus())
            own |= DrawFocused;
        style.PaintItem(drawer, RowArea(i), controlType, own);
        PaintItem(drawer, RowArea(i), i, own);
    }
    drawer.SetClip(clip);
}

void MListBox::PaintItem(MDrawer& drawer, const MRectangle& area, std::int32_t index, std::uint16_t state)
{
    MStyle& style = *Style();
    const MListItem& item = items[static_cast<std::size_t>(index)];
    const bool usable = (state & DrawEnabled) != 0;
    const MColor text = style.GetColor(usable ? MStdColor::Text : MStdColor::TextDisabled);
    MRectangle room = area.Inset(style.Pixels(PaddingUnits), 0);
    if (item.icon != MStdIcon::None)
    {
        const std::int32_t wide = style.IconSize(item.icon).width;
        style.PaintIcon(drawer, { room.left, room.top, room.left + wide - 1, room.bottom }, item.icon,
                        style.GetColor(usable ? MStdColor::Icon : MStdColor::TextDisabled));
        room.left += wide + style.Pixels(IconGapUnits);
    }
    if (!item.detail.IsEmpty())
    {
        const std::int32_t wide = std::min(WidgetText::Width(*this, font, item.detail), room.Width() / 2);
        drawer.AlignedTextOut(
            { room.right - wide, room.top, room.right, room.bottom }, item.detail, style.GetFont(font),
            style.GetColor(usable ? MStdColor::Text3 : MStdColor::TextDisabled), MPlacement::End);
        room.right -= wide + style.Pixels(IconGapUnits);
    }
    drawer.AlignedTextOut(room, item.text, style.GetFont(font), text);
}

void MListBox::Tell(MEvent<MOnItemParams<std::int32_t>>& event, std::int32_t index)
{
    MOnItemParams<std::int32_t> params;
    params.source = this;
    params.item = index;
    event.Post(GlobalEventProcessor(), params);
}

void MListBox::Choose(std::int32_t index, std::uint8_t modifiers)
{
    if (index < 0 || index >= Count() || !items[static_cast<std::size_t>(index)].enabled)
        return;
    const bool adds = multiple && (modifiers & ModifierCtrl) != 0;
    const bool spans = multiple && (modifiers & ModifierShift) != 0 && anchor >= 0;
    for (std::int32_t i = 0; i < Count(); ++i)
    {
        MListItem& item = items[static_cast<std::size_t>(i)];
        const bool inside = spans && i >= std::min(anchor, index) && i <= std::max(anchor, index);
        if (adds)
            item.selected = i == index ? !item.selected : item.selected;
        else
            item.selected = item.enabled && (i == index || inside);
    }
    current = index;
    if (!spans)
        anchor = index;
    ShowItem(index);
    Invalidate();
    Tell(select, index);
}

bool MListBox::OnEvent(const MControlEvent& event)
{
    const std::int32_t row = event.IsMouse() ? RowAt(event.x, event.y) : -1;
    switch (event.code)
    {
    case MEventCode::LeftDown:
        Choose(row, event.modifiers);
        return true;
    case MEventCode::RightDown:
        if (row >= 0 && !items[static_cast<std::size_t>(row)].selected)
            Choose(row, 0);
        return true;
    case MEventCode::RightUp:
        Tell(context, row);
        return true;
    case MEventCode::LeftDoubleClick:
        if (row >= 0 && row == current)
            Tell(activate, row);
        return row >= 0;
    case MEventCode::Move:
        if (row != hovered)
        {
            InvalidateRow(hovered);
            hovered = row;
            InvalidateRow(hovered);
        }
        return false;
    case MEventCode::Wheel:
        return bar->OnEvent(event);
    case MEventCode::Character:
        return OnLetter(event.character);
    case MEventCode::KeyDown:
        return OnKey(event) || MControl::OnEvent(event);
    case MEventCode::Focus:
        InvalidateRow(current);
        return true;
    default:
        return MControl::OnEvent(event);
    }
}

void MListBox::OnMouseLeave()
{
    InvalidateRow(std::exchange(hovered, -1));
}

bool MListBox::OnKey(const MControlEvent& event)
{
    const std::int32_t page = std::max(1, ListArea().Height() / RowHeight() - 1);
    std::int32_t next = 0;
    std::int32_t direction = 1;
    switch (event.key)
    {
    case MKey::Up:
        next = current - 1;
        direction = -1;
        break;
    case MKey::Down:
        next = current + 1;
        break;
    case MKey::PageUp:
        next = current - page;
        direction = -1;
        break;
    case MKey::PageDown:
        next = current + page;
        break;
    case MKey::Home:
        next = 0;
        break;
    case MKey::End:
        next = Count() - 1;
        direction = -1;
        break;
    case MKey::Enter:
        if (current < 0)
            return false;
        Tell(activate, current);
        return true;
    case 'A':
        if (!multiple || !event.Has(ModifierCtrl))
            return false;
        for (MListItem& each : items)
            each.selected = each.enabled;
        Invalidate();
        Tell(select, current);
        return true;
    default:
        return false;
    }
    next = std::clamp(next, 0, std::max(0, Count() - 1));
    while (next >= 0 && next < Count() && !items[static_cast<std::size_t>(next)].enabled)
        next += direction;
    if (next >= 0 && next < Count() && next != current)
        Choose(next, event.modifiers & ModifierShift);
    return true;
}

bool MListBox::OnLetter(char32_t character)
{
    const MWindows* windows = MWindows::Get();
    if (character < 0x20 || character > 0xFFFF || windows == nullptr)
        return false;
    const std::uint64_t now = const_cast<MWindows*>(windows)->Platform().GetTime();
    if (now - typedTime > TypedMilliseconds)
        typed = {};
    if (character == ' ' && typed.IsEmpty())
        return false;
    typedTime = now;
    typed.Append(static_cast<char16_t>(character));
    for (std::int32_t i = 0; i < Count(); ++i)
        if (MString::CompareNoCase(items[static_cast<std::size_t>(i)].text, typed, typed.Length()) == 0)
        {
            Choose(i, 0);
            break;
        }
    return true;
}
