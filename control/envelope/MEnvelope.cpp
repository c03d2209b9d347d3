// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MEnvelope.h"

#include <algorithm>
#include <atomic>

#include "state/tree/StoredNode.h"

namespace
{
constexpr double SmallestDistance = 1e-10;

// Unlike std::clamp it takes limits in the wrong order and what is no number.
double Limited(double value, double low, double high)
{
    if (!(value >= low))
        return low;
    return value > high ? high : value;
}

bool StandsBefore(const MEnvelopePoint& a, const MEnvelopePoint& b)
{
    return a.x < b.x;
}

std::atomic<std::uint64_t> lastStamp = 0;
}   // namespace

MEnvelope::NewStamp::~NewStamp()
{
    envelope.changeStamp = lastStamp.fetch_add(1, std::memory_order_relaxed) + 1;
}

MEnvelope::MEnvelope()
{
    Reset(0.0, 0.0);
}

void MEnvelope::SetLimits(double newMinX, double newMaxX, double newMinY, double newMaxY)
{
    const NewStamp newStamp(*this);
    minX = newMinX;
    maxX = newMaxX;
    minY = newMinY;
    maxY = newMaxY;
}

void MEnvelope::Reset(double yLeft, double yRight)
{
    const NewStamp newStamp(*this);
    MEnvelopePoint left;
    left.flags |= MEnvelopePoint::Fixed;
    MEnvelopePoint right = left;
    left.x = minX;
    left.y = yLeft;
    right.x = maxX;
    right.y = yRight;
    MArray<MEnvelopePoint> both;
    both.Add(left);
    both.Add(right);
    points.Swap(both);
}

void MEnvelope::Normalize()
{
    const NewStamp newStamp(*this);
    for (MEnvelopePoint& point : points)
    {
        point.x = Limited(point.x, minX, maxX);
        point.y = Limited(point.y, minY, maxY);
    }
    MArray<MEnvelopePoint> kept;
    for (int index = 0; index < points.Count(); ++index)
    {
        MEnvelopePoint point = points[index];
        if (!point.Has(MEnvelopePoint::Fixed) && !point.Has(MEnvelopePoint::Locked))
        {
            if (!kept.IsEmpty() && point.x <= kept[kept.Count() - 1].x)
                point.x = kept[kept.Count() - 1].x + SmallestDistance;
            if (index + 1 < points.Count() && point.x >= points[index + 1].x)
                point.x = points[index + 1].x - SmallestDistance;
            if (point.x < minX || point.x > maxX)
                continue;
        }
        kept.Add(point);
    }
    if (!std::is_sorted(kept.begin(), kept.end(), StandsBefore))
        std::stable_sort(kept.begin(), kept.end(), StandsBefore);
    points.Swap(kept);
}

void MEnvelope::Store(const MStoreParams& params)
{
    StoredNode node(params);
    node.Optional("DrawingMode", DrawingMode, false);
    node.Optional("SnapToGridX", SnapToGridX, false);
    node.Optional("SnapToGridY", SnapToGridY, false);
    node.Optional("OverrideUnitsX", OverrideUnitsX, 0);
    node.Optional("OverrideUnitsY", OverrideUnitsY, 0);
    if (StoresLimits)
    {
        // Left out at 0, as every number is, but absent they stay.
        for (const auto& [key, limit] : { std::pair<const char*, double&>{ "MinX", minX },
                                          { "MinY", minY },
                                          { "MaxX", maxX },
                                          { "MaxY", maxY } })
            node.Optional(MString::Literal(key), limit, node.IsSaving() ? 0.0 : limit);
    }
    StorePoints(node);
}

void MEnvelope::StorePoints(StoredNode& node)
{
    if (node.IsSaving())
    {
        node.Item().RemoveSubItems("Point");
        for (MEnvelopePoint& point : points)
            point.Store(node.Params().At(node.Item().AddSubItem("Point")));
        return;
    }
    if (node.IsOverlay() && !node.HasChild("Point"))
    {
        Normalize();
        return;
    }
    MArray<MEnvelopePoint> loaded;
    // A point's own keys have their defaults when they are absent: it comes as a whole.
    MStoreParams params = node.Params();
    params.mode = MLoadMode::Plain;
    for (int index = 0; index < node.Item().SubItemCount(); ++index)
    {
        MAttribute& item = node.Item().SubItemAt(index);
        if (item.Name().EqualsNoCase("Point"))
            loaded.Emplace().Store(params.At(item));
    }
    points.Swap(loaded);
    Normalize();
}
