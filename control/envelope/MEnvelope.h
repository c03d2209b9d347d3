// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "control/envelope/MEnvelopePoint.h"
#include "foundation/text/MArray.h"

/// A curve as the user edits it: points in a rectangle, ascending by x. MEnvelopeComputer evaluates it.
/// One thread at a time.
class MEnvelope
{
public:
    /// The rectangle of 0 to 1 with a point at 0 on either side.
    MEnvelope();

    /// Two fixed points at the left and the right limit.
    void Reset(double yLeft, double yRight);
    /// Limits every point to the rectangle and restores the order; a point between two others that leave
    /// it no room is removed, unless it is fixed or locked.
    void Normalize();
    /// Both directions. Saving leaves out what is 0 or false; loading takes that for a missing key, and
    /// limits what it reads to what the curve can have.
    void Store(MStoreParams& params);

    MArray<MEnvelopePoint> points;
    double MinX = 0.0;
    double MaxX = 1.0;
    double MinY = 0.0;
    double MaxY = 1.0;
    bool DrawingMode = false;
    bool SnapToGridX = false;
    bool SnapToGridY = false;
    std::int32_t OverrideUnitsX = 0;
    std::int32_t OverrideUnitsY = 0;
    bool StoresLimits = false;

private:
    void StorePoints(MStoreParams& params);
};
