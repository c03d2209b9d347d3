// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MLayoutSwitch.h"

#include <algorithm>

#include "gui/controls/MControl.h"

MRectangle MLayoutSwitch::Arrange(const MRectangle& area)
{
    const std::vector<MControl*> children = Visible();
    if (children.empty())
        return area;
    MControl& shown = *children[0];
    MRectangle cell = area;
    MRectangle rest = area;
    bool fills = true;
    for (const Axis axis : { Axis::X, Axis::Y })
    {
        if (shown.layout.Along(axis).ratio != 0)
            continue;
        fills = false;
        const std::int32_t end = FirstOf(rest, axis) + shown.PresentSize(axis) - 1;
        LastOf(cell, axis) = std::min(end, LastOf(cell, axis));
        FirstOf(rest, axis) = std::min(end + Gap(), LastOf(rest, axis));
    }
    PlaceIn(shown, cell);
    return fills ? MRectangle{} : rest;
}

void MLayoutSwitch::ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool)
{
    for (MControl* child : Controls())
    {
        if (child->layout.plastic)
            child->FitPlastic(Axis::Y, child->MinimalSize(Axis::X));
        sums.Need(Axis::X, computer.Width(*child));
        sums.Need(Axis::Y, computer.Height(*child));
    }
}

std::uint8_t MLayoutSwitch::GetStretch() const
{
    std::uint8_t stretch = 0;
    for (const MControl* child : Controls())
        stretch |= child->GetStretch();
    return stretch;
}
