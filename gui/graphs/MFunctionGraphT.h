// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/Boundary.h"
#include "gui/graphs/FunctionCurve.h"
#include "gui/graphs/MGraphWithRanges.h"

/// The curve of a function, y over x. Never reads live data while it paints: T::Paint takes what it needs
/// first, under its own lock, and what it throws ("Could not acquire mutex.") is logged.
/// @tparam T  a graph with ComputeValues(std::span<const double> x, std::span<double> y), which gives the
/// values at rising places; y is limited to the range of the graph afterwards
template <typename T>
class MFunctionGraphT : public MGraphWithRanges<T>, public CurveLook
{
public:
    using MGraphWithRanges<T>::MGraphWithRanges;

    void Paint(MGraphEditor& editor, MDrawer& drawer) override
    {
        const MRectangle clip = drawer.GetClip();
        try
        {
            T::Paint(editor, drawer);
            if (curve.Begin(editor, drawer, this->mapping, *this))
            {
                this->ComputeValues(curve.x, curve.y);
                curve.Finish(editor, drawer, this->mapping, *this, this->GetColor(drawer));
            }
        }
        catch (...)
        {
            LogSystemException("MFunctionGraphT::Paint");
        }
        drawer.SetClip(clip);
    }

private:
    FunctionCurve curve;
};
