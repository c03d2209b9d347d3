// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/graphs/GraphMapping.h"
#include "gui/graphs/MGraphEditor.h"

/// A graph with fixed ranges.
template <int XMin, int XMax, int YMin, int YMax>
class MGraphWithRangesBase : public MGraph
{
public:
    void GetRanges(double& xMin, double& xMax, double& yMin, double& yMax) const override
    {
        xMin = XMin;
        xMax = XMax;
        yMin = YMin;
        yMax = YMax;
    }
};

/// Gives a graph the way from its values to the editor's pixels and back.
/// @tparam T  a graph; its GetRanges are the values at the ends of the whole axes
template <typename T = MGraphWithRangesBase<0, 1, 0, 1>>
class MGraphWithRanges : public T
{
public:
    using T::T;

    void UpdateRanges(MGraphEditor& editor) override
    {
        T::UpdateRanges(editor);
        this->GetRanges(mapping.x.low, mapping.x.high, mapping.y.low, mapping.y.high);
        const MRectangle& area = editor.GraphRectangle();
        mapping.x.Set(editor.ViewX0(), editor.ViewX1(), area.left, area.right);
        mapping.y.Set(editor.ViewY0(), editor.ViewY1(), area.bottom, area.top);
    }
    /// As it stood at the last layout or change of the view.
    const GraphMapping& Mapping() const { return mapping; }

protected:
    GraphMapping mapping;
};
