// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTMLTableRow.h"

#include <algorithm>
#include <utility>

#include "gui/richtext/STMLColumnWidths.h"

MSTMLTableRow::MSTMLTableRow(const STMLOwner& itemOwner, STMLRowFormat rowFormat)
    : MSTMLItem(itemOwner), format(std::move(rowFormat))
{
}

MSTMLTableRow::MSTMLTableRow(const MSTMLTableRow& other)
    : MSTMLItem(other), format(other.format), measures(other.measures), columns(other.columns),
      height(other.height)
{
    cells.reserve(other.cells.size());
    for (const auto& cell : other.cells)
        cells.push_back(std::make_unique<MSTMLTableCell>(*cell));
}

std::unique_ptr<MSTMLItem> MSTMLTableRow::Clone() const
{
    return std::make_unique<MSTMLTableRow>(*this);
}

MSTMLTableCell& MSTMLTableRow::AddCell(std::unique_ptr<MSTMLTableCell> cell)
{
    cells.push_back(std::move(cell));
    return *cells.back();
}

void MSTMLTableRow::SetOwner(const STMLOwner& newOwner)
{
    MSTMLItem::SetOwner(newOwner);
    measures = {};
    for (const auto& cell : cells)
        cell->SetOwner(newOwner);
}

std::int32_t MSTMLTableRow::WidthBesideCells() const
{
    const auto gapCount = static_cast<double>(cells.empty() ? 0 : cells.size() - 1);
    const double spaces = gapCount * Owner().Pixels(format.cellSpaces);
    return SumOfExtents(2 * Border(), static_cast<std::int32_t>(std::min(spaces, 1e6)));
}

std::int32_t MSTMLTableRow::GetMinimalWidth()
{
    if (measures.minimal >= 0)
        return measures.minimal;
    std::int32_t sum = WidthBesideCells();
    for (const auto& cell : cells)
        sum = SumOfExtents(sum, cell->GetMinimalWidth());
    return measures.minimal = sum;
}

std::int32_t MSTMLTableRow::GetPreferredWidth()
{
    if (measures.preferred >= 0)
        return measures.preferred;
    std::int32_t sum = WidthBesideCells();
    std::int32_t widestPart = 0;
    std::int32_t partCount = 0;
    for (const auto& cell : cells)
    {
        const STMLCellFormat& cellFormat = cell->Format();
        std::int32_t preferred = cell->GetPreferredWidth();
        if (cellFormat.width.IsGiven() && !cellFormat.width.IsShare() && !cellFormat.autoSize)
            preferred =
                std::max(cell->GetMinimalWidth(), cell->WidthAround(cellFormat.width.Pixels(Owner(), 0)));
        if (cellFormat.IsFlexible())
        {
            widestPart = std::max(widestPart, preferred);
            ++partCount;
        }
        else
            sum = SumOfExtents(sum, preferred);
    }
    // Equal parts, each wide enough for the widest.
    for (; partCount > 0; --partCount)
        sum = SumOfExtents(sum, widestPart);
    return measures.preferred = sum;
}

std::int32_t MSTMLTableRow::GetHeight(std::int32_t width)
{
    Layout(width);
    return height;
}

void MSTMLTableRow::Layout(std::int32_t width)
{
    width = std::max(width, 1);
    if (measures.width == width)
        return;
    PlaceColumns(width);
    std::int32_t highest = 0;
    for (std::size_t index = 0; index < cells.size(); ++index)
        highest = std::max(highest, cells[index]->GetHeight(columns[index].width));
    height = SumOfExtents(highest, 2 * Border());
    if (!format.height.IsShare())
        height = std::max(height, format.height.Pixels(Owner(), 0));
    measures.width = width;
}

void MSTMLTableRow::PlaceColumns(std::int32_t width)
{
    // At widths that hold nothing, border and spaces give way, too.
    const std::int32_t border = std::min(Border(), width / 4);
    const auto count = static_cast<std::int32_t>(cells.size());
    const std::int32_t space =
        count > 1 ? std::min(Owner().Pixels(format.cellSpaces), width / 2 / (count - 1)) : 0;
    const std::int32_t room = std::max(0, width - 2 * border - space * std::max(0, count - 1));

    std::vector<STMLColumn> wanted;
    wanted.reserve(cells.size());
    for (const auto& cell : cells)
    {
        const STMLLength& stated = cell->Format().width;
        STMLColumn column{ .minimal = cell->GetMinimalWidth(), .shares = cell->Format().IsFlexible() };
        if (cell->Format().autoSize)
            column.wanted = cell->GetPreferredWidth();
        else if (stated.IsGiven())
            column.wanted = stated.IsShare() ? stated.Pixels(Owner(), room)
                                             : cell->WidthAround(stated.Pixels(Owner(), room));
        wanted.push_back(column);
    }
    columns.clear();
    std::int32_t x = border;
    for (const std::int32_t columnWidth : DistributeColumns(wanted, room))
    {
        columns.push_back({ .x = x, .width = columnWidth });
        x += columnWidth + space;
    }
}

void MSTMLTableRow::Paint(MDrawer& drawer, const MRectangle& area)
{
    Layout(area.Width());
    const std::int32_t border = Border();
    if (border > 0)
        drawer.Rectangle(area, Owner().ColorOf(0, format.borderAlpha), MColorOp::Alphablend, border);
    for (std::size_t index = 0; index < cells.size(); ++index)
        cells[index]->Paint(drawer, MRectangle::OfSize(area.left + columns[index].x, area.top + border,
                                                       columns[index].width, area.Height() - 2 * border));
}
