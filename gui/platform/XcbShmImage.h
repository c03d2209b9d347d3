// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "gui/painting/MBitmap.h"
#include "gui/platform/XcbConnection.h"

/// Brings parts of a picture into a window: through memory that the server shares with us where it is on
/// this machine, otherwise with the bytes in the request. The memory holds no more than has to be shown at
/// once and is kept between pictures. Thread: GUI.
class XcbShmImage
{
public:
    XcbShmImage(XcbConnection& connection, xcb_window_t shownIn);
    ~XcbShmImage();
    XcbShmImage(const XcbShmImage&) = delete;
    XcbShmImage& operator=(const XcbShmImage&) = delete;

    /// Not while IsBusy. Parts outside of the picture are cut off.
    void Show(const MBitmap& picture, const std::vector<MRectangle>& parts);
    /// The server is still reading; an event of type CompletionEvent with this drawable tells the end.
    bool IsBusy() const { return busy; }
    void Completed() { busy = false; }
    /// Waits until the server has read.
    void Finish();
    /// The window is gone, and its memory at the server with it.
    void Abandon() { window = 0; }

private:
    bool Reserve(std::size_t bytes);
    void Release();
    void CopyRows(std::uint32_t* target, const MBitmap& picture, const MRectangle& part) const;
    void ShowShared(const MBitmap& picture, const std::vector<MRectangle>& parts);
    void ShowSent(const MBitmap& picture, const MRectangle& part);

    XcbConnection& display;
    xcb_window_t window;
    xcb_gcontext_t context;
    xcb_shm_seg_t segment = 0;
    std::uint32_t* shared = nullptr;
    std::size_t sharedBytes = 0;
    bool canShare;
    bool busy = false;
    std::vector<std::uint32_t> sent;   // of ShowSent
};
