// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/platform/XcbClipboard.h"
#include "gui/platform/XcbCursors.h"
#include "gui/platform/XcbDragSource.h"
#include "gui/platform/XcbDropTarget.h"
#include "gui/platform/XcbKeyboard.h"
#include "gui/platform/XcbMonitors.h"
#include "gui/platform/XcbPointerGrab.h"
#include "gui/platform/XcbWindowList.h"

/// All that lives from connecting to a server until it is left, or lost. Thread: GUI.
struct XcbSession
{
    /// Throws MException "Could not connect to the display. ...".
    XcbSession(const XcbLibraries& libraries, GuiDescriptor& descriptor,
               const XcbCursors::DrawnCursors& drawnCursors)
        : display(libraries, descriptor), messenger(MakeMessenger(display)), keyboard(display),
          cursors(display, drawnCursors), monitors(display), grab(display, windows),
          selections(display, messenger), clipboard(display, selections, messenger),
          dropTarget(display, windows, messenger), dragSource(display, selections)
    {
    }

    XcbConnection display;
    /// Never seen: what programs copy to each other goes through its properties.
    xcb_window_t messenger;
    XcbWindowList windows;
    XcbKeyboard keyboard;
    XcbCursors cursors;
    XcbMonitors monitors;
    XcbPointerGrab grab;
    XcbSelectionServer selections;
    XcbClipboard clipboard;
    XcbDropTarget dropTarget;
    XcbDragSource dragSource;

private:
    static xcb_window_t MakeMessenger(XcbConnection& display)
    {
        const xcb_window_t window = display->xcb_generate_id(display);
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        display->xcb_create_window(display, 0, window, display.RootWindow(), -1, -1, 1, 1, 0,
                                   XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                                   &events);
        return window;
    }
};
