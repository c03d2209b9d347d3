// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/plugin/driver/AllocationCount.h"

#include <cstdlib>
#include <new>

namespace
{
thread_local std::int64_t allocationCount = 0;
}   // namespace

std::int64_t AllocationCount()
{
    return allocationCount;
}

// GCC pairs its own new with these and warns; they are a pair.
#ifndef __clang__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif
void* operator new(std::size_t size)
{
    ++allocationCount;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    ++allocationCount;
    return std::malloc(size);
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
#ifndef __clang__
#pragma GCC diagnostic pop
#endif
