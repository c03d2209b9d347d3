// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/containers/MEventBase.h"
#include "foundation/text/MString.h"
#include "gui/controls/ControlClicks.h"
#include "gui/controls/LayoutOptions.h"
#include "gui/controls/MControlEvent.h"
#include "gui/controls/MLayout.h"
#include "gui/controls/MStyle.h"

class MAttribute;
class MWindow;

/// A piece of the screen: the whole interface is one tree of them. A control owns its children and the
/// layouts that place them; no control that stands in a layout has a position of its own. Sizes and places
/// are pixels, places count from the parent's client area. Thread: GUI.
class MControl : public MEventTarget
{
    friend class EventRouting;
    friend class MWindow;

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
    /// Takes all children and layouts out. The children are deleted when no event runs any more.
    void RemoveContent();
    const std::vector<std::unique_ptr<MControl>>& Children() const { return children; }
    MControl* Parent() const { return parentControl; }
    MControl& Root();
    const MControl& Root() const;
    /// The root where that is a window, otherwise null.
    MWindow* Window() const;
    bool IsAncestorOf(const MControl& other) const;
    /// The first below, or itself, with this id; null for none.
    MControl* Find(const MString& wanted);

    /// A further layout, inside of those before it.
    template <typename Layout, typename... Arguments>
    Layout& MakeLayout(Arguments&&... arguments)
    {
        layouts.push_back(std::make_unique<Layout>(*this, std::forward<Arguments>(arguments)...));
        return static_cast<Layout&>(*layouts.back());
    }
    const std::vector<std::unique_ptr<MLayout>>& Layouts() const { return layouts; }

    std::int32_t X() const { return ownPlace[0]; }
    std::int32_t Y() const { return ownPlace[1]; }
    std::int32_t Width() const { return Size(Axis::X); }
    std::int32_t Height() const { return Size(Axis::Y); }
    std::int32_t Size(Axis axis) const { return sizes[static_cast<std::size_t>(axis)]; }
    std::int32_t MinimalSize(Axis axis) const { return minimal[static_cast<std::size_t>(axis)]; }
    /// The size that it takes now: the collapsed one where it is collapsed and has one.
    std::int32_t PresentSize(Axis axis) const;
    /// In the root's picture.
    std::int32_t AbsoluteX() const { return absolute[0]; }
    std::int32_t AbsoluteY() const { return absolute[1]; }
    /// In the root's picture, whether or not all of it can be seen.
    MRectangle AbsoluteRectangle() const;
    /// What of the control the ancestors let be seen, in its own places.
    MRectangle VisibleRectangle() const;
    MRectangle OwnRectangle() const;
    /// Moves all children that aren't overlays.
    void SetScroll(std::int32_t x, std::int32_t y);
    std::int32_t ScrollX() const { return scroll[0]; }
    std::int32_t ScrollY() const { return scroll[1]; }
    /// What the style leaves of the control for its children.
    MRectangle ClientRectangle() const;

    bool IsVisible() const { return visible; }
    /// With all its ancestors.
    bool IsShown() const;
    void SetVisible(bool shown);
    bool IsEnabled() const { return enabled; }
    /// With all its ancestors: a control in a disabled one can't be used.
    bool IsUsable() const;
    void SetEnabled(bool nowEnabled);
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
    virtual std::uint8_t GetStretch() const;

    /// The minimum of a plastic control along an axis follows from the other size, without borders.
    void FitPlastic(Axis axis, std::int32_t crossSize);
    /// For the layout that places it.
    void SetPlace(Axis axis, std::int32_t first, std::int32_t size);

    /// That of the root, or else the window system's; null where there is none.
    MStyle* Style() const;
    /// Of a root.
    void SetStyle(MStyle* newStyle) { ownStyle = newStyle; }
    /// Of the style; 0 without one.
    std::int32_t GetSpacing(std::int32_t index) const;

    /// Asks for a repaint of the control or of a part of it. Nothing while it isn't shown. Thread: GUI.
    void Invalidate();
    void Invalidate(const MRectangle& part);
    /// Paints the control without its children. `drawer` has its corner at 0, 0.
    virtual void Paint(MDrawer& drawer);
    /// Above its children.
    virtual void PaintAbove(MDrawer&) {}
    /// Bits of DrawState.
    virtual std::uint16_t GetDrawState() const;

