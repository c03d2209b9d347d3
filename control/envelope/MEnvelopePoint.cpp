// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MEnvelopePoint.h"

#include <algorithm>
#include <cmath>

#include "control/envelope/StoredKeys.h"

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

void MEnvelopePoint::Store(MStoreParams& params)
{
    constexpr std::int32_t NeverDefault = -1;
    StoredKeys keys(params);
    keys.Double("x", x);
    keys.Double("y", y);
    keys.Double("c", curvature);
    keys.Double("cx", curvatureX);
    curvature = std::clamp(curvature, -1.0, 1.0);
    curvatureX = std::clamp(curvatureX, -1.0, 1.0);
    keys.Int("Type", type, UsualType(curvature));

    std::int32_t flagBits = flags;
    if (keys.IsSaving() || keys.Has("Flags"))
    {
        keys.Int("Flags", flagBits, NeverDefault);
    }
    else
    {
        // Files of the time before there were flags.
        keys.Int("fixed", flagBits);
        flagBits |= LockSides | Proportional;
    }
    flags = static_cast<std::uint8_t>(flagBits);

    keys.Int("SmoothingType", smoothingType);
    keys.Double("SmoothX1", smoothLeft);
    smoothLeft = std::clamp(smoothLeft, 0.0, 1.0);
    double storedRight = Has(LockSides) && keys.IsSaving() ? 0.0 : smoothRight;
    keys.Double("SmoothX2", storedRight);
    if (!keys.IsSaving())
        smoothRight = Has(LockSides) ? smoothLeft : std::clamp(storedRight, 0.0, 1.0);
}
