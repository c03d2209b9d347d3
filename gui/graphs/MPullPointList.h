// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "foundation/text/MObject.h"
#include "state/tree/MAttribute.h"

/// Points that can be dragged, and the limits of their places. One thread at a time.
/// @tparam P  has x, y, width and type, numbers that may be MRelaxed, Save(MAttribute&) and Load(MAttribute&)
template <typename P>
class MPullPointList : public MObject
{
public:
    using Point = P;
    static constexpr std::int32_t HighestType = 8;

    MPullPointList() = default;
    MPullPointList(const MPullPointList&) = delete;
    MPullPointList& operator=(const MPullPointList&) = delete;

    /// Somebody else's, who lives longer.
    void Add(P& point) { points.push_back(&point); }
    P& Add(std::unique_ptr<P> point)
    {
        Add(*point);
        own.push_back(std::move(point));
        return *points.back();
    }
    std::int32_t Count() const { return static_cast<std::int32_t>(points.size()); }
    P& At(std::int32_t index) const { return *points[static_cast<std::size_t>(index)]; }

    /// Brings places into the limits, widths into 0 to 1 and types into 0 to 8. What is no number becomes the
    /// lowest.
    void Limit()
    {
        for (P* point : points)
        {
            point->x = Limited<double>(point->x, xMin, xMax);
            point->y = Limited<double>(point->y, yMin, yMax);
            point->width = Limited<double>(point->width, 0, 1);
            point->type = Limited<std::int32_t>(point->type, 0, HighestType);
        }
    }

    /// One child for each point.
    void Store(MAttribute& storage, const MString& key) const
    {
        for (P* point : points)
            point->Save(storage.AddSubItem(key));
    }
    /// The first child is the first point's and so on. Points without one stay as they are; none are made.
    void Load(MAttribute& storage, const MString& key)
    {
        std::size_t index = 0;
        for (int i = 0; i < storage.SubItemCount() && index < points.size(); ++i)
            if (storage.SubItemAt(i).Name().EqualsNoCase(key))
                points[index++]->Load(storage.SubItemAt(i));
    }

    double xMin = 0;
    double xMax = 1;
    double yMin = 0;
    double yMax = 1;

private:
    template <typename Number>
    static Number Limited(Number value, Number low, Number high)
    {
        return value > low ? std::min(value, high) : low;
    }

    std::vector<P*> points;
    std::vector<std::unique_ptr<P>> own;
};
