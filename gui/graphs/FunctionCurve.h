// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "gui/graphs/CurvePainter.h"
#include "gui/graphs/GraphMapping.h"
#include "gui/graphs/MGraphEditor.h"

/// One stroke along a curve.
struct CurveStroke
{
    double width = 1;   ///< units at 100 %
    MColor color;   ///< alpha 0: the graph's own
};

/// How a curve is drawn.
struct CurveLook
{
    double baseLevel = 0;   ///< the value where the filled area ends
    bool drawLine = true;
    bool drawFill = false;
    bool thick = false;   ///< the line once more, a pixel lower
    std::uint8_t fillAlpha = 51;   ///< of the area, of 256 of the line's
    /// In place of the plain line: up to three, the lowest first.
    std::vector<CurveStroke> strokes;
};

/// The painting of a function's curve: which values are wanted, and what becomes of them. Between the two
/// calls its owner fills `y` with the function of `x`. Thread: GUI.
class FunctionCurve
{
public:
    /// False: nothing of the curve can be seen. Narrows the drawer's clip to what can.
    bool Begin(const MGraphEditor& editor, MDrawer& drawer, const GraphMapping& mapping,
               const CurveLook& look);
    void Finish(const MGraphEditor& editor, MDrawer& drawer, const GraphMapping& mapping,
                const CurveLook& look, MColor color);

    std::vector<double> x;   ///< at the edges of the columns wanted
    std::vector<double> y;

private:
    std::vector<double> heights;
    std::int32_t left = 0;   // the column of the first edge
};
