// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/containers/MEventBase.h"
#include "foundation/text/MString.h"

class MEventProcessor;

/// What every params record begins with; records are copied by value into queues.
struct MEventParams
{
    MEventProcessor* sender = nullptr;   ///< filled by Post
    MObject* source = nullptr;   ///< the object that raised the event
};

struct MOnNotifyParams : MEventParams
{
};

struct MOnThreadNotifyParams : MEventParams
{
};

struct MOnClickParams : MEventParams
{
    std::uintptr_t data = 0;
};

template <typename T>
struct MOnItemParams : MEventParams
{
    T item{};
};

struct MOnStringParams : MEventParams
{
    MString text;
};

struct MOnMenuParams : MEventParams
{
    MObject* menuItem = nullptr;
};

struct MOnKeyboardShortcutParams : MEventParams
{
    std::int32_t keyCode = 0;
    std::uint8_t modifiers = 0;
    std::uint8_t keyType = 0;
};

/// A handler that is always called.
struct MHandlerNoAdditionals
{
    template <typename Params>
    bool Accepts(const Params&) const
    {
        return true;
    }
};

/// A handler that is called for one key.
struct MKeyboardShortcut
{
    std::int32_t keyCode = 0;
    std::int32_t context = 0;
    std::uint8_t modifiers = 0;
    bool allowsFurtherModifiers = false;
    std::uint8_t keyType = 0;

    bool Accepts(const MOnKeyboardShortcutParams& params) const;
};

/// A member function of a target, made callable without knowing its class.
template <typename Params, typename Handler = MHandlerNoAdditionals>
struct MHandlerRecord : Handler
{
    using CallThrough = void (*)(MEventTarget* target, std::uintptr_t context, const Params* params);

    MEventTarget* target = nullptr;
    std::uintptr_t context = 0;
    CallThrough call = nullptr;

    bool IsSameAs(const MHandlerRecord& other) const
    {
        return target == other.target && context == other.context && call == other.call;
    }

    /// Of<&Class::Operation>(object): the operation takes the params, or the params and the context word.
    template <auto Operation, typename Class>
    static MHandlerRecord Of(Class& object, const Handler& additional = {}, std::uintptr_t contextWord = 0)
    {
        MHandlerRecord record;
        static_cast<Handler&>(record) = additional;
        record.target = &object;
        record.context = contextWord;
        record.call = [](MEventTarget* called, std::uintptr_t word, const Params* params)
        {
            auto* self = static_cast<Class*>(called);
            if constexpr (requires { (self->*Operation)(*params, word); })
                (self->*Operation)(*params, word);
            else
                (self->*Operation)(*params);
        };
        return record;
    }
};
