// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MEnvelopePoint.h"

#include <algorithm>
#include <cmath>

#include "state/tree/StoredNode.h"

const MEnvelopeSegmentInfo MEnvelopeSegments[MEnvelopeSegmentCount] = {
    { "Mode 1", "Fastest, minimal curvature freedom." },
    { "Mode 2", "Fast, average curvature freedom." },
    { "Mode 3", "Very slow, very high curvature freedom." },
    { "Free 1", "Normal speed, curvature adjustable in both axes." },
    { "Double 1", "Double curved shape." },
    { "Smooth 1", "Fast, no curvature, provides smooth connection between neighboring segments." },
    { "Smooth 2", "Fast, no curvature, provides smooth connection between neighboring segments." },
    { "Stairs", "Stairs-like image, curvature controls number of stairs." },
    { "Pulses", "Pulses, curvature controls number of pulses." },
    { "Saw", "Saw, curvature controls number of saw teeth." },
    { "Triangles", "Triangles, curvature controls number of triangles." },
    { "Sines", "Sines, curvature controls number of waves." },
};

namespace
{
constexpr double Nothing = 1e-50;

// The type that is left out of what is stored: curved segments are mostly of another type than straight
// ones, where the type doesn't show.
std::int32_t UsualType(double curvature)
{
    return std::fabs(curvature) < Nothing ? static_cast<std::int32_t>(MEnvelopeSegment::FourthOrder)
                                          : static_cast<std::int32_t>(MEnvelopeSegment::Exponential);
}
}   // namespace

void MEnvelopePoint::Store(const MStoreParams& params)
{
    StoredNode node(params);
    node.Optional("x", x, 0.0);
    node.Optional("y", y, 0.0);
    node.Optional("c", curvature, 0.0);
    node.Optional("cx", curvatureX, 0.0);
    curvature = std::clamp(curvature, -1.0, 1.0);
    curvatureX = std::clamp(curvatureX, -1.0, 1.0);
    node.Optional("Type", type, UsualType(curvature));

    std::int32_t flagBits = flags;
    if (node.IsSaving() || node.Has("Flags"))
    {
        node.Always("Flags", flagBits);
    }
    else
    {
        // Files of the time before there were flags.
        node.Optional("fixed", flagBits, 0);
        flagBits |= LockSides | Proportional;
    }
    flags = static_cast<std::uint8_t>(flagBits);

    node.Optional("SmoothingType", smoothingType, BezierWherePossible);
    node.Optional("SmoothX1", smoothLeft, 0.0);
    smoothLeft = std::clamp(smoothLeft, 0.0, 1.0);
    double storedRight = Has(LockSides) && node.IsSaving() ? 0.0 : smoothRight;
    node.Optional("SmoothX2", storedRight, 0.0);
    if (!node.IsSaving())
        smoothRight = Has(LockSides) ? smoothLeft : std::clamp(storedRight, 0.0, 1.0);
}
