// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/module/ModuleUse.h"

#include "foundation/threads/MLock.h"

namespace
{
struct SharedModule
{
    MLock lock;
    int uses = 0;

    // What exists once for all plug-in objects is made and destroyed here. The engine shares nothing yet but
    // tables that clean up after themselves.
    static void Start() {}
    static void Stop() {}
};

// Made by the first use and destroyed when the host unloads the module.
SharedModule& Shared()
{
    static SharedModule shared;
    return shared;
}
}   // namespace

ModuleUse::ModuleUse()
{
    SharedModule& shared = Shared();
    const MSynchronizerGuard guard(shared.lock);
    if (shared.uses == 0)
        SharedModule::Start();
    ++shared.uses;
}

ModuleUse::~ModuleUse()
{
    SharedModule& shared = Shared();
    if (shared.lock.Acquire(InfiniteTimeout) != 0)
        return;
    if (--shared.uses == 0)
        SharedModule::Stop();
    shared.lock.Release();
}

int ModuleUse::Count()
{
    SharedModule& shared = Shared();
    const MSynchronizerGuard guard(shared.lock);
    return shared.uses;
}
