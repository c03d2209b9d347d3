// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/PullPointEditing.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{
constexpr double FineShare = 0.0005;   // of a range, for each pixel that the mouse moves with Ctrl
constexpr double WidthStep = 0.005;   // for each pixel
constexpr double FineWidthStep = 0.0005;
constexpr double WheelWidthStep = 0.025;   // for each notch
constexpr std::int32_t WheelNotch = 120;
}   // namespace

void PullPointEditing::TellChange(std::int32_t index)
{
    MOnItemParams<std::int32_t> params;
    params.source = this;
    params.item = index;
    changed.Call(params);
}

void PullPointEditing::PointChanged(std::int32_t index)
{
    if (notifyAtOnce)
        return TellChange(index);
    pendingIndex = index;
    pendingChange = true;
}

void PullPointEditing::Select(std::int32_t index)
{
    if (selection != nullptr)
        *selection = index;
}

bool PullPointEditing::IsInView(MPoint pixel) const
{
    return Editor() != nullptr && Editor()->ClipRectangle().Contains(pixel.x, pixel.y);
}

MPoint PullPointEditing::PixelOf(const State& point) const
{
    return { PointMapping().x.PixelOf(point.x), PointMapping().y.PixelOf(point.y) };
}

std::int32_t PullPointEditing::PointAt(std::int32_t x, std::int32_t y) const
{
    std::int32_t disabled = -1;
    for (std::int32_t i = 0; i < PointCount(); ++i)
    {
        const State point = GetPoint(i);
        const MPoint pixel = PixelOf(point);
        if (std::abs(pixel.x - x) > pointRadius || std::abs(pixel.y - y) > pointRadius || !IsInView(pixel))
            continue;
        if (point.enabled)
            return i;
        disabled = i;
    }
    return disabled;
}

std::int32_t PullPointEditing::HandleAt(std::int32_t x, std::int32_t y, bool& isOnLeft) const
{
    const std::int32_t reach = pointRadius + static_cast<std::int32_t>(std::lround(HandleReach * scale));
    for (std::int32_t i = 0; i < PointCount(); ++i)
    {
        const State point = GetPoint(i);
        const MPoint pixel = PixelOf(point);
        if (!point.enabled || !point.hasWidth || std::abs(pixel.x - x) > reach ||
            std::abs(pixel.y - y) > pointRadius || !IsInView(pixel))
            continue;
        isOnLeft = x < pixel.x;
        return i;
    }
    return -1;
}

bool PullPointEditing::OnEvent(MGraphEditor& editor, const MControlEvent& event)
{
    switch (event.code)
    {
    case MEventCode::LeftDown:
        return OnLeftDown(editor, event);
    case MEventCode::Move:
        return OnMove(editor, event);
    case MEventCode::LeftUp:
        return OnLeftUp(editor);
    case MEventCode::RightDown:
        return OnRightDown(editor, event);
    case MEventCode::RightUp:
        return OnRightUp(editor, event);
    case MEventCode::LeftDoubleClick:
        return OnDoubleClick(editor, event);
    case MEventCode::Wheel:
        return OnWheel(editor, event);
    case MEventCode::KeyDown:
        return OnKeyDown(editor, event);
    case MEventCode::KeyUp:
        return keyPoint >= 0 && IsKeyOfPoints(event);
    case MEventCode::Focus:
        if (!event.focused)
            LeaveKeys(editor);
        return false;
    case MEventCode::Leave:
        Hover(editor, -1);
        return false;
    default:
        return false;
    }
}

void PullPointEditing::Hover(MGraphEditor& editor, std::int32_t index)
{
    if (index == hoverIndex)
        return;
    hoverIndex = index;
    editor.InvalidateGraph(*this);
}

void PullPointEditing::BeginDrag(std::int32_t index, const MControlEvent& event)
{
    dragIndex = index;
    dragStart = { event.x, event.y };
    Select(index);
    dragPoint = true;
}

