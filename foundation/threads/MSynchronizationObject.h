// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MObject.h"
#include "foundation/threads/MLock.h"

/// A lock with modes. It spins with a yield over an internal lock, so it is meant for short holds and few
/// contenders. The five virtual operations run under the internal lock and call nothing else.
class MSynchronizationObject : public MObject
{
public:
    /// A mode word: the mode in its low 28 bits, and this flag.
    static constexpr std::uint32_t ModeMask = 0x0FFFFFFF;
    static constexpr std::uint32_t NoYieldOnRelease = 0x40000000;

    MSynchronizationObject() = default;
    MSynchronizationObject(const MSynchronizationObject&) = delete;
    MSynchronizationObject& operator=(const MSynchronizationObject&) = delete;

    /// Answers 0 when granted, 1 when the time went by. A time-out of 0 asks once.
    int AcquireMode(std::uint32_t modeWord, std::uint32_t timeoutMs);
    void ReleaseMode(std::uint32_t modeWord);

protected:
    /// Once, before the first test.
    virtual void Prepare(std::uint32_t modeWord);
    /// Whether the request can be granted now; changes nothing.
    virtual bool CanAcquire(std::uint32_t modeWord) = 0;
    /// At the moment of the grant.
    virtual void OnAcquired(std::uint32_t modeWord);
    /// After the wait: 1 granted, 0 not.
    virtual void Finish(int acquired, std::uint32_t modeWord);
    /// Gives an acquisition up; answers non-zero when waiting threads should get the processor.
    virtual int Release(std::uint32_t modeWord) = 0;

private:
    bool WaitForGrant(std::uint32_t modeWord, std::uint32_t timeoutMs);

    MLock internalLock;
};

/// Holds a lock with modes for a scope; a null object holds nothing. Throws MException "Could not acquire
/// emulated synchronization object.".
class MSyncGuard
{
public:
    MSyncGuard(MSynchronizationObject* object, std::uint32_t modeWord);
    ~MSyncGuard();
    MSyncGuard(const MSyncGuard&) = delete;
    MSyncGuard& operator=(const MSyncGuard&) = delete;

private:
    MSynchronizationObject* object;
    std::uint32_t modeWord;
};
