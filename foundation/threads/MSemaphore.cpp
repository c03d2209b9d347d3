// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/threads/MSemaphore.h"

#include <cerrno>
#include <chrono>
#include <limits>

int MSemaphore::Acquire(std::uint32_t timeoutMs)
{
    std::unique_lock guard(lock);
    const auto hasCount = [this]
    {
        return count > 0;
    };
    if (timeoutMs == InfiniteTimeout)
        raised.wait(guard, hasCount);
    else if (!raised.wait_for(guard, std::chrono::milliseconds(timeoutMs), hasCount))
        return ETIMEDOUT;
    --count;
    return 0;
}

void MSemaphore::Release()
{
    // Under the lock to the end: a waiter that is woken may destroy the semaphore.
    const std::lock_guard guard(lock);
    if (count < std::numeric_limits<std::int32_t>::max())
        ++count;
    raised.notify_one();
}
