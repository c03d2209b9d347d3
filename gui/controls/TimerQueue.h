// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

class MControl;

/// The timers of controls, at most one each. Thread: GUI.
class TimerQueue
{
public:
    /// 0 or less stops the control's timer.
    void Set(MControl& control, std::int32_t milliseconds, std::uint64_t now);
    void Forget(const MControl& control);
    /// Calls OnTimer of each that is due, once, however many periods have passed.
    void Run(std::uint64_t now);
    /// Until the next is due, at least 0; -1 for none.
    std::int32_t Next(std::uint64_t now) const;

private:
    struct Timer
    {
        MControl* control = nullptr;
        std::int32_t period = 0;
        std::uint64_t due = 0;
    };

    std::vector<Timer> timers;
};
