// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbPointerGrab.h"

#include "gui/controls/MWindows.h"

bool XcbPointerGrab::Grab(xcb_window_t window, bool alsoToOthersOfOurs)
{
    constexpr std::uint16_t events = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                     XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                                     XCB_EVENT_MASK_LEAVE_WINDOW;
    const auto reply = display.Await(display->xcb_grab_pointer_reply,
                                     display->xcb_grab_pointer(display, alsoToOthersOfOurs, window, events,
                                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                                               XCB_NONE, XCB_NONE, XCB_CURRENT_TIME));
    const bool succeeded = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    holdsPointer = holdsPointer || succeeded;
    return succeeded;
}

void XcbPointerGrab::Ungrab()
{
    if (!holdsPointer)
        return;
    holdsPointer = false;
    display->xcb_ungrab_pointer(display, XCB_CURRENT_TIME);
    display.Flush();
}

void XcbPointerGrab::SetCapture(XcbWindow& window)
{
    captured = window.Id();
    if (!buttonsAreHeld && popUp == XCB_NONE)
        Grab(captured, false);
}

void XcbPointerGrab::ReleaseCapture(const XcbWindow& window)
{
    if (captured != window.Id())
        return;
    captured = XCB_NONE;
    if (popUp == XCB_NONE)
        Ungrab();
}

XcbWindow* XcbPointerGrab::TopPopUp() const
{
    const std::vector<MWindow*>& open = MWindows::Get()->OpenWindows();
    for (auto each = open.rbegin(); each != open.rend(); ++each)
        if (XcbWindow* window = windows.Find(**each);
            window != nullptr && window->IsShown() && (*each)->closesOutside)
            return window;
    return nullptr;
}

void XcbPointerGrab::Update()
{
    if (windows.Find(captured) == nullptr)
        captured = XCB_NONE;
    const XcbWindow* top = TopPopUp();
    const xcb_window_t wanted = top != nullptr ? top->Id() : XCB_NONE;
    if (wanted == popUp)
        return;
    popUp = wanted;
    isRefused = popUp != XCB_NONE && !Grab(popUp, true);
    if (popUp == XCB_NONE)
        Ungrab();
}
