// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MLayoutGrid.h"

#include <algorithm>

#include "gui/controls/MControl.h"

void MLayoutGrid::SetColumns(std::int32_t count)
{
    columns = std::clamp(count, 1, MostColumns);
}

void MLayoutGrid::AddControl(MControl& control)
{
    MLayout::AddControl(control);
    control.layout.columnSpan = control.layout.rowSpan = 1;
    for (std::size_t row = 0;; ++row)
    {
        if (row == rows.size())
            rows.emplace_back();
        for (std::size_t column = 0; column < static_cast<std::size_t>(columns); ++column)
            if (!rows[row].covered[column])
            {
                rows[row].cells[column] = &control;
                rows[row].covered[column] = true;
                return;
            }
    }
}

void MLayoutGrid::SetSpan(MControl& control, std::int32_t columnSpan, std::int32_t rowSpan)
{
    constexpr std::int32_t mostRows = 1024;
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (std::size_t column = 0; column < static_cast<std::size_t>(columns); ++column)
            if (rows[row].cells[column] == &control)
            {
                control.layout.columnSpan =
                    std::clamp(columnSpan, 1, columns - static_cast<std::int32_t>(column));
                control.layout.rowSpan = std::clamp(rowSpan, 1, mostRows);
                const std::size_t end = row + static_cast<std::size_t>(control.layout.rowSpan);
                if (rows.size() < end)
                    rows.resize(end);
                for (std::size_t below = row; below < end; ++below)
                    std::fill_n(rows[below].covered.begin() + static_cast<std::ptrdiff_t>(column),
                                control.layout.columnSpan, true);
                return;
            }
}

void MLayoutGrid::RemoveControl(MControl& control)
{
    for (Row& row : rows)
        std::replace(row.cells.begin(), row.cells.end(), &control, static_cast<MControl*>(nullptr));
    MLayout::RemoveControl(control);
}

/// visit(cell, row, column) for the visible ones.
template <typename Visit>
void MLayoutGrid::EachCell(Visit&& visit) const
{
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (std::size_t column = 0; column < static_cast<std::size_t>(columns); ++column)
            if (MControl* cell = rows[row].cells[column]; cell != nullptr && cell->IsVisible())
                visit(*cell, row, column);
}

std::int32_t MLayoutGrid::WidthOf(const MControl& cell, const SizeComputer& computer)
{
    return cell.layout.x.ratio == 0 ? computer.Width(cell) : MinimalSizeComputer().Width(cell);
}

void MLayoutGrid::MeasureRows(const SizeComputer& computer)
{
    for (Row& row : rows)
    {
        row.height = row.ratio = 0;
        row.allPlastic = false;
    }
    std::vector<bool> seen(rows.size());
    EachCell(
        [&](const MControl& cell, std::size_t index, std::size_t)
        {
            if (cell.layout.rowSpan >= 2)
                return;
            Row& row = rows[index];
            row.allPlastic = cell.layout.plastic && (!seen[index] || row.allPlastic);
            seen[index] = true;
            row.height = std::max(row.height, computer.Height(cell));
            row.ratio = std::max(row.ratio, cell.layout.y.ratio);
        });
}

std::vector<MLayoutGrid::Column> MLayoutGrid::MeasureColumns(const SizeComputer& computer)
{
    std::vector<Column> measured(static_cast<std::size_t>(columns));
    std::vector<bool> spanStarts(measured.size());
    std::vector<bool> hasFixed(measured.size());
    EachCell(
        [&](MControl& cell, std::size_t row, std::size_t column)
        {
            if (cell.layout.columnSpan >= 2)
            {
                spanStarts[column] = true;
                return;
            }
            if (cell.layout.plastic)
            {
                if (rows[row].allPlastic)
                    return;
                cell.FitPlastic(Axis::X, rows[row].height - 2 * cell.layout.y.border);
            }
            // What shares is never cut below its minimum, either.
            const std::int32_t width = WidthOf(cell, computer);
            measured[column].width = std::max(measured[column].width, width);
            measured[column].ratio = std::max(measured[column].ratio, cell.layout.x.ratio);
            hasFixed[column] = hasFixed[column] || (cell.layout.x.ratio == 0 && width > 0);
        });
    constexpr std::int32_t emptyRatio = 100;
    for (std::size_t column = 0; column < measured.size(); ++column)
        if (measured[column].width == 0 && measured[column].ratio == 0 &&
            (spanStarts[column] || (column > 0 && hasFixed[column - 1])))
            measured[column].ratio = emptyRatio;
    return measured;
}

