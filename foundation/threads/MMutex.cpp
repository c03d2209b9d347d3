// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/threads/MMutex.h"

#include <cerrno>
#include <ctime>

namespace
{
timespec TimeIn(clockid_t clock, std::uint32_t milliseconds)
{
    constexpr std::int64_t NanosecondsPerSecond = 1'000'000'000;
    timespec time = {};
    clock_gettime(clock, &time);
    const std::int64_t nanoseconds = time.tv_nsec + std::int64_t{ milliseconds } * 1'000'000;
    time.tv_sec += nanoseconds / NanosecondsPerSecond;
    time.tv_nsec = nanoseconds % NanosecondsPerSecond;
    return time;
}

int Lock(pthread_mutex_t* mutex, std::uint32_t timeoutMs)
{
    if (timeoutMs == 0)
        return pthread_mutex_trylock(mutex);
    if (timeoutMs == InfiniteTimeout)
        return pthread_mutex_lock(mutex);
    timespec deadline = TimeIn(CLOCK_MONOTONIC, timeoutMs);
    const int result = pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
    if (result != EINVAL)
        return result;
    // Before Linux 5.14 a mutex that inherits priority knows only the clock that users set.
    deadline = TimeIn(CLOCK_REALTIME, timeoutMs);
    return pthread_mutex_timedlock(mutex, &deadline);
}
}   // namespace

MMutex::MMutex(Form form)
{
    if (form == Form::WithoutHandle)
        return;
    handle = std::make_unique<pthread_mutex_t>();
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    pthread_mutex_init(handle.get(), &attributes);
    pthread_mutexattr_destroy(&attributes);
}

MMutex::~MMutex()
{
    if (handle != nullptr)
        pthread_mutex_destroy(handle.get());
}

int MMutex::Acquire(std::uint32_t timeoutMs)
{
    if (handle == nullptr)
        return 0;
    const int result = Lock(handle.get(), timeoutMs);
    if (result != EOWNERDEAD)
        return result;
    return pthread_mutex_consistent(handle.get());   // the owner died: it is ours and in order again
}

void MMutex::Release()
{
    if (handle != nullptr)
        pthread_mutex_unlock(handle.get());
}
