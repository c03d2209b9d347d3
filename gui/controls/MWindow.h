// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "foundation/containers/MEventHandler.h"
#include "foundation/threads/MERWLock.h"
#include "gui/controls/DirtyRegion.h"
#include "gui/controls/MControl.h"
#include "gui/controls/MWindowSystem.h"

/// A key that does something in a window, wherever its keyboard is.
struct MWindowShortcut
{
    MKeyboardShortcut keys;
    bool whenDown = false;   ///< acts when the key goes down; otherwise when it comes up
    std::function<bool()> act;   ///< false: not taken
};

struct MOnWindowCloseParams : MEventParams
{
    std::int32_t result = 0;
};

/// The root of a tree that has a window of the platform: of its own on the desktop, or inside of a host's.
/// It owns the picture that the tree is painted on. Making one touches no display; opening does.
/// Thread: GUI.
class MWindow : public MControl
{
    friend class EventRouting;

public:
    MWindow();
    ~MWindow() override;

    // Life
    /// Lays itself out and shows. Throws what the platform throws where there is no display.
    /// @param owner  stays below; null: none
    void Open(MWindowSystem::Kind kind, MWindow* owner = nullptr);
    /// In a host's window.
    void AttachToParent(MWindowSystem::Handle hostWindow);
    void Detach();
    bool IsOpen() const { return open; }
    /// Hides it and lets the platform's window go. The object stays; see MWindows::DeleteLater.
    void Close();
    /// Asks CanClose, then ends a modal window with `result` or closes another one. True: it closes.
    bool RequestClose(std::int32_t result = 0);
    /// Blocks `owner` until it closes. Returns at once; OnClosed tells the rest.
    void OpenModal(MWindow* owner);
    /// Blocks `owner`, and returns what closed it.
    std::int32_t ShowModal(MWindow* owner);
    /// Ends a modal window; not 0.
    void EndModal(std::int32_t result);
    std::int32_t ModalResult() const { return modalResult; }
    bool IsModal() const { return modal; }
    /// The innermost window that blocks this one, null for none.
    MWindow* BlockedBy() const;
    MEvent<MOnWindowCloseParams>& OnClosed() { return closed; }

    // Keyboard and mouse
    MControl* FocusOwner() const { return focusOwner; }
    /// Null lets nobody have it.
    void SetFocusOwner(MControl* control);
    /// To the next control that takes the keyboard, or the one before.
    void MoveFocus(bool forward);
    bool ShowsFocusRing() const { return showsFocusRing; }
    /// In a host's window: gives the keyboard back to it, as after something was typed.
    void ReturnKeyboard();
    MControl* CaptureOwner() const { return captureOwner; }
    /// Null lets the mouse go.
    void SetCaptureOwner(MControl* control);
    /// The innermost control under the mouse.
    MControl* HoverLeaf() const { return hoverLeaf; }
    void AddShortcut(MWindowShortcut shortcut) { shortcuts.push_back(std::move(shortcut)); }
    /// Keyboard and wheel events that nobody took are offered to it.
    void AddGlobalKeyHandler(MControl& control) { globalKeyHandlers.push_back(&control); }
    void SetTimer(MControl& control, std::int32_t milliseconds);

    // What the platform tells
    /// True: taken, and no one else should get it.
    bool MouseMessage(const MControlEvent& event);
    /// A press, which becomes a double click if the one before was near in place and time.
    bool PressMessage(const MControlEvent& event, std::uint64_t milliseconds);
    void LeaveMessage();
    void CaptureLostMessage();
    bool KeyMessage(const MControlEvent& event);
    void FocusMessage(bool focused, MControl* other = nullptr);
    /// The platform's window has another size.
    void SizeMessage(std::int32_t width, std::int32_t height);
    void CloseMessage();
    /// The platform's window is gone.
    void LostMessage();
    enum class Dragged : std::uint8_t
    {
        Files,
        Text
    };
    void DragMessage(std::int32_t x, std::int32_t y, bool isOver, Dragged what = Dragged::Files);
    bool CanDropAt(std::int32_t x, std::int32_t y, Dragged what = Dragged::Files) const;
    bool DropMessage(const std::vector<MString>& files, std::int32_t x, std::int32_t y);
    bool DropTextMessage(const MString& text, std::int32_t x, std::int32_t y);
    /// Paints what is invalid; what has to be shown of Picture() then stands in Shown(). An exception of a
    /// control is logged; the rest is painted.
    void PaintMessage();
    const MBitmap& Picture() const { return picture; }
    const std::vector<MRectangle>& Shown() const { return shownAreas; }

