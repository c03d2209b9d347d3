// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "gui/controls/MWindowSystem.h"
#include "gui/platform/GuiDescriptor.h"
#include "gui/platform/XcbEventDispatcher.h"

/// Windows on an X11 display. Making one touches no display; Initialize, or the first window, connects. A
/// server that goes away takes the windows with it and nothing else: ProcessPendingMessages tells it, and
/// the next window tries to connect anew. At rest nothing is sent and nothing runs. Thread: GUI, but
/// SendForceExecuteEvents.
class XcbWindowSystem : public MWindowSystem
{
public:
    XcbWindowSystem();
    ~XcbWindowSystem() override;

    void Initialize() override;
    void Shutdown() override;
    MRectangle GetWorkArea(std::int32_t x, std::int32_t y) const override;
    double GetMonitorScale(std::int32_t x, std::int32_t y) const override;

    void CreateWindow(MWindow& root, Kind kind, Handle owner) override;
    void DestroyWindow(MWindow& root) override;
    Handle GetHandle(const MWindow& root) const override;
    void SetParentWindow(MWindow& root, Handle parent) override;
    void DetachFromParent(MWindow& root) override;
    Handle GetParentWindow(const MWindow& root) const override;
    bool IsVisible(const MWindow& root) const override;
    void SetTitle(MWindow& root, const MString& title) override;
    void SetIcon(MWindow& root, const MBitmap& icon) override;
    void SetTopmost(MWindow& root, bool topmost) override;
    void SetPositionOnly(MWindow& root, std::int32_t x, std::int32_t y) override;
    void SetSizeOnly(MWindow& root, std::int32_t width, std::int32_t height) override;
    void SetSizeLimits(MWindow& root, std::int32_t minWidth, std::int32_t minHeight, std::int32_t maxWidth,
                       std::int32_t maxHeight) override;
    MRectangle GetScreenRect(const MWindow& root) const override;
    void MoveTo(MWindow& root, std::int32_t x, std::int32_t y) override;
    void ShowAt(MWindow& root, const MRectangle& rectangle) override;
    void Show(MWindow& root) override;
    void Hide(MWindow& root) override;
    bool IsMaximized(const MWindow& root) const override;
    bool IsMinimized(const MWindow& root) const override;
    void Minimize(MWindow& root) override;
    void Activate(MWindow& root) override;
    void TakeKeyboard(MWindow& root) override;
    void ReturnKeyboard(MWindow& root) override;
    bool HasKeyboard(const MWindow& root) const override;
    MWindow* GetActiveRoot() const override;

    bool ProcessPendingMessages() override;
    bool WaitForMessages(std::int32_t milliseconds) override;
    int GetDescriptor() const override;
    void SendForceExecuteEvents() override;

    void InvalidateWindow(MWindow& root, const MRectangle& part) override;
    void UpdateWindow(MWindow& root) override;
    void SetCapture(MWindow& root) override;
    void ReleaseCapture(MWindow& root) override;
    void SetCursor(MWindow& root, MStdCursor cursor) override;
    MPoint GetCursorScreen() const override;
    MPoint GetCursorClient(const MWindow& root) const override;
    void SetCursorClient(MWindow& root, std::int32_t x, std::int32_t y) override;
    std::uint8_t GetModifiers() const override;

    void SetClipboardText(const MString& text) override;
    MString GetClipboardText() override;
    void StartDrag(MWindow& root, const std::vector<MString>& files, const MString& text) override;
    void SetDrawnCursor(MStdCursor cursor, const MBitmap& image, MPoint hot) override;

    /// Bytes that were sent to the server since it was connected to: what rest costs can be measured by it.
    std::uint64_t BytesSent() const;

private:
    class Processing;   // one level of ProcessPendingMessages
    enum class Message : std::uint8_t
    {
        None,
        Ordinary,
        Repainting   // or waking, or timing: what may go on for ever by itself
    };

    XcbWindow* Find(const MWindow& root) const;
    /// Sends what was asked for, unless the end of the messages' processing does.
    void Finish() const;
    XcbReply<xcb_query_pointer_reply_t> QueryPointer(xcb_window_t window) const;
    Message ProcessNext();
    Message PaintNext();
    Message RunTimers();
    void ArmTimer();
    void LoseAll();
    void Leave();

    GuiDescriptor descriptor;
    XcbCursors::DrawnCursors drawnCursors;
    std::unique_ptr<XcbLibraries> libraries;
    std::unique_ptr<XcbSession> session;
    std::unique_ptr<XcbEventDispatcher> dispatcher;
    std::int32_t depth = 0;   // of ProcessPendingMessages within each other
    bool wasWoken = false;
    bool leavesAfterwards = false;
};
