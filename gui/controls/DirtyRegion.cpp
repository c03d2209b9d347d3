// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/DirtyRegion.h"

#include <utility>

void DirtyRegion::Add(MRectangle area)
{
    if (area.IsEmpty())
        return;
    // Whatever it touches becomes one with it, and that may touch others.
    for (std::size_t i = 0; i < areas.size();)
        if (areas[i].Intersection(area).IsEmpty())
            ++i;
        else
        {
            area = area.Union(areas[i]);
            areas.erase(areas.begin() + static_cast<std::ptrdiff_t>(i));
            i = 0;
        }
    areas.push_back(area);
    if (areas.size() <= MostAreas)
        return;
    // Too many: the two whose union costs least.
    std::size_t first = 0;
    std::size_t second = 1;
    std::int64_t least = -1;
    const auto pixels = [](const MRectangle& each)
    {
        return std::int64_t{ each.Width() } * each.Height();
    };
    for (std::size_t i = 0; i < areas.size(); ++i)
        for (std::size_t k = i + 1; k < areas.size(); ++k)
        {
            const std::int64_t cost = pixels(areas[i].Union(areas[k])) - pixels(areas[i]) - pixels(areas[k]);
            if (least < 0 || cost < least)
            {
                least = cost;
                first = i;
                second = k;
            }
        }
    const MRectangle merged = areas[first].Union(areas[second]);
    areas.erase(areas.begin() + static_cast<std::ptrdiff_t>(second));
    areas.erase(areas.begin() + static_cast<std::ptrdiff_t>(first));
    Add(merged);
}

std::vector<MRectangle> DirtyRegion::Take()
{
    return std::exchange(areas, {});
}
