// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// A colour 0xAARRGGBB, not premultiplied; alpha 255 is opaque. In memory that is blue, green, red, alpha:
/// the form of a bitmap's pixels.
struct MColor
{
    std::uint32_t value = 0;

    constexpr MColor() = default;
    explicit constexpr MColor(std::uint32_t alphaRedGreenBlue) : value(alphaRedGreenBlue) {}
    constexpr MColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha = 255)
        : value(std::uint32_t{ alpha } << 24 | std::uint32_t{ red } << 16 | std::uint32_t{ green } << 8 |
                blue)
    {
    }

    constexpr bool operator==(const MColor&) const = default;
    constexpr std::uint8_t Alpha() const { return static_cast<std::uint8_t>(value >> 24); }
    constexpr std::uint8_t Red() const { return static_cast<std::uint8_t>(value >> 16); }
    constexpr std::uint8_t Green() const { return static_cast<std::uint8_t>(value >> 8); }
    constexpr std::uint8_t Blue() const { return static_cast<std::uint8_t>(value); }

    constexpr MColor WithAlpha(std::uint8_t alpha) const
    {
        return MColor((value & 0x00FFFFFFu) | std::uint32_t{ alpha } << 24);
    }
    /// The alpha times a share of 0 to 1.
    constexpr MColor Faded(double share) const
    {
        return WithAlpha(static_cast<std::uint8_t>(Alpha() * share + 0.5));
    }
    /// A share of 0 to 1 of the way to another colour, all four bytes.
    constexpr MColor Mixed(MColor other, double share) const
    {
        const auto mix = [share](std::uint8_t a, std::uint8_t b)
        {
            return static_cast<std::uint8_t>(a + (b - a) * share + 0.5);
        };
        return { mix(Red(), other.Red()), mix(Green(), other.Green()), mix(Blue(), other.Blue()),
                 mix(Alpha(), other.Alpha()) };
    }
};
