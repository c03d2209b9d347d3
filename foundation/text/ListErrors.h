// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Throws MException "Index out of range.", code 0.
[[noreturn]] void ThrowIndexOutOfRange();

/// `index` when it lies in 0 to count - 1; throws otherwise.
inline int CheckListIndex(int index, int count)
{
    if (index < 0 || index >= count)
        ThrowIndexOutOfRange();
    return index;
}

/// The count after one more element; throws MException when the power-of-two capacity would not fit an int.
int CheckListGrowth(int count);
