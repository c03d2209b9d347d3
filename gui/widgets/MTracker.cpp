// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MTracker.h"

#include <algorithm>
#include <cmath>

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"

namespace
{
constexpr double LabelUnits = 118;
constexpr double FieldUnits = 76;
constexpr double GapUnits = 8;
constexpr double LeastTrackUnits = 60;
constexpr double ThumbUnits = 14;
constexpr double PaddingUnits = 6;
}   // namespace

MTracker::MTracker()
{
    controlType = MControlType::Tracker;
}

void MTracker::LoadXml(const MAttribute& node)
{
    MControlValue::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("text", caption);
    attributes.ReadName("form", form, "MTracker form");
}

MTracker::Parts MTracker::Places() const
{
    const MStyle& style = *Style();
    const MRectangle area = OwnRectangle();
    Parts parts;
    parts.track = area;
    if (form == Form::Row)
    {
        const std::int32_t gap = style.Pixels(GapUnits);
        if (!caption.IsEmpty())
            parts.label = { area.left, area.top, area.left + style.Pixels(LabelUnits) - 1, area.bottom };
        parts.value = { area.right + 1 - style.Pixels(FieldUnits), area.top, area.right, area.bottom };
        parts.track = { caption.IsEmpty() ? area.left : parts.label.right + 1, area.top,
                        parts.value.left - 1 - gap, area.bottom };
    }
    else if (form == Form::Compact)
    {
        const std::int32_t line = WidgetText::LineHeight(*this, MStdFont::Label);
        parts.label = { area.left, area.top, area.right, area.top + line - 1 };
        parts.value = { area.left, area.top + line, area.right, area.top + 2 * line - 1 };
        parts.track.top = std::min(area.bottom, parts.value.bottom + 1);
    }
    return parts;
}

MSize MTracker::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const MStyle& style = *Style();
    const std::int32_t thumb = style.Pixels(ThumbUnits);
    const std::int32_t track = style.Pixels(LeastTrackUnits);
    if (form == Form::Row)
        return { (caption.IsEmpty() ? 0 : style.Pixels(LabelUnits)) + track + style.Pixels(GapUnits) +
                     style.Pixels(FieldUnits),
                 style.Pixels(22) };
    if (form == Form::Compact)
        return { track, 2 * WidgetText::LineHeight(*this, MStdFont::Label) + thumb };
    return { thumb, thumb };
}

MRectangle MTracker::TypingArea() const
{
    return Style() != nullptr ? Places().value : MRectangle{};
}

double MTracker::PositionAt(std::int32_t x, std::int32_t y) const
{
    const MRectangle track = Places().track;
    if (!track.Contains(x, y))
        return -1;
    const std::int32_t half = Style()->Pixels(ThumbUnits) / 2;
    const double at = Along() == Axis::X ? (x - track.left + 0.5) / track.Width()
                                         : (track.bottom - y + 0.5) / track.Height();
    // On the thumb it is held where it is.
    const double reach = half / DragLength();
    return std::abs(at - ValuePosition()) <= reach ? -1 : std::clamp(at, 0.0, 1.0);
}

double MTracker::DragLength() const
{
    const MRectangle track = Places().track;
    return std::max(10, Along() == Axis::X ? track.Width() : track.Height());
}

void MTracker::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const Parts parts = Places();
    const std::uint16_t state = GetDrawState();
    const MColor label = style.GetColor(WidgetText::ColorOf(state, MStdColor::Text2));
    if (!parts.label.IsEmpty())
        drawer.AlignedTextOut(parts.label, caption,
                              style.GetFont(form == Form::Row ? MStdFont::Normal : MStdFont::Label), label);
    style.PaintTracker(drawer, parts.track, Along(), Look(), state);
    if (parts.value.IsEmpty() || IsTyping())
        return;
    MRectangle text = parts.value;
    if (form == Form::Row)
    {
        style.PaintFace(drawer, parts.value, MControlType::Edit,
                        state & static_cast<std::uint16_t>(~DrawFocused));
        text.right -= style.Pixels(PaddingUnits);
    }
    drawer.AlignedTextOut(text, ValueText(), style.GetFont(ValueFont()),
                          style.GetColor(WidgetText::ColorOf(state)), MPlacement::End);
}
