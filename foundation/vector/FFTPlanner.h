// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>

/// What the users of FFTW within this room share. FFTW's planner isn't thread-safe: whoever makes or destroys
/// a plan holds this lock. Executing plans needs none.
std::mutex& FFTPlannerLock();

/// An array for transforms and vectors, aligned to a cache line.
class AlignedFloats
{
public:
    AlignedFloats() = default;
    /// Zeros.
    explicit AlignedFloats(std::size_t count) : AlignedFloats(Unfilled(count))
    {
        std::uninitialized_fill_n(values.get(), count, 0.0f);
    }
    /// Memory that nobody has touched, for planning, which only looks at addresses.
    static AlignedFloats Unfilled(std::size_t count)
    {
        const std::size_t bytes = (count * sizeof(float) + Alignment - 1) / Alignment * Alignment;
        AlignedFloats array;
        array.values.reset(static_cast<float*>(std::aligned_alloc(Alignment, bytes)));
        if (!array.values)
            throw std::bad_alloc();
        return array;
    }
    float* Data() const { return values.get(); }

    static constexpr std::size_t Alignment = 64;

private:
    struct Free
    {
        void operator()(float* memory) const { std::free(memory); }
    };
    std::unique_ptr<float, Free> values;
};
