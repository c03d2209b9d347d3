// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/FailingAllocation.h"

#include <cstdlib>
#include <new>

std::atomic<int> allocationsLeft = -1;

void* operator new(std::size_t size)
{
    if (allocationsLeft >= 0 && allocationsLeft-- == 0)
        throw std::bad_alloc();
    if (void* memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
