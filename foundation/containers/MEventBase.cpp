// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MEventBase.h"

#include <algorithm>
#include <atomic>
#include <new>

namespace
{
MLock& OwnEventLock()
{
    // Never destroyed: a thread that deletes itself may come here after the module's destructors.
    alignas(MLock) static unsigned char storage[sizeof(MLock)];
    static MLock& lock = *new (storage) MLock;
    return lock;
}

std::atomic<MLock*> sharedEventLock = nullptr;
}   // namespace

MLock& EventLock()
{
    MLock* shared = sharedEventLock.load(std::memory_order_acquire);
    return shared != nullptr ? *shared : OwnEventLock();
}

void ShareEventLock(MLock& lock) noexcept
{
    sharedEventLock.store(&lock, std::memory_order_release);
}

MEventTarget::~MEventTarget()
{
    const MSynchronizerGuard guard(EventLock());
    while (!events.IsEmpty())
        events[0]->RemoveTarget(this);
}

void MEventBase::Subscribe(MEventTarget& target)
{
    if (std::find(target.events.begin(), target.events.end(), this) == target.events.end())
        target.events.Add(this);
}

void MEventBase::Unsubscribe(MEventTarget& target) noexcept
{
    for (int index = target.events.Count() - 1; index >= 0; --index)
        if (target.events[index] == this)
            target.events.Delete(index);
}
