// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTMLIndicator.h"

#include <algorithm>
#include <cmath>

MSTMLObject::Size MSTMLIndicator::NaturalSize() const
{
    return { .width = Owner().Pixels(40), .height = Owner().Pixels(4) };
}

void MSTMLIndicator::Paint(MDrawer& drawer, const MRectangle& area)
{
    constexpr std::uint8_t trackAlpha = 40;
    const double radius = Owner().Scaled(2);
    const std::uint8_t alpha = Format().style.alpha;
    drawer.FillRoundRectangle(area, radius,
                              Owner().InkOf(Format().style.color,
                                            static_cast<std::uint8_t>(alpha * trackAlpha / 255),
                                            Format().followsInk));
    const auto place = [&area](double share)
    {
        return area.left + static_cast<std::int32_t>(std::lround(share * area.Width()));
    };
    const MRectangle bar{ place(std::min(format.value, format.middle)), area.top,
                          place(std::max(format.value, format.middle)) - 1, area.bottom };
    if (!bar.IsEmpty())
        drawer.FillRoundRectangle(bar, std::min(radius, bar.Width() / 2.0), ColorOr(format.color, alpha));
    if (format.borderColor)
        drawer.RoundRectangle(area, radius, Owner().LinePixels(1),
                              Owner().ColorOf(*format.borderColor, alpha));
}
