// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/platform/XcbConnection.h"

/// The monitors as they are when asked. Thread: GUI.
class XcbMonitors
{
public:
    explicit XcbMonitors(XcbConnection& connection) : display(connection) {}

    /// Of the monitor at a point, or the one nearest to it, without the desktop's bars.
    MRectangle WorkArea(MPoint point);
    /// Of the text's resolution that the desktop has set, over 96 dots an inch; 1 where none is set. Within
    /// 0.5 to 4.
    double Scale();
    /// The value of "Xft.dpi:" in the resources of a screen over 96, as above.
    static double ScaleOfResources(const std::string& resources);

private:
    std::vector<MRectangle> Areas();

    XcbConnection& display;
};
