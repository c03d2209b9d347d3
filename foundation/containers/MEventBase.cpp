// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MEventBase.h"

#include <algorithm>

MLock& EventLock()
{
    static MLock lock;
    return lock;
}

MEventTarget::MEventTarget()
{
    EventLock();   // made before the first target, so it outlives the last one
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
