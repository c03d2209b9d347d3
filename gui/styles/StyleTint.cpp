// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/StyleTint.h"

#include <algorithm>
#include <cmath>

namespace
{
struct HueSaturationLightness
{
    double hue = 0;   // 0 to 6
    double saturation = 0;
    double lightness = 0;
};

HueSaturationLightness Split(MColor color)
{
    const double red = color.Red() / 255.0;
    const double green = color.Green() / 255.0;
    const double blue = color.Blue() / 255.0;
    const double largest = std::max({ red, green, blue });
    const double least = std::min({ red, green, blue });
    const double span = largest - least;
    HueSaturationLightness parts{ .lightness = (largest + least) / 2 };
    if (span <= 0)
        return parts;
    parts.saturation = span / (1 - std::abs(largest + least - 1));
    if (largest == red)
        parts.hue = (green - blue) / span + (green < blue ? 6 : 0);
    else
        parts.hue = largest == green ? (blue - red) / span + 2 : (red - green) / span + 4;
    return parts;
}

MColor Joined(const HueSaturationLightness& parts, std::uint8_t alpha)
{
    // In twelfths of the circle: each channel is a trapezoid around its own hue.
    const double reach = parts.saturation * std::min(parts.lightness, 1 - parts.lightness);
    const auto channel = [&](double offset)
    {
        const double place = std::fmod(offset + 2 * parts.hue, 12.0);
        const double value = parts.lightness - reach * std::clamp(std::min(place - 3, 9 - place), -1.0, 1.0);
        return static_cast<std::uint8_t>(std::lround(255 * std::clamp(value, 0.0, 1.0)));
    };
    return { channel(0), channel(8), channel(4), alpha };
}
}   // namespace

StyleTint::StyleTint(MColor drawnFor, MColor chosen) : changesNothing(drawnFor == chosen)
{
    const HueSaturationLightness from = Split(drawnFor);
    const HueSaturationLightness to = Split(chosen);
    hue = to.hue;
    const double strength = drawnFor.Alpha() > 0 ? static_cast<double>(chosen.Alpha()) / drawnFor.Alpha() : 1;
    saturationRatio = from.saturation > 0 ? to.saturation / from.saturation * strength : 1;
}

MColor StyleTint::Of(MColor color) const
{
    if (changesNothing)
        return color;
    HueSaturationLightness parts = Split(color);
    parts.hue = hue;
    parts.saturation = std::min(1.0, parts.saturation * saturationRatio);
    return Joined(parts, color.Alpha());
}

void StyleTint::Apply(MBitmap& image) const
{
    if (changesNothing)
        return;
    // Images of a face have few colours, in runs.
    MColor before;
    MColor after = Of(before);
    for (std::int32_t y = 0; y < image.Height(); ++y)
        for (std::int32_t x = 0; x < image.Width(); ++x)
        {
            const MColor pixel = image.Pixel(x, y);
            if (pixel != before)
            {
                before = pixel;
                after = Of(pixel);
            }
            image.Row(y)[x] = after.value;
        }
}

int StyleTint::RoleOf(MStdColor color)
{
    switch (color)
    {
    case MStdColor::Amber:
        return 1;
    case MStdColor::Accent:
    case MStdColor::AccentInk:
    case MStdColor::OnFace:
    case MStdColor::OnText:
    case MStdColor::Focus:
    case MStdColor::Selection:
        return 2;
    case MStdColor::MeterLow:
    case MStdColor::Progress:
    case MStdColor::Success:
        return 3;
    default:
        return -1;
    }
}
