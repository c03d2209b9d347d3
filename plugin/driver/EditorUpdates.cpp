// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/EditorUpdates.h"

#include "control/parameters/AutomationList.h"
#include "foundation/containers/MThread.h"

/// Looks for news until it is stopped.
class AutomationUpdateRequestThread : public MThread
{
public:
    AutomationUpdateRequestThread(const ChangeListener& editor, std::function<void()> wakeFunction)
        : watched(editor), wake(std::move(wakeFunction))
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
            if (watched.IsBehind())
                wake();
            wakeSemaphore.Acquire(periodMs);
        }
        return 0;
    }

private:
    const ChangeListener& watched;
    std::function<void()> wake;
};

EditorUpdates::EditorUpdates(const ChangeFeed& feed) : listener(feed) {}

EditorUpdates::~EditorUpdates()
{
    StopListening();
}

void EditorUpdates::StartListening(std::function<void()> wake)
{
    StopListening();
    listener.Drain();
    thread = std::make_unique<AutomationUpdateRequestThread>(listener, std::move(wake));
    thread->Start();
}

void EditorUpdates::StopListening()
{
    thread.reset();
}

bool EditorUpdates::Deliver(const AutomationList& adapters)
{
    if (!listener.Drain())
        return false;
    AutomationAdapter* last = nullptr;
    for (const std::int32_t index : listener.Parameters())
    {
        std::int32_t sub = 0;
        AutomationAdapter* const changed = adapters.Find(index, sub);
        // In the order of the list, so that the targets of one adapter stand side by side.
        if (changed != nullptr && changed != last)
            changed->UpdateEditor();
        last = changed;
    }
    return true;
}
