// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <cstdint>

/// A scale in which everything is drawn.
struct StyleScale
{
    int percent = 100;

    double Factor() const { return percent / 100.0; }
    std::int32_t Pixels(double units) const
    {
        return static_cast<std::int32_t>(std::lround(units * Factor()));
    }
    /// As whole pixels that hold them.
    std::int32_t PixelsAbove(double units) const
    {
        return static_cast<std::int32_t>(std::ceil(units * Factor() - 1e-9));
    }
    std::int32_t Hairline() const { return percent <= 150 ? 1 : percent <= 250 ? 2 : 3; }
};

inline constexpr int StyleScalePercents[] = { 100, 125, 150, 200, 250, 300 };
