// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MComboEdit.h"

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"
#include "state/tree/MAttribute.h"

namespace
{
constexpr double CaretUnits = 20;
}

MComboEdit::MComboEdit()
{
    menu.OnChosen().AddHandler<&MComboEdit::OnChosen>(*this);
}

void MComboEdit::SetChoices(const std::vector<MString>& texts)
{
    choices.items.clear();
    for (std::size_t i = 0; i < texts.size(); ++i)
        choices.Add(texts[i], static_cast<std::int32_t>(i));
}

void MComboEdit::LoadXml(const MAttribute& node)
{
    MEdit::LoadXml(node);
    std::vector<MString> texts;
    for (int i = 0; i < node.SubItemCount(); ++i)
        XmlAttributes(node.SubItemAt(i)).Read("text", texts.emplace_back());
    SetChoices(texts);
}

std::int32_t MComboEdit::RightRoom() const
{
    return Style() != nullptr ? Style()->Pixels(CaretUnits) : 0;
}

MRectangle MComboEdit::CaretArea() const
{
    const MRectangle area = OwnRectangle();
    return { area.right + 1 - RightRoom(), area.top, area.right, area.bottom };
}

MStdCursor MComboEdit::GetCursor(std::int32_t x, std::int32_t y) const
{
    return CaretArea().Contains(x, y) ? MStdCursor::Arrow : MEdit::GetCursor(x, y);
}

void MComboEdit::Paint(MDrawer& drawer)
{
    MEdit::Paint(drawer);
    Style()->PaintIcon(drawer, CaretArea(), MStdIcon::CaretDown,
                       Style()->GetColor(WidgetText::ColorOf(GetDrawState(), MStdColor::Text2)));
}

void MComboEdit::OpenMenu()
{
    MWindow* window = Window();
    if (window == nullptr || choices.items.empty())
        return;
    std::int32_t here = -1;
    for (const auto& each : choices.items)
    {
        each->checked = each->text == Text();
        if (each->checked)
            here = each->id;
    }
    menu.SetStyle(Style());
    menu.Popup(choices, *window, AbsoluteRectangle(), Width());
    menu.SetCurrent(here);
}

void MComboEdit::OnChosen(const MOnItemParams<std::int32_t>& params)
{
    Replace(choices.items[static_cast<std::size_t>(params.item)]->text);
    Finish(Taken);
}

bool MComboEdit::OnEvent(const MControlEvent& event)
{
    if (event.code == MEventCode::LeftDown && CaretArea().Contains(event.x, event.y))
    {
        OpenMenu();
        return true;
    }
    if (event.code == MEventCode::KeyDown && event.Has(ModifierAlt) && event.key == MKey::Down)
    {
        OpenMenu();
        return true;
    }
    return MEdit::OnEvent(event);
}
