// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/threads/MSynchronizer.h"

#include "foundation/text/MException.h"

MSynchronizerGuard::MSynchronizerGuard(MSynchronizer& synchronizer, std::uint32_t timeoutMs)
    : MSynchronizerGuard(&synchronizer, timeoutMs)
{
}

MSynchronizerGuard::MSynchronizerGuard(MSynchronizer* synchronizer, std::uint32_t timeoutMs)
    : held(synchronizer)
{
    if (held != nullptr && held->Acquire(timeoutMs) != 0)
        throw MException("Could not acquire mutex.");
}

MSynchronizerGuard::~MSynchronizerGuard()
{
    if (held != nullptr)
        held->Release();
}
