// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEventHandler.h"
#include "foundation/containers/MEventProcessor.h"

/// An event that is handled later: posting it, on any thread, queues its params; the handlers run on the
/// thread that drains the processor. While they run no lock is held: they may post, add and remove
/// handlers and destroy other targets and even this event. Event or target, either may die first.
template <typename Params, typename Handler = MHandlerNoAdditionals>
class MEvent : public MEventBase
{
public:
    using Record = MHandlerRecord<Params, Handler>;

    MEvent() = default;
    ~MEvent() override
    {
        const MSynchronizerGuard guard(EventLock());
        ClearPending();
        for (const Record& record : handlers)
            Unsubscribe(*record.target);
        for (Running* dispatch = running; dispatch != nullptr; dispatch = dispatch->outer)
            dispatch->event = nullptr;
    }

    void AddHandler(const Record& record)
    {
        const MSynchronizerGuard guard(EventLock());
        handlers.Add(record);
        try
        {
            Subscribe(*record.target);
        }
        catch (...)
        {
            handlers.Delete(handlers.Count() - 1);
            throw;
        }
    }

    /// AddHandler<&Class::Operation>(object)
    template <auto Operation, typename Class>
    void AddHandler(Class& object, const Handler& additional = {}, std::uintptr_t context = 0)
    {
        AddHandler(Record::template Of<Operation>(object, additional, context));
    }

    void RemoveTarget(MEventTarget* target) override
    {
        const MSynchronizerGuard guard(EventLock());
        for (int index = handlers.Count() - 1; index >= 0; --index)
            if (handlers[index].target == target)
                handlers.Delete(index);
        Unsubscribe(*target);
    }

    /// Any thread. False, with nothing queued, when nobody listens.
    bool Post(MEventProcessor& eventProcessor, Params params)
    {
        const MSynchronizerGuard guard(EventLock());
        if (handlers.IsEmpty())
            return false;
        params.sender = &eventProcessor;
        pending.Add(std::move(params));
        try
        {
            eventProcessor.Enqueue(*this);
        }
        catch (...)
        {
            pending.Delete(pending.Count() - 1);
            throw;
        }
        processor = &eventProcessor;
        return true;
    }

    void Dispatch() override
    {
        Running dispatch(*this);
        Params params;
        MArray<Record> called;
        {
            const MSynchronizerGuard guard(EventLock());
            params = pending[0];
            called = handlers;
            pending.Delete(0);
        }
        for (const Record& record : called)
            if (dispatch.StillHas(record) && record.Accepts(params))
                record.call(record.target, record.context, &params);
    }

    void ClearPending() override
    {
        const MSynchronizerGuard guard(EventLock());
        if (pending.IsEmpty())
            return;   // no entry anywhere; the processor may be gone by now
        pending.Clear();
        processor->Dequeue(*this);
    }

    int HandlerCount() const { return handlers.Count(); }

private:
    // A dispatch on the stack of the handling thread. The event tells it when it dies.
    struct Running
    {
        explicit Running(MEvent& dispatched) : event(&dispatched)
        {
            const MSynchronizerGuard guard(EventLock());
            outer = event->running;
            event->running = this;
        }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        ~Running()
        {
            const MSynchronizerGuard guard(EventLock());
            if (event != nullptr)
                event->running = outer;
        }

        // An earlier handler may have removed a later one.
        bool StillHas(const Record& record) const
        {
            const MSynchronizerGuard guard(EventLock());
            if (event == nullptr)
                return false;
            for (const Record& present : event->handlers)
                if (present.IsSameAs(record))
                    return true;
            return false;
        }

        MEvent* event;
        Running* outer = nullptr;
    };

    MEventProcessor* processor = nullptr;   // the one last posted to
    MArray<Record> handlers;
    MArray<Params> pending;
    Running* running = nullptr;
};
