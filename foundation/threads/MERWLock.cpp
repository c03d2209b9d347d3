// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/threads/MERWLock.h"

#include <new>

#include "foundation/text/MException.h"

namespace
{
bool IsWrite(std::uint32_t modeWord)
{
    return (modeWord & MSynchronizationObject::ModeMask) == MERWLock::Write;
}
}   // namespace

MERWLock::MERWLock()
{
    if (pthread_key_create(&tlsSlot, nullptr) != 0)
        throw MException("Could not create thread local storage.");
}

MERWLock::~MERWLock()
{
    pthread_key_delete(tlsSlot);
}

MERWLock::Holds MERWLock::OwnHolds() const
{
    const auto word = reinterpret_cast<std::uintptr_t>(pthread_getspecific(tlsSlot));
    return { static_cast<std::uint16_t>(word), static_cast<std::uint16_t>(word >> 16) };
}

void MERWLock::SetOwnHolds(Holds holds)
{
    const std::uintptr_t word = (static_cast<std::uintptr_t>(holds.writes) << 16) | holds.reads;
    if (pthread_setspecific(tlsSlot, reinterpret_cast<void*>(word)) != 0)
        throw std::bad_alloc();
}

void MERWLock::Prepare(std::uint32_t modeWord)
{
    if (!IsWrite(modeWord))
        return;
    ++waitingWriters;
    waitingWritersReadHolds += OwnHolds().reads;
}

bool MERWLock::CanAcquire(std::uint32_t modeWord)
{
    const Holds own = OwnHolds();
    if (IsWrite(modeWord))
        return own.writes > 0 || (activeWriters == 0 && activeReaders == waitingWritersReadHolds);
    return own.reads > 0 || own.writes > 0 || (activeWriters == 0 && waitingWriters == 0);
}

void MERWLock::OnAcquired(std::uint32_t modeWord)
{
    Holds own = OwnHolds();
    ++(IsWrite(modeWord) ? own.writes : own.reads);
    SetOwnHolds(own);
    ++(IsWrite(modeWord) ? activeWriters : activeReaders);
}

void MERWLock::Finish(int acquired, std::uint32_t modeWord)
{
    static_cast<void>(acquired);   // a grant and a time-out end the waiting alike
    if (!IsWrite(modeWord))
        return;
    --waitingWriters;
    waitingWritersReadHolds -= OwnHolds().reads;
}

int MERWLock::Release(std::uint32_t modeWord)
{
    Holds own = OwnHolds();
    --(IsWrite(modeWord) ? own.writes : own.reads);
    SetOwnHolds(own);
    --(IsWrite(modeWord) ? activeWriters : activeReaders);
    return activeReaders == 0 && activeWriters == 0 ? 1 : 0;
}
