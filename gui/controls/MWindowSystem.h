// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "foundation/text/MString.h"
#include "gui/controls/MControlEvent.h"
#include "gui/controls/StyleNames.h"
#include "gui/painting/MBitmap.h"

class MWindow;

/// What a platform does for the windows of this module. It knows windows only, never what is in them: what
/// happens to a window it tells by the window's messages (MWindow::MouseMessage and its like), each of them
/// within a MWindows::MessageScope. A window that has no platform window yet, or whose platform window
/// died, is passed over without a word. Places and sizes are pixels of the screen. Thread: GUI, but where
/// another is told.
class MWindowSystem
{
public:
    /// A window of the platform: an X11 window's id, for instance. 0: none.
    using Handle = std::uint64_t;
    enum class Kind : std::uint8_t
    {
        Normal,   ///< with the desktop's frame and title
        Dialog,   ///< above its owner
        PopUp,   ///< a menu, list or tooltip: no frame, no place in the task bar, never takes the keyboard
        Child   ///< in a host's window
    };

    virtual ~MWindowSystem() = default;

    /// Connects. Throws MException "Could not connect to the display.", with what is missing, where windows
    /// can't be had; the module goes on without. Does nothing when connected.
    virtual void Initialize() = 0;
    /// After the last window has closed: nothing stays open, nothing runs.
    virtual void Shutdown() = 0;

    /// Of the monitor at a point, without the desktop's bars.
    virtual MRectangle GetWorkArea(std::int32_t x, std::int32_t y) const = 0;
    /// Of the monitor at a point, as the desktop has it set; 1 where that is unknown.
    virtual double GetMonitorScale(std::int32_t x, std::int32_t y) const = 0;

    /// @param owner  that it stays above; for a child the host's window; 0: none
    virtual void CreateWindow(MWindow& root, Kind kind, Handle owner) = 0;
    virtual void DestroyWindow(MWindow& root) = 0;
    virtual Handle GetHandle(const MWindow& root) const = 0;
    virtual void SetParentWindow(MWindow& root, Handle parent) = 0;
    virtual void DetachFromParent(MWindow& root) = 0;
    virtual Handle GetParentWindow(const MWindow& root) const = 0;
    virtual bool IsVisible(const MWindow& root) const = 0;
    virtual void SetTitle(MWindow& root, const MString& title) = 0;
    virtual void SetIcon(MWindow& root, const MBitmap& icon) = 0;
    virtual void SetTopmost(MWindow& root, bool topmost) = 0;
    virtual void SetPositionOnly(MWindow& root, std::int32_t x, std::int32_t y) = 0;
    virtual void SetSizeOnly(MWindow& root, std::int32_t width, std::int32_t height) = 0;
    /// What the desktop lets a user make of it; 0 or below: no limit.
    virtual void SetSizeLimits(MWindow& root, std::int32_t minWidth, std::int32_t minHeight,
                               std::int32_t maxWidth, std::int32_t maxHeight) = 0;
    virtual MRectangle GetScreenRect(const MWindow& root) const = 0;
    virtual void MoveTo(MWindow& root, std::int32_t x, std::int32_t y) = 0;
    virtual void ShowAt(MWindow& root, const MRectangle& rectangle) = 0;
    virtual void Show(MWindow& root) = 0;
    virtual void Hide(MWindow& root) = 0;
    virtual bool IsMaximized(const MWindow& root) const = 0;
    virtual bool IsMinimized(const MWindow& root) const = 0;
    virtual void Minimize(MWindow& root) = 0;
    /// Brings it forward and asks for the keyboard.
    virtual void Activate(MWindow& root) = 0;
    /// Takes the keyboard for a window in a host's, and gives it back; a window of the desktop keeps its own.
    virtual void TakeKeyboard(MWindow& root) = 0;
    virtual void ReturnKeyboard(MWindow& root) = 0;
    virtual bool HasKeyboard(const MWindow& root) const = 0;
    /// The root that has the keyboard, null for none of ours.
    virtual MWindow* GetActiveRoot() const = 0;

    /// What has come, at most 1024 messages, without waiting; returns early after more than 10 in a row that
    /// only repaint, time or wake. Then runs due timers and queued events. False: the connection is lost.
    virtual bool ProcessPendingMessages() = 0;
    /// Waits for messages, a timer, or a wake-up, at most so long, and then does as above.
    /// @param milliseconds  negative: for ever
    virtual bool WaitForMessages(std::int32_t milliseconds) = 0;
    /// Readable when there is something to process; -1 for none.
    virtual int GetDescriptor() const = 0;
    /// Lets the GUI thread run its queue soon. Thread: any.
    virtual void SendForceExecuteEvents() = 0;

    /// A part of the window has to be shown anew: one PaintMessage follows for all of them.
    virtual void InvalidateWindow(MWindow& root, const MRectangle& part) = 0;
    /// Shows what was invalidated at once.
    virtual void UpdateWindow(MWindow& root) = 0;
    virtual void SetCapture(MWindow& root) = 0;
    virtual void ReleaseCapture(MWindow& root) = 0;
    virtual void SetCursor(MWindow& root, MStdCursor cursor) = 0;
    virtual MPoint GetCursorScreen() const = 0;
    virtual MPoint GetCursorClient(const MWindow& root) const = 0;
    virtual void SetCursorClient(MWindow& root, std::int32_t x, std::int32_t y) = 0;
    /// MModifier
    virtual std::uint8_t GetModifiers() const = 0;

    virtual void SetClipboardText(const MString& text) = 0;
    /// Empty where there is none, or the other program doesn't answer within a second.
    virtual MString GetClipboardText() = 0;
    /// Begins to drag files or a text out of a window, with the left button down. The result comes later,
    /// and doesn't matter.
    virtual void StartDrag(MWindow& root, const std::vector<MString>& files, const MString& text) = 0;

    /// Of the cursors that the desktop has none for.
    virtual void SetDrawnCursor(MStdCursor cursor, const MBitmap& image, MPoint hot) = 0;

    /// Milliseconds of a clock that never goes back.
    virtual std::uint64_t GetTime() const
    {
        return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                              std::chrono::steady_clock::now().time_since_epoch())
                                              .count());
    }
};
