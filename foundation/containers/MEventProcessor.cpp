// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MEventProcessor.h"

#include <new>

MEventProcessor::~MEventProcessor()
{
    const MSynchronizerGuard guard(EventLock());
    while (!events.IsEmpty())
        events[0]->ClearPending();
}

void MEventProcessor::Process()
{
    while (MEventBase* event = TakeFirst())
        event->Dispatch();
}

int MEventProcessor::PendingCount()
{
    const MSynchronizerGuard guard(EventLock());
    return events.Count();
}

void MEventProcessor::Dequeue(MEventBase& event) noexcept
{
    for (int index = events.Count() - 1; index >= 0; --index)
        if (events[index] == &event)
            events.Delete(index);
}

MEventBase* MEventProcessor::TakeFirst()
{
    const MSynchronizerGuard guard(EventLock());
    if (events.IsEmpty())
        return nullptr;
    MEventBase* first = events[0];
    events.Delete(0);
    return first;
}

MEventProcessor& GlobalEventProcessor()
{
    // Never destroyed, like the event lock.
    alignas(MEventProcessor) static unsigned char storage[sizeof(MEventProcessor)];
    static MEventProcessor& processor = *new (storage) MEventProcessor;
    return processor;
}
