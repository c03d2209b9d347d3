// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEventBase.h"

/// The queue between those who post events and the thread that handles them: handlers run on the thread
/// that calls Process, in the order of posting across all events.
class MEventProcessor : public MEventTarget
{
public:
    ~MEventProcessor() override;
    /// Dispatches what is queued, and what the handlers queue meanwhile. Thread: the one on which handlers
    /// may run. An exception of a handler passes; what is left waits for the next call.
    void Process();
    /// How many posts wait. Any thread.
    int PendingCount();

    // For events, under the event lock.
    void Enqueue(MEventBase& event) { events.Add(&event); }
    void Dequeue(MEventBase& event) noexcept;

private:
    MEventBase* TakeFirst();
};

/// The processor of the module.
MEventProcessor& GlobalEventProcessor();
