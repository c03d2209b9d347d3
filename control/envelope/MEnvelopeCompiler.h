// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "control/envelope/MEnvelope.h"
#include "control/envelope/MEnvelopeComputer.h"

/// Makes the items of a curve with at least two points. Used once.
class MEnvelopeCompiler
{
public:
    using Item = MEnvelopeComputer::Item;

    explicit MEnvelopeCompiler(const MEnvelope& envelope) : points(envelope.Points()) {}
    std::vector<std::unique_ptr<Item>> Compile();
    double ZeroFrom() const { return zeroFrom; }

private:
    int LastPoint() const { return points.Count() - 1; }
    const MEnvelopePoint& PointAt(int index) const;   // limited to the ends
    double SmoothSlopeAt(int pointIndex) const;
    void FillSmoothSegments();
    std::unique_ptr<Item> MakeCorner(int pointIndex);
    void RoundCorners();
    void FindZeroFrom();
    std::vector<std::unique_ptr<Item>> Merged();

    const MArray<MEnvelopePoint>& points;
    // segments[i] ends at point i, the last one nowhere; null: a smooth segment still to be filled.
    std::vector<std::unique_ptr<Item>> segments;
    // corners[i] rounds point i; null: it stays sharp.
    std::vector<std::unique_ptr<Item>> corners;
    double zeroFrom = MEnvelopeComputer::Endless;
};
