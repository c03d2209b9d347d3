// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/ListErrors.h"

#include "foundation/text/MException.h"

void ThrowIndexOutOfRange()
{
    throw MException("Index out of range.");
}

int CheckListGrowth(int count)
{
    constexpr int MaximumCount = 1 << 30;   // the largest power of two that an int holds
    if (count >= MaximumCount)
        throw MException("A list cannot hold more elements.");
    return count + 1;
}
