// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MLayoutCorner.h"

#include <algorithm>

#include "foundation/text/MException.h"
#include "gui/controls/MControl.h"

namespace
{
Axis AlongEdge(std::size_t edge)
{
    return edge == MLayoutSide::Left || edge == MLayoutSide::Right ? Axis::Y : Axis::X;
}
}   // namespace

MLayoutCorner::MLayoutCorner(MControl& control)
    : MLayout(control), edges{ MLayoutClient(control, Axis::Y), MLayoutClient(control, Axis::X),
                               MLayoutClient(control, Axis::Y), MLayoutClient(control, Axis::X) }
{
}

void MLayoutCorner::TakeOut(MControl& control)
{
    std::replace(corners.begin(), corners.end(), &control, static_cast<MControl*>(nullptr));
    for (MLayoutClient& edge : edges)
        edge.RemoveControl(control);
    control.layout.layout = this;
}

void MLayoutCorner::SetTarget(MControl& control, const MString& target)
{
    static constexpr const char* cornerNames[] = { "corner0", "corner1", "corner2", "corner3" };
    static constexpr const char* edgeNames[] = { "left", "top", "right", "bottom" };
    for (std::size_t place = 0; place < corners.size(); ++place)
    {
        if (target == MString::Literal(cornerNames[place]))
        {
            TakeOut(control);
            if (corners[place] != nullptr)
                RemoveControl(*corners[place]);
            corners[place] = &control;
            control.layout.placement = AlignCenter;
            return;
        }
        if (target == MString::Literal(edgeNames[place]))
        {
            TakeOut(control);
            edges[place].AddControl(control);
            control.layout.layout = this;
            return;
        }
    }
    throw MException("Invalid target for corner layout.", MErrorCode::InvalidArgument);
}

void MLayoutCorner::RemoveControl(MControl& control)
{
    TakeOut(control);
    MLayout::RemoveControl(control);
}

bool MLayoutCorner::HasCorner(std::size_t corner) const
{
    return corners[corner] != nullptr && corners[corner]->IsVisible();
}

MLayoutCorner::Thickness MLayoutCorner::ThicknessBy(const SizeComputer& computer) const
{
    Thickness thickness{};
    for (std::size_t edge = 0; edge < edges.size(); ++edge)
    {
        const Axis across = Across(AlongEdge(edge));
        for (const MControl* child : edges[edge].Controls())
            if (child->IsVisible())
                thickness[edge] = std::max(thickness[edge], computer.Size(*child, across));
        for (const std::size_t corner : cornersOf[edge])
            if (HasCorner(corner))
                thickness[edge] = std::max(thickness[edge], computer.Size(*corners[corner], across));
    }
    return thickness;
}

MRectangle MLayoutCorner::Arrange(const MRectangle& area)
{
    const Thickness thick = ThicknessBy(CurrentSizeComputer());
    const MRectangle inner{ area.left + thick[0], area.top + thick[1], area.right - thick[2],
                            area.bottom - thick[3] };
    for (std::size_t corner = 0; corner < corners.size(); ++corner)
    {
        if (!HasCorner(corner))
            continue;
        MRectangle cell = area;
        (corner % 2 == 0 ? cell.right : cell.left) = corner % 2 == 0 ? inner.left - 1 : inner.right + 1;
        (corner < 2 ? cell.bottom : cell.top) = corner < 2 ? inner.top - 1 : inner.bottom + 1;
        PlaceIn(*corners[corner], cell);
    }
    for (std::size_t edge = 0; edge < edges.size(); ++edge)
    {
        MRectangle strip = inner;
        switch (edge)
        {
        case MLayoutSide::Left:
            strip = { area.left, inner.top, inner.left - 1, inner.bottom };
            break;
        case MLayoutSide::Top:
            strip = { inner.left, area.top, inner.right, inner.top - 1 };
            break;
        case MLayoutSide::Right:
            strip = { inner.right + 1, inner.top, area.right, inner.bottom };
            break;
        default:
            strip = { inner.left, inner.bottom + 1, inner.right, area.bottom };
            break;
        }
        const Axis along = AlongEdge(edge);
        FirstOf(strip, along) += HasCorner(cornersOf[edge][0]) ? Gap() : 0;
        LastOf(strip, along) -= HasCorner(cornersOf[edge][1]) ? Gap() : 0;
        edges[edge].Arrange(strip);
    }
    const auto taken = [&](std::size_t edge)
    {
        return thick[edge] > 0 ? Gap() : 0;
    };
    return { inner.left + taken(0), inner.top + taken(1), inner.right - taken(2), inner.bottom - taken(3) };
}

void MLayoutCorner::ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool last)
{
    const Thickness thick = ThicknessBy(computer);
    SizeSums own;
    for (std::size_t edge = 0; edge < edges.size(); ++edge)
    {
        const Axis along = AlongEdge(edge);
        const std::int32_t gap = thick[edge] > 0 && !last ? Gap() : 0;
        sums.Take(Across(along), thick[edge] + gap);
        SizeSums needs;
        edges[edge].ComputeSizes(needs, computer, true);
        std::int32_t need = needs.Along(along).remain;
        for (const std::size_t corner : cornersOf[edge])
            need += HasCorner(corner) ? Gap() : 0;
        own.Need(along, need);
    }
    sums.Need(Axis::X, own.x.remain);
    sums.Need(Axis::Y, own.y.remain);
}

std::uint8_t MLayoutCorner::GetStretch() const
{
    std::uint8_t stretch = 0;
    for (const MLayoutClient& edge : edges)
        stretch |= edge.GetStretch();
    return stretch;
}
