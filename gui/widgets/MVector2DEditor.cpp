// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MVector2DEditor.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "gui/fields/WidgetText.h"

namespace
{
constexpr double RadiusUnits = 6;
constexpr double LeastUnits = 60;
constexpr double KeyStep = 0.01;
constexpr double FineShare = 0.1;
}   // namespace

MVector2DEditor::MVector2DEditor()
{
    controlType = MControlType::Edit;
    tabStop = true;
}

MSize MVector2DEditor::ContentMinimum() const
{
    const std::int32_t size = Style() != nullptr ? Style()->Pixels(LeastUnits) : 0;
    return { size, size };
}

void MVector2DEditor::SetPoint(double x, double y)
{
    const auto limited = [](double each)
    {
        return std::isfinite(each) ? std::clamp(each, 0.0, 1.0) : 0.0;
    };
    point[0] = limited(x);
    point[1] = limited(y);
    Invalidate();
}

MRectangle MVector2DEditor::PadArea() const
{
    const std::int32_t radius = Style()->Pixels(RadiusUnits) + Style()->Hairline();
    return OwnRectangle().Inset(radius, radius);
}

MPointF MVector2DEditor::PixelOf(double x, double y) const
{
    const MRectangle pad = PadArea();
    return { pad.left + x * (pad.Width() - 1) + 0.5, pad.bottom - y * (pad.Height() - 1) + 0.5 };
}

void MVector2DEditor::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const std::uint16_t state = GetDrawState();
    style.PaintFace(drawer, OwnRectangle(), MControlType::Edit, state & DrawEnabled);
    const MRectangle pad = PadArea();
    const MPointF at = PixelOf(point[0], point[1]);
    const std::int32_t line = style.Hairline();
    const auto x = static_cast<std::int32_t>(at.x);
    const auto y = static_cast<std::int32_t>(at.y);
    const MColor lines = style.GetColor(MStdColor::Line);
    drawer.FillRectangle({ x, pad.top, x + line - 1, pad.bottom }, lines);
    drawer.FillRectangle({ pad.left, y, pad.right, y + line - 1 }, lines);
    const bool usable = (state & DrawEnabled) != 0;
    drawer.FillCircle(at, style.GetScale() * RadiusUnits,
                      MFill(style.GetColor(usable ? MStdColor::Accent : MStdColor::TextDisabled)));
    if ((state & (DrawHovered | DrawPressed)) != 0)
        drawer.Circle(at, style.GetScale() * RadiusUnits, style.GetScale(), style.GetColor(MStdColor::Text));
}

void MVector2DEditor::Tell(Phase phase)
{
    Params params;
    params.source = this;
    params.phase = phase;
    changed.Call(params);
}

void MVector2DEditor::BeginGesture()
{
    if (!std::exchange(dragging, true))
        Tell(Phase::Begin);
}

void MVector2DEditor::EndGesture()
{
    if (std::exchange(dragging, false))
        Tell(Phase::End);
}

void MVector2DEditor::OnCaptureEnd()
{
    EndGesture();
}

bool MVector2DEditor::MoveBy(double dx, double dy)
{
    const double x = point[0];
    const double y = point[1];
    SetPoint(x + dx, y + dy);
    if (x == point[0] && y == point[1])
        return false;
    Tell(Phase::Change);
    return true;
}

bool MVector2DEditor::OnEvent(const MControlEvent& event)
{
    if (Style() == nullptr)
        return false;
    const MRectangle pad = PadArea();
    const double fine = event.Has(ModifierCtrl) ? FineShare : 1;
    switch (event.code)
    {
    case MEventCode::LeftDown:
    {
        BeginGesture();
        const MPointF at = PixelOf(point[0], point[1]);
        // Away from the point, it comes to the pointer.
        if (std::hypot(at.x - event.x, at.y - event.y) > 2 * RadiusUnits * Style()->GetScale())
            MoveBy((event.x + 0.5 - at.x) / std::max(1, pad.Width() - 1),
                   (at.y - event.y - 0.5) / std::max(1, pad.Height() - 1));
        pointer = { event.x, event.y };
        return true;
    }
    case MEventCode::Move:
        if (!dragging || !HasCapture())
            return false;
        MoveBy(fine * (event.x - pointer.x) / std::max(1, pad.Width() - 1),
               fine * (pointer.y - event.y) / std::max(1, pad.Height() - 1));
        pointer = { event.x, event.y };
        return true;
    case MEventCode::LeftUp:
        EndGesture();
        return true;
    case MEventCode::KeyDown:
    {
        const double dx = event.key == MKey::Left ? -1 : event.key == MKey::Right ? 1 : 0;
        const double dy = event.key == MKey::Down ? -1 : event.key == MKey::Up ? 1 : 0;
        if (event.Has(ModifierAlt) || (dx == 0 && dy == 0))
            return MControl::OnEvent(event);
        BeginGesture();
        MoveBy(dx * KeyStep * fine, dy * KeyStep * fine);
        EndGesture();
        return true;
    }
    default:
        return MControl::OnEvent(event);
    }
}
