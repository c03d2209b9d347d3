// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

/// First in, first out, for what waits to be handled. It keeps its memory: once it has grown to the usual
/// fill, adding allocates nothing, and taking never does. One thread at a time.
template <typename T>
class MEventQueue
{
    static_assert(std::is_nothrow_move_constructible_v<T> && std::is_nothrow_move_assignable_v<T>);

public:
    int Count() const noexcept { return static_cast<int>(items.size() - first); }
    bool IsEmpty() const noexcept { return first == items.size(); }
    T& First() noexcept { return items[first]; }

    /// Makes room for one more, so that the next Add doesn't fail. Throws std::bad_alloc, with the queue as
    /// it was.
    void Reserve()
    {
        if (items.size() < items.capacity())
            return;
        // Closing the gap at the front costs as much as it makes room only once half of it is gap.
        if (first >= (items.size() + 1) / 2 && first > 0)
            CloseGap();
        else
            items.reserve(std::max<std::size_t>(8, 2 * items.size()));
    }

    void Add(T item)
    {
        Reserve();
        items.push_back(std::move(item));
    }

    /// The queue must hold something.
    T TakeFirst() noexcept
    {
        T taken = std::move(items[first]);
        if (++first == items.size())
            Clear();
        return taken;
    }

    /// The oldest that fulfils the condition; false when none does.
    template <typename Condition>
    bool TakeFirstIf(Condition&& condition, T& taken) noexcept
    {
        const auto found =
            std::find_if(items.begin() + static_cast<std::ptrdiff_t>(first), items.end(), condition);
        if (found == items.end())
            return false;
        if (found == items.begin() + static_cast<std::ptrdiff_t>(first))
        {
            taken = TakeFirst();
            return true;
        }
        taken = std::move(*found);
        items.erase(found);
        return true;
    }

    template <typename Condition>
    void RemoveIf(Condition&& condition) noexcept
    {
        CloseGap();
        std::erase_if(items, condition);
    }

    void Clear() noexcept
    {
        items.clear();
        first = 0;
    }

private:
    void CloseGap() noexcept
    {
        items.erase(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(first));
        first = 0;
    }

    std::vector<T> items;
    std::size_t first = 0;   // before it stands what was taken
};
