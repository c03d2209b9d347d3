// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEventHandler.h"
#include "foundation/containers/MEventProcessor.h"

/// An event that is handled later: posting it, on any thread, queues its params; the handlers run on the
/// thread that drains the processor. While they run no lock is held: they may post, add and remove
/// handlers and destroy other targets and even this event. Event, target or processor, any may die first.
template <typename Params, typename Handler = MHandlerNoAdditionals>
class MEvent : public MEventBase
{
public:
    using Record = MHandlerRecord<Params, Handler>;

    MEvent() = default;
    ~MEvent() override
    {
        const MSynchronizerGuard guard(EventLock());
        MEvent::ClearPending();
        for (const Record& record : handlers)
            Unsubscribe(*record.target);
        for (Call* call = running; call != nullptr; call = call->next)
            call->event = nullptr;
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

    /// False, with nothing queued, when nobody listens or the processor dies. Allocates nothing once the
    /// queues have grown to the usual fill. Thread: any. Throws std::bad_alloc, with nothing queued.
    bool Post(MEventProcessor& processor, Params params)
    {
        const MSynchronizerGuard guard(EventLock());
        if (handlers.IsEmpty() || processor.IsClosed())
            return false;
        pending.Reserve();
        processor.Reserve();
        params.sender = &processor;
        pending.Add(std::move(params));
        processor.Enqueue(*this);
        return true;
    }

    std::unique_ptr<MEventCall> Dispatch(MEventProcessor& processor) override
    {
        auto call = std::make_unique<Call>(*this);   // before anything is taken: it may fail
        // The oldest of all, unless the event is posted to several processors.
        const auto isForProcessor = [&processor](const Params& params)
        {
            return params.sender == &processor;
        };
        CheckListIndex(0, pending.TakeFirstIf(isForProcessor, call->params) ? 1 : 0);
        return call;
    }

    void ClearPending() override
    {
        const MSynchronizerGuard guard(EventLock());
        while (!pending.IsEmpty())
            MEvent::ForgetPosts(*pending.First().sender);
    }

    void ForgetPosts(MEventProcessor& processor) noexcept override
    {
        processor.Dequeue(*this);
        pending.RemoveIf([&processor](const Params& params) { return params.sender == &processor; });
    }

    int HandlerCount() const { return handlers.Count(); }

private:
    // The event knows who runs and tells them when it dies.
    struct Call : MEventCall
    {
        explicit Call(MEvent& dispatched)
            : event(&dispatched), called(dispatched.handlers), next(dispatched.running)
        {
            dispatched.running = this;
        }
        ~Call() override
        {
            const MSynchronizerGuard guard(EventLock());
            if (event == nullptr)
                return;
            Call** link = &event->running;
            while (*link != this)
                link = &(*link)->next;
            *link = next;
        }

        void Run() override
        {
            for (const Record& record : called)
                if (StillHas(record) && record.Accepts(params))
                    record.call(record.target, record.context, &params);
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
        MArray<Record> called;
        Params params;
        Call* next;
    };

    MArray<Record> handlers;
    MEventQueue<Params> pending;
    Call* running = nullptr;
};
