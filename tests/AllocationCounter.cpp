// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/AllocationCounter.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define HEAP_OF_A_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define HEAP_OF_A_SANITIZER
#endif
#endif

#ifdef HEAP_OF_A_SANITIZER

bool AllocationCounter::IsCounting()
{
    return false;
}
std::int64_t AllocationCounter::TakenByThisThread()
{
    return 0;
}
std::int64_t AllocationCounter::Living()
{
    return 0;
}

#else

// glibc's own names of the functions that are replaced here.
extern "C"
{
    void* __libc_malloc(std::size_t size);
    void* __libc_calloc(std::size_t count, std::size_t size);
    void* __libc_realloc(void* memory, std::size_t size);
    void* __libc_memalign(std::size_t alignment, std::size_t size);
    void __libc_free(void* memory);
}

namespace
{
thread_local std::int64_t takenByThisThread = 0;
std::atomic<std::int64_t> living = 0;

void* Counted(void* memory)
{
    ++takenByThisThread;
    if (memory != nullptr)
        living.fetch_add(1, std::memory_order_relaxed);
    return memory;
}
}   // namespace

// Seen by the module, whatever the project's default is.
#pragma GCC visibility push(default)
extern "C"
{
    void* malloc(std::size_t size)
    {
        return Counted(__libc_malloc(size));
    }
    void* calloc(std::size_t count, std::size_t size)
    {
        return Counted(__libc_calloc(count, size));
    }
    void* realloc(void* memory, std::size_t size)
    {
        if (memory == nullptr)
            return malloc(size);
        ++takenByThisThread;
        return __libc_realloc(memory, size);
    }
    void* aligned_alloc(std::size_t alignment, std::size_t size)
    {
        return Counted(__libc_memalign(alignment, size));
    }
    void* memalign(std::size_t alignment, std::size_t size)
    {
        return Counted(__libc_memalign(alignment, size));
    }
    int posix_memalign(void** memory, std::size_t alignment, std::size_t size)
    {
        *memory = Counted(__libc_memalign(alignment, size));
        return *memory != nullptr ? 0 : ENOMEM;
    }
    void free(void* memory)
    {
        if (memory != nullptr)
            living.fetch_sub(1, std::memory_order_relaxed);
        __libc_free(memory);
    }
}
#pragma GCC visibility pop

bool AllocationCounter::IsCounting()
{
    return true;
}
std::int64_t AllocationCounter::TakenByThisThread()
{
    return takenByThisThread;
}
std::int64_t AllocationCounter::Living()
{
    return living.load();
}

#endif
