// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEventHandler.h"

/// Handlers that are called at once, on the caller's thread, without any lock. The thread that owns the
/// object does everything with it. A target must be removed before it dies.
template <typename Params, typename Handler = MHandlerNoAdditionals>
class MCallback : public MObject
{
public:
    using Record = MHandlerRecord<Params, Handler>;

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
                handlers.Delete(index);
    }

    /// In the order of adding. A handler may add further ones, which this call reaches too.
    void Call(const Params& params)
    {
        for (int index = 0; index < handlers.Count(); ++index)
        {
            const Record record = handlers[index];   // the table may move meanwhile
            if (record.Accepts(params))
                record.call(record.target, record.context, &params);
        }
    }

    int HandlerCount() const { return handlers.Count(); }

private:
    MArray<Record> handlers;
};
