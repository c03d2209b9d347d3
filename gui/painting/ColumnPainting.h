// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "gui/painting/MBitmap.h"
#include "gui/painting/MColumnSpan.h"

/// Shapes that are given column by column, as everything is that follows a curve over a horizontal axis.
/// The clip is of the bitmap; columns begin at origin.x, and rows are counted from origin.y. Thread: GUI.
namespace Columns
{
/// The spans of neighbouring columns, in one colour.
void Fill(MBitmap& bitmap, const MRectangle& clip, MPoint origin, std::span<const MColumnSpan> columns,
          MColor color);
/// Layers of colour, the lowest first, each with a coverage of its own.
/// @param coverage  a byte for each layer of each pixel: those of a pixel stand together, the pixels of a
/// column from the top down, columns one after the other
void Cover(MBitmap& bitmap, const MRectangle& clip, MPoint origin, std::span<const MColumnSpan> columns,
           std::span<const std::uint8_t> coverage, std::span<const MColor> layers);
}   // namespace Columns
