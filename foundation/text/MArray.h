// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <bit>
#include <memory>
#include <utility>

#include "foundation/text/ListErrors.h"

/// A growable array that holds its elements by value: capacity, storage, count.
///
/// Up to `ExactCount` elements the capacity is the count itself, above that the next power of two. The
/// rule holds after additions and removals, so arrays shrink again. An empty array holds no memory.
/// Indexes outside 0 to Count() - 1 throw MException "Index out of range.". When an element's copy or
/// the memory fails while adding, the array is as it was. One thread at a time.
template <typename T, int ExactCount = 2>
class MArray
{
public:
    MArray() = default;
    MArray(const MArray& other) { CopyFrom(other); }
    MArray(MArray&& other) noexcept { Swap(other); }
    ~MArray() { Clear(); }

    MArray& operator=(const MArray& other)
    {
        if (this != &other)
        {
            MArray copy(other);
            Swap(copy);
        }
        return *this;
    }

    MArray& operator=(MArray&& other) noexcept
    {
        MArray taken(std::move(other));
        Swap(taken);
        return *this;
    }

    int Count() const noexcept { return count; }
    bool IsEmpty() const noexcept { return count == 0; }
    int Capacity() const noexcept { return capacity; }

    T& operator[](int index) { return storage[CheckListIndex(index, count)]; }
    const T& operator[](int index) const { return storage[CheckListIndex(index, count)]; }
    T* begin() noexcept { return storage; }
    T* end() noexcept { return storage + count; }
    const T* begin() const noexcept { return storage; }
    const T* end() const noexcept { return storage + count; }

    T& Add(const T& element) { return Emplace(element); }
    T& Add(T&& element) { return Emplace(std::move(element)); }

    /// Appends an element made from the arguments, which may refer into this array.
    template <typename... Arguments>
    T& Emplace(Arguments&&... arguments)
    {
        if (count < capacity)
            std::construct_at(storage + count, std::forward<Arguments>(arguments)...);
        else
            EmplaceInLargerStorage(std::forward<Arguments>(arguments)...);
        return storage[count++];
    }

    /// `index` 0 to Count().
    T& Insert(int index, const T& element) { return InsertLast(index, element); }
    T& Insert(int index, T&& element) { return InsertLast(index, std::move(element)); }

    void Delete(int index)
    {
        CheckListIndex(index, count);
        std::move(storage + index + 1, storage + count, storage + index);
        std::destroy_at(storage + count - 1);
        --count;
        Shrink();
    }

    void Clear() noexcept
    {
        std::destroy_n(storage, count);
        Free(storage, capacity);
        storage = nullptr;
        count = capacity = 0;
    }

    void Swap(MArray& other) noexcept
    {
        std::swap(capacity, other.capacity);
        std::swap(storage, other.storage);
        std::swap(count, other.count);
    }

private:
    // A storage under construction: gives everything back unless it is taken.
    struct Fresh
    {
        explicit Fresh(int wantedCapacity) : size(wantedCapacity), elements(Allocate(wantedCapacity)) {}
        Fresh(const Fresh&) = delete;
        Fresh& operator=(const Fresh&) = delete;
        ~Fresh()
        {
            std::destroy(elements + first, elements + last);
            Free(elements, size);
        }

        int size;
        T* elements;
        int first = 0;   // [first, last) are constructed
        int last = 0;
    };

    static int WantedCapacity(int elementCount)
    {
        if (elementCount <= ExactCount)
            return elementCount;
        return static_cast<int>(std::bit_ceil(static_cast<unsigned>(elementCount)));
    }

    static T* Allocate(int size)
    {
        return size == 0 ? nullptr : std::allocator<T>().allocate(static_cast<std::size_t>(size));
    }

    static void Free(T* elements, int size) noexcept
    {
        if (elements != nullptr)
            std::allocator<T>().deallocate(elements, static_cast<std::size_t>(size));
    }

    void CopyFrom(const MArray& other)
    {
        Fresh fresh(WantedCapacity(other.count));
        for (; fresh.last < other.count; ++fresh.last)
            std::construct_at(fresh.elements + fresh.last, other.storage[fresh.last]);
        Take(fresh, other.count);
    }

    void Take(Fresh& fresh, int newCount) noexcept
    {
        std::destroy_n(storage, count);
        Free(storage, capacity);
        storage = std::exchange(fresh.elements, nullptr);
        capacity = std::exchange(fresh.size, 0);
        count = newCount;
        fresh.first = fresh.last = 0;
    }

    template <typename... Arguments>
    void EmplaceInLargerStorage(Arguments&&... arguments)
    {
        Fresh fresh(WantedCapacity(CheckListGrowth(count)));
        // The new element first: its source may be one of the old elements.
        std::construct_at(fresh.elements + count, std::forward<Arguments>(arguments)...);
        fresh.first = count;
        fresh.last = count + 1;
        MoveInto(fresh);
        Take(fresh, count);
    }

    void MoveInto(Fresh& fresh)
    {
        for (int index = count - 1; index >= 0; --index)
        {
            std::construct_at(fresh.elements + index, std::move_if_noexcept(storage[index]));
            fresh.first = index;
        }
    }

    template <typename Source>
    T& InsertLast(int index, Source&& element)
    {
        CheckListIndex(index, count + 1);
        Emplace(std::forward<Source>(element));
        std::rotate(storage + index, storage + count - 1, storage + count);
        return storage[index];
    }

    // Without memory for the smaller storage the larger one is good enough: removing never fails.
    void Shrink() noexcept
    {
        const int wanted = WantedCapacity(count);
        if (wanted == capacity)
            return;
        try
        {
            Fresh fresh(wanted);
            fresh.first = fresh.last = count;
            MoveInto(fresh);
            Take(fresh, count);
        }
        catch (...)
        {
        }
    }

    int capacity = 0;
    T* storage = nullptr;
    int count = 0;
};
