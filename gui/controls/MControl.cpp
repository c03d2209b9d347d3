// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MControl.h"

#include <algorithm>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

MControl::~MControl()
{
    // Layouts point to children, children to their layouts: those of this control go first.
    layouts.clear();
}

MControl& MControl::AddChild(std::unique_ptr<MControl> child)
{
    child->parent = this;
    children.push_back(std::move(child));
    return *children.back();
}

std::unique_ptr<MControl> MControl::RemoveChild(MControl& child)
{
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&child](const auto& each) { return each.get() == &child; });
    if (found == children.end())
        return nullptr;
    if (child.layout.layout != nullptr)
        child.layout.layout->RemoveControl(child);
    std::unique_ptr<MControl> taken = std::move(*found);
    children.erase(found);
    taken->parent = nullptr;
    return taken;
}

MControl& MControl::Root()
{
    return parent == nullptr ? *this : parent->Root();
}

const MControl& MControl::Root() const
{
    return parent == nullptr ? *this : parent->Root();
}

const MStyle* MControl::Style() const
{
    return Root().style;
}

std::int32_t MControl::GetSpacing(std::int32_t index) const
{
    const MStyle* used = Style();
    return used != nullptr ? used->GetSpacing(index) : 0;
}

MStyle::Frame MControl::Frame() const
{
    const MStyle* used = Style();
    return used != nullptr ? used->GetFrame(*this) : MStyle::Frame{};
}

std::int32_t MControl::PresentSize(Axis axis) const
{
    const std::int32_t own = axis == Axis::X ? collapsedSize.width : collapsedSize.height;
    return collapsed && own > 0 ? own : Size(axis);
}

MRectangle MControl::ClientRectangle() const
{
    const MStyle::Frame frame = Frame();
    return { frame.left, frame.top, PresentSize(Axis::X) - 1 - frame.right,
             PresentSize(Axis::Y) - 1 - frame.bottom };
}

void MControl::SetVisible(bool shown)
{
    if (visible == shown)
        return;
    visible = shown;
    Root().Relayout();
}

void MControl::SetCollapsed(bool nowCollapsed)
{
    if (collapsed == nowCollapsed)
        return;
    collapsed = nowCollapsed;
    Root().Relayout();
}

void MControl::SetCollapsedSize(MSize size)
{
    collapsedSize = size;
}

void MControl::SetMinimalClientSize(MSize size)
{
    minimalClient = size;
}

void MControl::SetPosition(std::int32_t x, std::int32_t y)
{
    place[0] = x;
    place[1] = y;
    UpdateAbsolute();
}

void MControl::SetSize(std::int32_t width, std::int32_t height)
{
    sizes[0] = std::max(width, minimal[0]);
    sizes[1] = std::max(height, minimal[1]);
    if (IsLive())
        ArrangeChildren();
}

void MControl::SetPlace(Axis axis, std::int32_t first, std::int32_t size)
{
    place[static_cast<std::size_t>(axis)] = first;
    if (!collapsed)
        sizes[static_cast<std::size_t>(axis)] = std::max(0, size);
}

void MControl::UpdateAbsolute()
{
    // Places count from the parent's corner: its layouts have its client rectangle to give out.
    absolute[0] = place[0] + (parent != nullptr ? parent->absolute[0] : 0);
    absolute[1] = place[1] + (parent != nullptr ? parent->absolute[1] : 0);
    for (const auto& child : children)
        child->UpdateAbsolute();
}

std::int32_t MControl::ComputePlasticSize(Axis, std::int32_t) const
{
    throw MException(Format("Service \"{0}\" is not implemented.", MString("compute plastic control size")));
}

void MControl::FitPlastic(Axis axis, std::int32_t crossSize)
{
    const MStyle::Frame frame = Frame();
    const std::int32_t across = frame.left + frame.right;
    const std::int32_t down = frame.top + frame.bottom;
    const bool width = axis == Axis::X;
    minimal[static_cast<std::size_t>(axis)] =
        ComputePlasticSize(axis, crossSize - (width ? down : across)) + (width ? across : down);
}

SizeSums MControl::SumsOfLayouts(const MLayout::SizeComputer& computer) const
{
    SizeSums sums;
    std::size_t count = layouts.size();
    while (count > 0 && !layouts[count - 1]->HasVisible())
        --count;
    // From the outermost on: a strip is taken from what was needed so far, and what comes later lies inside
    // of it.
    for (std::size_t i = 0; i < layouts.size(); ++i)
        layouts[i]->ComputeSizes(sums, computer, i + 1 >= count);
    return sums;
}

void MControl::ComputeMinimalSize()
{
    if (!detectsMinimalSize)
        return;
    SizeSums sums = SumsOfLayouts(MLayout::MinimalSizeComputer());
    sums.Need(Axis::X, minimalClient.width);
    sums.Need(Axis::Y, minimalClient.height);
    for (const auto& child : children)
        if (sizesToChildren && child->visible && child->layout.layout == nullptr && !child->overlay)
        {
            sums.Need(Axis::X, child->X() + child->PresentSize(Axis::X));
            sums.Need(Axis::Y, child->Y() + child->PresentSize(Axis::Y));
        }
    if (!layout.plastic)
    {
        const MSize content = ContentMinimum();
        sums.Need(Axis::X, content.width);
        sums.Need(Axis::Y, content.height);
    }
    const MStyle::Frame frame = Frame();
    const MSize least = Style() != nullptr ? Style()->GetMinimalSize(*this) : MSize{};
    minimal[0] = std::max(least.width, sums.x.used + sums.x.remain + frame.left + frame.right);
    minimal[1] = std::max(least.height, sums.y.used + sums.y.remain + frame.top + frame.bottom);
    for (const Axis axis : { Axis::X, Axis::Y })
        sizes[static_cast<std::size_t>(axis)] = std::max(Size(axis), MinimalSize(axis));
}

void MControl::ComputeMinimalSizes()
{
    for (const auto& child : children)
        child->ComputeMinimalSizes();
    ComputeMinimalSize();
}

void MControl::AdaptSize()
{
    if (!adaptsSize)
        return;
    const SizeSums sums = SumsOfLayouts(MLayout::CurrentSizeComputer());
    const MStyle::Frame frame = Frame();
    const std::int32_t width = std::max(Width(), sums.x.used + sums.x.remain + frame.left + frame.right);
    const std::int32_t height = std::max(Height(), sums.y.used + sums.y.remain + frame.top + frame.bottom);
    if (width == Width() && height == Height())
        return;
    sizes[0] = width;
    sizes[1] = height;
    if (parent == nullptr)
        Relayout();
}

void MControl::ArrangeChildren()
{
    MRectangle area = ClientRectangle();
    for (const auto& each : layouts)
        area = each->Arrange(area);
    OnPlaced();
    for (const auto& child : children)
    {
        child->absolute[0] = absolute[0] + child->place[0];
        child->absolute[1] = absolute[1] + child->place[1];
        if (child->visible)
            child->ArrangeChildren();
    }
}

void MControl::Relayout()
{
    if (!IsLive())
        return;
    if (parent == nullptr)
        ComputeMinimalSizes();
    ArrangeChildren();
}

void MControl::GoLive()
{
    Root().live = true;
    Root().Relayout();
}

std::uint8_t MControl::GetStretch() const
{
    std::uint8_t stretch = 0;
    for (const auto& each : layouts)
        stretch |= each->GetStretch();
    // Without layouts inside, the control itself takes what it is given.
    return layouts.empty() ? 3 : stretch;
}
