// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

struct MStoreParams;

/// The shape between a point and the next one.
enum class MEnvelopeSegment : std::int32_t
{
    Quadratic,
    FourthOrder,
    Exponential,
    Bezier,
    Double,
    SmoothBySlopes,   // continues the slopes of the neighbouring segments
    SmoothByNeighbours,   // slopes from the neighbouring points
    Stairs,
    Pulses,
    Saw,
    Triangles,
    Sines
};

inline constexpr int MEnvelopeSegmentCount = 12;

/// What an editor's list of segment types shows.
struct MEnvelopeSegmentInfo
{
    const char* name;
    const char* text;
};

extern const MEnvelopeSegmentInfo MEnvelopeSegments[MEnvelopeSegmentCount];

/// One point of a curve, and the segment from it to the next.
struct MEnvelopePoint
{
    enum Flags : std::uint8_t
    {
        Fixed = 0x01,   ///< can't be removed and keeps its order
        LockSides = 0x04,   ///< smoothing reaches as far to the right as to the left
        Proportional = 0x08,   ///< the nearer neighbour decides about the reach on both sides
        Locked = 0x40   ///< can't be moved or changed
    };
    static constexpr std::int32_t BezierWherePossible = 0;
    static constexpr std::int32_t AlwaysCubic = 1;

    double x = 0.0;
    double y = 0.0;
    std::uint8_t flags = LockSides | Proportional;
    double curvatureX = 0.0;   ///< -1 to 1, for the Bezier segment
    double curvature = 0.0;   ///< -1 to 1
    double smoothLeft = 0.0;   ///< 0 to 1: share of the reach to the left that the rounded corner takes
    double smoothRight = 0.0;   ///< the same to the right
    std::int32_t type = static_cast<std::int32_t>(MEnvelopeSegment::FourthOrder);
    std::int32_t smoothingType = BezierWherePossible;

    bool Has(Flags flag) const { return (flags & flag) != 0; }
    double SmoothRight() const { return Has(LockSides) ? smoothLeft : smoothRight; }

    /// One function for both directions; see MEnvelope::Store.
    void Store(const MStoreParams& params);
};
