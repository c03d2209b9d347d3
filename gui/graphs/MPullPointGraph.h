// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/graphs/MGraphWithRanges.h"
#include "gui/graphs/MPullPointList.h"
#include "gui/graphs/PullPointEditing.h"

/// A graph with a list of points.
/// @tparam L  a MPullPointList
template <typename L>
class MPullPointGraphBase : public PullPointEditing
{
public:
    void GetRanges(double& xMin, double& xMax, double& yMin, double& yMax) const override
    {
        xMin = points.xMin;
        xMax = points.xMax;
        yMin = points.yMin;
        yMax = points.yMax;
    }

    L points;

protected:
    /// Whether a width means something for a point of this type.
    virtual bool HasWidth(std::int32_t /*type*/) const { return true; }
    std::int32_t PointCount() const override { return points.Count(); }
    State GetPoint(std::int32_t index) const override
    {
        const typename L::Point& point = points.At(index);
        return { point.x, point.y, point.width, point.enabled, HasWidth(point.type) };
    }
    void SetPlace(std::int32_t index, double x, double y) override
    {
        points.At(index).x = x;
        points.At(index).y = y;
    }
    void SetWidth(std::int32_t index, double width) override { points.At(index).width = width; }
    void SetPointEnabled(std::int32_t index, bool enabled) override { points.At(index).enabled = enabled; }
    void ResetPoint(std::int32_t index) override
    {
        points.At(index).width = DefaultWidth;
        points.At(index).type = 0;
    }
    void LimitPoints() override { points.Limit(); }
};

/// Points that a user drags, enables, disables and widens.
/// @tparam L  a MPullPointList; its limits are the ends of the axes
template <typename L>
class MPullPointGraph : public MGraphWithRanges<MPullPointGraphBase<L>>
{
public:
    using MGraphWithRanges<MPullPointGraphBase<L>>::MGraphWithRanges;

    bool Store(MAttribute& storage) override
    {
        const MSynchronizerGuard guard(this->lock);
        this->points.Store(storage, "point");
        return true;
    }
    bool Load(MAttribute& storage) override
    {
        const MSynchronizerGuard guard(this->lock);
        this->points.Load(storage, "point");
        this->points.Limit();
        return true;
    }

protected:
    const GraphMapping& PointMapping() const override { return this->mapping; }
};
