// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/PacedThread.h"

#include <chrono>

#include "foundation/text/Boundary.h"

void PacedThread::Wake()
{
    if (!woken.exchange(true))
        wakeSemaphore.Release();
}

std::int32_t PacedThread::Thread()
{
    using Clock = std::chrono::steady_clock;
    while (!IsCancelled())
    {
        if (!woken.exchange(false))
        {
            wakeSemaphore.Acquire(InfiniteTimeout);
            continue;
        }
        AtBoundary("PacedThread::Thread", [this] { Round(); });
        // A wake-up meanwhile only ends one of these waits: it counts when the period is over.
        const auto next = Clock::now() + std::chrono::milliseconds(period);
        for (auto now = Clock::now(); now < next && !IsCancelled(); now = Clock::now())
            wakeSemaphore.Acquire(
                static_cast<std::uint32_t>(std::chrono::ceil<std::chrono::milliseconds>(next - now).count()));
    }
    return 0;
}
