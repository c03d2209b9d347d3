// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "gui/controls/MWindow.h"
#include "gui/controls/MWindowSystem.h"
#include "gui/controls/TimerQueue.h"

class MControlInvalidatorThread;

/// All windows of the module, and what they share: the style, the platform, timers, the queue of other
/// threads' work. One for a module, made with its first editor and gone with the module. Thread: GUI, but
/// where another is told.
class MWindows
{
public:
    /// The one of the module; null until there is one.
    static MWindows* Get();

    explicit MWindows(std::unique_ptr<MWindowSystem> windowSystem);
    ~MWindows();
    MWindows(const MWindows&) = delete;
    MWindows& operator=(const MWindows&) = delete;

    MWindowSystem& Platform() { return *platform; }
    MStyle* Style() const { return style.get(); }
    /// Every window is laid out and painted anew.
    void SetStyle(std::unique_ptr<MStyle> newStyle);

    /// Around the handling of one message of the platform. When the outermost ends, queued events run and
    /// what was to be deleted is.
    class MessageScope
    {
    public:
        explicit MessageScope(MWindows& windows);
        ~MessageScope();
        MessageScope(const MessageScope&) = delete;
        MessageScope& operator=(const MessageScope&) = delete;

    private:
        MWindows& owner;
    };
    bool IsHandlingMessage() const { return scopes > 0; }

    /// The control goes when no event runs any more.
    void DeleteLater(std::unique_ptr<MControl> control);
    /// Lets the GUI thread run queued events soon. Thread: any.
    void RequestUpdate();

    void BeginBusy();
    void EndBusy();
    bool IsBusy() const { return busyCount > 0; }

    /// Mouse events but moves are swallowed until then, so that the click that closed a pop-up does nothing
    /// else.
    void LockClicksOut(std::int32_t milliseconds);
    bool SwallowsClick();

    TimerQueue& Timers() { return timers; }

    const std::vector<MWindow*>& OpenWindows() const { return windows; }
    /// The one above, of those that close on a click outside.
    MWindow* TopPopUp() const;
    /// Closes the pop-ups that don't belong to the press in `pressed` (null: in another program's window).
    /// True: the press is used up by that.
    bool ClosePopUps(MWindow* pressed);
    /// For windows: from opening to closing.
    void Add(MWindow& window);
    void Remove(MWindow& window);
    /// A control is going.
    void Forget(const MControl& control);

    MControlInvalidatorThread& Invalidators() { return *invalidators; }

private:
    class MForceExecuteEventsThread;

    void EndOfMessage();
    void StopThreads();

    std::unique_ptr<MWindowSystem> platform;
    std::unique_ptr<MStyle> style;
    std::unique_ptr<MControlInvalidatorThread> invalidators;
    std::unique_ptr<MForceExecuteEventsThread> forcer;
    std::vector<MWindow*> windows;
    std::vector<std::unique_ptr<MControl>> leaving;
    TimerQueue timers;
    std::int32_t scopes = 0;
    std::int32_t busyCount = 0;
    std::uint64_t clickLockoutUntil = 0;
    std::atomic<bool> needsUpdate{ false };
};
