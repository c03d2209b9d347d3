// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/platform/XcbWindowList.h"

/// Who gets the mouse while it is outside of our windows. While a button is held the server itself gives
/// all to the window that was pressed; what has to be asked for is the rest: a capture without a button,
/// and a press anywhere on the screen while a pop-up is open. Thread: GUI.
class XcbPointerGrab
{
public:
    XcbPointerGrab(XcbConnection& connection, XcbWindowList& allWindows)
        : display(connection), windows(allWindows)
    {
    }

    void SetCapture(XcbWindow& window);
    void ReleaseCapture(const XcbWindow& window);
    /// The window that events of all of ours go to; null for none.
    XcbWindow* Capturing() const { return windows.Find(captured); }
    /// Pop-ups have opened or closed, or a window has gone.
    void Update();
    /// The pop-up that hears of presses outside; XCB_NONE for none.
    xcb_window_t PopUp() const { return popUp; }
    /// The server wouldn't tell of presses outside: another program holds the mouse.
    bool IsRefused() const { return isRefused; }
    void NoteButtons(bool areHeld) { buttonsAreHeld = areHeld; }
    bool AreButtonsHeld() const { return buttonsAreHeld; }

private:
    XcbWindow* TopPopUp() const;
    bool Grab(xcb_window_t window, bool alsoToOthersOfOurs);
    void Ungrab();

    XcbConnection& display;
    XcbWindowList& windows;
    xcb_window_t captured = XCB_NONE;
    xcb_window_t popUp = XCB_NONE;
    bool holdsPointer = false;
    bool isRefused = false;
    bool buttonsAreHeld = false;
};
