// SPDX-License-Identifier: GPL-3.0-or-later
// Shapes given column by column, against single pixels.
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "gui/painting/MDrawerToMBitmap.h"
#include "gui/painting/PixelLoops.h"

namespace
{
MBitmap Ground(std::int32_t width, std::int32_t height)
{
    MBitmap bitmap(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            bitmap.Row(y)[x] = 0xFF000000u + static_cast<std::uint32_t>(x * 0x010203 + y * 0x030507);
    return bitmap;
}
}   // namespace

// Every clip, every shift, spans that reach out on all sides: what is inside gets each layer once, in order.
TEST(Columns, FillAndCoverWhatSpansSayInsideOfTheClip)
{
    std::mt19937 random(11);
    const auto upTo = [&random](std::int32_t most)
    {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(most + 1));
    };
    for (std::int32_t round = 0; round < 60; ++round)
    {
        SCOPED_TRACE(round);
        const std::int32_t width = 1 + upTo(200);
        const std::int32_t height = 1 + upTo(90);
        const std::size_t layerCount = static_cast<std::size_t>(1 + upTo(2));
        std::vector<MColor> layers;
        for (std::size_t i = 0; i < layerCount; ++i)
            layers.emplace_back(static_cast<std::uint32_t>(random()) | (round % 3 == 0 ? 0xFF000000u : 0u));
        const std::int32_t left = upTo(60) - 30;
        std::vector<MColumnSpan> spans;
        std::vector<std::uint8_t> coverage;
        for (std::int32_t i = 0; i < width; ++i)
        {
            spans.push_back({ upTo(height + 40) - 20, upTo(height) - 3 });
            for (std::int32_t k = 0; k < spans.back().height * static_cast<std::int32_t>(layerCount); ++k)
                coverage.push_back(static_cast<std::uint8_t>(random() % 4 == 0 ? 255 : random()));
        }
        const MPoint shift{ upTo(20) - 10, upTo(20) - 10 };
        const MRectangle clip =
            MRectangle::OfSize(upTo(width / 2), upTo(height / 2), 1 + upTo(width), 1 + upTo(height));

        for (const bool fills : { true, false })
        {
            MBitmap painted = Ground(width, height);
            MDrawerToMBitmap made(painted);
            MDrawer& drawer = made;
            drawer.SetClip(clip);
            drawer.Shift(shift.x, shift.y);
            EXPECT_EQ(drawer.GetClip().Moved(shift.x, shift.y), clip.Intersection(painted.Bounds()));
            if (fills)
                drawer.FillColumns(left, spans, layers[0]);
            else
                drawer.CoverColumns(left, spans, coverage, layers);

            MBitmap expected = Ground(width, height);
            std::size_t first = 0;
            for (std::int32_t i = 0; i < width; ++i)
                for (std::int32_t k = 0; k < spans[static_cast<std::size_t>(i)].height; ++k)
                {
                    const std::int32_t x = left + i + shift.x;
                    const std::int32_t y = spans[static_cast<std::size_t>(i)].top + k + shift.y;
                    for (std::size_t layer = 0; layer < (fills ? 1 : layerCount); ++layer)
                    {
                        const std::uint32_t share = fills ? 255 : coverage[first + layer];
                        if (clip.Intersection(expected.Bounds()).Contains(x, y) && share > 0)
                            expected.Row(y)[x] =
                                Pixels::Alphablended(expected.Row(y)[x], layers[layer].value,
                                                     Pixels::Share(layers[layer].Alpha(), share));
                    }
                    first += layerCount;
                }
            for (std::int32_t y = 0; y < height; ++y)
                for (std::int32_t x = 0; x < width; ++x)
                    ASSERT_EQ(painted.Row(y)[x], expected.Row(y)[x]) << x << ", " << y << " fills " << fills;
        }
    }
}
