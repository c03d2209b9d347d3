// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MLayoutClient.h"

#include "gui/controls/MControl.h"

MRectangle MLayoutClient::Arrange(const MRectangle& area)
{
    const std::vector<MControl*> children = Visible();
    const CurrentSizeComputer current;
    Stack(children, axis, area, SumAlong(children, axis, LengthOf(area, Across(axis)), current));
    return {};
}

void MLayoutClient::ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool)
{
    const std::vector<MControl*> children = Visible();
    const std::int32_t across = Largest(children, Across(axis), computer);
    sums.Need(Across(axis), across);
    sums.Need(axis, Need(children, axis, SumAlong(children, axis, across, computer), computer));
}

std::uint8_t MLayoutClient::GetStretch() const
{
    std::uint8_t stretch = 0;
    for (const MControl* child : Visible())
    {
        const std::uint8_t own = child->GetStretch();
        stretch |= static_cast<std::uint8_t>((child->layout.x.ratio > 0 ? own & 1 : 0) |
                                             (child->layout.y.ratio > 0 ? own & 2 : 0));
    }
    return stretch;
}
