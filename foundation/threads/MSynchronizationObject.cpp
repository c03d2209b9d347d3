// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/threads/MSynchronizationObject.h"

#include <chrono>

#include <sched.h>

#include "foundation/text/MException.h"

void MSynchronizationObject::Prepare(std::uint32_t) {}

void MSynchronizationObject::OnAcquired(std::uint32_t) {}

void MSynchronizationObject::Finish(int, std::uint32_t) {}

int MSynchronizationObject::AcquireMode(std::uint32_t modeWord, std::uint32_t timeoutMs)
{
    const MSynchronizerGuard guard(internalLock);
    Prepare(modeWord);
    if (!WaitForGrant(modeWord, timeoutMs))
    {
        Finish(0, modeWord);
        return 1;
    }
    try
    {
        OnAcquired(modeWord);
    }
    catch (...)
    {
        Finish(0, modeWord);
        throw;
    }
    Finish(1, modeWord);
    return 0;
}

bool MSynchronizationObject::WaitForGrant(std::uint32_t modeWord, std::uint32_t timeoutMs)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    while (!CanAcquire(modeWord))
    {
        const bool hasTime =
            timeoutMs == InfiniteTimeout || Clock::now() - start < std::chrono::milliseconds(timeoutMs);
        if (!hasTime)
            return false;
        internalLock.Release();
        sched_yield();
        internalLock.Acquire(InfiniteTimeout);
    }
    return true;
}

void MSynchronizationObject::ReleaseMode(std::uint32_t modeWord)
{
    int wantsYield = 0;
    {
        const MSynchronizerGuard guard(internalLock);
        wantsYield = Release(modeWord);
    }
    if (wantsYield != 0 && (modeWord & NoYieldOnRelease) == 0)
        sched_yield();
}

MSyncGuard::MSyncGuard(MSynchronizationObject* heldObject, std::uint32_t heldMode)
    : object(heldObject), modeWord(heldMode)
{
    if (object != nullptr && object->AcquireMode(modeWord, InfiniteTimeout) != 0)
        throw MException("Could not acquire emulated synchronization object.");
}

MSyncGuard::~MSyncGuard()
{
    if (object != nullptr)
        object->ReleaseMode(modeWord);
}