bool PullPointEditing::OnLeftDown(MGraphEditor& editor, const MControlEvent& event)
{
    if (!editor.OwnRectangle().Contains(event.x, event.y))
        return false;
    LeaveKeys(editor);
    if (!notifyAtOnce)
    {
        pendingIndex = -1;
        pendingChange = false;
    }
    dragPoint = dragWidth = false;
    if (const std::int32_t point = PointAt(event.x, event.y); point >= 0)
    {
        BeginDrag(point, event);
        return true;
    }
    widthIndex = HandleAt(event.x, event.y, widthOnLeft);
    if (widthIndex < 0)
        return false;
    dragStart = { event.x, event.y };
    dragWidth = true;
    Select(widthIndex);
    return true;
}

bool PullPointEditing::OnMove(MGraphEditor& editor, const MControlEvent& event)
{
    if (dragPoint)
        MoveDraggedPoint(editor, event);
    else if (dragWidth)
        MoveDraggedWidth(editor, event);
    else
        Hover(editor, PointAt(event.x, event.y));
    return IsDragging();
}

void PullPointEditing::MoveDraggedPoint(MGraphEditor& editor, const MControlEvent& event)
{
    const GraphMapping& mapping = PointMapping();
    const State before = GetPoint(dragIndex);
    State after = before;
    if (event.Has(ModifierCtrl))
    {
        after.x += (event.x - dragStart.x) * FineShare * (mapping.x.high - mapping.x.low);
        after.y += (dragStart.y - event.y) * FineShare * (mapping.y.high - mapping.y.low);
    }
    else
    {
        after.x = mapping.x.ValueOf(event.x);
        after.y = mapping.y.ValueOf(event.y);
    }
    dragStart = { event.x, event.y };
    ChangePoint(editor, dragIndex,
                [&]
                {
                    SetPlace(dragIndex, event.Has(ModifierShift) ? before.x : after.x,
                             event.Has(ModifierAlt) ? before.y : after.y);
                });
}

void PullPointEditing::MoveDraggedWidth(MGraphEditor& editor, const MControlEvent& event)
{
    const std::int32_t way = (dragStart.x - event.x) * (widthOnLeft ? -1 : 1);
    const double step = event.Has(ModifierCtrl) ? FineWidthStep : WidthStep;
    if (event.x == dragStart.x && event.y == dragStart.y)
        return;   // the pointer, put back
    ChangePoint(editor, widthIndex,
                [&]
                {
                    const double width = GetPoint(widthIndex).width - way * step;
                    SetWidth(widthIndex, std::clamp(width, 0.0, 1.0));
                });
    if (!editor.MovePointer(dragStart.x, dragStart.y))
        dragStart = { event.x, event.y };
}

bool PullPointEditing::OnLeftUp(MGraphEditor& editor)
{
    const bool wasDragging = IsDragging();
    const std::int32_t selected = Selected();
    const bool tells = pendingChange || selected >= 0;
    const std::int32_t index = pendingChange ? pendingIndex : selected;
    pendingChange = false;
    dragPoint = dragWidth = false;
    Select(-1);
    if (tells)
        TellChange(index);
    if (wasDragging)
        editor.InvalidateGraph(*this);
    return wasDragging;
}

bool PullPointEditing::OnRightDown(const MGraphEditor& editor, const MControlEvent& event)
{
    if (!editor.OwnRectangle().Contains(event.x, event.y))
        return false;
    rightIndex = PointAt(event.x, event.y);
    if (rightIndex < 0)
        rightIndex = HandleAt(event.x, event.y, widthOnLeft);
    return rightIndex >= 0;
}

bool PullPointEditing::OnRightUp(MGraphEditor& editor, const MControlEvent& event)
{
    const std::int32_t index = rightIndex;
    rightIndex = -1;
    if (index < 0 || !editor.OwnRectangle().Contains(event.x, event.y))
        return false;
    const std::int32_t point = PointAt(event.x, event.y);
    if (point == index)
    {
        MOnItemParams<std::int32_t> params;
        params.source = this;
        params.item = index;
        rightClick.Call(params);
        return true;
    }
    if (point >= 0 || HandleAt(event.x, event.y, widthOnLeft) != index)
        return false;
    ResetWidth(editor, index);
    return true;
}

