// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "plugin/contract/ChangeListener.h"

class AutomationList;
class AutomationUpdateRequestThread;

/// Brings what was marked in the feed to the thread of an open editor.
///
/// While an editor listens, a thread looks every 100 ms whether something is new and calls `wake`, which has
/// Deliver run on the GUI thread. Without a listener no thread exists, and marking is all that happens.
class EditorUpdates
{
public:
    explicit EditorUpdates(const ChangeFeed& feed);
    ~EditorUpdates();
    EditorUpdates(const EditorUpdates&) = delete;
    EditorUpdates& operator=(const EditorUpdates&) = delete;

    /// `wake` is called on the request thread, and again until Deliver has run. What was marked before isn't
    /// new. Thread: GUI.
    void StartListening(std::function<void()> wake);
    void StopListening();
    /// Runs `UpdateEditor` of each adapter that has a changed parameter, once. False when nothing is new.
    /// Afterwards News tells of all that was. Thread: GUI.
    bool Deliver(const AutomationList& adapters);
    const ChangeListener& News() const { return listener; }

private:
    ChangeListener listener;
    std::unique_ptr<AutomationUpdateRequestThread> thread;
};
