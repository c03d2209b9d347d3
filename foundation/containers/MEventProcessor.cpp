// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MEventProcessor.h"

#include <new>

MEventProcessor::~MEventProcessor()
{
    const MSynchronizerGuard guard(EventLock());
    isClosed = true;
    while (!waiting.IsEmpty())
        waiting.First()->ForgetPosts(*this);
}

void MEventProcessor::Process()
{
    for (;;)
    {
        std::unique_ptr<MEventCall> call;
        {
            const MSynchronizerGuard guard(EventLock());
            if (waiting.IsEmpty())
                return;
            call = waiting.First()->Dispatch(*this);
            waiting.TakeFirst();
        }
        call->Run();
    }
}

int MEventProcessor::PendingCount()
{
    const MSynchronizerGuard guard(EventLock());
    return waiting.Count();
}

void MEventProcessor::Dequeue(MEventBase& event) noexcept
{
    waiting.RemoveIf([&event](const MEventBase* entry) { return entry == &event; });
}

MEventProcessor& GlobalEventProcessor()
{
    // Never destroyed, like the event lock.
    alignas(MEventProcessor) static unsigned char storage[sizeof(MEventProcessor)];
    static MEventProcessor& processor = *new (storage) MEventProcessor;
    return processor;
}