void PullPointEditing::ResetWidth(MGraphEditor& editor, std::int32_t index)
{
    {
        const MSynchronizerGuard guard(lock);
        SetWidth(index, DefaultWidth);
    }
    TellChange(index);
    editor.InvalidateGraph(*this);
}

bool PullPointEditing::OnDoubleClick(MGraphEditor& editor, const MControlEvent& event)
{
    if (!editor.OwnRectangle().Contains(event.x, event.y))
        return false;
    if (!notifyAtOnce)
    {
        pendingIndex = -1;
        pendingChange = false;
    }
    dragPoint = dragWidth = false;
    if (const std::int32_t point = PointAt(event.x, event.y); point >= 0)
    {
        {
            const MSynchronizerGuard guard(lock);
            SetPointEnabled(point, !GetPoint(point).enabled);
        }
        TellChange(point);
        editor.InvalidateGraph(*this);
        return true;
    }
    if (const std::int32_t handle = HandleAt(event.x, event.y, widthOnLeft); handle >= 0)
    {
        ResetWidth(editor, handle);
        return true;
    }
    AddPointAt(editor, event);
    return dragPoint;
}

void PullPointEditing::AddPointAt(MGraphEditor& editor, const MControlEvent& event)
{
    const double x = PointMapping().x.ValueOf(event.x);
    const double y = PointMapping().y.ValueOf(event.y);
    std::int32_t nearest = -1;
    double least = 0;
    for (std::int32_t i = 0; i < PointCount(); ++i)
    {
        const State point = GetPoint(i);
        const double distance = (point.x - x) * (point.x - x) + (point.y - y) * (point.y - y);
        if (point.enabled || (nearest >= 0 && distance >= least))
            continue;
        nearest = i;
        least = distance;
    }
    if (nearest < 0)
        return;
    {
        const MSynchronizerGuard guard(lock);
        ResetPoint(nearest);
        SetPlace(nearest, x, y);
        SetPointEnabled(nearest, true);
        LimitPoints();
    }
    BeginDrag(nearest, event);
    TellChange(nearest);
    editor.InvalidateGraph(*this);
}

bool PullPointEditing::OnWheel(MGraphEditor& editor, const MControlEvent& event)
{
    const std::int32_t index = PointAt(event.x, event.y);
    if (index < 0 || !GetPoint(index).hasWidth)
        return false;
    std::int32_t notches = event.key / WheelNotch;
    if (notches == 0)   // a fine wheel
        notches = event.key < 0 ? -1 : 1;
    const double step = event.Has(ModifierCtrl) ? FineWidthStep : WheelWidthStep;
    ChangePoint(editor, index,
                [&] { SetWidth(index, std::clamp(GetPoint(index).width + notches * step, 0.0, 1.0)); });
    return true;
}

MStdCursor PullPointEditing::GetCursor(MGraphEditor&, std::int32_t x, std::int32_t y) const
{
    bool isOnLeft = false;
    if (dragPoint)
        return MStdCursor::Move;
    if (dragWidth)
        return MStdCursor::WidthDrag;
    if (PointAt(x, y) >= 0)
        return MStdCursor::Move;
    return HandleAt(x, y, isOnLeft) >= 0 ? MStdCursor::WidthHover : MStdCursor::Inherited;
}

void PullPointEditing::CollectHelp(MAttribute& item) const
{
    AddHelp(item,
            "<control>Left mouse button</control> can be used to drag a <i>point</i> or <i>point width</i>. "
            "Hold <control>Ctrl</control> for more accuracy. Hold <control>Shift</control> to keep X "
            "coordinate and move just with Y. Hold <control>Alt</control> to keep Y coordinate and move just "
            "with X.");
    AddHelp(item, "<control>Left mouse button double-click</control> enables or disables the point.");
    AddHelp(item,
            "<control>Mouse wheel</control> modifies a <i>point width</i>. Hold <control>Ctrl</control> "
            "for more accuracy.");
}
