// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/containers/MEventBase.h"
#include "foundation/text/MString.h"
#include "gui/controls/LayoutOptions.h"
#include "gui/controls/MLayout.h"
#include "gui/controls/MStyle.h"

/// A piece of the screen: the whole interface is one tree of them. A control owns its children and the
/// layouts that place them; no control that stands in a layout has a position of its own. Sizes and places
/// are pixels, places count from the parent's client area. Thread: GUI.
class MControl : public MEventTarget
{
public:
    MControl() = default;
    ~MControl() override;

    /// Takes the child over; it paints above those before it.
    MControl& AddChild(std::unique_ptr<MControl> child);
    template <typename Child, typename... Arguments>
    Child& Make(Arguments&&... arguments)
    {
        return static_cast<Child&>(AddChild(std::make_unique<Child>(std::forward<Arguments>(arguments)...)));
    }
    std::unique_ptr<MControl> RemoveChild(MControl& child);
    const std::vector<std::unique_ptr<MControl>>& Children() const { return children; }
    MControl* Parent() const { return parent; }
    MControl& Root();
    const MControl& Root() const;

    /// A further layout, inside of those before it.
    template <typename Layout, typename... Arguments>
    Layout& MakeLayout(Arguments&&... arguments)
    {
        layouts.push_back(std::make_unique<Layout>(*this, std::forward<Arguments>(arguments)...));
        return static_cast<Layout&>(*layouts.back());
    }
    const std::vector<std::unique_ptr<MLayout>>& Layouts() const { return layouts; }

    std::int32_t X() const { return place[0]; }
    std::int32_t Y() const { return place[1]; }
    std::int32_t Width() const { return Size(Axis::X); }
    std::int32_t Height() const { return Size(Axis::Y); }
    std::int32_t Size(Axis axis) const { return sizes[static_cast<std::size_t>(axis)]; }
    std::int32_t MinimalSize(Axis axis) const { return minimal[static_cast<std::size_t>(axis)]; }
    /// The size that it takes now: the collapsed one where it is collapsed and has one.
    std::int32_t PresentSize(Axis axis) const;
    /// In the root's picture.
    std::int32_t AbsoluteX() const { return absolute[0]; }
    std::int32_t AbsoluteY() const { return absolute[1]; }
    /// What the style leaves of the control for its children.
    MRectangle ClientRectangle() const;

    bool IsVisible() const { return visible; }
    void SetVisible(bool shown);
    bool IsCollapsed() const { return collapsed; }
    void SetCollapsed(bool nowCollapsed);
    void SetCollapsedSize(MSize size);
    /// Not below the minimum; lays the children out where the tree is live.
    virtual void SetSize(std::int32_t width, std::int32_t height);
    void SetPosition(std::int32_t x, std::int32_t y);
    void SetMinimalClientSize(MSize size);

    /// The least size in which everything below has its own, from the bottom up. For controls that detect it;
    /// the size grows with it.
    void ComputeMinimalSize();
    /// Grows to what the children take now; a root lays itself out anew.
    virtual void AdaptSize();
    /// After a change of content: a root computes all anew, any other control places its children again.
    /// Nothing before the tree is live.
    void Relayout();
    /// Makes the tree below live: computes it and places everything.
    void GoLive();
    bool IsLive() const { return Root().live; }
    /// Bit 1: it can use more width; bit 2: more height.
    std::uint8_t GetStretch() const;

    /// The minimum of a plastic control along an axis follows from the other size, without borders.
    void FitPlastic(Axis axis, std::int32_t crossSize);
    /// For the layout that places it.
    void SetPlace(Axis axis, std::int32_t first, std::int32_t size);

    const MStyle* Style() const;
    void SetStyle(const MStyle* newStyle) { style = newStyle; }
    /// Of the style; 0 without one.
    std::int32_t GetSpacing(std::int32_t index) const;

    MString id;
    LayoutOptions layout;
    bool overlay = false;   ///< the parent's scrolling doesn't move it
    bool detectsMinimalSize = true;
    bool adaptsSize = false;
    bool sizesToChildren = false;   ///< children outside of layouts count, too

protected:
    /// The least size of its own content.
    virtual MSize ContentMinimum() const { return {}; }
    /// Of a plastic control's client area along an axis, from the other size. Throws MException "Service
    /// \"{0}\" is not implemented." in a control that can't be plastic.
    virtual std::int32_t ComputePlasticSize(Axis axis, std::int32_t crossClientSize) const;
    /// The control has another size or place.
    virtual void OnPlaced() {}

private:
    void ComputeMinimalSizes();
    SizeSums SumsOfLayouts(const MLayout::SizeComputer& computer) const;
    void ArrangeChildren();
    void UpdateAbsolute();
    MStyle::Frame Frame() const;

    std::vector<std::unique_ptr<MControl>> children;
    std::vector<std::unique_ptr<MLayout>> layouts;
    MControl* parent = nullptr;
    const MStyle* style = nullptr;   // of a root
    std::int32_t place[2]{};
    std::int32_t sizes[2]{};
    std::int32_t minimal[2]{};
    std::int32_t absolute[2]{};
    MSize minimalClient;
    MSize collapsedSize;
    bool visible = true;
    bool collapsed = false;
    bool live = false;
};
