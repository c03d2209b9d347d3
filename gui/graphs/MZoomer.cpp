// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/MZoomer.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace
{
// Units at 100 %.
constexpr double BarThickness = 6;
constexpr double BarMargin = 4;   // between the bar and the control's outer edge
constexpr double ButtonPitch = 14;
constexpr double ButtonGap = 2;   // between the bar and the first button
constexpr double LeastThumb = 12;

constexpr double WholeOpacity = 0.4;   // of the thumb while there is nothing to move
constexpr double ThumbInk = 0.34;   // of the quiet text's colour in the panel's
constexpr double StepShare = 0.1;

constexpr MZoomer::Button buttons[] = { MZoomer::Button::ZoomOut, MZoomer::Button::ZoomIn,
                                        MZoomer::Button::ZoomDefault };
constexpr MStdIcon icons[] = { MStdIcon::ZoomOut, MStdIcon::ZoomIn, MStdIcon::ZoomDefault };
}   // namespace

MZoomer::MZoomer(Axis direction) : axis(direction)
{
    controlType = MControlType::Empty;
}

void MZoomer::Limit()
{
    const double range = maximum - minimum;
    size = std::clamp(size, std::min(minimumSize, range), range);
    position = std::clamp(position, minimum, std::max(minimum, maximum - size));
}

bool MZoomer::Assign(double newPosition, double newSize)
{
    if (!std::isfinite(newPosition) || !std::isfinite(newSize))
        return false;
    const double positionBefore = position;
    const double sizeBefore = size;
    position = newPosition;
    size = newSize;
    Limit();
    if (position == positionBefore && size == sizeBefore)
        return false;
    Invalidate();
    return true;
}

void MZoomer::SetRange(double newMinimum, double newMaximum, double newMinimumSize)
{
    if (!std::isfinite(newMinimum) || !std::isfinite(newMaximum) || !(newMaximum > newMinimum) ||
        !(newMinimumSize > 0))
        return;
    minimum = newMinimum;
    maximum = newMaximum;
    minimumSize = newMinimumSize;
    Limit();
    Invalidate();
}

void MZoomer::SetPart(double newPosition, double newSize)
{
    Assign(newPosition, newSize);
}

void MZoomer::SetZoomFactor(double factor)
{
    if (factor > 0 && factor < 1)
        zoomFactor = factor;
}

void MZoomer::ChangePart(double newPosition, double newSize)
{
    if (!Assign(newPosition, newSize))
        return;
    MOnNotifyParams params;
    params.source = this;
    zoom.Call(params);
}

void MZoomer::MoveTo(double newPosition)
{
    ChangePart(newPosition, size);
}

void MZoomer::Step(std::int32_t direction)
{
    MoveTo(position + direction * size * StepShare);
}

void MZoomer::ZoomAround(double value, std::int32_t steps)
{
    const double factor = std::pow(zoomFactor, steps);
    ChangePart(value - (value - position) * factor, size * factor);
}

void MZoomer::ZoomToLevel(std::int32_t level)
{
    const double newSize = (maximum - minimum) * std::pow(zoomFactor, std::clamp(level, 0, LevelCount - 1));
    ChangePart(position + (size - newSize) / 2, newSize);
}

void MZoomer::ZoomToDefault()
{
    ChangePart(minimum, maximum - minimum);
}

std::int32_t MZoomer::BarPage() const
{
    return static_cast<std::int32_t>(size / (maximum - minimum) * BarMaximum);
}

std::int32_t MZoomer::BarPosition() const
{
    return static_cast<std::int32_t>((position - minimum) / (maximum - minimum) * BarMaximum);
}

void MZoomer::SetBarPosition(std::int32_t newPosition)
{
    MoveTo(minimum + (maximum - minimum) * newPosition / BarMaximum);
}

void MZoomer::SetBarLength(std::int32_t pixels)
{
    barLength = pixels;
    Invalidate();
}

MRectangle MZoomer::BarRectangle() const
{
    const MStyle* style = Style();
    if (style == nullptr)
        return {};
    const std::int32_t whole = axis == Axis::X ? Width() : Height();
    const std::int32_t free =
        whole - (showsButtons ? style->Pixels(ButtonGap + std::size(buttons) * ButtonPitch) : 0);
    const std::int32_t length = std::max(0, barLength > 0 ? std::min(barLength, free) : free);
    const std::int32_t thick = style->Pixels(BarThickness);
    const std::int32_t margin = style->Pixels(BarMargin);
    return axis == Axis::X ? MRectangle::OfSize(0, Height() - margin - thick, length, thick)
                           : MRectangle::OfSize(Width() - margin - thick, 0, thick, length);
}

MRectangle MZoomer::ThumbRectangle() const
{
    const MRectangle bar = BarRectangle();
    if (bar.IsEmpty())
        return {};
    const std::int32_t length = axis == Axis::X ? bar.Width() : bar.Height();
    const std::int32_t least = std::min(length, Style()->Pixels(LeastThumb));
    const auto thumb =
        std::max(least, static_cast<std::int32_t>(std::int64_t{ length } * BarPage() / BarMaximum));
    const std::int32_t free = BarMaximum - BarPage();
    const auto first =
        free > 0 ? static_cast<std::int32_t>(std::int64_t{ length - thumb } * BarPosition() / free) : 0;
    return axis == Axis::X ? MRectangle::OfSize(bar.left + first, bar.top, thumb, bar.Height())
                           : MRectangle::OfSize(bar.left, bar.top + first, bar.Width(), thumb);
}