void MLayoutGrid::WidenForSpans(std::vector<Column>& measured, const SizeComputer& computer) const
{
    EachCell(
        [&](const MControl& cell, std::size_t, std::size_t first)
        {
            const std::int32_t span = cell.layout.columnSpan;
            if (span < 2)
                return;
            const std::size_t end = first + static_cast<std::size_t>(span);
            std::int32_t need = WidthOf(cell, computer) - (span - 1) * Gap();
            std::int32_t ratios = 0;
            std::int32_t fixed = 0;
            for (std::size_t column = first; column < end; ++column)
            {
                ratios += measured[column].ratio;
                fixed += measured[column].ratio == 0 ? measured[column].width : 0;
            }
            need -= fixed;
            if (ratios > 0)
            {
                for (std::size_t column = first; column < end; ++column)
                    if (measured[column].ratio > 0)
                        measured[column].width = std::max(
                            measured[column].width, (measured[column].ratio * need + ratios - 1) / ratios);
                return;
            }
            if (need <= 0)
                return;
            const std::int32_t share = need / span;
            for (std::size_t column = first + 1; column < end; ++column)
                measured[column].width += share;
            measured[first].width += need - share * (span - 1);
        });
}

void MLayoutGrid::EqualizeSets(std::vector<Column>& measured) const
{
    const auto apart = static_cast<std::size_t>(std::max(0, columnSpanCount));
    if (apart == 0 || apart >= measured.size())
        return;
    for (std::size_t first = 0; first < apart; ++first)
    {
        std::int32_t widest = 0;
        bool hasRatio = false;
        bool hasFixed = false;
        for (std::size_t column = first; column < measured.size(); column += apart)
        {
            widest = std::max(widest, measured[column].width);
            (measured[column].ratio > 0 ? hasRatio : hasFixed) = true;
        }
        for (std::size_t column = first; hasRatio && hasFixed && column < measured.size(); column += apart)
            if (measured[column].ratio > 0)
                measured[column] = { .width = widest, .ratio = 0 };
    }
}

void MLayoutGrid::ShareWidth(std::vector<Column>& measured, std::int32_t width) const
{
    std::int32_t available = width - (columns - 1) * Gap();
    std::int32_t ratios = 0;
    for (const Column& column : measured)
    {
        available -= column.ratio == 0 ? column.width : 0;
        ratios += column.ratio;
    }
    for (Column& column : measured)
    {
        if (column.ratio == 0)
            continue;
        const auto share =
            static_cast<std::int32_t>(std::int64_t{ column.ratio } * std::max(0, available) / ratios);
        column.width = std::max(column.width, share);
        available -= column.width;
        ratios -= column.ratio;
    }
}

void MLayoutGrid::ShareHeight(std::int32_t height)
{
    std::int32_t available = height;
    std::int32_t count = 0;
    std::int32_t ratios = 0;
    for (const Row& row : rows)
    {
        count += row.ratio > 0 || row.height > 0 ? 1 : 0;
        available -= row.ratio == 0 ? row.height : 0;
        ratios += row.ratio;
    }
    available = std::max(0, available - (count - 1) * Gap());
    for (Row& row : rows)
    {
        if (row.ratio == 0)
            continue;
        row.height = static_cast<std::int32_t>(std::int64_t{ row.ratio } * available / ratios);
        available -= row.height;
        ratios -= row.ratio;
    }
}

