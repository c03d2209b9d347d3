// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/NineSlice.h"

#include <algorithm>
#include <cmath>
#include <utility>

NineSlice::NineSlice(MBitmap picture, std::int32_t end)
    : image(std::move(picture)), fixedRows(std::clamp(end, 0, std::max(0, (image.Height() - 1) / 2)))
{
}

void NineSlice::Paint(MDrawer& drawer, const MRectangle& area, std::uint8_t alpha, MColorOp op) const
{
    if (image.IsEmpty() || area.IsEmpty())
        return;
    const Strip& strip = StripOf(area.Height());
    const std::int32_t end = std::min((image.Width() - 1) / 2, area.Width() / 2);
    const std::int32_t bottom = area.Height() - 1;
    if (end > 0)
    {
        drawer.BitBlt(area.left, area.top, strip.image, { 0, 0, end - 1, bottom }, alpha, op);
        drawer.BitBlt(area.right - end + 1, area.top, strip.image,
                      { image.Width() - end, 0, image.Width() - 1, bottom }, alpha, op);
    }
    if (area.Width() <= 2 * end)
        return;
    for (const Run& run : strip.runs)
        drawer.FillRectangle(
            { area.left + end, area.top + run.first, area.right - end, area.top + run.first + run.count - 1 },
            alpha == 255 ? run.color : run.color.Faded(alpha / 255.0), op);
}

const NineSlice::Strip& NineSlice::StripOf(std::int32_t height) const
{
    // Controls have few heights. While a window is dragged larger there are many, of which none comes back.
    constexpr std::size_t MostStrips = 48;
    const auto known = strips.find(height);
    if (known != strips.end())
        return known->second;
    if (strips.size() >= MostStrips)
        strips.clear();
    return strips.emplace(height, MakeStrip(height)).first->second;
}

NineSlice::Strip NineSlice::MakeStrip(std::int32_t height) const
{
    Strip strip{ .image = MBitmap(image.Width(), height), .runs = {} };
    const std::int32_t top = std::min(fixedRows, height / 2);
    const std::int32_t bottom = std::min(fixedRows, height - top);
    const std::int32_t stretched = height - top - bottom;
    const std::int32_t between = image.Height() - 2 * fixedRows;   // at least a row
    for (std::int32_t y = 0; y < height; ++y)
    {
        double from = y;
        if (y >= height - bottom)
            from = image.Height() - (height - y);
        else if (y >= top)
            from = fixedRows + std::clamp((y - top + 0.5) * between / stretched - 0.5, 0.0, between - 1.0);
        const auto first = static_cast<std::int32_t>(from);
        const std::int32_t next = std::min(first + 1, image.Height() - 1);
        for (std::int32_t x = 0; x < image.Width(); ++x)
            strip.image.Row(y)[x] = image.Pixel(x, first).Mixed(image.Pixel(x, next), from - first).value;
        const MColor middle = strip.image.Pixel(image.Width() / 2, y);
        if (!strip.runs.empty() && strip.runs.back().color == middle)
            ++strip.runs.back().count;
        else
            strip.runs.push_back({ y, 1, middle });
    }
    std::erase_if(strip.runs, [](const Run& run) { return run.color.Alpha() == 0; });
    return strip;
}
