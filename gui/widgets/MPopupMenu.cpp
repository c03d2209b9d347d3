// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MPopupMenu.h"

#include <algorithm>

#include "gui/controls/MWindows.h"
#include "gui/fields/WidgetText.h"

namespace
{
constexpr double RowUnits = 24;
constexpr double SeparatorUnits = 9;
constexpr double GutterUnits = 28;
constexpr double PaddingUnits = 4;
constexpr double SideUnits = 10;
constexpr double KeysGapUnits = 24;
constexpr std::int32_t LockoutMilliseconds = 150;
}   // namespace

MPopupMenu::MPopupMenu()
{
    controlType = MControlType::Menu;
    font = MStdFont::Control;
    closesOutside = true;
}

MPopupMenu::~MPopupMenu()
{
    Close();
}

void MPopupMenu::Popup(MMenuItem& items, MWindow& owner, const MRectangle& beside, std::int32_t leastWidth)
{
    Close();
    menu = &items;
    ownerOfMenu = &owner;
    current = -1;
    MeasureRows();
    if (Width() < leastWidth)
        SetSize(leastWidth, Height());
    ShowAtSide(owner, beside, true);
}

void MPopupMenu::MeasureRows()
{
    const MStyle& style = *Style();
    std::int32_t text = 0;
    std::int32_t keys = 0;
    tops.assign(1, style.Pixels(PaddingUnits));
    for (const auto& each : menu->items)
    {
        text = std::max(text, WidgetText::Width(*this, font, each->text));
        keys = std::max(keys, WidgetText::Width(*this, font, each->keys));
        tops.push_back(tops.back() + style.Pixels(each->IsSeparator() ? SeparatorUnits : RowUnits));
    }
    const std::int32_t right =
        std::max(keys > 0 ? keys + style.Pixels(KeysGapUnits) : 0, style.Pixels(SideUnits));
    SetSize(0, 0);
    SetSize(2 * style.Pixels(PaddingUnits) + style.Pixels(GutterUnits) + text + right +
                style.Pixels(SideUnits),
            tops.back() + style.Pixels(PaddingUnits));
}

void MPopupMenu::ShowAtSide(MWindow& owner, const MRectangle& beside, bool below)
{
    MWindows& windows = *MWindows::Get();
    const MRectangle over = windows.Platform().GetScreenRect(owner);
    const MRectangle place = beside.Moved(over.left, over.top);
    const MRectangle screen = windows.Platform().GetWorkArea(place.left, place.bottom);
    std::int32_t x = below ? place.left : place.right + 1;
    std::int32_t y = below ? place.bottom + 1 : place.top - (tops.empty() ? 0 : tops.front());
    if (below && y + Height() - 1 > screen.bottom && place.top - Height() >= screen.top)
        y = place.top - Height();
    if (!below && x + Width() - 1 > screen.right)
        x = place.left - Width();
    // Higher than the screen, its end is out of sight; arrows still reach it.
    y = std::clamp(y, screen.top, std::max(screen.top, screen.bottom + 1 - Height()));
    x = std::clamp(x, screen.left, std::max(screen.left, screen.right + 1 - Width()));
    SetPosition(x, y);
    Open(MWindowSystem::Kind::PopUp, &owner);
}

MRectangle MPopupMenu::RowArea(std::size_t row) const
{
    const std::int32_t side = tops.front();
    return { side, tops[row], Width() - 1 - side, tops[row + 1] - 1 };
}

std::int32_t MPopupMenu::RowAt(std::int32_t x, std::int32_t y) const
{
    for (std::size_t row = 0; row + 1 < tops.size(); ++row)
        if (RowArea(row).Contains(x, y))
            return static_cast<std::int32_t>(row);
    return -1;
}

void MPopupMenu::SetCurrent(std::int32_t row)
{
    if (row == current)
        return;
    current = row;
    if (submenu != nullptr)
        submenu->Close();
    Invalidate();
}

void MPopupMenu::Paint(MDrawer& drawer)
{
    Style()->PaintFace(drawer, OwnRectangle(), MControlType::Menu, DrawEnabled);
    for (std::size_t row = 0; row + 1 < tops.size(); ++row)
        PaintRow(drawer, row);
}

void MPopupMenu::PaintRow(MDrawer& drawer, std::size_t row) const
{
    MStyle& style = *Style();
    const MMenuItem& item = *menu->items[row];
    const MRectangle area = RowArea(row);
    if (item.IsSeparator())
    {
        const std::int32_t line = style.Hairline();
        const std::int32_t y = area.top + (area.Height() - line) / 2;
        drawer.FillRectangle({ area.left, y, area.right, y + line - 1 }, style.GetColor(MStdColor::Line));
        return;
    }
    std::uint16_t state = item.enabled ? DrawEnabled : 0;
    if (static_cast<std::int32_t>(row) == current)
        state |= DrawHovered | DrawOn;
    style.PaintItem(drawer, area, MControlType::Menu, state);
    const MColor text = style.GetColor(item.enabled ? MStdColor::Text : MStdColor::TextDisabled);
    const std::int32_t gutter = style.Pixels(GutterUnits);
    const MRectangle sign{ area.left, area.top, area.left + gutter - 1, area.bottom };
    if (item.checked)
        style.PaintIcon(drawer, sign, MStdIcon::Tick, text);
    else if (item.icon != MStdIcon::None)
        style.PaintIcon(drawer, sign, item.icon, text);
    const MRectangle room{ area.left + gutter, area.top, area.right - style.Pixels(SideUnits), area.bottom };
    drawer.AlignedTextOut(room, item.text, style.GetFont(font), text);
    const MColor quiet = style.GetColor(item.enabled ? MStdColor::Text3 : MStdColor::TextDisabled);
    if (item.IsMenu())
        style.PaintIcon(
            drawer,
            { room.right - style.IconSize(MStdIcon::CaretRight).width, area.top, room.right, area.bottom },
            MStdIcon::CaretRight, quiet);
    else
        drawer.AlignedTextOut(room, item.keys, style.GetFont(font), quiet, MPlacement::End);
}

