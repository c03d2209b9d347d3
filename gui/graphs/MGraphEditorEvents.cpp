// SPDX-License-Identifier: GPL-3.0-or-later
// How a graph editor answers mouse and keyboard.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "foundation/text/Boundary.h"
#include "gui/graphs/MGraphEditor.h"

namespace
{
constexpr std::int32_t WheelNotch = 120;
constexpr double LeastZoomRectangle = 1e-50;   // of the whole axis
}   // namespace

bool MGraphEditor::OnEvent(const MControlEvent& event)
{
    if (event.IsMouse())
        pointer = { event.x, event.y };
    // A button that rose where nobody saw it: in another window, or while the mouse was taken away.
    if (event.code == MEventCode::Move && !event.Has(ModifierLeftButton) &&
        (graphHasPress || zoomRectangleActive || scrollActive))
    {
        MControlEvent release = event;
        release.code = MEventCode::LeftUp;
        OnEvent(release);
    }
    if (TakeFirst(event))
        return true;
    const bool taken = OfferToGraphs(event);
    if (event.code == MEventCode::LeftUp)
    {
        graphHasPress = false;
        // A double click is no press that the window ends by itself.
        if (HasCapture() && !IsPressed())
            ReleaseCapture();
    }
    else if (taken && (event.code == MEventCode::LeftDown || event.code == MEventCode::LeftDoubleClick))
    {
        graphHasPress = true;
        if (event.IsDoubleClick())
            Capture();
    }
    return taken || TakeRest(event);
}

bool MGraphEditor::OfferToGraphs(const MControlEvent& event)
{
    const MSyncGuard guard(&lock, MERWLock::Read);
    const std::vector<MGraph*> asked = graphs;   // an answer may change the list
    for (MGraph* graph : asked)
    {
        const bool isThere = std::find(graphs.begin(), graphs.end(), graph) != graphs.end();
        if (!isThere || !graph->TestFlag(MGraph::Enabled) || !graph->TestFlag(MGraph::Visible))
            continue;
        bool taken = false;
        try
        {
            taken = graph->OnEvent(*this, event);
        }
        catch (...)
        {
            LogSystemException("MGraphEditor::OnEvent");
        }
        if (!taken || event.code == MEventCode::Focus || event.code == MEventCode::Leave)
            continue;
        if (!event.IsKey() && std::find(graphs.begin(), graphs.end(), graph) != graphs.end())
            InvalidateGraph(*graph);
        return true;
    }
    return false;
}

bool MGraphEditor::TakeFirst(const MControlEvent& event)
{
    if (event.code == MEventCode::Move && showCursorValue)
        Invalidate(CursorValueRectangle());
    if (!zoomableX || !zoomableY)
        return false;
    const bool isInside = graphRectangle.Contains(event.x, event.y);
    switch (event.code)
    {
    case MEventCode::LeftDown:
        if (!isInside || !event.Has(ModifierAlt))
            return false;
        dragView[0] = dragEnd[0] = ViewAtX(event.x);
        dragView[1] = dragEnd[1] = ViewAtY(event.y);
        (event.Has(ModifierCtrl) ? scrollActive : zoomRectangleActive) = true;
        return true;
    case MEventCode::LeftUp:
        scrollActive = false;
        if (!zoomRectangleActive)
            return false;
        EndZoomRectangle();
        return true;
    case MEventCode::LeftDoubleClick:
    case MEventCode::RightDoubleClick:
        if (!isInside || !event.Has(ModifierAlt))
            return false;
        Zoom(event.x, event.y, event.code == MEventCode::LeftDoubleClick ? -1 : 1);
        return true;
    case MEventCode::Move:
        FollowDrag(event);
        return false;
    default:
        return false;
    }
}

void MGraphEditor::FollowDrag(const MControlEvent& event)
{
    if (scrollActive)
    {
        const double dx = ViewAtX(event.x) - dragView[0];
        const double dy = ViewAtY(event.y) - dragView[1];
        zoomerX->MoveTo(zoomerX->Position() - dx);
        zoomerY->MoveTo(zoomerY->Position() + dy);
        dragView[0] = ViewAtX(event.x);
        dragView[1] = ViewAtY(event.y);
    }
    if (zoomRectangleActive)
    {
        Invalidate(ZoomRectangle().Inset(-1, -1));
        dragEnd[0] = ViewAtX(std::clamp(event.x, graphRectangle.left, graphRectangle.right));
        dragEnd[1] = ViewAtY(std::clamp(event.y, graphRectangle.top, graphRectangle.bottom));
        Invalidate(ZoomRectangle().Inset(-1, -1));
    }
}

