// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

#include "foundation/containers/MThread.h"

/// A thread that does a round when it is woken, and no more often than once in a period. It sleeps in
/// between, however long. A derived class stops and awaits it in its destructor.
class PacedThread : public MThread
{
public:
    explicit PacedThread(std::uint32_t milliseconds) : period(milliseconds) {}
    /// Thread: any.
    void Wake();

protected:
    /// On the thread. What it throws is logged.
    virtual void Round() = 0;
    std::int32_t Thread() override;

private:
    std::uint32_t period;
    std::atomic<bool> woken{ false };
};
