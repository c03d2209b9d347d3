// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

class MLayout;

/// The two directions of a layout.
enum class Axis : std::uint8_t
{
    X,
    Y
};

constexpr Axis Across(Axis axis)
{
    return axis == Axis::X ? Axis::Y : Axis::X;
}

/// Where a control stands in a place larger than itself: bits of each direction, neither for the middle.
enum MAlignment : std::uint8_t
{
    AlignCenter = 0,
    AlignLeft = 0x01,
    AlignRight = 0x02,
    AlignTop = 0x04,
    AlignBottom = 0x08
};

/// How a layout treats a control, one direction at a time.
struct LayoutOptions
{
    struct Direction
    {
        std::int32_t ratio = 0;   ///< weight of its share of free space; 0 keeps its size
        std::int32_t border = 0;   ///< pixels at both sides
    };

    Direction& Along(Axis axis) { return axis == Axis::X ? x : y; }
    const Direction& Along(Axis axis) const { return axis == Axis::X ? x : y; }

    Direction x;
    Direction y;
    std::uint8_t placement = AlignCenter;   ///< MAlignment
    std::int32_t space = 0;   ///< more pixels behind it in a row or column
    std::int32_t columnSpan = 1;   ///< in a grid
    std::int32_t rowSpan = 1;
    bool plastic = false;   ///< its size in one direction follows from that in the other
    MLayout* layout = nullptr;   ///< that places it
};
