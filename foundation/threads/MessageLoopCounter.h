// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <thread>

#include "foundation/threads/MLock.h"

/// Keeps track of who runs a message loop, so that a call that needs the loop's thread fails in an orderly
/// way, and doesn't block, when it comes from another one.
class MessageLoopCounter
{
public:
    class Guard
    {
    public:
        enum class Purpose
        {
            EnterLoop,
            CheckOnly
        };
        /// To check only: throws MException "MessageLoopCounter not available." when another thread runs a
        /// loop.
        Guard(MessageLoopCounter& counter, Purpose purpose);
        ~Guard();
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        MessageLoopCounter& counter;
        bool checkOnly;
    };

private:
    MLock lock;
    std::int32_t count = 0;   // loops entered
    std::thread::id ownerThread;   // who entered last
};
