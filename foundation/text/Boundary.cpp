// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/Boundary.h"

#include <atomic>

#include "foundation/text/MStringFormat.h"

namespace
{
std::atomic<MLogSink> logSink = nullptr;
}   // namespace

void SetLogSink(MLogSink sink) noexcept
{
    logSink.store(sink);
}

void LogLine(const MString& line) noexcept
{
    const MLogSink sink = logSink.load();
    if (sink == nullptr)
        return;
    try
    {
        sink(line);
    }
    catch (...)
    {
        // A log that fails has nowhere to say so.
    }
}

void LogSystemException(const char* operation) noexcept
{
    if (logSink.load() == nullptr)
        return;
    try
    {
        LogLine(Format("SYSTEM EXCEPTION! {0}", operation));
    }
    catch (...)
    {
        LogLine("SYSTEM EXCEPTION!");
    }
}
