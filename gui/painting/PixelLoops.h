// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

#include "gui/painting/MColor.h"
#include "gui/painting/MColorOp.h"

/// The hot loops of painting: one for each operation and kind of source, without a test inside, compiled for
/// each instruction set. Callers have clipped. Thread: any.
namespace Pixels
{
/// Rows of pixels, `stride` pixels apart.
struct Block
{
    std::uint32_t* first = nullptr;
    std::ptrdiff_t stride = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

/// One colour over all pixels.
void Fill(const Block& block, MColor color, MColorOp op);
/// One colour, of which each pixel gets the share that its coverage tells: 255 is all, and 0 leaves the pixel
/// alone with every operation. "Copy" counts as "Alphablend".
/// @param coverageStride  bytes from row to row; 0 uses one row for all
void Cover(const Block& block, const std::uint8_t* coverage, std::ptrdiff_t coverageStride, MColor color,
           MColorOp op);
/// Pixels over pixels, their alpha times `alpha` / 255.
void Blend(const Block& block, const std::uint32_t* source, std::ptrdiff_t sourceStride, std::uint8_t alpha,
           MColorOp op);

/// a b / 255, rounded to the nearest, for bytes.
constexpr std::uint32_t Share(std::uint32_t a, std::uint32_t b)
{
    const std::uint32_t product = a * b + 128;
    return (product + (product >> 8)) >> 8;
}

/// "Alphablend" of one pixel, for spans too short for a loop.
constexpr std::uint32_t Alphablended(std::uint32_t pixel, std::uint32_t color, std::uint32_t alpha)
{
    if (alpha == 255)
        return color | 0xFF000000u;
    const std::uint32_t a = ((alpha + 1) * 255) >> 8;
    const std::uint32_t rest = a == 0 ? 256 : 255 - a;
    const std::uint32_t redBlue = ((color & 0xFF00FFu) * a + (pixel & 0xFF00FFu) * rest) >> 8;
    const std::uint32_t green = ((color & 0xFF00u) * a + (pixel & 0xFF00u) * rest) >> 8;
    return (redBlue & 0xFF00FFu) | (green & 0xFF00u) | (pixel & 0xFF000000u);
}
}   // namespace Pixels
