// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MMenuBar.h"

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"
#include "state/tree/MAttribute.h"

namespace
{
constexpr double PaddingUnits = 10;
constexpr double HeightUnits = 24;
}   // namespace

MMenuBar::MMenuBar()
{
    controlType = MControlType::MenuBar;
    font = MStdFont::Control;
    tabStop = true;
    menu.OnClosed().AddHandler<&MMenuBar::OnMenuClosed>(*this);
}

void MMenuBar::Realize()
{
    if (Style() != nullptr && Height() == 0)
        SetSize(Width(), Style()->Pixels(HeightUnits));
}

void MMenuBar::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    ReadItems(items, node);
}

void MMenuBar::ReadItems(MMenuItem& parentItem, const MAttribute& node)
{
    for (int i = 0; i < node.SubItemCount(); ++i)
    {
        const MAttribute& element = node.SubItemAt(i);
        if (element.Name().EqualsNoCase("separator"))
        {
            parentItem.AddSeparator();
            continue;
        }
        const XmlAttributes attributes(element);
        MString text;
        std::int32_t id = 0;
        attributes.Read("text", text);
        attributes.Read("id", id);
        MMenuItem& item = parentItem.Add(text, id);
        attributes.Read("keys", item.keys);
        attributes.Read("checked", item.checked);
        attributes.Read("enabled", item.enabled);
        attributes.ReadName("icon", item.icon, "MStdIcon");
        ReadItems(item, element);
    }
}

MSize MMenuBar::ContentMinimum() const
{
    return { Count() > 0 ? TitleArea(Count() - 1).right + 1 : 0, WidgetText::LineHeight(*this, font) };
}

MRectangle MMenuBar::TitleArea(std::int32_t index) const
{
    const std::int32_t padding = Style() != nullptr ? Style()->Pixels(PaddingUnits) : 0;
    std::int32_t left = 0;
    for (std::int32_t i = 0; i < index; ++i)
        left += WidgetText::Width(*this, font, items.items[static_cast<std::size_t>(i)]->text) + 2 * padding;
    const std::int32_t wide =
        WidgetText::Width(*this, font, items.items[static_cast<std::size_t>(index)]->text);
    return MRectangle::OfSize(left, 0, wide + 2 * padding, Height());
}

std::int32_t MMenuBar::TitleAt(std::int32_t x, std::int32_t y) const
{
    for (std::int32_t i = 0; i < Count(); ++i)
        if (TitleArea(i).Contains(x, y))
            return i;
    return -1;
}

void MMenuBar::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    style.PaintFace(drawer, OwnRectangle(), controlType, GetDrawState());
    for (std::int32_t i = 0; i < Count(); ++i)
    {
        std::uint16_t state = IsUsable() ? DrawEnabled : 0;
        if (i == current || (HasFocus() && i == 0 && current < 0))
            state |= DrawHovered;
        style.PaintItem(drawer, TitleArea(i), MControlType::Menu, state);
        drawer.AlignedTextOut(TitleArea(i), items.items[static_cast<std::size_t>(i)]->text,
                              style.GetFont(font), style.GetColor(WidgetText::ColorOf(state)),
                              MPlacement::Middle);
    }
}

void MMenuBar::OpenMenu(std::int32_t index)
{
    MWindow* window = Window();
    if (window == nullptr || index < 0 || index >= Count() || opened == index)
        return;
    opened = -1;
    menu.SetStyle(Style());
    menu.Popup(*items.items[static_cast<std::size_t>(index)], *window,
               TitleArea(index).Moved(AbsoluteX(), AbsoluteY()));
    opened = current = index;
    Invalidate();
}

void MMenuBar::OnMenuClosed(const MOnWindowCloseParams&)
{
    // Another one may be open by now.
    if (menu.IsOpen())
        return;
    opened = current = -1;
    Invalidate();
}

bool MMenuBar::OnEvent(const MControlEvent& event)
{
    const std::int32_t title = event.IsMouse() ? TitleAt(event.x, event.y) : -1;
    switch (event.code)
    {
    case MEventCode::LeftDown:
        OpenMenu(title);
        return true;
    case MEventCode::Move:
        if (opened >= 0 && title >= 0)
            OpenMenu(title);
        if (opened < 0 && title != current)
        {
            current = title;
            Invalidate();
        }
        return false;
    case MEventCode::KeyDown:
        if (event.key == MKey::Left || event.key == MKey::Right)
        {
            const std::int32_t step = event.key == MKey::Left ? Count() - 1 : 1;
            current = Count() > 0 ? (std::max(current, 0) + step) % Count() : -1;
            Invalidate();
            return true;
        }
        if (event.key == MKey::Down || event.key == MKey::Enter || event.key == MKey::Space)
        {
            OpenMenu(std::max(current, 0));
            menu.SetCurrent(0);
            return true;
        }
        return MControl::OnEvent(event);
    default:
        return MControl::OnEvent(event);
    }
}

void MMenuBar::OnMouseLeave()
{
    if (opened < 0 && current >= 0)
    {
        current = -1;
        Invalidate();
    }
}
