// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/STMLOwner.h"

#include <algorithm>
#include <cmath>

STMLFontHeights STMLOwner::HeightsOf(std::int32_t index) const
{
    const auto place = static_cast<std::size_t>(index);
    if (place >= heights.size())
        heights.resize(place + 1);
    std::optional<STMLFontHeights>& known = heights[place];
    if (!known)
    {
        MFont& font = style.GetFont(index);
        // What a line is higher than its letters goes to both sides, the odd pixel below.
        const std::int32_t more = font.LineHeight() - font.Ascent() - font.Descent();
        known = STMLFontHeights{ .above = font.Ascent() + more / 2,
                                 .below = font.Descent() + more - more / 2,
                                 .descent = font.Descent(),
                                 .capital = static_cast<std::int32_t>(std::lround(font.CapitalHeight())) };
    }
    return *known;
}

std::int32_t STMLOwner::Pixels(double units) const
{
    return units > 0 ? std::max(1, static_cast<std::int32_t>(std::lround(Scaled(units)))) : 0;
}

std::int32_t STMLOwner::LinePixels(double units) const
{
    return units > 0 ? std::max(1, static_cast<std::int32_t>(std::ceil(Scaled(units) - 0.5))) : 0;
}

MColor STMLOwner::Shown(MColor color, std::uint8_t colorAlpha) const
{
    return color.Faded(colorAlpha / 255.0 * alpha / 255.0);
}

MColor STMLOwner::ColorOf(std::int32_t index, std::uint8_t colorAlpha) const
{
    return Shown(style.GetColor(index), colorAlpha);
}

MColor STMLOwner::ColorOf(const STMLColor& color, std::uint8_t colorAlpha) const
{
    return color.color ? Shown(*color.color, colorAlpha) : ColorOf(color.index, colorAlpha);
}

MColor STMLOwner::InkOf(std::int32_t index, std::uint8_t colorAlpha, bool followsInk) const
{
    return followsInk && index == 0 && ink ? Shown(*ink, colorAlpha) : ColorOf(index, colorAlpha);
}
