// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MButton.h"

#include <algorithm>
#include <cmath>

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"

namespace
{
constexpr double PaddingUnits = 8;
constexpr double IconGapUnits = 6;
constexpr double TallUnits = 32;
constexpr double HeadBaseline = 13.5;   // of 32
constexpr double SecondBaseline = 23.7;
}   // namespace

MButton::MButton()
{
    controlType = MControlType::Button;
    font = MStdFont::Control;
    tabStop = true;
}

void MButton::Realize()
{
    if (Style() != nullptr && Height() == 0)
        SetSize(Width(), secondLine.IsEmpty() ? Style()->GetDefaultSize(controlType).height
                                              : Style()->Pixels(TallUnits));
}

void MButton::SetOn(bool nowOn)
{
    if (on == nowOn)
        return;
    on = nowOn;
    Invalidate();
}

void MButton::SetPrimary(bool nowPrimary)
{
    primary = nowPrimary;
    Invalidate();
}

void MButton::SetIcon(MStdIcon shown)
{
    icon = shown;
    Invalidate();
}

void MButton::SetSecondLine(const MString& text)
{
    secondLine = text;
    Invalidate();
}

void MButton::SetGlow(std::uint16_t state)
{
    if (glow == state)
        return;
    glow = state;
    Invalidate();
}

void MButton::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("text", caption);
    attributes.Read("text2", secondLine);
    attributes.ReadName("icon", icon, "MStdIcon");
    attributes.ReadName("iconcolor", iconColor, "MStdColor");
    attributes.Read("toggle", isToggle);
    attributes.Read("on", on);
    attributes.Read("primary", primary);
}

MSize MButton::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const MStyle& style = *Style();
    const std::int32_t text =
        std::max(WidgetText::Width(*this, secondLine.IsEmpty() ? font : MStdFont::Large1, caption),
                 WidgetText::Width(*this, MStdFont::Small, secondLine));
    const MSize picture = icon != MStdIcon::None ? style.IconSize(icon) : MSize{};
    const bool both = text > 0 && picture.width > 0;
    const std::int32_t padding = text > 0 ? style.Pixels(PaddingUnits) : style.Pixels(4);
    const double height = secondLine.IsEmpty() ? 0 : TallUnits;
    return WidgetText::Inside(*this,
                              { text + picture.width + (both ? style.Pixels(IconGapUnits) : 0) + 2 * padding,
                                std::max(style.Pixels(height), picture.height + 2 * style.Pixels(2)) });
}

std::uint16_t MButton::GetDrawState() const
{
    std::uint16_t state = MControl::GetDrawState() | glow;
    if (keyDown && (state & DrawEnabled) != 0)
        state |= DrawPressed;
    if (on)
        state |= DrawOn;
    if (primary)
        state |= DrawPrimary;
    return state;
}

void MButton::Paint(MDrawer& drawer)
{
    const std::uint16_t state = GetDrawState();
    MRectangle area = OwnRectangle();
    Style()->PaintFace(drawer, area, controlType, state);
    // Above the lamp, the text makes room for it.
    if ((state & (DrawOn | DrawLearning | DrawSource | DrawTarget)) != 0 && secondLine.IsEmpty())
        area = area.Moved(0, -Style()->Pixels(1));
    PaintContent(drawer, area, state);
}

void MButton::PaintContent(MDrawer& drawer, const MRectangle& area, std::uint16_t state)
{
    MStyle& style = *Style();
    const MColor text = style.GetColor(WidgetText::ColorOf(state));
    const MSize picture = icon != MStdIcon::None ? style.IconSize(icon) : MSize{};
    if (caption.IsEmpty())
    {
        style.PaintIcon(drawer, area, icon, style.GetColor(WidgetText::ColorOf(state, iconColor)));
        return;
    }
    const std::int32_t padding = style.Pixels(PaddingUnits);
    MRectangle room = area.Inset(std::min(padding, area.Width() / 2), 0);
    if (picture.width > 0)
    {
        const std::int32_t gap = style.Pixels(IconGapUnits);
        const std::int32_t width =
            std::min(WidgetText::Width(*this, font, caption), room.Width() - picture.width - gap);
        std::int32_t left = room.left;
        if (alignment == MPlacement::Middle && secondLine.IsEmpty())
            left += std::max(0, (room.Width() - width - gap - picture.width) / 2);
        style.PaintIcon(drawer, { left, area.top, left + picture.width - 1, area.bottom }, icon,
                        iconColor == MStdColor::Icon ? text
                                                     : style.GetColor(WidgetText::ColorOf(state, iconColor)));
        room.left = left + picture.width + gap;
        if (alignment == MPlacement::Middle && secondLine.IsEmpty())
            room.right = std::max(room.left, room.left + width);
    }
    if (secondLine.IsEmpty())
    {
        drawer.AlignedTextOut(room, caption, style.GetFont(font), text, alignment);
        return;
    }
    const auto line = [&](const MString& shown, MStdFont with, double baseline, MColor color)
    {
        MFont& used = style.GetFont(with);
        const MString fits = used.Shortened(shown, room.Width());
        const double width = used.Width(fits);
        drawer.TextOut(room.left + std::max(0.0, (room.Width() - width) / 2),
                       area.top +
                           static_cast<std::int32_t>(std::lround(baseline / TallUnits * area.Height())),
                       fits, used, color);
    };
    const bool usable = (state & DrawEnabled) != 0;
    line(caption, MStdFont::Large1, HeadBaseline, text);
    line(secondLine, MStdFont::Small, SecondBaseline,
         usable && (state & (DrawOn | DrawPrimary)) == 0 ? style.GetColor(MStdColor::Text2) : text);
}

void MButton::OnPressed()
{
    if (isToggle)
        SetOn(!on);
}

void MButton::Press()
{
    if (!IsUsable())
        return;
    OnPressed();
    MOnControlClickParams params;
    params.source = this;
    params.control = this;
    Clicks().Raise(0, false, params);
}

bool MButton::OnEvent(const MControlEvent& event)
{
    if (event.code == MEventCode::LeftUp && OwnRectangle().Contains(event.x, event.y))
        OnPressed();   // the click itself is told after this
    if (event.code == MEventCode::LeftDown || event.code == MEventCode::LeftUp)
        return true;
    const bool presses = event.IsKey() && event.code != MEventCode::Character &&
                         (event.key == MKey::Space || event.key == MKey::Enter) && !event.Has(ModifierCtrl) &&
                         !event.Has(ModifierAlt);
    if (!presses)
        return MControl::OnEvent(event);
    const bool down = event.code == MEventCode::KeyDown;
    const bool wasDown = keyDown;
    keyDown = down;
    Invalidate();
    if (!down && wasDown)
        Press();
    return true;
}
