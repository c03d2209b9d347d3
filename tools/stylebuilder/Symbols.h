// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "gui/painting/FontFace.h"
#include "tools/stylebuilder/PathDrawing.h"
#include "tools/stylebuilder/StyleImages.h"
#include "tools/stylebuilder/Theme.h"

/// The sides of the squares that icons are drawn in, units.
inline constexpr double IconSizes[] = { 9, 11, 12, 14, 18 };

/// All icons of a size side by side, in the order of MStdIcon, white: "icons9" and its like. Throws
/// MException where one is missing.
void AddIcons(StyleImages& images, const std::vector<PathDrawing>& drawings, const StyleScale& scale);
/// The named pictures, white.
void AddPictures(StyleImages& images, const std::vector<PathDrawing>& drawings, const StyleScale& scale);
/// "cursor.arrow" and its like, of 24 and of 48 pixels.
void AddCursors(StyleImages& images, const std::vector<PathDrawing>& drawings);
/// The bands' points "eqeqpoint1" to "eqeqpoint10", with their numbers.
void AddPoints(StyleImages& images, const Theme& theme, const StyleScale& scale,
               const std::shared_ptr<FontFace>& bold);

/// The drawing of a kind and name; throws MException "There is no {0} \"{1}\".".
const PathDrawing& FindDrawing(const std::vector<PathDrawing>& drawings, PathDrawing::Kind kind,
                               const std::string& name);
