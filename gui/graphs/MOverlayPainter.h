// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MControl.h"
#include "gui/graphs/MGraph.h"

/// A layer above the editor that shows one graph, which thereby is painted anew apart from the others. It
/// lets the mouse through. Thread: GUI.
class MGraph::MOverlayPainter : public MControl
{
public:
    explicit MOverlayPainter(MGraph& shown);
    void Paint(MDrawer& drawer) override;

private:
    MGraph& graph;
};