MRectangle MZoomer::ButtonRectangle(Button button) const
{
    const MRectangle bar = BarRectangle();
    if (!showsButtons || button == Button::None || bar.IsEmpty())
        return {};
    const std::int32_t pitch = Style()->Pixels(ButtonPitch);
    const std::int32_t after = Style()->Pixels(ButtonGap) + static_cast<std::int32_t>(button) * pitch;
    const std::int32_t across =
        axis == Axis::X ? (bar.top + bar.bottom + 1 - pitch) / 2 : (bar.left + bar.right + 1 - pitch) / 2;
    const MRectangle place = axis == Axis::X
                                 ? MRectangle::OfSize(bar.right + 1 + after, across, pitch, pitch)
                                 : MRectangle::OfSize(across, bar.bottom + 1 + after, pitch, pitch);
    return place.Intersection(OwnRectangle());
}

MZoomer::Button MZoomer::ButtonAt(std::int32_t x, std::int32_t y) const
{
    for (const Button button : buttons)
        if (ButtonRectangle(button).Contains(x, y))
            return button;
    return Button::None;
}

void MZoomer::Press(Button button)
{
    for (MZoomer* each : { this, partner })
    {
        if (each == nullptr)
            continue;
        if (button == Button::ZoomDefault)
            each->ZoomToDefault();
        else
            each->ZoomAround(each->position + each->size / 2, button == Button::ZoomIn ? 1 : -1);
    }
}

bool MZoomer::OnPress(const MControlEvent& event)
{
    held = ButtonAt(event.x, event.y);
    if (held != Button::None)
        return true;
    const MRectangle bar = BarRectangle();
    const MRectangle thumb = ThumbRectangle();
    if (!bar.Contains(event.x, event.y))
        return false;
    if (thumb.Contains(event.x, event.y))
    {
        dragging = true;
        grabbedAt = Along(event) - (axis == Axis::X ? thumb.left : thumb.top);
        return true;
    }
    const bool isBefore = Along(event) < (axis == Axis::X ? thumb.left : thumb.top);
    MoveTo(position + (isBefore ? -size : size));
    return true;
}

bool MZoomer::OnMove(const MControlEvent& event)
{
    const Button now = ButtonAt(event.x, event.y);
    if (now != under)
    {
        under = now;
        Invalidate();
    }
    if (!dragging)
        return held != Button::None;
    const MRectangle bar = BarRectangle();
    const MRectangle thumb = ThumbRectangle();
    const bool across = axis == Axis::X;
    const std::int32_t room = across ? bar.Width() - thumb.Width() : bar.Height() - thumb.Height();
    if (room > 0)
    {
        const std::int32_t first = Along(event) - grabbedAt - (across ? bar.left : bar.top);
        SetBarPosition(static_cast<std::int32_t>(std::int64_t{ std::clamp(first, 0, room) } *
                                                 (BarMaximum - BarPage()) / room));
    }
    return true;
}

bool MZoomer::OnEvent(const MControlEvent& event)
{
    switch (event.code)
    {
    case MEventCode::LeftDown:
        return OnPress(event);
    case MEventCode::Move:
        return OnMove(event);
    case MEventCode::LeftUp:
        if (held != Button::None && held == ButtonAt(event.x, event.y))
            Press(held);
        held = Button::None;
        return true;
    default:
        return false;
    }
}

void MZoomer::OnCaptureEnd()
{
    dragging = false;
    Invalidate();
}

void MZoomer::OnMouseLeave()
{
    under = Button::None;
    MControl::OnMouseLeave();
}

void MZoomer::Paint(MDrawer& drawer)
{
    PaintBar(drawer);
    for (const Button button : buttons)
        if (showsButtons)
            PaintButton(drawer, button);
}

void MZoomer::PaintBar(MDrawer& drawer) const
{
    const MStyle& style = *Style();
    const MRectangle bar = BarRectangle();
    const double radius = std::min(bar.Width(), bar.Height()) / 2.0;
    const MColor ink = style.GetColor(MStdColor::Panel).Mixed(style.GetColor(MStdColor::Text3), ThumbInk);
    drawer.FillRoundRectangle(bar, radius, style.GetColor(MStdColor::Window));
    drawer.FillRoundRectangle(ThumbRectangle(), radius, IsWhole() ? ink.Faded(WholeOpacity) : ink);
}

void MZoomer::PaintButton(MDrawer& drawer, Button button) const
{
    const MStyle& style = *Style();
    const bool isHot = under == button && IsUsable();
    style.PaintIcon(drawer, ButtonRectangle(button), icons[static_cast<std::size_t>(button)],
                    style.GetColor(isHot ? MStdColor::Text : MStdColor::Text3));
}