    // Tree and picture
    /// Of the picture.
    void InvalidateArea(const MRectangle& area);
    /// A control goes: forgets all that points to it or below.
    void Forget(const MControl& leaving);
    /// A control is hidden or disabled: it and what lies below loses keyboard and mouse.
    void Withdraw(const MControl& control);
    /// Asks the platform, or the host, for the size that the layout needs, once for each.
    void AskForSize();
    void LoadXml(const MAttribute& node) override;
    bool PreviewEvent(MControl* child, const MControlEvent& event) override;
    MStdCursor GetCursor(std::int32_t x, std::int32_t y) const override;
    /// Where the window stands for: which edges and corners are under a point, bits of MAlignment.
    std::uint8_t GetResizeZone(std::int32_t x, std::int32_t y) const;
    MERWLock& WindowLock() { return windowLock; }
    /// "collapsed" for controls that save it, "windowposx" and its like where the flags below say so.
    void SaveState(MAttribute& node);
    void LoadState(MAttribute& node);
    /// The style is another one: whatever took sizes of it takes them anew.
    virtual void OnStyleChanged() {}
    /// Opens the help of a control. The base does nothing.
    virtual void ShowHelp(MControl&) {}
    /// After the control under the mouse, or its stillness, has changed.
    virtual void OnHoverChanged() {}
    /// A window in a host's asks for its size here. False: it takes the size itself.
    std::function<bool(std::int32_t width, std::int32_t height)> requestSize;

    std::int32_t resizeBorder = 0;   ///< of windows that draw their own frame
    std::int32_t moveZoneHeight = 0;   ///< at the top, of the same
    bool closesOnEscape = false;
    bool closesOutside = false;   ///< a press anywhere else closes it
    bool movesToScreenCentre = false;
    bool autoSavesState = false;   ///< with whatever owns it, when it closes
    bool savesPosition = false;
    bool savesSize = false;
    bool showsHelpOnF1 = true;
    bool resizableX = false;
    bool resizableY = false;
    std::int32_t maxWidth = 0;   ///< 0: none
    std::int32_t maxHeight = 0;

protected:
    /// The platform's window is there, or gone.
    virtual void OnOpened() {}
    virtual void OnClosing() {}

private:
    MWindow* AsWindow() override { return this; }

    struct Drag   // of the window itself
    {
        std::uint8_t zone = 0;   // 0: the whole window moves
        MPoint start;   // of the pointer on the screen
        MRectangle window;
    };
    struct Press
    {
        std::uint64_t time = 0;
        MPoint place;
        std::int32_t button = -1;
    };

    void Start(MWindowSystem::Kind kind, MWindow* owner, MWindowSystem::Handle handle);
    bool AcceptsMouse(const MControlEvent& event);
    void SetHover(MControl* leaf);
    void FollowPointer(const MControlEvent& event);
    MControl* LeafAt(std::int32_t x, std::int32_t y);
    void SetFocusRing(bool shows);
    /// Of what has the keyboard, where that is shown.
    MRectangle FocusRing() const;
    bool BeginDrag(const MControlEvent& event);
    void FollowDrag();
    bool TakeShortcut(const MControlEvent& event);
    void PaintArea(const MRectangle& area);
    void PaintTree(MControl& control, const MRectangle& area);
    void PaintOne(MControl& control, const MRectangle& area, void (MControl::*paint)(MDrawer&));
    MControl& CoveringControl(const MRectangle& area);
    MControl* DropTargetAt(std::int32_t x, std::int32_t y, Dragged what) const;
    MPoint FirstPlace(MWindow* owner);

    MBitmap picture;
    DirtyRegion dirty;
    std::vector<MRectangle> shownAreas;
    MERWLock windowLock;
    MEvent<MOnWindowCloseParams> closed;
    std::vector<MWindowShortcut> shortcuts;
    std::vector<MControl*> globalKeyHandlers;
    MControl* focusOwner = nullptr;
    MControl* captureOwner = nullptr;
    MControl* hoverLeaf = nullptr;
    MControl* dropTarget = nullptr;
    MWindow* ownerWindow = nullptr;   // that this one stays above
    MWindow* blocker = nullptr;   // the modal window that has to be answered first
    std::int32_t modalResult = 0;
    MRectangle paintedRing;   // as it stands in the picture
    std::vector<std::int32_t> takenKeys;   // whose going down somebody took
    std::int32_t awaitedKey = 0;   // that does something when it comes up
    Drag drag;
    Press lastPress;
    MSize platformSize;   // that it has
    MSize askedSize;   // that was asked for
    bool dragging = false;
    bool modal = false;
    bool open = false;
    bool attached = false;   // to a host's window
    bool showsFocusRing = false;
};
