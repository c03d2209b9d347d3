// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MString.h"
#include "gui/platform/XcbSelectionReader.h"
#include "gui/platform/XcbSelectionServer.h"

/// The text that the user has copied, in this program or another. Thread: GUI.
class XcbClipboard
{
public:
    XcbClipboard(XcbConnection& connection, XcbSelectionServer& server, xcb_window_t ownWindow);

    /// For pasting by keys, and by the middle button of those programs that do so.
    void SetText(const MString& text);
    /// What was copied, or else what is selected in some program; empty where that doesn't answer within a
    /// second.
    MString GetText();
    /// Lets the desktop keep what was copied here, where it has a program for that: when the last window
    /// closes nobody here answers any more. Once for each text.
    void HandOver();

private:
    static constexpr std::int32_t PatienceMilliseconds = 1000;

    /// Waits as long as something comes; meanwhile others are answered, for one of them may wait for us.
    bool Read(xcb_atom_t selection, xcb_atom_t target);

    XcbConnection& display;
    XcbSelectionServer& selections;
    XcbSelectionReader reader;
    xcb_window_t window;
    bool isHandedOver = false;
};
