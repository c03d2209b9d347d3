// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTMLTableCell.h"

#include <algorithm>
#include <utility>

MSTMLTableCell::MSTMLTableCell(const STMLOwner& itemOwner, STMLCellFormat cellFormat)
    : MSTMLContainer(itemOwner), format(std::move(cellFormat))
{
}

std::unique_ptr<MSTMLItem> MSTMLTableCell::Clone() const
{
    return std::make_unique<MSTMLTableCell>(*this);
}

/// In a cell too narrow for anything, the content gets half of it at least.
std::int32_t MSTMLTableCell::EdgeAcross(std::int32_t width) const
{
    return std::clamp(Edge(), 0, std::max(0, width / 4));
}

std::int32_t MSTMLTableCell::GetMinimalWidth()
{
    return WidthAround(MSTMLContainer::GetMinimalWidth());
}

std::int32_t MSTMLTableCell::GetPreferredWidth()
{
    return WidthAround(MSTMLContainer::GetPreferredWidth());
}

std::int32_t MSTMLTableCell::GetHeight(std::int32_t width)
{
    return SumOfExtents(MSTMLContainer::GetHeight(width - 2 * EdgeAcross(width)), 2 * Edge());
}

void MSTMLTableCell::Layout(std::int32_t width)
{
    MSTMLContainer::Layout(width - 2 * EdgeAcross(width));
}

void MSTMLTableCell::Paint(MDrawer& drawer, const MRectangle& area)
{
    const MRectangle clip = drawer.GetClip();
    const MRectangle seen = clip.Intersection(area);
    if (seen.IsEmpty())
        return;
    drawer.SetClip(seen);
    if (format.fill || format.fillAlpha)
        drawer.FillRectangle(
            area, Owner().ColorOf(format.fill.value_or(STMLColor{}), format.fillAlpha.value_or(255)));
    if (format.border > 0)
        drawer.Rectangle(area, Owner().ColorOf(0, format.borderAlpha), MColorOp::Alphablend,
                         Owner().LinePixels(format.border));
    PaintItems(drawer, area.Inset(EdgeAcross(area.Width()), Edge()), format.down);
    drawer.SetClip(clip);
}
