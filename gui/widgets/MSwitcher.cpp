// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MSwitcher.h"

#include <algorithm>

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"

namespace
{
constexpr double PaddingUnits = 7;
constexpr double CaretSideUnits = 6;
}   // namespace

MSwitcher::MSwitcher()
{
    controlType = MControlType::Switcher;
    font = MStdFont::Control;
    menu.OnChosen().AddHandler<&MSwitcher::OnChosen>(*this);
}

void MSwitcher::Realize()
{
    if (Style() != nullptr && Height() == 0)
        SetSize(Width(), Style()->GetDefaultSize(controlType).height);
}

void MSwitcher::LoadXml(const MAttribute& node)
{
    MControlValue::LoadXml(node);
    XmlAttributes(node).Read("segments", segments);
}

std::int32_t MSwitcher::Count() const
{
    return Value() != nullptr ? Value()->GetStepCount() : 0;
}

MString MSwitcher::LabelAt(std::int32_t index) const
{
    return Value()->CreateContentAtIndex(index)->text;
}

MSize MSwitcher::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const MStyle& style = *Style();
    const std::int32_t padding = style.Pixels(PaddingUnits);
    std::int32_t widest = 0;
    for (std::int32_t i = 0; i < Count(); ++i)
        widest = std::max(widest, WidgetText::Width(*this, font, LabelAt(i)));
    const std::int32_t height = style.GetDefaultSize(controlType).height;
    if (segments)
        return WidgetText::Inside(*this, { Count() * (widest + 2 * padding), height });
    return WidgetText::Inside(*this, { widest + 2 * padding + style.IconSize(MStdIcon::CaretDown).width +
                                           style.Pixels(CaretSideUnits),
                                       height });
}

MRectangle MSwitcher::SegmentArea(std::int32_t index) const
{
    const MRectangle inner = OwnRectangle().Inset(Style()->Hairline(), Style()->Hairline());
    const std::int32_t count = std::max(1, Count());
    return { inner.left + index * inner.Width() / count, inner.top,
             inner.left + (index + 1) * inner.Width() / count - 1, inner.bottom };
}

void MSwitcher::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const std::uint16_t state = GetDrawState();
    if (segments)
    {
        PaintSegments(drawer, state);
        return;
    }
    const MRectangle area = OwnRectangle();
    style.PaintFace(drawer, area, controlType, state);
    const std::int32_t caret = style.IconSize(MStdIcon::CaretDown).width;
    const std::int32_t side = style.Pixels(CaretSideUnits);
    const MRectangle sign{ area.right - side - caret + 1, area.top, area.right - side, area.bottom };
    const MColor text = style.GetColor(WidgetText::ColorOf(state));
    drawer.AlignedTextOut({ area.left + style.Pixels(PaddingUnits), area.top, sign.left - 1, area.bottom },
                          ValueText(), style.GetFont(font), text);
    style.PaintIcon(drawer, sign, MStdIcon::CaretDown,
                    style.GetColor(WidgetText::ColorOf(state, MStdColor::Text2)));
}

void MSwitcher::PaintSegments(MDrawer& drawer, std::uint16_t state)
{
    MStyle& style = *Style();
    style.PaintFace(drawer, OwnRectangle(), MControlType::Edit, state & DrawEnabled);
    for (std::int32_t i = 0; i < Count(); ++i)
    {
        const bool here = Value()->GetIndex() == i;
        const std::uint16_t own = static_cast<std::uint16_t>((state & DrawEnabled) | (here ? DrawOn : 0));
        MRectangle area = SegmentArea(i);
        if (here)
        {
            style.PaintFace(drawer, area, MControlType::Button, own);
            area = area.Moved(0, -style.Pixels(1));
        }
        drawer.AlignedTextOut(area, LabelAt(i), style.GetFont(font),
                              style.GetColor(WidgetText::ColorOf(own, MStdColor::Text2)), MPlacement::Middle);
    }
}

void MSwitcher::Choose(std::int32_t index)
{
    if (Value() == nullptr || index == Value()->GetIndex())
        return;
    ChangeBySteps(index - Value()->GetIndex(), false);
}

void MSwitcher::OpenMenu()
{
    MWindow* window = Window();
    if (window == nullptr || Count() == 0)
        return;
    items.items.clear();
    for (std::int32_t i = 0; i < Count(); ++i)
        items.Add(LabelAt(i), i).checked = Value()->GetIndex() == i;
    menu.SetStyle(Style());
    menu.Popup(items, *window, AbsoluteRectangle(), Width());
    menu.SetCurrent(Value()->GetIndex());
}

void MSwitcher::OnChosen(const MOnItemParams<std::int32_t>& params)
{
    Choose(params.item);
}

bool MSwitcher::OnEvent(const MControlEvent& event)
{
    if (Value() == nullptr)
        return MControlValue::OnEvent(event);
    if (event.code == MEventCode::LeftDown)
    {
        if (event.Has(ModifierCtrl))
            Reset();
        else if (segments)
        {
            for (std::int32_t i = 0; i < Count(); ++i)
                if (SegmentArea(i).Contains(event.x, event.y))
                    Choose(i);
        }
        else
            OpenMenu();
        return true;
    }
    if (event.code == MEventCode::LeftUp || event.code == MEventCode::Move)
        return event.code == MEventCode::LeftUp;
    if (event.code == MEventCode::KeyDown && !segments &&
        (event.key == MKey::Enter || event.key == MKey::Space))
    {
        OpenMenu();
        return true;
    }
    // Up is the row above, as in the menu.
    if (event.code == MEventCode::KeyDown && !event.Has(ModifierAlt) &&
        (event.key == MKey::Up || event.key == MKey::Down))
        return ChangeBySteps(event.key == MKey::Up ? -1 : 1, false);
    if (event.code == MEventCode::Wheel)
        return ChangeBySteps(event.key >= 0 ? -1 : 1, false);
    return MControlValue::OnEvent(event);
}
