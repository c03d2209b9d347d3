// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "foundation/containers/MVector2DT.h"
#include "gui/controls/MControl.h"

/// A pad with a point: two numbers of 0 to 1, the second one growing upwards. Told as gestures are:
/// see MOnValueChangeParams for the three phases.
class MVector2DEditor : public MControl
{
public:
    enum class Phase
    {
        Begin,
        Change,
        End
    };
    struct Params : MEventParams
    {
        Phase phase = Phase::Change;
    };

    MVector2DEditor();

    double AlongX() const { return point[0]; }
    double AlongY() const { return point[1]; }
    /// Limited to 0 to 1. From outside: no event.
    void SetPoint(double x, double y);
    MCallback<Params>& OnPoint() { return changed; }

    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnCaptureEnd() override;

protected:
    MSize ContentMinimum() const override;
    /// Where the point may be.
    MRectangle PadArea() const;
    MPointF PixelOf(double x, double y) const;

private:
    bool MoveBy(double dx, double dy);
    void Tell(Phase phase);
    void BeginGesture();
    void EndGesture();

    MCallback<Params> changed;
    double point[2] = { 0.5, 0.5 };
    MPoint pointer;
    bool dragging = false;
};
