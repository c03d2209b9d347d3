// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>

#include "gui/controls/StyleNames.h"
#include "gui/painting/MBitmap.h"
#include "gui/platform/XcbConnection.h"

/// The pointer's pictures: the desktop's own by name, otherwise drawn ones. Each is made when it is first
/// wanted. Thread: GUI.
class XcbCursors
{
public:
    struct Drawn
    {
        MBitmap image;
        MPoint hot;
    };
    using DrawnCursors = std::map<MStdCursor, Drawn>;

    /// @param drawnCursors  may gain some later
    XcbCursors(XcbConnection& connection, const DrawnCursors& drawnCursors);
    ~XcbCursors();
    XcbCursors(const XcbCursors&) = delete;
    XcbCursors& operator=(const XcbCursors&) = delete;

    /// XCB_NONE, the parent window's, where there is no picture of it.
    xcb_cursor_t Get(MStdCursor cursor);
    /// A new drawing of it is there.
    void Forget(MStdCursor cursor);

private:
    xcb_cursor_t Make(MStdCursor cursor);
    xcb_cursor_t MakeHidden();
    xcb_cursor_t MakeDrawn(const Drawn& drawing);
    xcb_render_pictformat_t FormatWithAlpha();

    XcbConnection& display;
    const DrawnCursors& drawn;
    xcb_cursor_context_t* theme = nullptr;
    std::map<MStdCursor, xcb_cursor_t> made;
};
