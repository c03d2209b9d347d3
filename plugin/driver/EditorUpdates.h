// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "foundation/threads/MLock.h"
#include "foundation/threads/MRelaxed.h"

class AutomationAdapter;
class AutomationUpdateRequestThread;

/// Carries "this parameter moved" from whatever thread moved it to the thread of an open editor.
///
/// While an editor listens, a thread looks every 100 ms whether something waits and calls `wake`, which has
/// Deliver run on the GUI thread. Without a listener nothing is collected and no thread exists.
class EditorUpdates
{
public:
    EditorUpdates();
    ~EditorUpdates();
    EditorUpdates(const EditorUpdates&) = delete;
    EditorUpdates& operator=(const EditorUpdates&) = delete;

    /// `wake` is called on the request thread. GUI thread.
    void StartListening(std::function<void()> wake);
    void StopListening();
    /// Puts an adapter on the list, once. Any thread.
    void Request(AutomationAdapter& changed);
    /// Runs `UpdateEditor` of everything that waits. GUI thread.
    void Deliver();
    /// Forgets what waits: the adapters are about to go.
    void Forget();
    bool HasPending();

private:
    MLock pendingEditorUpdatesLock;
    std::vector<AutomationAdapter*> pendingEditorUpdates;
    MRelaxed<bool> listening = false;
    std::unique_ptr<AutomationUpdateRequestThread> thread;
};
