// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTMLContainer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "gui/richtext/STMLLength.h"

namespace
{
/// What an item that wants a share of the height gets on top of its own, out of what is free.
std::int32_t TakeShare(const MSTMLItem& item, std::int32_t own, std::int32_t whole, std::int32_t& free)
{
    if (item.GetHeightShare() <= 0)
        return 0;
    const auto wanted = static_cast<std::int32_t>(std::lround(item.GetHeightShare() * whole));
    const std::int32_t more = std::clamp(wanted - own, 0, free);
    free -= more;
    return more;
}
}   // namespace

MSTMLContainer::MSTMLContainer(const MSTMLContainer& other) : MSTMLItem(other), measures(other.measures)
{
    items.reserve(other.items.size());
    for (const auto& item : other.items)
        items.push_back(item->Clone());
}

std::unique_ptr<MSTMLItem> MSTMLContainer::Clone() const
{
    return std::make_unique<MSTMLContainer>(*this);
}

void MSTMLContainer::TakeItems(MSTMLContainer& other)
{
    items = std::move(other.items);
    other.items.clear();
    measures = other.measures = {};
}

void MSTMLContainer::SetOwner(const STMLOwner& newOwner)
{
    MSTMLItem::SetOwner(newOwner);
    measures = {};
    for (const auto& item : items)
        item->SetOwner(newOwner);
}

std::int32_t MSTMLContainer::GetMinimalWidth()
{
    if (measures.minimal >= 0)
        return measures.minimal;
    std::int32_t widest = 0;
    for (const auto& item : items)
        widest = std::max(widest, item->GetMinimalWidth());
    return measures.minimal = widest;
}

std::int32_t MSTMLContainer::GetPreferredWidth()
{
    if (measures.preferred >= 0)
        return measures.preferred;
    std::int32_t widest = 0;
    for (const auto& item : items)
        widest = std::max(widest, item->GetPreferredWidth());
    return measures.preferred = widest;
}

std::int32_t MSTMLContainer::GetHeight(std::int32_t width)
{
    MSTMLContainer::Layout(width);
    return measures.height;
}

void MSTMLContainer::Layout(std::int32_t width)
{
    width = std::max(width, 1);
    if (measures.width == width)
        return;
    std::int32_t height = 0;
    for (const auto& item : items)
        height = SumOfExtents(height, item->GetHeight(width));
    measures.width = width;
    measures.height = height;
}

void MSTMLContainer::Paint(MDrawer& drawer, const MRectangle& area)
{
    PaintItems(drawer, area, MPlacement::Begin);
}

void MSTMLContainer::PaintItems(MDrawer& drawer, const MRectangle& area, MPlacement down)
{
    const std::int32_t width = std::max(area.Width(), 1);
    const std::int32_t whole = area.Height();
    const std::int32_t free = std::max(0, whole - MSTMLContainer::GetHeight(width));
    std::int32_t left = free;
    for (const auto& item : items)
        TakeShare(*item, item->GetHeight(width), whole, left);
    std::int32_t y = area.top;
    if (down != MPlacement::Begin)
        y += down == MPlacement::Middle ? left / 2 : left;

    const MRectangle clip = drawer.GetClip();
    std::int32_t shared = free;
    for (const auto& item : items)
    {
        if (y > clip.bottom)
            return;
        const std::int32_t own = item->GetHeight(width);
        const std::int32_t height = SumOfExtents(own, TakeShare(*item, own, whole, shared));
        if (SumOfExtents(y, height) > clip.top)
            item->Paint(drawer, MRectangle::OfSize(area.left, y, width, height));
        y = SumOfExtents(y, height);
    }
}
