// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/MGraphEditor.h"

#include <algorithm>

#include "foundation/text/MStringFormat.h"
#include "gui/controls/MWindow.h"
#include "gui/controls/MWindows.h"
#include "gui/graphs/GraphSizes.h"
#include "gui/graphs/MOverlayPainter.h"
#include "state/tree/MAttribute.h"

namespace
{
constexpr std::int32_t LeastGraph = 40;   // units
// Units of the zoomers' rectangles below and beside a graph.
constexpr std::int32_t ZoomerThick = 16;
constexpr std::int32_t ZoomerInset = 0;
}   // namespace

MGraphEditor::MGraphEditor(const MString& name) : legendUnits(GraphSizes::Legend)
{
    id = name;
    controlType = MControlType::Empty;
    tabStop = true;
    zoomerX = &Make<MZoomer>(Axis::X);
    zoomerX->id = "ZoomerX";
    zoomerY = &Make<MZoomer>(Axis::Y);
    zoomerY->id = "ZoomerY";
    zoomerY->showsButtons = false;
    zoomerX->SetPartner(zoomerY);
    for (MZoomer* zoomer : { zoomerX, zoomerY })
        zoomer->OnZoom().AddHandler<&MGraphEditor::OnZoomed>(*this);
}

MGraphEditor::~MGraphEditor()
{
    for (MGraph* graph : graphs)
    {
        graph->shownBy = nullptr;
        graph->overlayPainter = nullptr;
    }
}

void MGraphEditor::AddGraph(MGraph& graph, bool takeRanges)
{
    InsertGraph(static_cast<std::int32_t>(graphs.size()), graph, takeRanges);
}

void MGraphEditor::InsertGraph(std::int32_t index, MGraph& graph, bool takeRanges)
{
    if (graph.shownBy != nullptr)
        graph.shownBy->RemoveGraph(graph);
    {
        const MSyncGuard guard(&lock, MERWLock::Write);
        const std::int32_t place = std::clamp(index, 0, static_cast<std::int32_t>(graphs.size()));
        graphs.insert(graphs.begin() + place, &graph);
        graph.shownBy = this;
        if (takeRanges && graphs.size() == 1)
            graph.GetRanges(ranges[0], ranges[1], ranges[2], ranges[3]);
        graph.UpdateRanges(*this);
    }
    OnGraphFlags(graph);
}

void MGraphEditor::RemoveGraph(MGraph& graph)
{
    if (graph.shownBy != this)
        return;
    InvalidateGraph(graph);
    DropOverlay(graph);
    const MSyncGuard guard(&lock, MERWLock::Write);
    std::erase(graphs, &graph);
    graph.shownBy = nullptr;
}

void MGraphEditor::InvalidateGraph(const MGraph& graph)
{
    if (graph.overlayPainter != nullptr)
        graph.overlayPainter->Invalidate();
    else
        Invalidate();
}

void MGraphEditor::OnGraphFlags(MGraph& graph)
{
    if (!graph.TestFlag(MGraph::HasOverlay))
        DropOverlay(graph);
    else if (graph.overlayPainter == nullptr)
    {
        graph.overlayPainter = &Make<MGraph::MOverlayPainter>(graph);
        PlaceOverlay(graph);
        OrderOverlays();
    }
    if (graph.overlayPainter != nullptr)
        graph.overlayPainter->SetVisible(graph.TestFlag(MGraph::Visible));
    InvalidateGraph(graph);
}

void MGraphEditor::DropOverlay(MGraph& graph)
{
    if (graph.overlayPainter != nullptr)
        RemoveChild(*graph.overlayPainter);
    graph.overlayPainter = nullptr;
}

void MGraphEditor::OrderOverlays()
{
    // Children are painted in their order, and the first graph lies on top.
    for (auto graph = graphs.rbegin(); graph != graphs.rend(); ++graph)
        if ((*graph)->overlayPainter != nullptr)
            AddChild(RemoveChild(*(*graph)->overlayPainter));
}

void MGraphEditor::PlaceOverlay(const MGraph& graph)
{
    const MRectangle area = OverlayRectangle();
    graph.overlayPainter->SetPosition(area.left, area.top);
    graph.overlayPainter->SetSize(std::max(0, area.Width()), std::max(0, area.Height()));
}

void MGraphEditor::SetRanges(double xMin, double xMax, double yMin, double yMax)
{
    ranges[0] = xMin;
    ranges[1] = xMax;
    ranges[2] = yMin;
    ranges[3] = yMax;
    UpdateRanges();
}

void MGraphEditor::SetAxis(std::shared_ptr<const MAxisRenderer> bottom,
                           std::shared_ptr<const MAxisRenderer> left,
                           std::shared_ptr<const MAxisRenderer> right)
{
    axisX = std::move(bottom);
    axisY = std::move(left);
    axisRight = std::move(right);
    UpdateLayout();
}

void MGraphEditor::SetView(double x0, double x1, double y0, double y1)
{
    zoomerX->SetPart(x0, x1 - x0);
    zoomerY->SetPart(1 - y1, y1 - y0);
    UpdateRanges();
}