void MPopupMenu::OnMouseLeave()
{
    MWindow::OnMouseLeave();
    // What leads to an open menu stays marked.
    if (submenu == nullptr || !submenu->IsOpen())
        SetCurrent(-1);
}

bool MPopupMenu::OnEvent(const MControlEvent& event)
{
    if (menu == nullptr)
        return false;
    if (event.IsKey())
        return OnKey(event);
    const std::int32_t row = RowAt(event.x, event.y);
    if (event.code == MEventCode::Move)
    {
        const bool can = row >= 0 && menu->items[static_cast<std::size_t>(row)]->CanBeChosen();
        SetCurrent(can ? row : -1);
        if (can && menu->items[static_cast<std::size_t>(row)]->IsMenu())
            OpenSubmenu(row, false);
        return true;
    }
    if (event.code == MEventCode::LeftUp || event.code == MEventCode::RightUp)
        Choose(row);
    return true;
}

void MPopupMenu::MoveCurrent(std::int32_t direction)
{
    const auto count = static_cast<std::int32_t>(menu->items.size());
    std::int32_t row = current;
    for (std::int32_t i = 0; i < count; ++i)
    {
        row = row < 0 && direction < 0 ? count - 1 : (row + direction + count) % count;
        if (menu->items[static_cast<std::size_t>(row)]->CanBeChosen())
        {
            SetCurrent(row);
            return;
        }
    }
}

bool MPopupMenu::MoveToLetter(std::int32_t letter)
{
    const auto count = static_cast<std::int32_t>(menu->items.size());
    for (std::int32_t i = 1; i <= count; ++i)
    {
        const std::int32_t row = (std::max(current, -1) + i) % count;
        const MMenuItem& item = *menu->items[static_cast<std::size_t>(row)];
        if (!item.CanBeChosen() || item.text.IsEmpty())
            continue;
        const char16_t first = item.text[0];
        if (first == letter || (first >= 'a' && first <= 'z' && first - 'a' + 'A' == letter))
        {
            SetCurrent(row);
            return true;
        }
    }
    return false;
}

bool MPopupMenu::OnKey(const MControlEvent& event)
{
    if (event.code != MEventCode::KeyDown)
        return true;
    const bool atMenu = current >= 0 && menu->items[static_cast<std::size_t>(current)]->IsMenu();
    switch (event.key)
    {
    case MKey::Up:
        MoveCurrent(-1);
        break;
    case MKey::Down:
        MoveCurrent(1);
        break;
    case MKey::Home:
        current = -1;
        MoveCurrent(1);
        break;
    case MKey::End:
        current = -1;
        MoveCurrent(-1);
        break;
    case MKey::Right:
        if (atMenu)
            OpenSubmenu(current, true);
        break;
    case MKey::Left:
        if (parentMenu != nullptr)
            Close();
        break;
    case MKey::Escape:
        Close();
        break;
    case MKey::Enter:
    case MKey::Space:
        if (atMenu)
            OpenSubmenu(current, true);
        else
            Choose(current);
        break;
    default:
        MoveToLetter(event.key);
        break;
    }
    return true;
}

MPopupMenu& MPopupMenu::First()
{
    return parentMenu != nullptr ? parentMenu->First() : *this;
}

void MPopupMenu::Choose(std::int32_t row)
{
    if (row < 0)
        return;
    MMenuItem& item = *menu->items[static_cast<std::size_t>(row)];
    if (!item.CanBeChosen() || item.IsMenu())
        return;
    MPopupMenu& first = First();
    MOnItemParams<std::int32_t> params;
    params.source = &first;
    params.item = item.id;
    first.chosen.Post(GlobalEventProcessor(), params);
    MWindows::Get()->LockClicksOut(LockoutMilliseconds);
    first.Close();
}

void MPopupMenu::OpenSubmenu(std::int32_t row, bool byKey)
{
    if (submenu == nullptr)
        submenu = std::make_unique<MPopupMenu>();
    MMenuItem& item = *menu->items[static_cast<std::size_t>(row)];
    if (submenu->IsOpen() && submenu->menu == &item)
        return;
    submenu->Close();
    submenu->parentMenu = this;
    submenu->menu = &item;
    submenu->ownerOfMenu = this;
    submenu->current = -1;
    submenu->MeasureRows();
    submenu->ShowAtSide(*this, RowArea(static_cast<std::size_t>(row)), false);
    if (byKey)
        submenu->MoveCurrent(1);
}

void MPopupMenu::OnClosing()
{
    if (submenu != nullptr)
        submenu->Close();
}
