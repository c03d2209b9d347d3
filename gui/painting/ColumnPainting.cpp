// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/ColumnPainting.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "gui/painting/PixelLoops.h"

namespace
{
/// Fills spans row by row, as memory lies. A row differs from the one above only where a span begins or
/// ends, so that a mask of the columns that are inside is carried from row to row.
class SpanFiller
{
public:
    void Fill(MBitmap& bitmap, const MRectangle& area, std::int32_t originY,
              std::span<const MColumnSpan> columns, MColor color)
    {
        Prepare(area.Moved(0, -originY), columns);
        for (std::int32_t y = area.top; y <= area.bottom; ++y)
        {
            EnterRow(static_cast<std::size_t>(y - area.top));
            FillRow(bitmap.Row(y) + area.left, color);
        }
    }

private:
    // Columns that lie all inside or all outside need no mask.
    static constexpr std::size_t ChunkSize = 64;

    void Prepare(const MRectangle& area, std::span<const MColumnSpan> columns)
    {
        const auto height = static_cast<std::size_t>(area.Height());
        inside.assign(columns.size(), 0);
        insideChunk.assign((columns.size() + ChunkSize - 1) / ChunkSize, 0);
        firstBegin.assign(height + 1, -1);
        firstEnd.assign(height + 1, -1);
        nextBegin.resize(columns.size());
        nextEnd.resize(columns.size());
        for (std::size_t i = 0; i < columns.size(); ++i)
        {
            const std::int32_t top = std::max(columns[i].top, area.top);
            const std::int32_t end = std::min(columns[i].top + columns[i].height, area.bottom + 1);
            if (top >= end)
                continue;
            Insert(firstBegin, nextBegin, static_cast<std::size_t>(top - area.top), i);
            Insert(firstEnd, nextEnd, static_cast<std::size_t>(end - area.top), i);
        }
    }

    using Links = std::vector<std::int32_t>;   // columns by number, -1 behind the last

    static void Insert(Links& first, Links& next, std::size_t row, std::size_t column)
    {
        next[column] = first[row];
        first[row] = static_cast<std::int32_t>(column);
    }

    void EnterRow(std::size_t row)
    {
        for (std::int32_t i = firstEnd[row]; i >= 0; i = nextEnd[static_cast<std::size_t>(i)])
            Set(static_cast<std::size_t>(i), 0, -1);
        for (std::int32_t i = firstBegin[row]; i >= 0; i = nextBegin[static_cast<std::size_t>(i)])
            Set(static_cast<std::size_t>(i), 255, 1);
    }

    void Set(std::size_t column, std::uint8_t value, std::int32_t change)
    {
        inside[column] = value;
        insideChunk[column / ChunkSize] += change;
    }

    enum class Part
    {
        None,
        Some,
        All
    };
    Part PartOf(std::size_t chunk) const
    {
        const std::size_t size = std::min(ChunkSize, inside.size() - chunk * ChunkSize);
        return insideChunk[chunk] == 0                                 ? Part::None
               : insideChunk[chunk] == static_cast<std::int32_t>(size) ? Part::All
                                                                       : Part::Some;
    }

    void FillRow(std::uint32_t* row, MColor color) const
    {
        for (std::size_t chunk = 0; chunk < insideChunk.size();)
        {
            const Part part = PartOf(chunk);
            const std::size_t first = chunk * ChunkSize;
            while (++chunk < insideChunk.size() && PartOf(chunk) == part)
                ;
            const std::size_t end = std::min(chunk * ChunkSize, inside.size());
            const Pixels::Block block{ .first = row + first,
                                       .stride = 0,
                                       .width = static_cast<std::int32_t>(end - first),
                                       .height = 1 };
            if (part == Part::All)
                Pixels::Fill(block, color, MColorOp::Alphablend);
            else if (part == Part::Some)
                Pixels::Cover(block, inside.data() + first, 0, color, MColorOp::Alphablend);
        }
    }

