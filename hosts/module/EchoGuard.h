// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <thread>

/// Tells a host's echo from a host's own change. Many hosts answer a reported value by setting it, on the
/// same thread and before the report returns; what another thread sets meanwhile is no echo and counts.
/// Thread: any.
class EchoGuard
{
public:
    /// A report to the host for as long as it lives. Should two threads report at once, only the first one's
    /// echo is caught; the other's sets the value that is there already.
    class Report
    {
    public:
        explicit Report(EchoGuard& watching) : guard(watching)
        {
            std::thread::id none;
            claimed = guard.reporting.compare_exchange_strong(none, std::this_thread::get_id());
        }
        ~Report()
        {
            if (claimed)
                guard.reporting = std::thread::id();
        }
        Report(const Report&) = delete;
        Report& operator=(const Report&) = delete;

    private:
        EchoGuard& guard;
        bool claimed = false;
    };

    bool IsEcho() const { return reporting == std::this_thread::get_id(); }

private:
    std::atomic<std::thread::id> reporting;
};
