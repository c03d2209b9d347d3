// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/STMLColumnWidths.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{
using Widths = std::vector<double>;

double Sum(const Widths& widths)
{
    return std::accumulate(widths.begin(), widths.end(), 0.0);
}

/// Equal parts of what is left; a cell that needs more gets that, and the others share the rest.
void Share(const std::vector<STMLColumn>& columns, Widths& widths, double left)
{
    std::vector<std::size_t> sharing;
    for (std::size_t index = 0; index < columns.size(); ++index)
        if (columns[index].shares)
            sharing.push_back(index);
    std::stable_sort(sharing.begin(), sharing.end(),
                     [&columns](std::size_t a, std::size_t b)
                     { return columns[a].minimal > columns[b].minimal; });
    auto count = static_cast<double>(sharing.size());
    for (const std::size_t index : sharing)
    {
        widths[index] = std::max<double>(columns[index].minimal, left / count);
        left -= widths[index];
        --count;
    }
}

/// Takes what is too much from the widths, in proportion to what each has above its floor.
void Shrink(Widths& widths, const Widths& floors, double tooMuch)
{
    const double spare = Sum(widths) - Sum(floors);
    if (tooMuch <= 0 || spare <= 0)
        return;
    const double share = std::min(1.0, tooMuch / spare);
    for (std::size_t index = 0; index < widths.size(); ++index)
        widths[index] -= (widths[index] - floors[index]) * share;
}

/// Edge by edge, so that the sum is kept and no cell is a pixel off for those before it.
std::vector<std::int32_t> Rounded(const Widths& widths)
{
    std::vector<std::int32_t> rounded;
    double edge = 0;
    std::int32_t last = 0;
    for (const double width : widths)
    {
        edge += width;
        const auto next = std::max(last, static_cast<std::int32_t>(std::floor(edge + 0.5)));
        rounded.push_back(next - last);
        last = next;
    }
    return rounded;
}
}   // namespace

std::vector<std::int32_t> DistributeColumns(const std::vector<STMLColumn>& columns, std::int32_t room)
{
    const double whole = std::max(0, room);
    Widths widths;
    Widths needed;
    Widths floors;
    for (const STMLColumn& column : columns)
    {
        widths.push_back(column.shares ? 0 : std::max(column.wanted, column.minimal));
        needed.push_back(column.minimal);
        floors.push_back(column.shares
                             ? std::min<double>(column.minimal, whole / static_cast<double>(columns.size()))
                             : column.minimal);
    }
    Share(columns, widths, std::max(0.0, whole - Sum(widths)));
    Shrink(widths, needed, Sum(widths) - whole);
    Shrink(widths, floors, Sum(widths) - whole);
    Shrink(widths, Widths(widths.size(), 0), Sum(widths) - whole);
    return Rounded(widths);
}
