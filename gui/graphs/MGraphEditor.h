// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "foundation/threads/MERWLock.h"
#include "gui/controls/MControl.h"
#include "gui/graphs/MAxisRenderer.h"
#include "gui/graphs/MGraph.h"
#include "gui/graphs/MZoomer.h"

/// Shows a stack of graphs over one grid and lets a user zoom, scroll and edit them. It draws grid, captions
/// and whatever belongs to no graph, keeps the part of the axes that is seen, and offers each event to the
/// graphs from the first, which is the topmost, to the last. Thread: GUI.
class MGraphEditor : public MControl
{
public:
    using ValueFormat = std::function<MString(double)>;
    using PointFormat = std::function<MString(double x, double y)>;

    explicit MGraphEditor(const MString& name = "Graph");
    ~MGraphEditor() override;

    // Graphs
    /// Behind those that are there. One that another editor shows leaves that.
    /// @param takeRanges  the first graph's ranges become those of the axes
    void AddGraph(MGraph& graph, bool takeRanges = false);
    /// @param index  limited to what there is
    void InsertGraph(std::int32_t index, MGraph& graph, bool takeRanges = false);
    void RemoveGraph(MGraph& graph);
    const std::vector<MGraph*>& Graphs() const { return graphs; }
    /// Guards the list and what graphs show; held while painting, shared with events.
    MERWLock& Lock() { return lock; }
    /// Of a graph that has changed: of its overlay, or of all that lies in the rectangle.
    void InvalidateGraph(const MGraph& graph);
    /// One of its flags is another.
    void OnGraphFlags(MGraph& graph);

    // Axes
    /// The values at the ends of the whole axes, for texts.
    void SetRanges(double xMin, double xMax, double yMin, double yMax);
    double XMin() const { return ranges[0]; }
    double XMax() const { return ranges[1]; }
    double YMin() const { return ranges[2]; }
    double YMax() const { return ranges[3]; }
    /// At the bottom, left and right; null: none.
    void SetAxis(std::shared_ptr<const MAxisRenderer> bottom, std::shared_ptr<const MAxisRenderer> left,
                 std::shared_ptr<const MAxisRenderer> right = nullptr);

    // What is seen, in shares of the axes; up is more
    double ViewX0() const { return zoomerX->Position(); }
    double ViewX1() const { return zoomerX->Position() + zoomerX->PartSize(); }
    double ViewY0() const { return 1 - zoomerY->Position() - zoomerY->PartSize(); }
    double ViewY1() const { return 1 - zoomerY->Position(); }
    /// Limited as zoomers are.
    void SetView(double x0, double x1, double y0, double y1);
    /// The share of the axis at a pixel.
    double ViewAtX(std::int32_t x) const;
    double ViewAtY(std::int32_t y) const;
    MZoomer& ZoomerX() { return *zoomerX; }
    MZoomer& ZoomerY() { return *zoomerY; }

    // Places, in pixels of the control
    /// Where curves are drawn: the first and last values lie on its outer pixels.
    const MRectangle& GraphRectangle() const { return graphRectangle; }
    /// A pixel more on each side.
    MRectangle ClipRectangle() const;
    /// Two pixels more at the left and bottom.
    MRectangle OverlayRectangle() const;
    MPoint Pointer() const { return pointer; }
    /// Moves the mouse. False where that can't be done.
    bool MovePointer(std::int32_t x, std::int32_t y);

    /// The text of a place, as readouts show it.
    MString PointText(double x, double y) const;
    /// A text in a box below a place, or above where there is no room.
    void PaintReadout(MDrawer& drawer, std::int32_t x, std::int32_t y, const MString& text) const;
    /// Catches and logs what the graph throws.
    void PaintGraph(MGraph& graph, MDrawer& drawer);
    /// What the help says of the editor and its graphs: "name", and children "controlitem" with texts.
    void CollectHelp(MAttribute& item) const;
    /// After a change of the public settings below.
    void UpdateLayout();

    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    MStdCursor GetCursor(std::int32_t x, std::int32_t y) const override;
    void OnMouseLeave() override;

    ValueFormat formatX;   ///< empty: plain numbers
    ValueFormat formatY;
    PointFormat formatPoint;   ///< empty: both texts
    bool zoomableX = true;
    bool zoomableY = true;
    bool labelsX = true;
    bool labelsY = true;
    bool frame = true;
    bool showCursorValue = false;
    /// Units between labels, and between strong lines, of a grid without a renderer.
    std::int32_t gridSpacing = 60;
    std::int32_t gridMinorSpacing = 30;
    /// Lines for each strong one.
    std::int32_t gridMinorCountX = 4;
    std::int32_t gridMinorCountY = 4;
    std::int32_t legendUnits;   ///< left free above the graph

protected:
    MSize ContentMinimum() const override;
    void OnPlaced() override;
    /// Below all else.
    virtual void PaintBackground(MDrawer& drawer);

private:
    struct GridSide;

    void OnZoomed(const MOnNotifyParams& params);
    void UpdateRanges();
    void PlaceOverlay(const MGraph& graph);
    void OrderOverlays();
    void DropOverlay(MGraph& graph);

    // Events
    bool OfferToGraphs(const MControlEvent& event);
    bool TakeFirst(const MControlEvent& event);
    bool TakeRest(const MControlEvent& event);
    bool TakeCharacter(char32_t character);
    bool TakeArrow(const MControlEvent& event);
    bool Zoom(std::int32_t x, std::int32_t y, std::int32_t steps);
    void FollowDrag(const MControlEvent& event);
    void EndZoomRectangle();
    MRectangle ZoomRectangle() const;
    MRectangle CursorValueRectangle() const;

    // Painting
    void PaintFrame(MDrawer& drawer) const;
    void PaintGrid(MDrawer& drawer, bool isHorizontal) const;
    void PaintRightAxis(MDrawer& drawer) const;
    void PaintGraphs(MDrawer& drawer, bool onTop);
    void PaintCursorValue(MDrawer& drawer) const;
    void PaintZoomRectangle(MDrawer& drawer) const;
    MString ValueText(const ValueFormat& format, double value) const;

    std::vector<MGraph*> graphs;
    MERWLock lock;
    double ranges[4] = { 0, 1, 0, 1 };
    MRectangle graphRectangle;
    MZoomer* zoomerX;
    MZoomer* zoomerY;
    std::shared_ptr<const MAxisRenderer> axisX;
    std::shared_ptr<const MAxisRenderer> axisY;
    std::shared_ptr<const MAxisRenderer> axisRight;
    MPoint pointer;
    double dragView[2]{};   // where a drag began, in shares of the axes
    double dragEnd[2]{};   // the other corner of the zoom rectangle
    bool zoomRectangleActive = false;
    bool scrollActive = false;
    bool graphHasPress = false;   // a graph took the left button, and wants to know when it rises
};
