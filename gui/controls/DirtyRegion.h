// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "gui/painting/MRectangle.h"

/// What of a picture has to be painted anew: a few rectangles that don't overlap, so that no pixel is
/// painted twice and two meters at opposite edges don't repaint what lies between them.
class DirtyRegion
{
public:
    void Add(MRectangle area);
    bool IsEmpty() const { return areas.empty(); }
    /// Empties it.
    std::vector<MRectangle> Take();

private:
    static constexpr std::size_t MostAreas = 8;

    std::vector<MRectangle> areas;
};
