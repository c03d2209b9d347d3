// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

/// A number that one thread writes while another reads it: a single aligned store, with no order promised
/// towards anything else. The reader sees the old or the new value. Copies like a plain number.
template <typename T>
class MRelaxed
{
public:
    constexpr MRelaxed(T initial = T{}) noexcept : value(initial) {}
    MRelaxed(const MRelaxed& other) noexcept : value(other.Get()) {}
    MRelaxed& operator=(const MRelaxed& other) noexcept
    {
        Set(other.Get());
        return *this;
    }
    MRelaxed& operator=(T newValue) noexcept
    {
        Set(newValue);
        return *this;
    }
    operator T() const noexcept { return Get(); }
    T Get() const noexcept { return value.load(std::memory_order_relaxed); }
    void Set(T newValue) noexcept { value.store(newValue, std::memory_order_relaxed); }

private:
    std::atomic<T> value;
};
