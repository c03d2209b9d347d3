// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/painting/MColor.h"
#include "gui/painting/MColorOp.h"
#include "state/tree/MAttribute.h"

/// What a user changes about a style. A style's definition has values of its own, which a configuration goes
/// above. Plain values; one thread at a time.
struct StyleSettings
{
    static constexpr int MainColorCount = 4;
    /// The scales that styles are drawn for.
    static constexpr double LeastScale = 1;
    static constexpr double LargestScale = 3;

    /// From a definition's or configuration's attributes; what isn't there, and a colour of other than eight
    /// digits, stays as it is. Throws MException for a `contentrendering` that is no MColorOp.
    void Load(const MAttribute& item);
    /// All of them. Colours are RRGGBBAA, scales have six digits.
    void Store(MAttribute& item) const;

    /// `maincolor0` the wash and `maincolor1` the lamp of learning, `maincolor2` the accent, `maincolor3`
    /// meters and progress.
    MColor mainColors[MainColorCount] = { MColor(0xFFFFFFFF), MColor(0xFFFFFFFF), MColor(0xFFFFFFFF),
                                          MColor(0xFFFFFFFF) };
    MColor iconColor{ 0xFFFFFFFF };   ///< `iconcolor`: all icons are multiplied by it
    double resizeX = 1;   ///< `ResizeX`: the editor's scale
    double resizeY = 1;   ///< `ResizeY`
    bool invertIcons = false;   ///< `inverticons`
    bool invertBitmaps = false;   ///< `invertbitmaps`
    std::int32_t minAlpha = 0;   ///< `minalpha`: no control's alpha is below
    std::int32_t disabledAlpha = 255;   ///< `disabledalpha` and its like: of a control's contents in a state
    std::int32_t focusedAlpha = 255;
    std::int32_t highlightedAlpha = 255;
    std::int32_t clickedAlpha = 255;
    MColorOp contentRendering = MColorOp::Alphablend;   ///< `contentrendering`
};
