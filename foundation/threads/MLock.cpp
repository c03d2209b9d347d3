// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/threads/MLock.h"

MLock::MLock()
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    // Who holds it runs with the priority of who waits: an audio thread must not wait for a drawing one that
    // the system has put aside.
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

MLock::~MLock()
{
    pthread_mutex_destroy(&mutex);
}

int MLock::Acquire(std::uint32_t timeoutMs)
{
    return timeoutMs == 0 ? pthread_mutex_trylock(&mutex) : pthread_mutex_lock(&mutex);
}

void MLock::Release()
{
    pthread_mutex_unlock(&mutex);
}
