// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MLayoutOccupyBorder.h"

#include <algorithm>

MRectangle MLayoutOccupyBorder::Arrange(const MRectangle& area)
{
    MRectangle rest{ area.left + left, area.top + top, area.right - right, area.bottom - bottom };
    rest.right = std::max(rest.left, rest.right);
    rest.bottom = std::max(rest.top, rest.bottom);
    return rest;
}

void MLayoutOccupyBorder::ComputeSizes(SizeSums& sums, const SizeComputer&, bool)
{
    sums.Take(Axis::X, left + right + Gap());
    sums.Take(Axis::Y, top + bottom + Gap());
}
