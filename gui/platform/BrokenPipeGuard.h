// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <csignal>
#include <ctime>
#include <pthread.h>

/// Around whatever writes to the server: a server that is gone would end the whole process by SIGPIPE,
/// which is the host's to handle or to ignore, and no answer for us.
class BrokenPipeGuard
{
public:
    BrokenPipeGuard()
    {
        sigset_t pending;
        sigpending(&pending);
        wasPending = sigismember(&pending, SIGPIPE) == 1;
        sigemptyset(&brokenPipe);
        sigaddset(&brokenPipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &brokenPipe, &before);
    }
    ~BrokenPipeGuard()
    {
        // Only what came in between is ours to swallow.
        const timespec atOnce{};
        while (!wasPending && sigtimedwait(&brokenPipe, nullptr, &atOnce) == SIGPIPE)
            continue;
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }
    BrokenPipeGuard(const BrokenPipeGuard&) = delete;
    BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

private:
    sigset_t brokenPipe{};
    sigset_t before{};
    bool wasPending = false;
};
