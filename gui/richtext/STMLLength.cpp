// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/STMLLength.h"

#include <algorithm>
#include <cmath>

std::int32_t STMLLength::Pixels(const STMLOwner& owner, std::int32_t whole) const
{
    switch (kind)
    {
    case Kind::None:
        return 0;
    case Kind::Units:
        return owner.Pixels(value);
    case Kind::Share:
        return static_cast<std::int32_t>(std::lround(std::max(0, whole) * value));
    case Kind::Metric:
        const double pixels = owner.Resources().FindMetric(metric).value_or(0);
        return static_cast<std::int32_t>(std::lround(std::clamp(pixels, 0.0, MostUnits)));
    }
    return 0;
}

std::int32_t SumOfExtents(std::int32_t first, std::int32_t second)
{
    constexpr std::int32_t most = 1 << 29;
    return first > most - second ? most : first + second;
}
