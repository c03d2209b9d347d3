// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MCheckBox.h"

#include <algorithm>

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"

namespace
{
constexpr double GapUnits = 6;
}

MCheckBox::MCheckBox()
{
    controlType = MControlType::CheckBox;
    font = MStdFont::Control;
    tabStop = true;
}

void MCheckBox::SetState(MCheckBoxState state)
{
    if (checked == state)
        return;
    checked = state;
    Invalidate();
}

void MCheckBox::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("text", caption);
    attributes.Read("group", group);
    attributes.ReadName("state", checked, "MCheckBoxState");
}

MSize MCheckBox::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const std::int32_t box = Style()->GetSize(MStyleSize::CheckBoxIcon);
    const std::int32_t text = WidgetText::Width(*this, font, caption);
    return { box + (text > 0 ? Style()->Pixels(GapUnits) + text : 0),
             std::max(box, WidgetText::LineHeight(*this, font)) };
}

void MCheckBox::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    std::uint16_t state = GetDrawState();
    if (checked != MCheckBoxState::Off)
        state |= DrawOn;
    const std::int32_t box = style.GetSize(MStyleSize::CheckBoxIcon);
    const MRectangle area = OwnRectangle();
    const MRectangle place{ area.left, area.top, area.left + box - 1, area.bottom };
    if (group != 0)
        style.PaintRadioButton(drawer, place, state);
    else
        style.PaintCheckBox(drawer, place, checked, state);
    const bool usable = (state & DrawEnabled) != 0;
    drawer.AlignedTextOut({ place.right + 1 + style.Pixels(GapUnits), area.top, area.right, area.bottom },
                          caption, style.GetFont(font),
                          style.GetColor(usable ? MStdColor::Text : MStdColor::TextDisabled));
}

void MCheckBox::Toggle()
{
    if (group != 0 && checked == MCheckBoxState::On)
        return;
    SetState(checked == MCheckBoxState::On ? MCheckBoxState::Off : MCheckBoxState::On);
    if (group != 0)
        ChooseInGroup();
    MOnCheckParams params;
    params.source = this;
    params.state = checked;
    check.Call(params);
}

void MCheckBox::ChooseInGroup()
{
    if (Parent() == nullptr)
        return;
    for (const auto& each : Parent()->Children())
    {
        auto* other = dynamic_cast<MCheckBox*>(each.get());
        if (other != nullptr && other != this && other->group == group)
            other->SetState(MCheckBoxState::Off);
    }
}

void MCheckBox::MoveInGroup(bool forward)
{
    std::vector<MCheckBox*> buttons;
    for (const auto& each : Parent()->Children())
        if (auto* other = dynamic_cast<MCheckBox*>(each.get());
            other != nullptr && other->group == group && other->IsVisible() && other->IsEnabled())
            buttons.push_back(other);
    const auto here =
        static_cast<std::size_t>(std::find(buttons.begin(), buttons.end(), this) - buttons.begin());
    MCheckBox& next = *buttons[(here + (forward ? 1 : buttons.size() - 1)) % buttons.size()];
    next.SetFocus();
    next.Toggle();
}

bool MCheckBox::OnEvent(const MControlEvent& event)
{
    if (event.code == MEventCode::LeftDown)
        return true;
    if (event.code == MEventCode::LeftUp)
    {
        if (OwnRectangle().Contains(event.x, event.y))
            Toggle();
        return true;
    }
    if (event.code == MEventCode::KeyDown || event.code == MEventCode::KeyUp)
    {
        if (event.key == MKey::Space)
        {
            if (event.code == MEventCode::KeyUp)
                Toggle();
            return true;
        }
        const bool arrow = event.key >= MKey::Left && event.key <= MKey::Down;
        if (group != 0 && arrow && Parent() != nullptr)
        {
            if (event.code == MEventCode::KeyDown)
                MoveInGroup(event.key == MKey::Right || event.key == MKey::Down);
            return true;
        }
    }
    return MControl::OnEvent(event);
}
