// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "gui/painting/MDrawer.h"
#include "gui/richtext/STMLResources.h"

/// The heights of a font around its baseline, in pixels.
struct STMLFontHeights
{
    std::int32_t above = 0;   ///< of a line in this font, above the baseline
    std::int32_t below = 0;
    std::int32_t descent = 0;
    std::int32_t capital = 0;
};

/// A colour as a text names it: by index, or itself.
struct STMLColor
{
    std::optional<MColor> color;
    std::int32_t index = 0;   ///< where there is no colour
};

/// What the items of one document take from whoever shows it. Thread: GUI.
class STMLOwner
{
public:
    STMLOwner(const MDrawerOwner& drawerOwner, const STMLResources& named)
        : style(drawerOwner), resources(named)
    {
    }

    const STMLResources& Resources() const { return resources; }
    MFont& Font(std::int32_t index) const { return style.GetFont(index); }
    STMLFontHeights HeightsOf(std::int32_t font) const;
    /// A length in whole pixels; what is longer than nothing has one at least.
    std::int32_t Pixels(double units) const;
    /// Lines of a unit have 1 pixel to 150 %, 2 to 250 %, 3 at 300 %.
    std::int32_t LinePixels(double units) const;
    double Scaled(double units) const { return units * style.GetScale(); }
    MColor ColorOf(std::int32_t index, std::uint8_t colorAlpha) const;
    MColor ColorOf(const STMLColor& color, std::uint8_t colorAlpha) const;
    /// Of text: colour 0 is the ink, if there is one, where it shall follow it.
    MColor InkOf(std::int32_t index, std::uint8_t colorAlpha, bool followsInk) const;
    /// Fonts may have changed.
    void ForgetFonts() { heights.clear(); }

    std::vector<std::shared_ptr<const MBitmap>> images;
    std::optional<MColor> ink;
    std::uint8_t alpha = 255;   ///< on everything

private:
    MColor Shown(MColor color, std::uint8_t colorAlpha) const;

    const MDrawerOwner& style;
    const STMLResources& resources;
    mutable std::vector<std::optional<STMLFontHeights>> heights;   // by font
};
