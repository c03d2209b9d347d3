// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MControlInvalidatorThread.h"

#include "gui/controls/MControlInvalidator.h"
#include "gui/controls/MWindows.h"

namespace
{
constexpr std::uint32_t PeriodMilliseconds = 50;
}   // namespace

MControlInvalidatorThread::MControlInvalidatorThread(MWindows& windows)
    : PacedThread(PeriodMilliseconds), owner(windows)
{
}

MControlInvalidatorThread::~MControlInvalidatorThread()
{
    Stop();
    Wait(InfiniteTimeout);
}

void MControlInvalidatorThread::Add(MControlInvalidator& invalidator)
{
    const MSynchronizerGuard guard(lock);
    invalidators.push_back(&invalidator);
}

void MControlInvalidatorThread::Remove(MControlInvalidator& invalidator)
{
    const MSynchronizerGuard guard(lock);
    std::erase(invalidators, &invalidator);
}

void MControlInvalidatorThread::Round()
{
    bool posted = false;
    {
        const MSynchronizerGuard guard(lock);
        for (MControlInvalidator* each : invalidators)
            posted |= each->Process();
    }
    if (posted)
        owner.RequestUpdate();
}
