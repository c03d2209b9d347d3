// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/stylebuilder/StyleImages.h"
#include "tools/stylebuilder/Theme.h"

// The images of one look in one scale. What stretches is a frame round a middle row and column, see
// NineSlice: `cap` in StyleSections is how much of each end stays as it is.

/// Faces of controls, in all their states.
void AddFaces(StyleImages& images, const Theme& theme, const StyleScale& scale);
/// What is painted on or around them: boxes with ticks, sliders, thumbs, marks, the shadow.
void AddParts(StyleImages& images, const Theme& theme, const StyleScale& scale);
