// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Values of one axis and the pixels that show them.
struct GraphAxis
{
    double low = 0;   ///< of the whole axis
    double high = 1;
    double offset = 0;
    double scale = 0;   ///< pixels for each value; negative for an axis that goes up
    double inverseScale = 0;   ///< values for each pixel
    double origin = 0;   ///< the pixel where the view begins
    double reciprocal = 1;   ///< 1 / (high - low)

    /// The part of the axis from `viewFrom` to `viewTo`, 0 to 1, lies between two pixels. Without pixels or
    /// without a range, every value lies on the first one.
    void Set(double viewFrom, double viewTo, std::int32_t firstPixel, std::int32_t lastPixel);
    /// Where a value lies; whole numbers are the middles of pixels.
    double PlaceOf(double value) const { return (value + offset) * scale + origin; }
    /// The nearest pixel, halves up.
    std::int32_t PixelOf(double value) const;
    double ValueOf(double place) const { return (place - origin) * inverseScale - offset; }
    /// To the range; what is no number becomes the low end.
    double Limited(double value) const { return value > low ? value < high ? value : high : low; }
    /// 0 to 1 of the whole axis.
    double ShareOf(double value) const { return (value - low) * reciprocal; }
};

struct GraphMapping
{
    GraphAxis x;
    GraphAxis y;
};