void MGraphEditor::OnZoomed(const MOnNotifyParams&)
{
    UpdateRanges();
}

void MGraphEditor::UpdateRanges()
{
    const MSyncGuard guard(&lock, MERWLock::Read);
    for (MGraph* graph : graphs)
        graph->UpdateRanges(*this);
    Invalidate();
}

double MGraphEditor::ViewAtX(std::int32_t x) const
{
    const std::int32_t length = graphRectangle.right - graphRectangle.left;
    const double share = length > 0 ? static_cast<double>(x - graphRectangle.left) / length : 0;
    return ViewX0() + share * zoomerX->PartSize();
}

double MGraphEditor::ViewAtY(std::int32_t y) const
{
    const std::int32_t length = graphRectangle.bottom - graphRectangle.top;
    const double share = length > 0 ? static_cast<double>(graphRectangle.bottom - y) / length : 0;
    return ViewY0() + share * zoomerY->PartSize();
}

MRectangle MGraphEditor::ClipRectangle() const
{
    return graphRectangle.Inset(-1, -1);
}

MRectangle MGraphEditor::OverlayRectangle() const
{
    return { graphRectangle.left - 2, graphRectangle.top, graphRectangle.right, graphRectangle.bottom + 2 };
}

bool MGraphEditor::MovePointer(std::int32_t x, std::int32_t y)
{
    const MWindow* window = Window();
    if (window == nullptr || !window->IsOpen())
        return false;
    MWindowSystem& platform = MWindows::Get()->Platform();
    const MPoint wanted{ x + AbsoluteX(), y + AbsoluteY() };
    platform.SetCursorClient(const_cast<MWindow&>(*window), wanted.x, wanted.y);
    return platform.GetCursorClient(*window) == wanted;
}

MSize MGraphEditor::ContentMinimum() const
{
    const std::int32_t across = 2 * GraphSizes::AxisSide + GraphSizes::Zoomer + LeastGraph;
    const std::int32_t down = legendUnits + GraphSizes::AxisBottom + GraphSizes::Zoomer + LeastGraph;
    return { PixelsOf(across), PixelsOf(down) };
}

void MGraphEditor::UpdateLayout()
{
    OnPlaced();
    Invalidate();
}

void MGraphEditor::OnPlaced()
{
    const auto side = [](bool hasCaptions, bool hasZoomer)
    {
        return (hasCaptions ? GraphSizes::AxisSide : GraphSizes::Edge) + (hasZoomer ? GraphSizes::Zoomer : 0);
    };
    const std::int32_t below =
        (labelsX ? GraphSizes::AxisBottom : GraphSizes::Edge) + (zoomableX ? GraphSizes::Zoomer : 0);
    graphRectangle = { PixelsOf(side(labelsY, false)), PixelsOf(legendUnits),
                       Width() - 1 - PixelsOf(side(axisRight != nullptr, zoomableY)),
                       Height() - 1 - PixelsOf(below) };

    const std::int32_t thick = PixelsOf(ZoomerThick);
    zoomerX->SetPosition(graphRectangle.left, Height() - thick - PixelsOf(ZoomerInset));
    zoomerX->SetSize(std::max(0, Width() - graphRectangle.left), thick);
    zoomerX->SetBarLength(std::max(1, graphRectangle.Width()));
    zoomerY->SetPosition(Width() - thick - PixelsOf(ZoomerInset), graphRectangle.top);
    zoomerY->SetSize(thick, std::max(0, graphRectangle.Height()));
    zoomerX->SetVisible(zoomableX);
    zoomerY->SetVisible(zoomableY);
    for (const MGraph* graph : graphs)
        if (graph->overlayPainter != nullptr)
            PlaceOverlay(*graph);
    UpdateRanges();
}

MString MGraphEditor::ValueText(const ValueFormat& format, double value) const
{
    return format ? format(value) : Format("{0.2}", value);
}

MString MGraphEditor::PointText(double x, double y) const
{
    if (formatPoint)
        return formatPoint(x, y);
    return ValueText(formatX, x) + "  " + ValueText(formatY, y);
}

void MGraphEditor::CollectHelp(MAttribute& item) const
{
    const auto add = [&item](const char* text)
    {
        item.AddSubItem("controlitem").SetText(MString::Literal(text));
    };
    item.SetAttribute("name", "Graph editor");
    add("Graph editor will show and edit one or more graphs.");
    if (zoomableX || zoomableY)
    {
        add("<control>Mouse wheel</control> zooms in or out. Alternatively you can zoom in using "
            "<control>Alt "
            "+ right button double click</control> and out using <control>Alt + left button double "
            "click</control>. You can also use keyboard <control>numbers 0 to 9</control> to quickly set "
            "zoom "
            "level.");
        add("<control>Drag a rectangle using the left mouse button while holding Alt</control> zooms into "
            "the "
            "selected rectangle if possible.");
        add("<control>Drag using the left mouse button while holding Alt and Ctrl</control> to scroll the "
            "view. This is not possible when zoomed all the way out.");
        add("<control>Zoomers</control> below and on the right control zoom and position of the view.");
    }
    for (const MGraph* graph : graphs)
        graph->CollectHelp(item);
}
