// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MObject.h"

/// One argument of a command.
struct MPluginArgument
{
    enum Kind : std::uint32_t
    {
        Empty = 0,
        Plain = 1,   ///< a value that the caller keeps
        OwnedObject = 2   ///< an MObject that the caller's record owns
    };

    std::uint32_t kind = Empty;
    std::int64_t value = 0;   ///< an integer (32 bits: the low half), a pointer, a double by pointer

    std::int32_t AsInt32() const { return static_cast<std::int32_t>(value); }
    template <typename T>
    T* AsPointer() const
    {
        return reinterpret_cast<T*>(static_cast<std::intptr_t>(value));
    }
};

/// The four arguments that every command takes. The caller builds them on its stack; what is owned dies
/// with them, whatever the command answered.
class MPluginArguments
{
public:
    static constexpr int Count = 4;

    MPluginArguments() = default;
    MPluginArguments(const MPluginArguments&) = delete;
    MPluginArguments& operator=(const MPluginArguments&) = delete;
    ~MPluginArguments()
    {
        for (const MPluginArgument& argument : records)
            if (argument.kind == MPluginArgument::OwnedObject)
                delete argument.AsPointer<MObject>();
    }

    MPluginArguments& SetInteger(int index, std::int64_t value)
    {
        records[index].kind = MPluginArgument::Plain;
        records[index].value = value;
        return *this;
    }
    MPluginArguments& SetPointer(int index, const void* pointer)
    {
        return SetInteger(index, static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(pointer)));
    }
    MPluginArguments& SetOwned(int index, MObject* object)
    {
        SetPointer(index, object);
        records[index].kind = MPluginArgument::OwnedObject;
        return *this;
    }
    MPluginArgument* Records() { return records; }

private:
    MPluginArgument records[Count];
};
