// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MException.h"

/// Gets "SYSTEM EXCEPTION! ..." and whatever else is worth a line. Null, the default, drops it.
using MLogSink = void (*)(const MString& line);
void SetLogSink(MLogSink sink) noexcept;
void LogLine(const MString& line) noexcept;
/// Logs "SYSTEM EXCEPTION! {0}" with the name of the operation at the boundary. Never throws.
void LogSystemException(const char* operation) noexcept;

/// Runs `body` at an edge of the system (host call, thread procedure): an MException is dropped, any
/// other exception is logged under `operation`, and `neutral` is the answer.
template <typename Result, typename Body>
Result AtBoundary(const char* operation, Result neutral, Body&& body) noexcept
{
    try
    {
        return body();
    }
    catch (const MException&)
    {
    }
    catch (...)
    {
        LogSystemException(operation);
    }
    return neutral;
}

template <typename Body>
void AtBoundary(const char* operation, Body&& body) noexcept
{
    try
    {
        body();
    }
    catch (const MException&)
    {
    }
    catch (...)
    {
        LogSystemException(operation);
    }
}
