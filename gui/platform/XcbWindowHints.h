// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MString.h"
#include "gui/controls/MStyle.h"
#include "gui/controls/MWindowSystem.h"
#include "gui/platform/XcbConnection.h"

/// What a window tells the desktop about itself, and asks of it. Sources: ICCCM 2.0 section 4, Extended
/// Window Manager Hints 1.5. Thread: GUI.
class XcbWindowHints
{
public:
    XcbWindowHints(XcbConnection& connection, xcb_window_t hintedWindow)
        : display(connection), window(hintedWindow)
    {
    }

    /// Kind, protocols, process.
    /// @param owner  any window of the program that this one stays above; XCB_NONE: none
    void Introduce(MWindowSystem::Kind kind, xcb_window_t owner);
    void SetTitle(const MString& title);
    void SetIcon(const MBitmap& icon);
    /// 0 or below: no limit.
    void SetSizes(MSize smallest, MSize largest);
    /// Asks the desktop where the window is shown, otherwise notes it for then.
    void SetState(XcbAtom state, bool on, bool isShown);
    bool HasState(XcbAtom state);
    /// The desktop has the window as an icon.
    bool IsIconic();
    void Minimize();
    /// Brings it forward and gives it the keyboard; false where the desktop can't.
    bool Activate();

    /// The window of a program that the desktop manages, from one somewhere inside of it.
    static xcb_window_t TopLevelOf(XcbConnection& display, xcb_window_t inner);

private:
    XcbConnection& display;
    xcb_window_t window;
};
