// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/painting/MBitmap.h"

class MStream;

/// Images from files and back. A load that fails throws and leaves the bitmap as it was; sizes are checked
/// before anything is made for them. Thread: any, one at a time for each bitmap.
namespace ImageFiles
{
/// No picture of an interface is larger; what a damaged header asks for mostly is.
inline constexpr std::int64_t MostPixels = std::int64_t{ 1 } << 26;

/// Truevision TGA of 8, 16, 24 and 32 bits, plain or run-length coded, with or without a colour map.
/// @param createAlpha  keeps the alpha of 16 and 32 bits; else the picture is opaque
/// A size below 1 gives an empty bitmap. Throws MException "Invalid file contents. " with "No TGA header
/// present." or "Invalid TGA header."; a file that ends early, "Could not read required data from stream.".
void LoadTGA(MBitmap& bitmap, MStream& stream, bool createAlpha);
/// 32 bits, run-length coded, rows from the top, with the standard footer.
void SaveTGA(const MBitmap& bitmap, MStream& stream);

/// All kinds of PNG. Throws MException "Could not initialize libpng.", "Could not initialize libpng info
/// structure.", "Error loading a PNG file.", "Error loading PNG palette.".
void LoadPNG(MBitmap& bitmap, MStream& stream);
/// 32 bits. Throws the first three of these, and "Empty image cannot be saved to PNG.".
void SavePNG(const MBitmap& bitmap, MStream& stream);
/// By the system's libraries, which are opened with the first such picture. Throw MException "Could not
/// initialize libjpeg." or "Could not initialize libtiff." where that isn't there, "Error loading a JPEG
/// file." or "Error loading a TIFF file.".
void LoadJPEG(MBitmap& bitmap, MStream& stream);
void LoadTIFF(MBitmap& bitmap, MStream& stream);
/// Whatever the file's first bytes say it is; without a mark it counts as TGA. Throws as the others.
void Load(MBitmap& bitmap, MStream& stream);

}   // namespace ImageFiles
