// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <mutex>

#include "foundation/threads/MSynchronizer.h"

/// A counter that starts at 0: Release adds 1, up to 2147483647; Acquire waits until it can take 1.
class MSemaphore : public MSynchronizer
{
public:
    int Acquire(std::uint32_t timeoutMs) override;
    void Release() override;

    /// Clear: whoever waits calls Release at once after a successful wait, so that the semaphore stays
    /// signalled for others.
    bool Consumes = false;

private:
    std::mutex lock;
    std::condition_variable raised;
    std::int32_t count = 0;
};
