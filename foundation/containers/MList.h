// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <utility>

#include "foundation/text/MArray.h"

/// A growable array of pointers that owns what they point at and destroys it with itself.
///
/// Up to ExactCount elements the capacity is the count, above that the next power of two, after removals
/// as well. Indexes outside 0 to Count() - 1 throw MException "Index out of range.". One thread at a time.
template <typename T, int ExactCount = 2>
class MList
{
public:
    MList() = default;
    MList(const MList&) = delete;
    MList& operator=(const MList&) = delete;
    MList(MList&& other) noexcept { Swap(other); }
    MList& operator=(MList&& other) noexcept
    {
        MList taken(std::move(other));
        Swap(taken);
        return *this;
    }
    ~MList() { Clear(); }

    int Count() const noexcept { return elements.Count(); }
    bool IsEmpty() const noexcept { return elements.IsEmpty(); }
    int Capacity() const noexcept { return elements.Capacity(); }
    T* operator[](int index) const { return elements[index]; }
    T* const* begin() const noexcept { return elements.begin(); }
    T* const* end() const noexcept { return elements.end(); }

    /// The list owns the element from here on; when it can't take it, the element is destroyed.
    T* Add(T* element) { return Add(std::unique_ptr<T>(element)); }
    T* Add(std::unique_ptr<T> element)
    {
        elements.Add(element.get());
        return element.release();
    }

    /// `index` 0 to Count().
    T* Insert(int index, T* element) { return Insert(index, std::unique_ptr<T>(element)); }
    T* Insert(int index, std::unique_ptr<T> element)
    {
        elements.Insert(index, element.get());
        return element.release();
    }

    /// Removes and destroys.
    void Delete(int index) { Detach(index); }

    /// Removes without destroying.
    std::unique_ptr<T> Detach(int index)
    {
        std::unique_ptr<T> element(elements[index]);
        elements.Delete(index);
        return element;
    }

    /// -1 when the list doesn't hold it.
    int IndexOf(const T* element) const noexcept
    {
        for (int index = 0; index < Count(); ++index)
            if (elements.begin()[index] == element)
                return index;
        return -1;
    }

    void Clear() noexcept
    {
        // The list is empty before the first destructor runs, should one look at it.
        MArray<T*, ExactCount> doomed;
        doomed.Swap(elements);
        for (T* element : doomed)
            delete element;
    }

    void Swap(MList& other) noexcept { elements.Swap(other.elements); }

private:
    MArray<T*, ExactCount> elements;
};
