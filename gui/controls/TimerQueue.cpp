// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/TimerQueue.h"

#include <algorithm>

#include "gui/controls/MControl.h"

void TimerQueue::Set(MControl& control, std::int32_t milliseconds, std::uint64_t now)
{
    Forget(control);
    if (milliseconds > 0)
        timers.push_back({ &control, milliseconds, now + static_cast<std::uint64_t>(milliseconds) });
}

void TimerQueue::Forget(const MControl& control)
{
    std::erase_if(timers, [&control](const Timer& each) { return each.control == &control; });
}

void TimerQueue::Run(std::uint64_t now)
{
    std::vector<MControl*> due;
    for (Timer& each : timers)
        if (each.due <= now)
        {
            // Periods that passed while nobody looked are skipped, so that no burst follows.
            const auto period = static_cast<std::uint64_t>(each.period);
            each.due += ((now - each.due) / period + 1) * period;
            due.push_back(each.control);
        }
    for (MControl* control : due)
    {
        // One before it may have stopped it.
        const bool stillThere = std::any_of(timers.begin(), timers.end(),
                                            [control](const Timer& each) { return each.control == control; });
        if (stillThere)
            control->OnTimer();
    }
}

std::int32_t TimerQueue::Next(std::uint64_t now) const
{
    if (timers.empty())
        return -1;
    std::uint64_t next = timers.front().due;
    for (const Timer& each : timers)
        next = std::min(next, each.due);
    return next <= now ? 0 : static_cast<std::int32_t>(std::min(next - now, std::uint64_t{ 0x7FFFFFFF }));
}
