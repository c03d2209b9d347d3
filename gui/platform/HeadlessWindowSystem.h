// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <queue>

#include "gui/controls/MWindow.h"
#include "gui/controls/MWindowSystem.h"

/// A window system without any display, for tests and pictures: windows lie on an endless desktop, mouse and
/// keyboard are played by whoever tests, and time stands still until told to go on.
class HeadlessWindowSystem : public MWindowSystem
{
public:
    explicit HeadlessWindowSystem(MSize screenSize = { 1920, 1080 }) : screen(screenSize) {}

    // Played from outside. Places are those of the window.
    void MoveMouse(MWindow& window, std::int32_t x, std::int32_t y);
    /// @param button  0 left, 1 right, 2 middle. A window under a pop-up is pressed through it, as on a
    /// screen.
    void PressMouse(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t button = 0);
    void ReleaseMouse(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t button = 0);
    void Click(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t button = 0);
    void DoubleClick(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t button = 0);
    /// @return  whether somebody took it
    bool Wheel(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t delta);
    /// Down and up again; true when the first was taken.
    bool Key(MWindow& window, std::int32_t key, std::uint8_t modifiersNow = 0);
    void Type(MWindow& window, const MString& text);
    bool Drop(MWindow& window, std::int32_t x, std::int32_t y, const std::vector<MString>& files);
    void Resize(MWindow& window, std::int32_t width, std::int32_t height);
    void SetHeldKeys(std::uint8_t modifiersNow) { modifiers = modifiersNow; }
    /// Timers that become due run, one after the other.
    void PassTime(std::uint64_t milliseconds);
    /// To be done when somebody waits for messages, one at a time: how a modal window is answered.
    void Later(std::function<void()> action) { actions.push(std::move(action)); }
    /// What a user would see of the window now.
    const MBitmap& Look(MWindow& window);
    /// How many pixels have been painted since the last call.
    std::int64_t TakePaintedPixels();
    MStdCursor CursorOf(const MWindow& window) const;
    MString TitleOf(const MWindow& window) const;
    std::int32_t WindowCount() const { return static_cast<std::int32_t>(windows.size()); }
    std::int32_t WakeUps() const { return wakeUps; }
    const std::vector<MString>& DraggedFiles() const { return draggedFiles; }

    void Initialize() override {}
    void Shutdown() override { windows.clear(); }
    MRectangle GetWorkArea(std::int32_t x, std::int32_t y) const override;
    double GetMonitorScale(std::int32_t, std::int32_t) const override { return 1; }
    void CreateWindow(MWindow& root, Kind kind, Handle owner) override;
    void DestroyWindow(MWindow& root) override;
    Handle GetHandle(const MWindow& root) const override;
    void SetParentWindow(MWindow& root, Handle parent) override;
    void DetachFromParent(MWindow& root) override;
    Handle GetParentWindow(const MWindow& root) const override;
    bool IsVisible(const MWindow& root) const override;
    void SetTitle(MWindow& root, const MString& title) override;
    void SetIcon(MWindow&, const MBitmap&) override {}
    void SetTopmost(MWindow&, bool) override {}
    void SetPositionOnly(MWindow& root, std::int32_t x, std::int32_t y) override;
    void SetSizeOnly(MWindow& root, std::int32_t width, std::int32_t height) override;
    void SetSizeLimits(MWindow&, std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {}
    MRectangle GetScreenRect(const MWindow& root) const override;
    void MoveTo(MWindow& root, std::int32_t x, std::int32_t y) override;
    void ShowAt(MWindow& root, const MRectangle& rectangle) override;
    void Show(MWindow& root) override;
    void Hide(MWindow& root) override;
    bool IsMaximized(const MWindow&) const override { return false; }
    bool IsMinimized(const MWindow&) const override { return false; }
    void Minimize(MWindow&) override {}
    void Activate(MWindow& root) override;
    void TakeKeyboard(MWindow& root) override { Activate(root); }
    void ReturnKeyboard(MWindow& root) override;
    bool HasKeyboard(const MWindow& root) const override { return active == &root; }
    MWindow* GetActiveRoot() const override { return active; }
    bool ProcessPendingMessages() override;
    /// False when nothing is left that could happen.
    bool WaitForMessages(std::int32_t milliseconds) override;
    int GetDescriptor() const override { return -1; }
    void SendForceExecuteEvents() override { ++wakeUps; }
    void InvalidateWindow(MWindow& root, const MRectangle& part) override;
    void UpdateWindow(MWindow& root) override;
    void SetCapture(MWindow&) override {}
    void ReleaseCapture(MWindow&) override {}
    void SetCursor(MWindow& root, MStdCursor cursor) override;
    MPoint GetCursorScreen() const override { return pointer; }
    MPoint GetCursorClient(const MWindow& root) const override;
    void SetCursorClient(MWindow& root, std::int32_t x, std::int32_t y) override;
    std::uint8_t GetModifiers() const override { return modifiers; }
    void SetClipboardText(const MString& text) override { clipboard = text; }
    MString GetClipboardText() override { return clipboard; }
    void StartDrag(MWindow&, const std::vector<MString>& files, const MString&) override
    {
        draggedFiles = files;
    }
    void SetDrawnCursor(MStdCursor, const MBitmap&, MPoint) override {}
    std::uint64_t GetTime() const override { return time; }

private:
    struct Window
    {
        Handle handle = 0;
        Handle owner = 0;
        MRectangle place;
        MString title;
        MStdCursor cursor = MStdCursor::Arrow;
        bool isChild = false;
        bool shown = false;
        bool invalid = false;
    };

    Window* Find(const MWindow& root);
    const Window* Find(const MWindow& root) const;
    MControlEvent MouseEvent(MWindow& window, MEventCode code, std::int32_t x, std::int32_t y);

    std::map<const MWindow*, Window> windows;
    std::queue<std::function<void()>> actions;
    std::vector<MString> draggedFiles;
    MString clipboard;
    MSize screen;
    MPoint pointer;
    MWindow* active = nullptr;
    std::uint64_t time = 1000;
    Handle lastHandle = 0;
    std::int64_t paintedPixels = 0;
    std::int32_t wakeUps = 0;
    std::uint8_t modifiers = 0;
    std::uint8_t buttons = 0;
};
