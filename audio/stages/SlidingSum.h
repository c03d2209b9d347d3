// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

/// The sum of the last samples of a signal, over a window of fixed length.
///
/// Each sample replaces the oldest, and the sum follows by the difference. Every time the ring has come
/// around, the sum of what was written in that lap takes over: roundings don't pile up, and a value that
/// isn't a number is gone after one window. Main thread prepares, audio thread slides.
class SlidingSum
{
public:
    /// `length` samples of silence, at least 1. Allocates.
    void Prepare(std::int32_t length);
    void Slide(const float* samples, std::int32_t sampleCount);
    /// Stands in for a measurement until the next Prepare.
    void Fix(double value);

    double Mean() const { return sum * scale; }

private:
    std::vector<float> ring;
    std::size_t writeIndex = 0;
    double sum = 0;
    double lapSum = 0;   // since the start of the ring
    double scale = 1;
};
