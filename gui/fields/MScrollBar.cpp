// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/fields/MScrollBar.h"

#include <algorithm>

#include "gui/controls/MWindow.h"

namespace
{
constexpr double ThicknessUnits = 10;
constexpr double LeastThumbUnits = 24;
constexpr std::int32_t FirstTurnMilliseconds = 400;
constexpr std::int32_t NextTurnMilliseconds = 60;
constexpr std::int32_t WheelLines = 3;
}   // namespace

MScrollBar::MScrollBar()
{
    controlType = MControlType::VScrollBar;
}

MSize MScrollBar::ContentMinimum() const
{
    const std::int32_t thick = Style() != nullptr ? Style()->Pixels(ThicknessUnits) : 0;
    return { thick, thick };
}

std::int32_t MScrollBar::Last() const
{
    return std::max(0, wholeSize - pageSize);
}

void MScrollBar::SetRange(std::int32_t whole, std::int32_t page)
{
    if (wholeSize == whole && pageSize == page)
        return;
    wholeSize = std::max(0, whole);
    pageSize = std::max(0, page);
    position = std::clamp(position, 0, Last());
    Invalidate();
}

void MScrollBar::SetFirst(std::int32_t first)
{
    const std::int32_t limited = std::clamp(first, 0, Last());
    if (position == limited)
        return;
    position = limited;
    Invalidate();
}

void MScrollBar::ShowPart(std::int32_t first, std::int32_t size)
{
    if (pageSize < size)
        return;
    if (first < position)
        SetFirst(first);
    else if (first + size > position + pageSize)
        SetFirst(first + size - pageSize);
}

void MScrollBar::ScrollBy(std::int32_t way)
{
    const std::int32_t before = position;
    SetFirst(static_cast<std::int32_t>(std::clamp<std::int64_t>(std::int64_t{ position } + way, 0, Last())));
    if (position == before)
        return;
    MOnNotifyParams params;
    params.source = this;
    scroll.Call(params);
}

MRectangle MScrollBar::Thumb() const
{
    const std::int32_t length = Along() == Axis::X ? Width() : Height();
    if (!IsNeeded() || Style() == nullptr)
        return {};
    const std::int32_t least = std::min(length, Style()->Pixels(LeastThumbUnits));
    const auto size = static_cast<std::int32_t>(
        std::max<std::int64_t>(least, std::int64_t{ length } * pageSize / wholeSize));
    const auto first = static_cast<std::int32_t>(std::int64_t{ length - size } * position / Last());
    return Along() == Axis::X ? MRectangle::OfSize(first, 0, size, Height())
                              : MRectangle::OfSize(0, first, Width(), size);
}

void MScrollBar::Paint(MDrawer& drawer)
{
    Style()->PaintScrollBar(drawer, OwnRectangle(), Thumb(), Along(), GetDrawState());
}

bool MScrollBar::OnEvent(const MControlEvent& event)
{
    switch (event.code)
    {
    case MEventCode::LeftDown:
    {
        const MRectangle thumb = Thumb();
        if (thumb.IsEmpty())
            return false;
        pointerAt = At(event);
        const std::int32_t first = Along() == Axis::X ? thumb.left : thumb.top;
        dragging = thumb.Contains(event.x, event.y);
        grabbedAt = pointerAt - first;
        turning = !dragging;
        if (turning)
        {
            Turn();
            if (MWindow* window = Window())
                window->SetTimer(*this, FirstTurnMilliseconds);
        }
        return true;
    }
    case MEventCode::Move:
        pointerAt = At(event);
        if (dragging && HasCapture())
        {
            const MRectangle thumb = Thumb();
            const std::int32_t size = Along() == Axis::X ? thumb.Width() : thumb.Height();
            const std::int32_t room = (Along() == Axis::X ? Width() : Height()) - size;
            if (room > 0)
                ScrollBy(static_cast<std::int32_t>(
                             (std::int64_t{ pointerAt - grabbedAt } * Last() + room / 2) / room) -
                         position);
        }
        return dragging || turning;
    case MEventCode::LeftUp:
        return true;
    case MEventCode::Wheel:
        ScrollBy(-event.key * WheelLines * line / 120);
        return IsNeeded();
    default:
        return MControl::OnEvent(event);
    }
}

void MScrollBar::Turn()
{
    const MRectangle thumb = Thumb();
    const std::int32_t first = Along() == Axis::X ? thumb.left : thumb.top;
    const std::int32_t last = Along() == Axis::X ? thumb.right : thumb.bottom;
    if (pointerAt < first)
        ScrollBy(-std::max(1, pageSize - line));
    else if (pointerAt > last)
        ScrollBy(std::max(1, pageSize - line));
}

void MScrollBar::OnTimer()
{
    if (MWindow* window = Window())
        window->SetTimer(*this, turning ? NextTurnMilliseconds : 0);
    if (turning)
        Turn();
}

void MScrollBar::OnCaptureEnd()
{
    dragging = turning = false;
    if (MWindow* window = Window())
        window->SetTimer(*this, 0);
}
