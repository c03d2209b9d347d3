// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MControl.h"

#include <algorithm>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "gui/controls/MWindow.h"
#include "gui/controls/MWindows.h"

MControl::~MControl()
{
    if (MWindow* window = Window())
        window->Forget(*this);
    else if (MWindows* all = MWindows::Get())
        all->Forget(*this);
    // Layouts point to children, children to their layouts: those of this control go first.
    layouts.clear();
}

MControl& MControl::AddChild(std::unique_ptr<MControl> child)
{
    child->parentControl = this;
    children.push_back(std::move(child));
    if (IsLive())
        children.back()->RealizeAll();
    return *children.back();
}

std::unique_ptr<MControl> MControl::RemoveChild(MControl& child)
{
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&child](const auto& each) { return each.get() == &child; });
    if (found == children.end())
        return nullptr;
    child.Invalidate();
    if (MWindow* window = Window())
        window->Forget(child);
    if (child.layout.layout != nullptr)
        child.layout.layout->RemoveControl(child);
    std::unique_ptr<MControl> taken = std::move(*found);
    children.erase(found);
    taken->parentControl = nullptr;
    return taken;
}

void MControl::RemoveContent()
{
    layouts.clear();
    MWindows* windows = MWindows::Get();
    while (!children.empty())
    {
        children.back()->layout.layout = nullptr;
        std::unique_ptr<MControl> taken = RemoveChild(*children.back());
        if (windows != nullptr)
            windows->DeleteLater(std::move(taken));
    }
}

MControl& MControl::Root()
{
    return parentControl == nullptr ? *this : parentControl->Root();
}

const MControl& MControl::Root() const
{
    return parentControl == nullptr ? *this : parentControl->Root();
}

MWindow* MControl::Window() const
{
    return const_cast<MControl&>(Root()).AsWindow();
}

bool MControl::IsAncestorOf(const MControl& other) const
{
    const MControl* each = &other;
    while (each != nullptr && each != this)
        each = each->parentControl;
    return each != nullptr;
}

MControl* MControl::Find(const MString& wanted)
{
    if (id == wanted)
        return this;
    for (const auto& child : children)
        if (MControl* found = child->Find(wanted))
            return found;
    return nullptr;
}

MStyle* MControl::Style() const
{
    if (MStyle* own = Root().ownStyle)
        return own;
    const MWindows* windows = MWindows::Get();
    return windows != nullptr ? windows->Style() : nullptr;
}

std::int32_t MControl::GetSpacing(std::int32_t index) const
{
    MStyle* used = Style();
    return used != nullptr ? used->GetSpacing(index) : 0;
}

MStyle::Frame MControl::Frame() const
{
    MStyle* used = Style();
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

MRectangle MControl::OwnRectangle() const
{
    return { 0, 0, PresentSize(Axis::X) - 1, PresentSize(Axis::Y) - 1 };
}

MRectangle MControl::AbsoluteRectangle() const
{
    return OwnRectangle().Moved(absolute[0], absolute[1]);
}

MRectangle MControl::ChildRectangle(const MControl& child) const
{
    return child.OwnRectangle().Moved(child.absolute[0] - absolute[0], child.absolute[1] - absolute[1]);
}

MRectangle MControl::VisibleRectangle() const
{
    MRectangle seen = AbsoluteRectangle();
    for (const MControl* each = parentControl; each != nullptr; each = each->parentControl)
        seen = seen.Intersection(each->AbsoluteRectangle());
    return seen.IsEmpty() ? MRectangle{} : seen.Moved(-absolute[0], -absolute[1]);
}

bool MControl::IsShown() const
{
    const MControl* each = this;
    while (each->visible && each->parentControl != nullptr)
        each = each->parentControl;
    return each->visible;
}

bool MControl::IsUsable() const
{
    const MControl* each = this;
    while (each->enabled && each->parentControl != nullptr)
        each = each->parentControl;
    return each->enabled;
}

void MControl::SetVisible(bool shown)
{
    if (visible == shown)
        return;
    Invalidate();   // what it leaves behind
    visible = shown;
    MWindow* window = Window();
    if (!shown && window != nullptr)
        window->Withdraw(*this);
    // What no layout places and nothing is sized by moves nothing else.
    if (layout.layout != nullptr || (parentControl != nullptr && parentControl->sizesToChildren))
        Root().Relayout();
    Invalidate();
}

void MControl::SetEnabled(bool nowEnabled)
{
    if (enabled == nowEnabled)
        return;
    enabled = nowEnabled;
    MWindow* window = Window();
    if (!enabled && window != nullptr)
        window->Withdraw(*this);
    OnEnabled();
    Invalidate();
}

void MControl::SetScroll(std::int32_t x, std::int32_t y)
{
    if (scroll[0] == x && scroll[1] == y)
        return;
    scroll[0] = x;
    scroll[1] = y;
    UpdateAbsolute();
    Invalidate();
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
    Invalidate();
    ownPlace[0] = x;
    ownPlace[1] = y;
    UpdateAbsolute();
    Invalidate();
}

void MControl::SetSize(std::int32_t width, std::int32_t height)
{
    Invalidate();
    sizes[0] = std::max(width, minimal[0]);
    sizes[1] = std::max(height, minimal[1]);
    if (IsLive())
        ArrangeChildren();
    Invalidate();
}

void MControl::SetPlace(Axis axis, std::int32_t first, std::int32_t size)
{
    ownPlace[static_cast<std::size_t>(axis)] = first;
    if (!collapsed)
        sizes[static_cast<std::size_t>(axis)] = std::max(0, size);
}

void MControl::UpdateAbsoluteFrom(const MControl& above)
{
    // Places count from the parent's corner: its layouts have its client rectangle to give out.
    for (const std::size_t i : { std::size_t{ 0 }, std::size_t{ 1 } })
        absolute[i] = ownPlace[i] + above.absolute[i] + (overlay ? 0 : above.scroll[i]);
}

void MControl::UpdateAbsolute()
{
    if (parentControl != nullptr)
        UpdateAbsoluteFrom(*parentControl);
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
    if (parentControl == nullptr)
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
        child->UpdateAbsoluteFrom(*this);
        if (child->visible)
            child->ArrangeChildren();
    }
}

void MControl::Relayout()
{
    if (!IsLive())
        return;
    if (parentControl == nullptr)
        ComputeMinimalSizes();
    ArrangeChildren();
    Invalidate();
}

void MControl::GoLive()
{
    MControl& root = Root();
    root.live = true;
    root.RealizeAll();
    root.Relayout();
}

void MControl::RealizeAll()
{
    if (!realized)
    {
        realized = true;
        Realize();
    }
    // By number: what is realized may make children of its own.
    for (std::size_t i = 0; i < children.size(); ++i)
        children[i]->RealizeAll();
}

std::uint8_t MControl::GetStretch() const
{
    std::uint8_t stretch = 0;
    for (const auto& each : layouts)
        stretch |= each->GetStretch();
    // Without layouts inside, the control itself takes what it is given.
    return layouts.empty() ? 3 : stretch;
}
