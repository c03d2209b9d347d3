// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <unordered_map>
#include <vector>

#include "gui/painting/MDrawer.h"

/// An image that fills any area: its corners stay as they are, its middle column is repeated sideways, and
/// what lies between its upper and lower ends is stretched, so that a gradient fits every height. What an
/// area's height makes of it is kept, so that painting only copies. Thread: GUI.
class NineSlice
{
public:
    NineSlice() = default;
    /// @param end  rows at the top and bottom that aren't stretched; sideways all but the middle column stays
    NineSlice(MBitmap picture, std::int32_t end);

    bool IsEmpty() const { return image.IsEmpty(); }
    const MBitmap& Image() const { return image; }
    void Paint(MDrawer& drawer, const MRectangle& area, std::uint8_t alpha = 255,
               MColorOp op = MColorOp::Alphablend) const;

private:
    struct Run   // of rows whose middle has one colour
    {
        std::int32_t first = 0;
        std::int32_t count = 0;
        MColor color;
    };
    struct Strip
    {
        MBitmap image;   // as wide as the original
        std::vector<Run> runs;
    };

    const Strip& StripOf(std::int32_t height) const;
    Strip MakeStrip(std::int32_t height) const;

    MBitmap image;
    std::int32_t fixedRows = 0;
    mutable std::unordered_map<std::int32_t, Strip> strips;   // by height
};
