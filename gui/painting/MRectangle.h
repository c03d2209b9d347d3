// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>

/// A pixel.
struct MPoint
{
    std::int32_t x = 0;
    std::int32_t y = 0;

    constexpr bool operator==(const MPoint&) const = default;
};

/// A rectangle of whole pixels with inclusive corners: one pixel has right equal to left.
/// The usual empty one is 0, 0, -1, -1; every rectangle whose right lies left of its left counts as empty.
struct MRectangle
{
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = -1;
    std::int32_t bottom = -1;

    static constexpr MRectangle OfSize(std::int32_t x, std::int32_t y, std::int32_t width,
                                       std::int32_t height)
    {
        return { x, y, x + width - 1, y + height - 1 };
    }

    constexpr bool operator==(const MRectangle&) const = default;
    constexpr bool IsEmpty() const { return right < left || bottom < top; }
    constexpr std::int32_t Width() const { return right - left + 1; }
    constexpr std::int32_t Height() const { return bottom - top + 1; }
    constexpr bool Contains(std::int32_t x, std::int32_t y) const
    {
        return x >= left && x <= right && y >= top && y <= bottom;
    }
    constexpr MRectangle Moved(std::int32_t dx, std::int32_t dy) const
    {
        return { left + dx, top + dy, right + dx, bottom + dy };
    }
    /// Smaller by so many pixels at each side, or larger.
    constexpr MRectangle Inset(std::int32_t dx, std::int32_t dy) const
    {
        return { left + dx, top + dy, right - dx, bottom - dy };
    }
    /// What both hold; the usual empty one if that is nothing.
    constexpr MRectangle Intersection(const MRectangle& other) const
    {
        const MRectangle common{ std::max(left, other.left), std::max(top, other.top),
                                 std::min(right, other.right), std::min(bottom, other.bottom) };
        return common.IsEmpty() ? MRectangle{} : common;
    }
    /// The smallest that holds both.
    constexpr MRectangle Union(const MRectangle& other) const
    {
        if (IsEmpty())
            return other;
        if (other.IsEmpty())
            return *this;
        return { std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                 std::max(bottom, other.bottom) };
    }
};
