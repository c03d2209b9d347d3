// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/richtext/STMLOwner.h"

enum class STMLAlignment : std::uint8_t
{
    Left,
    Center,
    Right,
    Justify   ///< spreads the blanks of every line but the last
};

/// What a paragraph's tag says.
struct STMLParagraphFormat
{
    STMLAlignment alignment = STMLAlignment::Left;
    bool singleLine = false;   ///< no line is broken; what is too long is cut
    bool followsInk = false;   ///< colour 0 is the owner's ink
    std::optional<STMLColor> fill;   ///< behind it
    std::optional<std::uint8_t> fillAlpha;   ///< alone: of the colour of texts
    double bulletSize = 0;   ///< units; 0: no list item

    bool HasFill() const { return fill || fillAlpha; }
    MColor FillColor(const STMLOwner& owner) const
    {
        return owner.ColorOf(fill.value_or(STMLColor{}), fillAlpha.value_or(255));
    }
};
