// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pthread.h>

#include "foundation/threads/MSynchronizer.h"

/// A recursive critical section that inherits priority. Time-out 0 only tries; any other time-out waits for
/// ever.
class MLock : public MSynchronizer
{
public:
    MLock();
    ~MLock() override;
    int Acquire(std::uint32_t timeoutMs) override;
    void Release() override;

private:
    pthread_mutex_t mutex;
};
