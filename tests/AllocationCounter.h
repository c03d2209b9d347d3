// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Counts what the whole process takes from and gives back to the heap, a module that it loads included: its
/// calls of malloc end up in this program's. Off under a sanitizer, which has a heap of its own.
namespace AllocationCounter
{
bool IsCounting();
/// Taken by the calling thread so far.
std::int64_t TakenByThisThread();
/// Blocks of all threads that were taken and not given back.
std::int64_t Living();
}   // namespace AllocationCounter
