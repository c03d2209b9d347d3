// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/containers/MEventHandler.h"

/// Handlers that are called at once, on the caller's thread, without any lock. The thread that owns the
/// object does everything with it. A target must be removed before it dies. Handlers may add and remove
/// handlers, call again and destroy the callback.
template <typename Params, typename Handler = MHandlerNoAdditionals>
class MCallback : public MObject
{
public:
    using Record = MHandlerRecord<Params, Handler>;

    MCallback() = default;
    MCallback(const MCallback&) = delete;
    MCallback& operator=(const MCallback&) = delete;
    ~MCallback() override
    {
        for (Running* call : running)
            call->isOver = true;
    }

    void AddHandler(const Record& record) { handlers.Add(record); }

    /// AddHandler<&Class::Operation>(object)
    template <auto Operation, typename Class>
    void AddHandler(Class& object, const Handler& additional = {}, std::uintptr_t context = 0)
    {
        AddHandler(Record::template Of<Operation>(object, additional, context));
    }

    void RemoveTarget(MEventTarget* target)
    {
        for (int index = handlers.Count() - 1; index >= 0; --index)
            if (handlers[index].target == target)
                Remove(index);
    }

    /// In the order of adding, each that is still there when its turn comes, those that handlers add too.
    void Call(const Params& params)
    {
        Running call(*this);
        while (!call.isOver && call.next < handlers.Count())
        {
            const Record record = handlers[call.next++];   // the table may move meanwhile
            if (record.Accepts(params))
                record.call(record.target, record.context, &params);
        }
    }

    int HandlerCount() const { return handlers.Count(); }

private:
    // A call on the stack.
    struct Running
    {
        explicit Running(MCallback& called) : callback(called) { callback.running.push_back(this); }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        ~Running()
        {
            if (!isOver)
                callback.running.pop_back();
        }

        MCallback& callback;
        int next = 0;   // the handler whose turn comes
        bool isOver = false;   // the callback is gone
    };

    void Remove(int index)
    {
        handlers.Delete(index);
        for (Running* call : running)
            if (index < call->next)
                --call->next;
    }

    MArray<Record> handlers;
    std::vector<Running*> running;   // the innermost last
};
