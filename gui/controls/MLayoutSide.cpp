// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MLayoutSide.h"

#include "foundation/text/MException.h"
#include "gui/controls/MControl.h"

MLayoutSide::MLayoutSide(MControl& ownerControl, std::int32_t edge) : MLayout(ownerControl), direction(edge)
{
    if (direction < Left || direction > Bottom)
        throw MException("Invalid side-layout direction.", MErrorCode::InvalidArgument);
}

void MLayoutSide::FitLonePlastic(const std::vector<MControl*>& children, std::int32_t length) const
{
    if (children.size() == 1 && children[0]->layout.plastic)
        children[0]->FitPlastic(Thickness(), length - 2 * children[0]->layout.Along(Along()).border);
}

MRectangle MLayoutSide::Arrange(const MRectangle& area)
{
    const std::vector<MControl*> children = Visible();
    if (children.empty())
        return area;
    FitLonePlastic(children, LengthOf(area, Along()));
    const CurrentSizeComputer current;
    const std::int32_t thickness = Largest(children, Thickness(), current);
    if (thickness <= 0)
        return area;
    MRectangle strip = area;
    MRectangle rest = area;
    if (direction == Left || direction == Top)
    {
        LastOf(strip, Thickness()) = FirstOf(strip, Thickness()) + thickness - 1;
        FirstOf(rest, Thickness()) += thickness + Gap();
    }
    else
    {
        FirstOf(strip, Thickness()) = LastOf(strip, Thickness()) - thickness + 1;
        LastOf(rest, Thickness()) -= thickness + Gap();
    }
    Stack(children, Along(), strip, SumAlong(children, Along(), thickness, current));
    return rest;
}

void MLayoutSide::ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool last)
{
    const std::vector<MControl*> children = Visible();
    if (children.empty())
        return;
    if (children.size() == 1)
        FitLonePlastic(children, children[0]->MinimalSize(Along()));
    const std::int32_t thickness = Largest(children, Thickness(), computer);
    if (thickness <= 0)
        return;
    sums.Take(Thickness(), thickness + (last ? 0 : Gap()));
    sums.Need(Along(), Need(children, Along(), SumAlong(children, Along(), thickness, computer), computer));
}

std::uint8_t MLayoutSide::GetStretch() const
{
    const auto bit = static_cast<std::uint8_t>(Along() == Axis::X ? 1 : 2);
    for (const MControl* child : Visible())
        if (child->layout.Along(Along()).ratio > 0 && (child->GetStretch() & bit) != 0)
            return bit;
    return 0;
}
