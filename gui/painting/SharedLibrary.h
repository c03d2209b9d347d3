// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <initializer_list>

/// A library of the system that is opened when it is first needed, so that nobody needs it who doesn't. It
/// stays open for the module's life. Thread: any.
class SharedLibrary
{
public:
    /// The first of the names that can be opened.
    explicit SharedLibrary(std::initializer_list<const char*> names);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;

    bool IsOpen() const { return handle != nullptr; }
    /// Finds a function by its declaration; null where it is missing.
    template <typename Function>
    Function* Find(const char* name) const
    {
        return reinterpret_cast<Function*>(Symbol(name));
    }
    /// Finds a variable of it.
    template <typename Data>
    Data* FindData(const char* name) const
    {
        return static_cast<Data*>(Symbol(name));
    }

private:
    void* Symbol(const char* name) const;

    void* handle = nullptr;
};