void MLayoutGrid::FitPlasticRows(const std::vector<Column>& measured)
{
    for (Row& row : rows)
        if (row.allPlastic)
            row.height = 0;
    EachCell(
        [&](MControl& cell, std::size_t row, std::size_t column)
        {
            if (!rows[row].allPlastic || cell.layout.rowSpan >= 2)
                return;
            cell.FitPlastic(Axis::Y, measured[column].width - 2 * cell.layout.x.border);
            rows[row].height =
                std::max(rows[row].height, cell.MinimalSize(Axis::Y) + 2 * cell.layout.y.border);
        });
}

MRectangle MLayoutGrid::Arrange(const MRectangle& area)
{
    const CurrentSizeComputer current;
    MeasureRows(current);
    if (verticalFill)
        ShareHeight(area.Height());
    std::vector<Column> measured = MeasureColumns(current);
    WidenForSpans(measured, current);
    EqualizeSets(measured);
    ShareWidth(measured, area.Width());
    FitPlasticRows(measured);

    const auto place = [gap = Gap()](auto size, std::size_t count, std::int32_t first, bool skipEmpty)
    {
        std::vector<std::int32_t> starts;
        for (std::size_t i = 0; i < count; ++i)
        {
            starts.push_back(first);
            first += size(i) == 0 && skipEmpty ? 0 : size(i) + gap;
        }
        return starts;
    };
    const auto height = [this](std::size_t row)
    {
        return rows[row].height;
    };
    const auto width = [&measured](std::size_t column)
    {
        return measured[column].width;
    };
    const std::vector<std::int32_t> tops = place(height, rows.size(), area.top, true);
    const std::vector<std::int32_t> lefts = place(width, measured.size(), area.left, false);
    EachCell(
        [&](MControl& cell, std::size_t row, std::size_t column)
        {
            const std::size_t lastRow =
                std::min(rows.size(), row + static_cast<std::size_t>(cell.layout.rowSpan)) - 1;
            const std::size_t lastColumn = column + static_cast<std::size_t>(cell.layout.columnSpan) - 1;
            PlaceIn(cell, { lefts[column], tops[row], lefts[lastColumn] + width(lastColumn) - 1,
                            tops[lastRow] + height(lastRow) - 1 });
        });
    return {};
}

/// In whole pixels upwards, so that the share of `size` isn't a pixel short.
std::int32_t MLayoutGrid::RatioNeed(std::int32_t size, std::int32_t ratio, std::int32_t sum)
{
    return static_cast<std::int32_t>((std::int64_t{ size } * sum + ratio - 1) / ratio);
}

void MLayoutGrid::ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool)
{
    if (!HasVisible())
        return;
    MeasureRows(computer);
    std::vector<Column> measured = MeasureColumns(computer);
    WidenForSpans(measured, computer);
    EqualizeSets(measured);
    FitPlasticRows(measured);

    const auto need = [gap = Gap()](const auto& lines, auto sizeOf)
    {
        std::int32_t ratios = 0;
        std::int32_t fixed = -gap;
        std::int32_t shared = 0;
        for (const auto& line : lines)
            ratios += line.ratio;
        for (const auto& line : lines)
        {
            const std::int32_t size = sizeOf(line);
            if (line.ratio > 0)
                shared = std::max(shared, RatioNeed(size, line.ratio, ratios));
            else
                fixed += size;
            fixed += gap;
        }
        return std::max(0, fixed + shared);
    };
    sums.Need(Axis::X, need(measured, [](const Column& column) { return column.width; }));
    std::vector<Row> filled;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(filled),
                 [](const Row& row) { return row.height > 0; });
    for (Row& row : filled)
        row.ratio = verticalFill ? row.ratio : 0;
    sums.Need(Axis::Y, need(filled, [](const Row& row) { return row.height; }));
}

std::uint8_t MLayoutGrid::GetStretch() const
{
    std::uint8_t stretch = 0;
    EachCell(
        [&](const MControl& cell, std::size_t, std::size_t)
        {
            const std::uint8_t own = cell.GetStretch();
            stretch |= static_cast<std::uint8_t>((cell.layout.x.ratio > 0 ? own & 1 : 0) |
                                                 (cell.layout.y.ratio > 0 && verticalFill ? own & 2 : 0));
        });
    return stretch;
}
