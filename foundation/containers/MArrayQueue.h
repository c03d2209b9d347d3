// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <memory>
#include <type_traits>

#include "foundation/text/MException.h"
#include "foundation/text/MObject.h"

/// First in, first out, for samples: a ring in one array.
///
/// Push grows the array to a power of two when it has to and never gives memory back, so a queue whose
/// fill is bounded stops allocating; Reserve does it beforehand. Pulling costs what is pulled. One thread
/// at a time.
template <typename T>
class MArrayQueue : public MObject
{
    static_assert(std::is_trivially_copyable_v<T>);

public:
    MArrayQueue() = default;
    MArrayQueue(const MArrayQueue& other) : MObject(other) { *this = other; }
    MArrayQueue& operator=(const MArrayQueue& other)
    {
        if (this == &other)
            return *this;
        MakeRoom(other.count);
        other.Peek(storage.get(), other.count);
        head = 0;
        count = other.count;
        return *this;
    }

    int Count() const noexcept { return count; }
    int Capacity() const noexcept { return capacity; }

    /// Room for `sampleCount` samples in all.
    void Reserve(int sampleCount) { MakeRoom(sampleCount - count); }

    void Push(const T* samples, int sampleCount)
    {
        PushRuns(sampleCount,
                 [&samples](T* target, int runLength) { samples = CopyRun(samples, target, runLength); });
    }

    void PushZeros(int sampleCount)
    {
        PushRuns(sampleCount, [](T* target, int runLength) { std::fill_n(target, runLength, T{}); });
    }

    /// Takes the oldest. Throws MException "Not enough data in the queue." and takes nothing when fewer are
    /// held.
    void Pull(T* target, int sampleCount)
    {
        Peek(target, sampleCount);
        Skip(sampleCount);
    }

    /// Copies the oldest and keeps them; throws like Pull.
    void Peek(T* target, int sampleCount) const
    {
        CheckHeld(sampleCount);
        const int first = std::min(sampleCount, capacity - head);
        target = std::copy_n(storage.get() + head, std::max(first, 0), target);
        std::copy_n(storage.get(), std::max(sampleCount - first, 0), target);
    }

    /// Forgets the oldest; throws like Pull.
    void DropFront(int sampleCount)
    {
        CheckHeld(sampleCount);
        Skip(sampleCount);
    }

    /// Keeps the count and makes every held sample 0.
    void FillZero() noexcept
    {
        const int first = std::min(count, capacity - head);
        std::fill_n(storage.get() + head, first, T{});
        std::fill_n(storage.get(), count - first, T{});
    }

    /// Forgets everything and keeps the memory.
    void Clear() noexcept { head = count = 0; }

    /// Rotates the ring so that the oldest sample stands first in the array.
    void Normalize()
    {
        std::rotate(storage.get(), storage.get() + head, storage.get() + capacity);
        head = 0;
    }

private:
    static const T* CopyRun(const T* samples, T* target, int runLength)
    {
        std::copy_n(samples, runLength, target);
        return samples + runLength;
    }

    void CheckHeld(int sampleCount) const
    {
        if (sampleCount > count)
            throw MException("Not enough data in the queue.");
    }

    void Skip(int sampleCount) noexcept
    {
        if (sampleCount <= 0)
            return;
        head = (head + sampleCount) & (capacity - 1);
        count -= sampleCount;
    }

    void MakeRoom(int addedCount)
    {
        constexpr int LargestCapacity = 1 << 30;
        if (addedCount <= capacity - count)
            return;
        if (addedCount > LargestCapacity - count)
            throw MException("A queue cannot hold more data.");
        const int wanted = static_cast<int>(std::bit_ceil(static_cast<unsigned>(count + addedCount)));
        auto larger = std::make_unique<T[]>(static_cast<std::size_t>(wanted));
        if (count > 0)
            Peek(larger.get(), count);
        storage = std::move(larger);
        capacity = wanted;
        head = 0;
    }

    // The free part of the ring has at most two runs.
    template <typename Fill>
    void PushRuns(int sampleCount, Fill&& fill)
    {
        if (sampleCount <= 0)
            return;
        MakeRoom(sampleCount);
        const int tail = (head + count) & (capacity - 1);
        const int first = std::min(sampleCount, capacity - tail);
        fill(storage.get() + tail, first);
        fill(storage.get(), sampleCount - first);
        count += sampleCount;
    }

    int capacity = 0;   // 0 or a power of two
    std::unique_ptr<T[]> storage;
    int count = 0;
    int head = 0;   // where the oldest stands
};
