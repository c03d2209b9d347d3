// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MKnob.h"

#include <algorithm>

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"

namespace
{
constexpr double GapUnits = 2;
constexpr double SideUnits = 3;   // beside the knob, for its label and its focus ring
constexpr double RotatorUnits = 20;
}   // namespace

MKnob::MKnob()
{
    controlType = MControlType::Knob;
    font = MStdFont::Label;
}

void MKnob::LoadXml(const MAttribute& node)
{
    MControlValue::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("text", caption);
    if (std::int32_t units = 0; attributes.Read("diameter", units))
        diameter = std::max(8, units);
}

MKnob::Parts MKnob::Places() const
{
    const MStyle& style = *Style();
    const MRectangle area = OwnRectangle();
    Parts parts;
    parts.label = { area.left, area.top, area.right, area.top + WidgetText::LineHeight(*this, font) - 1 };
    parts.value = { area.left, area.bottom - WidgetText::LineHeight(*this, ValueFont()) + 1, area.right,
                    area.bottom };
    const std::int32_t gap = style.Pixels(GapUnits);
    const std::int32_t size = std::max(0, std::min({ style.Pixels(diameter), area.Width(),
                                                     parts.value.top - gap - parts.label.bottom - 1 - gap }));
    parts.knob =
        MRectangle::OfSize(area.left + (area.Width() - size) / 2, parts.label.bottom + 1 + gap, size, size);
    return parts;
}

MSize MKnob::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const MStyle& style = *Style();
    const std::int32_t knob = style.Pixels(diameter);
    return { std::max(knob + 2 * style.Pixels(SideUnits), WidgetText::Width(*this, font, caption)),
             knob + 2 * style.Pixels(GapUnits) + WidgetText::LineHeight(*this, font) +
                 WidgetText::LineHeight(*this, ValueFont()) };
}

MRectangle MKnob::TypingArea() const
{
    MRectangle area = Places().value;
    area.top -= Style()->Pixels(GapUnits);
    return area;
}

void MKnob::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const Parts parts = Places();
    const std::uint16_t state = GetDrawState();
    drawer.AlignedTextOut(parts.label, caption, style.GetFont(font),
                          style.GetColor(WidgetText::ColorOf(state, MStdColor::Text2)), MPlacement::Middle);
    style.PaintKnob(drawer, parts.knob, Look(), state);
    if (!IsTyping())
        drawer.AlignedTextOut(parts.value, ValueText(), style.GetFont(ValueFont()),
                              style.GetColor(WidgetText::ColorOf(state)), MPlacement::Middle);
}

MRotator::MRotator()
{
    controlType = MControlType::Rotator;
}

MSize MRotator::ContentMinimum() const
{
    const std::int32_t size = Style() != nullptr ? Style()->Pixels(RotatorUnits) : 0;
    return { size, size };
}

void MRotator::Paint(MDrawer& drawer)
{
    const MRectangle area = OwnRectangle();
    const std::int32_t size = std::min(area.Width(), area.Height());
    Style()->PaintKnob(drawer,
                       MRectangle::OfSize((area.Width() - size) / 2, (area.Height() - size) / 2, size, size),
                       Look(), GetDrawState());
}
