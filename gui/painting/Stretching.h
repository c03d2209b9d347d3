// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/painting/MBitmap.h"

/// A part of an image in another size, each pixel the mean of what falls on it, by a triangle as wide as the
/// coarser of both grids. Colours count by their alpha, so that what is transparent doesn't shine through.
/// @param part  lies inside `source`, which isn't empty
MBitmap Stretched(const MBitmap& source, const MRectangle& part, std::int32_t width, std::int32_t height);
