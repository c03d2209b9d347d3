// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MEnvelopeCompiler.h"

#include "control/envelope/MEnvelopeItems.h"
#include "foundation/text/MException.h"

namespace
{
constexpr double SameX = 1e-8;   // points this near stand above each other
constexpr double SameY = 1e-20;
constexpr double NoCurvature = 1e-20;
constexpr double NoSmoothing = 1e-5;
constexpr double Nothing = 1e-50;
constexpr double TangentMargin = 1e-10;   // how far inside a corner its control point has to lie

using ItemPointer = std::unique_ptr<MEnvelopeComputer::Item>;

EnvelopeSegmentEnds EndsOf(const MEnvelopePoint& p0, const MEnvelopePoint& p1)
{
    return { p0.x, p0.y, p1.x, p1.y };
}

MEnvelopeSegment TypeOf(const MEnvelopePoint& point)
{
    if (point.type < 0 || point.type >= MEnvelopeSegmentCount)
        throw MException("Invalid control point type.");
    return static_cast<MEnvelopeSegment>(point.type);
}

bool IsSmooth(MEnvelopeSegment type)
{
    return type == MEnvelopeSegment::SmoothBySlopes || type == MEnvelopeSegment::SmoothByNeighbours;
}

// Stairs, pulses and waves: how many there are comes from the curvature.
ItemPointer MakePeriodic(MEnvelopeSegment type, const MEnvelopePoint& p0, const MEnvelopePoint& p1)
{
    const EnvelopeSegmentEnds ends = EndsOf(p0, p1);
    const int count = std::max(1, static_cast<int>(std::lround(64.0 * p0.curvature * p0.curvature)));
    const bool isSwapped = p0.curvature + Nothing < 0.0;
    const EnvelopeWave wave = { ends, static_cast<double>(count), isSwapped ? p1.y : p0.y,
                                isSwapped ? p0.y : p1.y };
    const bool startsHigh = p0.curvature > NoCurvature;
    switch (type)
    {
    case MEnvelopeSegment::Stairs:
        if (count < 2)
            return std::make_unique<ItemConstant>(p0.y);
        return std::make_unique<ItemStairs>(ends, count);
    case MEnvelopeSegment::Pulses:
        return std::make_unique<ItemPulses>(ends, count, startsHigh ? p1.y : p0.y, startsHigh ? p0.y : p1.y);
    case MEnvelopeSegment::Saw:
        return std::make_unique<ItemSaw>(wave);
    case MEnvelopeSegment::Triangles:
        return std::make_unique<ItemTriangles>(wave);
    default:
        return std::make_unique<ItemSines>(wave);
    }
}

ItemPointer MakeCurved(MEnvelopeSegment type, const MEnvelopePoint& p0, const MEnvelopePoint& p1)
{
    const EnvelopeSegmentEnds ends = EndsOf(p0, p1);
    const bool isBezier = type == MEnvelopeSegment::Bezier;
    if (std::fabs(p0.y - p1.y) < SameY)
        return std::make_unique<ItemConstant>(p0.y);
    if (std::fabs(p0.curvature) < NoCurvature && (!isBezier || std::fabs(p0.curvatureX) < NoCurvature))
        return std::make_unique<ItemLinear>(ends);
    switch (type)
    {
    case MEnvelopeSegment::Quadratic:
        return std::make_unique<ItemQuadratic>(ends, p0.curvature);
    case MEnvelopeSegment::FourthOrder:
        return std::make_unique<ItemFourthOrder>(ends, -p0.curvature);
    case MEnvelopeSegment::Exponential:
        return std::make_unique<ItemExponencial>(ends, p0.curvature);
    case MEnvelopeSegment::Bezier:
        return std::make_unique<ItemBezier>(ends, ends.x0 + ends.Width() * (p0.curvatureX + 1.0) / 2.0,
                                            ends.y0 + ends.Height() * (p0.curvature + 1.0) / 2.0);
    default:
        return std::make_unique<ItemDouble>(ends, p0.curvature);
    }
}

// Null for a smooth segment: it needs its neighbours first.
ItemPointer MakeSegment(const MEnvelopePoint& p0, const MEnvelopePoint& p1)
{
    const MEnvelopeSegment type = TypeOf(p0);
    if (!(std::fabs(p1.x - p0.x) > SameX))
        return std::make_unique<ItemConstant>(p0.y);
    if (type >= MEnvelopeSegment::Stairs)
        return MakePeriodic(type, p0, p1);
    if (IsSmooth(type))
        return nullptr;
    return MakeCurved(type, p0, p1);
}

// How far the rounding of a corner may reach to either side.
struct Reach
{
    double left;
    double right;
};
}   // namespace

const MEnvelopePoint& MEnvelopeCompiler::PointAt(int index) const
{
    return points[std::clamp(index, 0, LastPoint())];
}

std::vector<ItemPointer> MEnvelopeCompiler::Compile()
{
    const auto pointCount = static_cast<std::size_t>(points.Count());
    segments.reserve(pointCount + 1);
    corners.resize(pointCount);
    segments.push_back(std::make_unique<ItemConstant>(points[0].y));
    for (int index = 0; index < LastPoint(); ++index)
        segments.push_back(MakeSegment(points[index], points[index + 1]));
    segments.push_back(std::make_unique<ItemConstant>(points[LastPoint()].y));

    FillSmoothSegments();
    for (int index = 0; index <= LastPoint(); ++index)
        segments[static_cast<std::size_t>(index)]->end = points[index].x;
    segments.back()->end = MEnvelopeComputer::Endless;
    RoundCorners();
    FindZeroFrom();
    return Merged();
}