    /// The entry of events into the tree below; true when somebody took it. No lock is held meanwhile.
    bool SendEvent(const MControlEvent& event);
    /// Its own reaction: true takes the event. The base moves the focus with Tab and arrows, and closes the
    /// window with Escape where that is told to.
    virtual bool OnEvent(const MControlEvent& event);
    /// Before `child`, which may be null, gets an event: true takes it.
    virtual bool PreviewEvent(MControl* child, const MControlEvent& event);
    /// An event that nobody in the tree took, for those in the root's list.
    virtual bool GlobalEvent(const MControlEvent&) { return false; }
    virtual void OnMouseEnter();
    virtual void OnMouseLeave();
    /// The mouse was taken away from it.
    virtual void OnCaptureEnd() {}
    virtual void OnTimer() {}
    /// Files were dropped on it; false: not taken.
    virtual bool OnDrop(const std::vector<MString>& /*files*/, std::int32_t /*x*/, std::int32_t /*y*/)
    {
        return false;
    }
    /// A text was dropped on it; false: not taken.
    virtual bool OnDropText(const MString& /*text*/, std::int32_t /*x*/, std::int32_t /*y*/) { return false; }
    /// While files or a text that it accepts are held over it, and when they leave.
    virtual void OnDragOver(bool /*isOver*/) {}
    virtual MStdCursor GetCursor(std::int32_t x, std::int32_t y) const;
    /// Asks the control, and those above it, whether the window may close.
    virtual bool CanClose() { return true; }

    void SetFocus();
    bool HasFocus() const;
    /// The mouse's events come here until ReleaseCapture, wherever it is.
    void Capture();
    void ReleaseCapture();
    bool HasCapture() const;
    /// The topmost enabled child there that mouse events go to, null for none.
    MControl* ChildAt(std::int32_t x, std::int32_t y) const;
    bool IsHovered() const { return hovered; }
    /// A button went down on it and is still down.
    bool IsPressed() const { return pressed != 0; }

    /// Takes the attributes of its element in a layout document; sizes there are units at 100 %. Missing ones
    /// change nothing. Throws MException for names that there aren't.
    virtual void LoadXml(const MAttribute& node);
    /// Its children have been made from the document, too.
    virtual void OnLoaded() {}
    /// Units of the style at 100 % in its pixels.
    std::int32_t PixelsOf(std::int32_t units) const;

    /// Clicks and double clicks on it; a release outside is none.
    ControlClicks& Clicks() { return clicks; }

    MString id;
    MString caption;
    MString help;   ///< as rich text
    MControlType controlType = MControlType::Control;
    MStdFont font = MStdFont::Normal;
    MCaptionType captionType = MCaptionType::Normal;
    LayoutOptions layout;
    bool tabStop = false;   ///< Tab and clicks give it the keyboard
    bool receivesMouse = true;   ///< otherwise what lies behind it gets the events
    bool opaque = false;   ///< it paints every pixel of its rectangle, so that nothing behind has to
    bool acceptsFiles = false;
    std::uint16_t shownState = 0;   ///< DrawState that it shows besides its own: for pictures of all states
    bool acceptsText = false;   ///< dropped on it
    bool usesParentHelp = false;
    bool showsHelp = true;
    bool savesState = false;   ///< that it is collapsed, with the window's place and size
    bool savesRatio = false;   ///< its share in a layout, with them
    bool collapsable = false;
    MStdCursor cursor = MStdCursor::Inherited;
    bool overlay = false;   ///< the parent's scrolling doesn't move it
    bool detectsMinimalSize = true;
    bool adaptsSize = false;
    bool plasticAdaptsSize = false;   ///< a plastic control that grows with its content
    bool sizesToChildren = false;   ///< children outside of layouts count, too

protected:
    /// The least size of its own content.
    virtual MSize ContentMinimum() const { return {}; }
    /// Of a plastic control's client area along an axis, from the other size. Throws MException "Service
    /// \"{0}\" is not implemented." in a control that can't be plastic.
    virtual std::int32_t ComputePlasticSize(Axis axis, std::int32_t crossClientSize) const;
    /// The control has another size or place.
    virtual void OnPlaced() {}
    /// The tree has become live: there is a style now.
    virtual void Realize() {}
    /// It was enabled or disabled, itself or by an ancestor.
    virtual void OnEnabled() {}

private:
    virtual MWindow* AsWindow() { return nullptr; }
    void ComputeMinimalSizes();
    SizeSums SumsOfLayouts(const MLayout::SizeComputer& computer) const;
    void ArrangeChildren();
    void UpdateAbsolute();
    void UpdateAbsoluteFrom(const MControl& above);
    MStyle::Frame Frame() const;
    void RealizeAll();
    void LoadSizes(const MAttribute& node);
    void LoadLayoutOptions(const MAttribute& node);
    MRectangle ChildRectangle(const MControl& child) const;

    std::vector<std::unique_ptr<MControl>> children;
    std::vector<std::unique_ptr<MLayout>> layouts;
    MControl* parentControl = nullptr;
    MStyle* ownStyle = nullptr;   // of a root
    std::int32_t ownPlace[2]{};
    std::int32_t sizes[2]{};
    std::int32_t minimal[2]{};
    std::int32_t absolute[2]{};
    std::int32_t scroll[2]{};
    MSize minimalClient;
    MSize collapsedSize;
    MControl* focusChild = nullptr;   // on the way to the one with the keyboard
    ControlClicks clicks;
    bool visible = true;
    bool enabled = true;
    bool collapsed = false;
    bool live = false;
    bool realized = false;
    bool hovered = false;
    std::uint8_t pressed = 0;   // a bit for each button that went down here
};
