// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/threads/MessageLoopCounter.h"

#include "foundation/text/MException.h"

MessageLoopCounter::Guard::Guard(MessageLoopCounter& loopCounter, Purpose purpose)
    : counter(loopCounter), checkOnly(purpose == Purpose::CheckOnly)
{
    const MSynchronizerGuard guard(counter.lock);
    if (!checkOnly)
    {
        ++counter.count;
        counter.ownerThread = std::this_thread::get_id();
        return;
    }
    if (counter.count >= 1 && counter.ownerThread != std::this_thread::get_id())
        throw MException("MessageLoopCounter not available.");
}

MessageLoopCounter::Guard::~Guard()
{
    if (checkOnly)
        return;
    const MSynchronizerGuard guard(counter.lock);
    --counter.count;
}