// The mean of the slopes to both neighbours, 0 at a lowest point, at an end and at a jump.
double MEnvelopeCompiler::SmoothSlopeAt(int pointIndex) const
{
    const MEnvelopePoint& before = PointAt(pointIndex - 1);
    const MEnvelopePoint& point = PointAt(pointIndex);
    const MEnvelopePoint& after = PointAt(pointIndex + 1);
    if (!(point.y - SameY > std::min(before.y, after.y)))
        return 0.0;
    if (std::fabs(before.x - point.x) < Nothing || std::fabs(after.x - point.x) < Nothing)
        return 0.0;
    const double slopeBefore = (point.y - before.y) / (point.x - before.x);
    const double slopeAfter = (after.y - point.y) / (after.x - point.x);
    return 0.5 * (slopeBefore + slopeAfter);
}

void MEnvelopeCompiler::FillSmoothSegments()
{
    for (int index = 0; index < LastPoint(); ++index)
    {
        ItemPointer& segment = segments[static_cast<std::size_t>(index) + 1];
        if (segment != nullptr)
            continue;
        const MEnvelopePoint& p0 = points[index];
        const MEnvelopePoint& p1 = points[index + 1];
        double startSlope = 0.0;
        double endSlope = 0.0;
        if (TypeOf(p0) == MEnvelopeSegment::SmoothBySlopes)
        {
            // What stands before is filled by now; what comes after may not be.
            const Item* after = segments[static_cast<std::size_t>(index) + 2].get();
            startSlope = segments[static_cast<std::size_t>(index)]->LeftSlope(p0.x);
            endSlope = after != nullptr ? after->RightSlope(p1.x) : 0.0;
        }
        else
        {
            startSlope = SmoothSlopeAt(index);
            endSlope = SmoothSlopeAt(index + 1);
        }
        segment = std::make_unique<ItemCubic>(EndsOf(p0, p1), startSlope, endSlope);
    }
}

// From the last corner to the first: a corner cuts off the end of the segment before it, and the corner
// before that one still sees its own segments from their start.
void MEnvelopeCompiler::RoundCorners()
{
    for (int index = LastPoint(); index >= 0; --index)
        corners[static_cast<std::size_t>(index)] = MakeCorner(index);
}

std::unique_ptr<MEnvelopeCompiler::Item> MEnvelopeCompiler::MakeCorner(int pointIndex)
{
    const MEnvelopePoint& point = points[pointIndex];
    const double smoothLeft = point.smoothLeft;
    const double smoothRight = point.SmoothRight();
    if (smoothLeft < NoSmoothing && smoothRight < NoSmoothing)
        return nullptr;
    const bool isFirst = pointIndex == 0;
    const bool isLast = pointIndex == LastPoint();
    const double distanceLeft = point.x - PointAt(pointIndex - 1).x;
    const double distanceRight = PointAt(pointIndex + 1).x - point.x;
    if ((!isFirst && distanceLeft < SameX) || (!isLast && distanceRight < SameX))
        return nullptr;

    Reach reach = { 0.5 * (isFirst ? distanceRight : distanceLeft),
                    0.5 * (isLast ? distanceLeft : distanceRight) };
    if (point.Has(MEnvelopePoint::Proportional))
        reach.left = reach.right = std::min(reach.left, reach.right);
    const double xl = point.x - smoothLeft * reach.left;
    const double xr = point.x + smoothRight * reach.right;
    Item& before = *segments[static_cast<std::size_t>(pointIndex)];
    const Item& after = *segments[static_cast<std::size_t>(pointIndex) + 1];
    const double yl = before.Value(xl);
    const double yr = after.Value(xr);
    if (std::fabs(yl - yr) < Nothing && std::fabs(yl - point.y) < Nothing)
        return nullptr;

    const double dl = before.LeftSlope(xl);
    const double dr = after.RightSlope(xr);
    const EnvelopeSegmentEnds ends = { xl, yl, xr, yr };
    std::unique_ptr<Item> corner;
    if (point.smoothingType == MEnvelopePoint::BezierWherePossible && !(std::fabs(dl - dr) < Nothing))
    {
        // Where the tangents of both ends meet.
        const double t = ((yl - yr) - (xl - xr) * dr) / (dr - dl);
        if (t >= TangentMargin && t <= xr - xl - TangentMargin)
            corner = std::make_unique<ItemBezier>(ends, xl + t, yl + t * dl);
    }
    if (corner == nullptr)
        corner = std::make_unique<ItemCubic>(ends, dl, dr);
    corner->end = xr;
    before.end = xl;
    return corner;
}

void MEnvelopeCompiler::FindZeroFrom()
{
    for (int index = LastPoint(); index >= 0; --index)
    {
        const MEnvelopePoint& point = points[index];
        const bool isFlatBehind = index == LastPoint() || !IsSmooth(TypeOf(point));
        if (!(std::fabs(point.y) < Nothing) || !isFlatBehind)
            return;
        const Item* corner = corners[static_cast<std::size_t>(index)].get();
        zeroFrom = corner != nullptr ? corner->end : point.x;
    }
}

std::vector<ItemPointer> MEnvelopeCompiler::Merged()
{
    std::vector<ItemPointer> items;
    items.reserve(2 * segments.size());
    for (std::size_t index = 0; index < segments.size(); ++index)
    {
        items.push_back(std::move(segments[index]));
        if (index < corners.size() && corners[index] != nullptr)
            items.push_back(std::move(corners[index]));
    }
    return items;
}
