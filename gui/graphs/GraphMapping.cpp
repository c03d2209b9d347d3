// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/GraphMapping.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr double FarthestPixel = 1e6;   // values far outside of the view still have a pixel
}

void GraphAxis::Set(double viewFrom, double viewTo, std::int32_t firstPixel, std::int32_t lastPixel)
{
    const double range = high - low;
    const double from = range * viewFrom + low;
    const double to = range * viewTo + low;
    const double pixels = static_cast<double>(lastPixel) - firstPixel;
    reciprocal = range != 0 ? 1 / range : 0;
    offset = -from;
    origin = firstPixel;
    scale = to != from ? pixels / (to - from) : 0;
    inverseScale = pixels != 0 ? (to - from) / pixels : 0;
}

std::int32_t GraphAxis::PixelOf(double value) const
{
    const double place = std::floor(PlaceOf(value) + 0.5);
    return static_cast<std::int32_t>(place > -FarthestPixel ? std::min(place, FarthestPixel)
                                                            : -FarthestPixel);
}
