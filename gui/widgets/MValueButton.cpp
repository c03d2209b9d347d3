// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MValueButton.h"

#include <algorithm>

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"

namespace
{
constexpr double PaddingUnits = 8;
constexpr double IconPaddingUnits = 4;
}   // namespace

MValueButton::MValueButton()
{
    controlType = MControlType::Button;
    font = MStdFont::Control;
}

void MValueButton::LoadXml(const MAttribute& node)
{
    MControlValue::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("text", caption);
    attributes.ReadName("icon", icon, "MStdIcon");
}

MSize MValueButton::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const MStyle& style = *Style();
    const std::int32_t text = WidgetText::Width(*this, font, caption);
    const std::int32_t wide = text > 0 ? text + 2 * style.Pixels(PaddingUnits)
                                       : style.IconSize(icon).width + 2 * style.Pixels(IconPaddingUnits);
    return WidgetText::Inside(*this, { wide, style.GetDefaultSize(controlType).height });
}

std::uint16_t MValueButton::GetDrawState() const
{
    std::uint16_t state = MControlValue::GetDrawState();
    if (ValuePosition() > 0)
        state |= DrawOn;
    return state;
}

void MValueButton::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const std::uint16_t state = GetDrawState();
    style.PaintFace(drawer, OwnRectangle(), controlType, state);
    const MRectangle area = OwnRectangle().Moved(0, (state & DrawOn) != 0 ? -style.Pixels(1) : 0);
    if (caption.IsEmpty())
        style.PaintIcon(drawer, area, icon, style.GetColor(WidgetText::ColorOf(state, MStdColor::Icon)));
    else
        drawer.AlignedTextOut(area, caption, style.GetFont(font), style.GetColor(WidgetText::ColorOf(state)),
                              MPlacement::Middle);
}

void MValueButton::Next()
{
    if (Value() == nullptr)
        return;
    const int count = std::max(2, Value()->GetStepCount());
    const int next = (Value()->GetIndex() + 1) % count;
    ChangeTo(static_cast<double>(next) / (count - 1));
}

bool MValueButton::OnEvent(const MControlEvent& event)
{
    const bool presses = event.key == MKey::Space || event.key == MKey::Enter;
    switch (event.code)
    {
    case MEventCode::LeftDown:
    case MEventCode::Move:
        return event.code == MEventCode::LeftDown;
    case MEventCode::LeftUp:
        if (OwnRectangle().Contains(event.x, event.y))
        {
            if (event.Has(ModifierCtrl))
                Reset();
            else
                Next();
        }
        return true;
    case MEventCode::LeftDoubleClick:
        return false;   // two presses
    case MEventCode::KeyDown:
        return presses || MControlValue::OnEvent(event);
    case MEventCode::KeyUp:
        if (presses)
            Next();
        return presses || MControlValue::OnEvent(event);
    default:
        return MControlValue::OnEvent(event);
    }
}
