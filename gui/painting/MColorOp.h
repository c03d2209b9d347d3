// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MEnumLabels.h"
#include "foundation/text/MString.h"

/// The ways to combine a source colour s of alpha sa with a pixel d. All arithmetic is in integers; with
/// a = ((sa + 1) 255) >> 8 and mix(t) = (t a + d (255 - a)) >> 8, but d where a is 0, each channel becomes as
/// told. The pixel's alpha stays but where that is said.
enum class MColorOp : std::int32_t
{
    None,   ///< nothing
    Alphablend,   ///< mix(s); at sa = 255 the source's four bytes
    Modulate,   ///< mix(((d + 1) s) >> 8)
    Copy,   ///< the source's four bytes
    Overlay,   ///< the source on a pixel of alpha 0, else as Alphablend; alphas add up
    Color,   ///< mix(the source's hue and saturation with the pixel's lightness)
    Invert,   ///< mix(255 - d)
    Add,   ///< d + (((s + 1) a) >> 8), at most 255
    Subtract,   ///< d - (((s + 1) a) >> 8), at least 0
    Lighten,   ///< d v' / v, v the pixel's largest channel, v' = v + (((w + 1) a) >> 8), w the source's
               ///< largest
    Darken,   ///< the same with v' = v - ...
    Difference,   ///< mix(max(0, d - s))
    IncContrast,   ///< mix(127 + (d - 127) (4335 - 16 s) / 255)
    DecContrast,   ///< mix(127 + (d - 127) s / 255)
    LightenByContrast,   ///< d 255 / (255 - t), t = ((s + 1) a) >> 8; 255 at t = 255
    DarkenByContrast,   ///< (d - t) 255 / (255 - t), t = ((256 - s) a) >> 8; d at t = 255
    AddAndOverflow   ///< (d + s) modulo 256
};

template <>
struct MEnumLabels<MColorOp>
{
    static constexpr const char* Labels[] = { "None",
                                              "Alphablend",
                                              "Modulate",
                                              "Copy",
                                              "Overlay",
                                              "Color",
                                              "Invert",
                                              "Add",
                                              "Subtract",
                                              "Lighten",
                                              "Darken",
                                              "Difference",
                                              "IncContrast",
                                              "DecContrast",
                                              "LightenByContrast",
                                              "DarkenByContrast",
                                              "AddAndOverflow" };
};
inline constexpr std::int32_t MColorOpCount = 17;

/// The operation of a label. Throws MException "Invalid MColorOp identifier to parse ({0}).".
MColorOp ParseColorOp(const MString& label);

/// How an image fills a rectangle.
enum class MBitmapFill : std::int32_t
{
    None,   ///< once, in the middle
    Stretch,
    HPattern,   ///< repeated along, stretched across
    VPattern,
    Pattern
};

template <>
struct MEnumLabels<MBitmapFill>
{
    static constexpr const char* Labels[] = { "None", "Stretch", "HPattern", "VPattern", "Pattern" };
};

/// Throws MException "Invalid MBitmapFill identifier to parse ({0}).".
MBitmapFill ParseBitmapFill(const MString& label);
