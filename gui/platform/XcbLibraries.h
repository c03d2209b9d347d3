// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>
#include <xcb/xcb_cursor.h>
#include <xcb/xcbext.h>
#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include "gui/painting/SharedLibrary.h"
#include "gui/platform/XcbFunctions.h"
#include "gui/platform/XkbProtocol.h"

/// The functions of the X libraries, each under its own name. They are opened when the first window is
/// wanted, and only for this module: a host's own copies stay as they are. Thread: GUI.
class XcbLibraries
{
public:
    /// Throws MException "Could not connect to the display. ..." with the library that is missing. Cursors
    /// from the desktop's theme and drawn ones are done without where their libraries are missing.
    XcbLibraries();

    bool HasThemeCursors() const { return xcb_cursor_context_new != nullptr; }
    bool HasRender() const { return xcb_render_create_cursor != nullptr; }

#define TONALIGN_FUNCTION(name) decltype(&::name) name = nullptr;
    TONALIGN_XCB(TONALIGN_FUNCTION)
    TONALIGN_XCB_SHM(TONALIGN_FUNCTION)
    TONALIGN_XCB_RANDR(TONALIGN_FUNCTION)
    TONALIGN_XCB_XKB(TONALIGN_FUNCTION)
    TONALIGN_XKBCOMMON(TONALIGN_FUNCTION)
    TONALIGN_XKBCOMMON_X11(TONALIGN_FUNCTION)
    TONALIGN_XCB_CURSOR(TONALIGN_FUNCTION)
    TONALIGN_XCB_RENDER(TONALIGN_FUNCTION)
#undef TONALIGN_FUNCTION

    // By these extensions are known.
    xcb_extension_t* xcb_shm_id = nullptr;
    xcb_extension_t* xcb_randr_id = nullptr;
    xcb_extension_t* xcb_render_id = nullptr;

private:
    SharedLibrary xcb{ "libxcb.so.1" };
    SharedLibrary shm{ "libxcb-shm.so.0" };
    SharedLibrary randr{ "libxcb-randr.so.0" };
    SharedLibrary xkb{ "libxcb-xkb.so.1" };
    SharedLibrary xkbcommon{ "libxkbcommon.so.0" };
    SharedLibrary xkbcommonX11{ "libxkbcommon-x11.so.0" };
    SharedLibrary cursor{ "libxcb-cursor.so.0" };
    SharedLibrary render{ "libxcb-render.so.0" };
};