void MGraphEditor::EndZoomRectangle()
{
    Invalidate(ZoomRectangle().Inset(-1, -1));
    zoomRectangleActive = false;
    const double left = std::min(dragView[0], dragEnd[0]);
    const double width = std::abs(dragView[0] - dragEnd[0]);
    const double bottom = std::min(dragView[1], dragEnd[1]);
    const double height = std::abs(dragView[1] - dragEnd[1]);
    if (width <= LeastZoomRectangle || height <= LeastZoomRectangle)
        return;
    zoomerX->ChangePart(left, width);
    zoomerY->ChangePart(1 - bottom - height, height);
}

bool MGraphEditor::Zoom(std::int32_t x, std::int32_t y, std::int32_t steps)
{
    // Both before the first changes.
    const double viewX = ViewAtX(std::clamp(x, graphRectangle.left, graphRectangle.right));
    const double viewY = ViewAtY(std::clamp(y, graphRectangle.top, graphRectangle.bottom));
    if (zoomableX)
        zoomerX->ZoomAround(viewX, steps);
    if (zoomableY)
        zoomerY->ZoomAround(1 - viewY, steps);
    return zoomableX || zoomableY;
}

bool MGraphEditor::TakeRest(const MControlEvent& event)
{
    switch (event.code)
    {
    case MEventCode::Wheel:
    {
        std::int32_t notches = event.key / WheelNotch;
        if (notches == 0)   // a fine wheel
            notches = event.key < 0 ? -1 : 1;
        return !graphRectangle.IsEmpty() && Zoom(event.x, event.y, notches);
    }
    case MEventCode::KeyDown:
    case MEventCode::KeyUp:
        return TakeArrow(event) || MControl::OnEvent(event);
    case MEventCode::Character:
        return TakeCharacter(event.character);
    default:
        return MControl::OnEvent(event);
    }
}

bool MGraphEditor::TakeArrow(const MControlEvent& event)
{
    if (event.Has(ModifierCtrl) || event.Has(ModifierAlt))
        return false;
    const bool isDown = event.code == MEventCode::KeyDown;
    const auto step = [isDown](MZoomer& zoomer, std::int32_t direction)
    {
        if (isDown)
            zoomer.Step(direction);
        return true;
    };
    switch (event.key)
    {
    case MKey::Left:
    case MKey::Right:
        return zoomableX && step(*zoomerX, event.key == MKey::Left ? -1 : 1);
    case MKey::Up:
    case MKey::Down:
        return zoomableY && step(*zoomerY, event.key == MKey::Up ? -1 : 1);
    default:
        return false;
    }
}

bool MGraphEditor::TakeCharacter(char32_t character)
{
    if (character < U'0' || character > U'9' || (!zoomableX && !zoomableY))
        return false;
    const std::int32_t level =
        character == U'0' ? MZoomer::LevelCount - 1 : static_cast<std::int32_t>(character - U'1');
    if (zoomableX)
        zoomerX->ZoomToLevel(level);
    if (zoomableY)
        zoomerY->ZoomToLevel(level);
    return true;
}

MStdCursor MGraphEditor::GetCursor(std::int32_t x, std::int32_t y) const
{
    auto& self = const_cast<MGraphEditor&>(*this);
    if (scrollActive)
        return MStdCursor::Move;
    if (zoomRectangleActive)
        return MStdCursor::Cross;
    for (const MGraph* graph : graphs)
        if (graph->TestFlag(MGraph::Enabled) && graph->TestFlag(MGraph::Visible))
            if (const MStdCursor wanted = graph->GetCursor(self, x, y); wanted != MStdCursor::Inherited)
                return wanted;
    return MControl::GetCursor(x, y);
}

void MGraphEditor::OnMouseLeave()
{
    if (showCursorValue)
        Invalidate(CursorValueRectangle());
    MControlEvent leave;
    leave.code = MEventCode::Leave;
    OfferToGraphs(leave);
    MControl::OnMouseLeave();
}
