// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MArrayQueue.h"

/// A delay line as a queue of samples: what is pushed comes out as many samples later as the queue holds.
/// Its memory only grows.
class MSampleQueue : public MArrayQueue<float>
{
public:
    /// Makes the queue hold `length` samples: pushes zeros where it is shorter, drops the oldest where it
    /// is longer. Allocates where it must grow.
    void SetLength(std::int32_t length)
    {
        if (Count() < length)
            PushZeros(length - Count());
        else
            DropFront(Count() - length);
    }
    /// `out` gets what went in as many samples ago as the queue holds; `in` and `out` may be the same.
    void Delay(const float* in, float* out, std::int32_t sampleCount)
    {
        Push(in, sampleCount);
        Pull(out, sampleCount);
    }
};
