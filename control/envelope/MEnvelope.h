// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "control/envelope/MEnvelopePoint.h"
#include "foundation/text/MArray.h"

class StoredNode;

/// A curve as the user edits it: points in a rectangle, ascending by x. MEnvelopeComputer evaluates it, and
/// MPublishedEnvelope brings it to the audio thread. One thread at a time.
class MEnvelope
{
public:
    /// The rectangle of 0 to 1 with a point at 0 on either side.
    MEnvelope();

    const MArray<MEnvelopePoint>& Points() const { return points; }
    double MinX() const { return minX; }
    double MaxX() const { return maxX; }
    double MinY() const { return minY; }
    double MaxY() const { return maxY; }
    /// Equal stamps mean the same points in the same rectangle, between copies, too. Every change takes a
    /// new one.
    std::uint64_t ChangeStamp() const { return changeStamp; }

    /// Changes the points: `change` gets the MArray of them. They stay as it leaves them, see Normalize.
    template <typename Change>
    void Edit(Change&& change)
    {
        const NewStamp newStamp(*this);
        change(points);
    }
    /// Moves no point; see Normalize.
    void SetLimits(double newMinX, double newMaxX, double newMinY, double newMaxY);
    /// Two fixed points at the left and the right limit.
    void Reset(double yLeft, double yRight);
    /// Limits every point to the rectangle and restores the order; a point between two others that leave
    /// it no room is removed, unless it is fixed or locked.
    void Normalize();
    /// Both directions. Saving leaves out what is 0 or false; loading takes that for a missing key, and
    /// limits what it reads to what the curve can have.
    void Store(const MStoreParams& params);

    bool DrawingMode = false;
    bool SnapToGridX = false;
    bool SnapToGridY = false;
    std::int32_t OverrideUnitsX = 0;
    std::int32_t OverrideUnitsY = 0;
    bool StoresLimits = false;

private:
    // A change ends with a stamp that nothing else bears, also when it ends by an exception.
    class NewStamp
    {
    public:
        explicit NewStamp(MEnvelope& changed) : envelope(changed) {}
        NewStamp(const NewStamp&) = delete;
        NewStamp& operator=(const NewStamp&) = delete;
        ~NewStamp();

    private:
        MEnvelope& envelope;
    };

    void StorePoints(StoredNode& node);

    MArray<MEnvelopePoint> points;
    double minX = 0.0;
    double maxX = 1.0;
    double minY = 0.0;
    double maxY = 1.0;
    std::uint64_t changeStamp = 0;
};
