// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <pthread.h>

#include "foundation/threads/MSynchronizationObject.h"

/// Many readers or one writer. A waiting writer keeps new readers out, but a thread that is in already
/// keeps entering. A reader may become a writer when nobody but would-be writers still reads. Each thread
/// may hold it up to 65535 times in each mode.
class MERWLock : public MSynchronizationObject
{
public:
    enum Mode : std::uint32_t
    {
        Read = 0,
        Write = 1
    };

    /// Throws MException "Could not create thread local storage.".
    MERWLock();
    ~MERWLock() override;

protected:
    void Prepare(std::uint32_t modeWord) override;
    bool CanAcquire(std::uint32_t modeWord) override;
    void OnAcquired(std::uint32_t modeWord) override;
    void Finish(int acquired, std::uint32_t modeWord) override;
    int Release(std::uint32_t modeWord) override;

private:
    // What the calling thread owns, as it stands in its slot: write holds in bits 16 to 31, read holds below.
    struct Holds
    {
        std::uint16_t reads = 0;
        std::uint16_t writes = 0;
    };
    Holds OwnHolds() const;
    void SetOwnHolds(Holds holds);

    std::int32_t activeReaders = 0;
    std::int32_t activeWriters = 0;
    std::int32_t waitingWriters = 0;   // between Prepare and Finish
    std::int32_t waitingWritersReadHolds = 0;   // what those writers hold as readers
    pthread_key_t tlsSlot = 0;
};
