// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MControlEvent.h"

class MWindow;

/// The way of an event through a tree: from the root down to the control under the mouse, or to the one that
/// has the keyboard, and up again until somebody takes it. A control's reactions may hide, disable and move
/// controls; to delete one they use MWindows::DeleteLater.
class EventRouting
{
public:
    static bool Send(MControl& control, const MControlEvent& event);
    static MControl* ChildAt(const MControl& control, std::int32_t x, std::int32_t y);

private:
    static bool SendMouse(MControl& control, const MControlEvent& event);
    static bool SendKey(MControl& control, const MControlEvent& event);
    static bool SendToCapture(MControl& control, const MControlEvent& event);
    static bool React(MControl& control, const MControlEvent& event);
    static bool Click(MControl& control, const MControlEvent& event);
    static bool OfferToStyle(MControl& control, const MControlEvent& event);
    static bool OfferToEverybody(MWindow& window, const MControlEvent& event);
};
