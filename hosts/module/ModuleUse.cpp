// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/module/ModuleUse.h"

#include "foundation/module/MModule.h"
#include "foundation/threads/MLock.h"

namespace
{
struct SharedModule
{
    MLock lock;
    int uses = 0;
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
    ++shared.uses;
}

ModuleUse::~ModuleUse()
{
    SharedModule& shared = Shared();
    if (shared.lock.Acquire(InfiniteTimeout) != 0)
        return;
    --shared.uses;
    shared.lock.Release();
}

void ModuleUse::SetHostType(const char* type)
{
    const MSynchronizerGuard guard(Shared().lock);
    if (MModule* module = MModule::Main())
        module->hostType = MString::FromUTF8(type);
}

int ModuleUse::Count()
{
    SharedModule& shared = Shared();
    const MSynchronizerGuard guard(shared.lock);
    return shared.uses;
}
