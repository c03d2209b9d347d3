// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/painting/MDrawerToMBitmap.h"
#include "tools/stylebuilder/StyleScale.h"

/// A round rectangle with a hairline around it, in units at 100 %.
struct FaceLook
{
    MFill fill;
    MColor edge;   ///< of alpha 0: none
    double radius = 4;   ///< of the hairline's middle
    double cap = 6;   ///< of each end, that holds the corner
    double height = 0;   ///< 0: two caps and a row, for what is alike all the way down
    MColor lamp = MColor(0);   ///< the line that says "on"; of alpha 0: none
};

/// On a transparent bitmap.
/// @param middle  of the hairline, in units
void DrawFace(MBitmap& bitmap, const StyleScale& scale, const MRectangle& area, const FaceLook& look);
/// The line near the lower edge of an area.
void DrawLamp(MBitmap& bitmap, const StyleScale& scale, const MRectangle& area, MColor color);
/// The image of a face that stretches.
MBitmap FaceImage(const StyleScale& scale, const FaceLook& look);
