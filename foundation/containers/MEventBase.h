// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "foundation/text/MArray.h"
#include "foundation/text/MObject.h"
#include "foundation/threads/MLock.h"

class MEventBase;
class MEventProcessor;

/// Guards everything that events and their targets know of each other. Recursive.
MLock& EventLock();
/// Makes the lock of another module this one's too, for good. Before the first event is used.
void ShareEventLock(MLock& lock) noexcept;

/// What can receive events. It knows the events that it is subscribed to, each once, and leaves them when
/// it dies; it must not die while one of them calls it on another thread.
class MEventTarget : public MObject
{
public:
    MEventTarget() = default;
    MEventTarget(const MEventTarget&) = delete;
    MEventTarget& operator=(const MEventTarget&) = delete;
    ~MEventTarget() override;

    /// Called after something was posted for this target from another thread, so that it may wake whoever
    /// runs the event processor.
    virtual void OnEventPosted() {}

protected:
    friend class MEventBase;
    MArray<MEventBase*> events;   // that it is subscribed to, each once
};

/// One post on its way to the handlers.
class MEventCall
{
public:
    MEventCall() = default;
    MEventCall(const MEventCall&) = delete;
    MEventCall& operator=(const MEventCall&) = delete;
    virtual ~MEventCall() = default;
    /// Without any lock.
    virtual void Run() = 0;
};

/// An event without its types, as lists hold it.
class MEventBase : public MEventTarget
{
public:
    /// Takes the oldest params posted to the processor out of the queue; who runs the answer hands them to
    /// the handlers. Under the event lock. Throws MException "Index out of range." when nothing is posted,
    /// and std::bad_alloc; the queue is as it was then.
    virtual std::unique_ptr<MEventCall> Dispatch(MEventProcessor& processor) = 0;
    /// Forgets what was posted.
    virtual void ClearPending() = 0;
    /// Forgets what was posted to one processor.
    virtual void ForgetPosts(MEventProcessor& processor) noexcept = 0;
    /// Forgets the handlers of a target.
    virtual void RemoveTarget(MEventTarget* target) = 0;

protected:
    // The caller holds the event lock.
    void Subscribe(MEventTarget& target);
    void Unsubscribe(MEventTarget& target) noexcept;
};
