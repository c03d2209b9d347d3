// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MLayout.h"

#include <algorithm>

#include "gui/controls/MControl.h"

std::int32_t& FirstOf(MRectangle& area, Axis axis)
{
    return axis == Axis::X ? area.left : area.top;
}

std::int32_t& LastOf(MRectangle& area, Axis axis)
{
    return axis == Axis::X ? area.right : area.bottom;
}

std::int32_t LengthOf(const MRectangle& area, Axis axis)
{
    return axis == Axis::X ? area.Width() : area.Height();
}

std::int32_t MLayout::CurrentSizeComputer::Size(const MControl& child, Axis axis) const
{
    const std::int32_t size = child.layout.plastic ? child.MinimalSize(axis) : child.PresentSize(axis);
    return size + 2 * child.layout.Along(axis).border;
}

std::int32_t MLayout::MinimalSizeComputer::Size(const MControl& child, Axis axis) const
{
    const LayoutOptions::Direction& options = child.layout.Along(axis);
    if (axis == Axis::Y && child.IsCollapsed())
        return 0;
    std::int32_t size = child.MinimalSize(axis);
    if (options.ratio == 0 && !child.layout.plastic)
        size = std::max(size, child.Size(axis));
    return size + 2 * options.border;
}

MLayout::~MLayout()
{
    for (MControl* control : controls)
        control->layout.layout = nullptr;
}

void MLayout::AddControl(MControl& control)
{
    control.layout.layout = this;
    if (defaultBorderX >= 0)
        control.layout.x.border = defaultBorderX;
    if (defaultBorderY >= 0)
        control.layout.y.border = defaultBorderY;
    controls.push_back(&control);
}

void MLayout::RemoveControl(MControl& control)
{
    std::erase(controls, &control);
    control.layout.layout = nullptr;
}

bool MLayout::HasVisible() const
{
    return !Visible().empty();
}

std::vector<MControl*> MLayout::Visible() const
{
    std::vector<MControl*> visible;
    std::copy_if(controls.begin(), controls.end(), std::back_inserter(visible),
                 [](const MControl* each) { return each->IsVisible(); });
    return visible;
}

std::int32_t MLayout::Gap() const
{
    return controls.empty() ? 0 : owner.GetSpacing(0) + layoutSpaceExtra;
}

std::int32_t MLayout::Largest(const std::vector<MControl*>& children, Axis axis, const SizeComputer& computer)
{
    std::int32_t largest = 0;
    for (const MControl* child : children)
        largest = std::max(largest, computer.Size(*child, axis));
    return largest;
}

MLayout::StackSums MLayout::SumAlong(const std::vector<MControl*>& children, Axis axis,
                                     std::int32_t crossSize, const SizeComputer& computer) const
{
    StackSums sums;
    for (MControl* child : children)
    {
        sums.fixed += child->layout.space + Gap();
        if (child->layout.plastic)
        {
            child->FitPlastic(axis, crossSize - 2 * child->layout.Along(Across(axis)).border);
            sums.fixed += child->MinimalSize(axis) + 2 * child->layout.Along(axis).border;
        }
        else if (child->layout.Along(axis).ratio == 0 || child->IsCollapsed())
            sums.fixed += computer.Size(*child, axis);
        else
            sums.ratio += child->layout.Along(axis).ratio;
    }
    return sums;
}

std::int32_t MLayout::Need(const std::vector<MControl*>& children, Axis axis, const StackSums& sums,
                           const SizeComputer& computer) const
{
    std::int32_t shared = 0;
    for (const MControl* child : children)
    {
        const std::int32_t ratio = child->layout.Along(axis).ratio;
        if (ratio == 0 || child->layout.plastic || child->IsCollapsed())
            continue;
        // Rounded up: a share that is a pixel short would cut the child.
        const std::int64_t wanted = std::int64_t{ computer.Size(*child, axis) } * sums.ratio;
        shared = std::max(shared, static_cast<std::int32_t>((wanted + ratio - 1) / ratio));
    }
    return std::max(0, sums.fixed + shared - Gap());
}

void MLayout::Stack(const std::vector<MControl*>& children, Axis axis, const MRectangle& area,
                    StackSums sums) const
{
    const CurrentSizeComputer current;
    // The sum holds one gap more than there are between children.
    std::int32_t remaining = std::max(0, LengthOf(area, axis) - sums.fixed + Gap());
    MRectangle cell = area;
    for (MControl* child : children)
    {
        const std::int32_t ratio = child->layout.Along(axis).ratio;
        std::int32_t length = current.Size(*child, axis);
        if (ratio != 0 && !child->IsCollapsed() && !child->layout.plastic)
        {
            length = static_cast<std::int32_t>(std::int64_t{ ratio } * remaining / sums.ratio);
            remaining -= length;
            sums.ratio -= ratio;
        }
        LastOf(cell, axis) = FirstOf(cell, axis) + length - 1;
        PlaceIn(*child, cell);
        FirstOf(cell, axis) += length + Gap() + child->layout.space;
    }
}

void MLayout::Place(MControl& child, Axis axis, std::int32_t first, std::int32_t last)
{
    const LayoutOptions::Direction& options = child.layout.Along(axis);
    const std::int32_t size = child.PresentSize(axis);
    if (options.ratio != 0 || child.layout.plastic)
    {
        child.SetPlace(axis, first + options.border, last - 2 * options.border - first + 1);
        return;
    }
    const int shift = axis == Axis::X ? 0 : 2;
    std::int32_t place = first + (last - size - first + 1) / 2;
    if ((child.layout.placement & AlignLeft << shift) != 0)
        place = first + options.border;
    else if ((child.layout.placement & AlignRight << shift) != 0)
        place = last - options.border - size;
    child.SetPlace(axis, place, size);
}

void MLayout::PlaceIn(MControl& child, const MRectangle& cell)
{
    Place(child, Axis::X, cell.left, cell.right);
    Place(child, Axis::Y, cell.top, cell.bottom);
}
