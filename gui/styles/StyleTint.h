// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/StyleNames.h"
#include "gui/painting/MBitmap.h"

/// One of the main colours, as it re-tints the colours and images of its role: their hue becomes the
/// chosen colour's, and their saturation changes as much as the chosen colour's differs from the one that the
/// style was drawn for; their lightness stays, and with it the contrast (as with MColorOp::Color over the
/// role's grey). The colour that the style was drawn for changes nothing.
class StyleTint
{
public:
    StyleTint(MColor drawnFor, MColor chosen);

    bool ChangesNothing() const { return changesNothing; }
    MColor Of(MColor color) const;
    void Apply(MBitmap& image) const;

    /// The number of the main colour that a role follows; -1: none.
    static int RoleOf(MStdColor color);

private:
    double hue = 0;   // 0 to 6
    double saturationRatio = 1;
    bool changesNothing = true;
};