    std::vector<std::uint8_t> inside;   // of the present row: 255 or 0
    std::vector<std::int32_t> insideChunk;   // how many of a chunk are
    Links firstBegin;   // of a row: the first column whose span begins there, then from one to the next
    Links nextBegin;
    Links firstEnd;
    Links nextEnd;
};

struct Layer
{
    std::uint32_t color;
    std::uint32_t alpha;
};

/// What is known of the pixels of one column that can be seen.
struct CoveredColumn
{
    std::uint32_t* pixel;
    std::ptrdiff_t stride;
    const std::uint8_t* coverage;
    std::int32_t height;
};

template <std::size_t Count>
void CoverColumn(const CoveredColumn& column, const Layer* layers)
{
    std::uint32_t* pixel = column.pixel;
    const std::uint8_t* coverage = column.coverage;
    for (std::int32_t y = 0; y < column.height; ++y, pixel += column.stride, coverage += Count)
    {
        std::uint32_t value = *pixel;
        for (std::size_t layer = 0; layer < Count; ++layer)
            if (coverage[layer] != 0)
                value = Pixels::Alphablended(value, layers[layer].color,
                                             Pixels::Share(layers[layer].alpha, coverage[layer]));
        *pixel = value;
    }
}
}   // namespace

void Columns::Fill(MBitmap& bitmap, const MRectangle& clip, MPoint origin,
                   std::span<const MColumnSpan> columns, MColor color)
{
    std::int32_t top = std::numeric_limits<std::int32_t>::max() / 2;
    std::int32_t bottom = std::numeric_limits<std::int32_t>::min() / 2;
    for (const MColumnSpan& span : columns)
        if (span.height > 0)
        {
            top = std::min(top, span.top);
            bottom = std::max(bottom, span.top + span.height - 1);
        }
    const MRectangle all{ origin.x, top + origin.y, origin.x + static_cast<std::int32_t>(columns.size()) - 1,
                          bottom + origin.y };
    const MRectangle seen = all.Intersection(clip).Intersection(bitmap.Clip());
    if (all.IsEmpty() || seen.IsEmpty())
        return;
    static SpanFiller filler;   // its memory serves every curve
    filler.Fill(bitmap, seen, origin.y,
                columns.subspan(static_cast<std::size_t>(seen.left - origin.x),
                                static_cast<std::size_t>(seen.Width())),
                color);
}

void Columns::Cover(MBitmap& bitmap, const MRectangle& clip, MPoint origin,
                    std::span<const MColumnSpan> columns, std::span<const std::uint8_t> coverage,
                    std::span<const MColor> layers)
{
    constexpr std::size_t atOnce = 3;
    const MRectangle seen = clip.Intersection(bitmap.Clip());
    if (layers.empty() || layers.size() > atOnce || seen.IsEmpty())
        return;
    std::array<Layer, atOnce> parts{};
    for (std::size_t i = 0; i < layers.size(); ++i)
        parts[i] = { layers[i].value, layers[i].Alpha() };
    constexpr void (*covers[])(const CoveredColumn&, const Layer*) = { CoverColumn<1>, CoverColumn<2>,
                                                                       CoverColumn<3> };
    const auto cover = covers[layers.size() - 1];
    std::size_t first = 0;
    for (std::size_t i = 0; i < columns.size(); ++i)
    {
        const std::int32_t x = origin.x + static_cast<std::int32_t>(i);
        const std::int32_t height = std::max(0, columns[i].height);
        const std::int32_t spanTop = columns[i].top + origin.y;
        const std::int32_t top = std::max(spanTop, seen.top);
        const std::int32_t bottom = std::min(spanTop + height - 1, seen.bottom);
        if (x >= seen.left && x <= seen.right && top <= bottom)
        {
            const auto skipped = static_cast<std::size_t>(top - spanTop) * layers.size();
            cover({ .pixel = bitmap.Row(top) + x,
                    .stride = bitmap.Width(),
                    .coverage = coverage.data() + first + skipped,
                    .height = bottom - top + 1 },
                  parts.data());
        }
        first += static_cast<std::size_t>(height) * layers.size();
    }
}
