// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/MOverlayPainter.h"

#include "gui/graphs/MGraphEditor.h"

MGraph::MOverlayPainter::MOverlayPainter(MGraph& shown) : graph(shown)
{
    controlType = MControlType::Empty;
    receivesMouse = false;
    usesParentHelp = true;
}

void MGraph::MOverlayPainter::Paint(MDrawer& drawer)
{
    MGraphEditor* editor = graph.Editor();
    if (editor == nullptr || editor->GraphRectangle().IsEmpty())
        return;
    drawer.Shift(-X(), -Y());
    editor->PaintGraph(graph, drawer);
    drawer.Shift(X(), Y());
}
