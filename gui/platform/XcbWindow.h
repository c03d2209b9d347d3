// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/DirtyRegion.h"
#include "gui/controls/MWindow.h"
#include "gui/platform/XEmbed.h"
#include "gui/platform/XcbShmImage.h"
#include "gui/platform/XcbWindowHints.h"

/// One window of the server, which shows the picture of one root. All that it has there goes with it.
/// Thread: GUI.
class XcbWindow
{
public:
    using Kind = MWindowSystem::Kind;

    /// @param owner  that it stays above; for a child the host's window; XCB_NONE: none
    XcbWindow(XcbConnection& connection, MWindow& shownRoot, Kind windowKind, xcb_window_t owner);
    ~XcbWindow();
    XcbWindow(const XcbWindow&) = delete;
    XcbWindow& operator=(const XcbWindow&) = delete;

    xcb_window_t Id() const { return id; }
    MWindow& Root() const { return root; }
    Kind WindowKind() const { return kind; }
    XcbWindowHints& Hints() { return hints; }
    XEmbed& Embedding() { return embedding; }
    /// The server has destroyed it already.
    void Abandon();

    // Place
    xcb_window_t Parent() const { return parent; }
    void SetParent(xcb_window_t newParent);
    /// The server has told.
    void NoteParent(xcb_window_t newParent);
    MRectangle ScreenRectangle() const;
    MSize Size() const { return size; }
    void Move(MPoint onScreen);
    void Resize(MSize newSize);
    /// A change of the size that the server tells. False: nothing new, or older than what was asked for last.
    bool NoteSize(const xcb_configure_notify_event_t& event);

    // Seen or not
    void Show();
    void Hide();
    /// It was told to be; the desktop may have it as an icon nevertheless.
    bool IsShown() const { return shown; }
    bool IsMapped() const { return mapped; }
    void NoteMapped(bool isMapped) { mapped = isMapped; }

    // Keyboard
    bool HasKeyboard() const { return hasKeyboard; }
    void NoteKeyboard(bool has) { hasKeyboard = has; }
    void TakeKeyboard();
    void ReturnKeyboard();
    /// Brought forward, as soon as it can be seen.
    void Activate();
    /// Activate was called before the window could be seen.
    bool TakeLateActivation();

    // Picture
    void Invalidate() { needsPainting = true; }
    void Expose(const MRectangle& part) { exposed.Add(part); }
    bool CanPaint() const { return mapped && !image.IsBusy() && (needsPainting || !exposed.IsEmpty()); }
    /// Lets the root paint what is invalid and shows it. The root may close its window meanwhile, which is
    /// what `isStillThere` tells.
    void Paint(const std::function<bool()>& isStillThere);
    XcbShmImage& Image() { return image; }
    void SetCursor(xcb_cursor_t cursor);

private:
    xcb_window_t Create(MSize firstSize) const;
    void Focus(xcb_window_t target);
    MPoint InParent(MPoint onScreen) const;

    XcbConnection& display;
    MWindow& root;
    Kind kind;
    xcb_window_t parent;
    MSize size;
    xcb_window_t id;
    XcbShmImage image;
    XcbWindowHints hints;
    XEmbed embedding;
    DirtyRegion exposed;   // of what was painted before
    std::uint32_t newestSizeRequest = 0;
    xcb_cursor_t shownCursor = XCB_NONE;
    bool needsPainting = true;
    bool shown = false;
    bool mapped = false;
    bool hasKeyboard = false;
    bool activatesWhenMapped = false;
    bool isGone = false;
};
