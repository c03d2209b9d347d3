// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/EditorUpdates.h"

#include <algorithm>

#include "control/parameters/AutomationAdapter.h"
#include "foundation/containers/MThread.h"

/// Looks for pending editor updates until it is stopped.
class AutomationUpdateRequestThread : public MThread
{
public:
    AutomationUpdateRequestThread(EditorUpdates& watched, std::function<void()> wakeFunction)
        : updates(watched), wake(std::move(wakeFunction))
    {
    }
    ~AutomationUpdateRequestThread() override
    {
        // Before the members go that the body uses.
        Stop();
        Wait(InfiniteTimeout);
    }

    std::int32_t Thread() override
    {
        constexpr std::uint32_t periodMs = 100;
        while (!IsCancelled())
        {
            if (updates.HasPending())
                wake();
            wakeSemaphore.Acquire(periodMs);
        }
        return 0;
    }

private:
    EditorUpdates& updates;
    std::function<void()> wake;
};

EditorUpdates::EditorUpdates() = default;
EditorUpdates::~EditorUpdates()
{
    StopListening();
}

void EditorUpdates::StartListening(std::function<void()> wake)
{
    StopListening();
    thread = std::make_unique<AutomationUpdateRequestThread>(*this, std::move(wake));
    thread->Start();
    listening = true;
}

void EditorUpdates::StopListening()
{
    listening = false;
    thread.reset();
    Forget();
}

void EditorUpdates::Request(AutomationAdapter& changed)
{
    if (!listening)
        return;
    const MSynchronizerGuard guard(pendingEditorUpdatesLock);
    if (std::find(pendingEditorUpdates.begin(), pendingEditorUpdates.end(), &changed) ==
        pendingEditorUpdates.end())
        pendingEditorUpdates.push_back(&changed);
}

void EditorUpdates::Deliver()
{
    std::vector<AutomationAdapter*> waiting;
    {
        const MSynchronizerGuard guard(pendingEditorUpdatesLock);
        waiting.swap(pendingEditorUpdates);
    }
    for (AutomationAdapter* adapter : waiting)
        adapter->UpdateEditor();
}

void EditorUpdates::Forget()
{
    const MSynchronizerGuard guard(pendingEditorUpdatesLock);
    pendingEditorUpdates.clear();
}

bool EditorUpdates::HasPending()
{
    const MSynchronizerGuard guard(pendingEditorUpdatesLock);
    return !pendingEditorUpdates.empty();
}
