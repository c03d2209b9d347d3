// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEventBase.h"
#include "foundation/containers/MEventQueue.h"

/// The queue between those who post events and the thread that handles them: handlers run on the thread
/// that calls Process, in the order of posting across all events. What is queued when it dies is forgotten;
/// it must not die while it processes.
class MEventProcessor : public MEventTarget
{
public:
    ~MEventProcessor() override;
    /// Dispatches what is queued, and what the handlers queue meanwhile. Thread: the one on which handlers
    /// may run. An exception of a handler passes; what is left waits for the next call.
    void Process();
    /// How many posts wait. Thread: any.
    int PendingCount();

    // For events, under the event lock.
    /// Whether it dies: nothing may be queued any more.
    bool IsClosed() const noexcept { return isClosed; }
    /// Throws std::bad_alloc; after it Enqueue doesn't.
    void Reserve() { waiting.Reserve(); }
    void Enqueue(MEventBase& event) { waiting.Add(&event); }
    /// Forgets every entry of the event.
    void Dequeue(MEventBase& event) noexcept;

private:
    MEventQueue<MEventBase*> waiting;   // repeatedly: one entry for each post
    bool isClosed = false;
};

/// The processor of the module.
MEventProcessor& GlobalEventProcessor();
