// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTMLObject.h"

#include <algorithm>
#include <cmath>
#include <utility>

MSTMLObject::MSTMLObject(const STMLOwner& itemOwner, STMLObjectFormat objectFormat)
    : MSTMLItem(itemOwner), format(std::move(objectFormat))
{
    for (STMLLength* length : { &format.width, &format.height })
        if (length->kind == STMLLength::Kind::Units)
            length->value = std::min(length->value, MostUnits);
}

namespace
{
/// A side that isn't stated, as much changed as the other one.
std::int32_t InProportion(std::int32_t natural, std::int32_t other, std::int32_t otherNatural)
{
    const double wanted = otherNatural > 0 ? static_cast<double>(natural) * other / otherNatural : natural;
    return static_cast<std::int32_t>(std::lround(std::min(wanted, MSTMLObject::MostPixels)));
}
}   // namespace

std::int32_t MSTMLObject::GetWidth() const
{
    const Size natural = NaturalSize();
    if (format.width.IsGiven())
        return format.width.Pixels(Owner(), lineWidth);
    if (format.height.IsGiven() && KeepsProportion())
        return InProportion(natural.width, GetObjectHeight(), natural.height);
    return natural.width;
}

std::int32_t MSTMLObject::GetObjectHeight() const
{
    const Size natural = NaturalSize();
    const STMLFontHeights heights = Owner().HeightsOf(format.style.font);
    if (format.height.IsGiven())
        return format.height.Pixels(Owner(), heights.above + heights.below);
    if (format.width.IsGiven() && KeepsProportion())
        return InProportion(natural.height, GetWidth(), natural.width);
    return natural.height;
}

std::int32_t MSTMLObject::GetMinimalWidth()
{
    return format.width.IsShare() ? 1 : GetWidth();
}

std::int32_t MSTMLObject::GetPreferredWidth()
{
    return format.width.IsShare() ? NaturalSize().width : GetWidth();
}

std::int32_t MSTMLObject::GetHeight(std::int32_t width)
{
    Layout(width);
    return GetObjectHeight();
}

MColor MSTMLObject::ColorOr(const std::optional<STMLColor>& color, std::uint8_t alpha) const
{
    return color ? Owner().ColorOf(*color, alpha)
                 : Owner().InkOf(format.style.color, alpha, format.followsInk);
}
