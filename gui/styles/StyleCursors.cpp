// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/StyleCursors.h"

#include <iterator>

#include "gui/controls/MWindowSystem.h"
#include "gui/styles/MBaseStyle.h"

void GiveCursors(const MBaseStyle& style, MWindowSystem& system)
{
    for (std::size_t i = 0; i < std::size(MEnumLabels<MStdCursor>::Labels); ++i)
    {
        const auto cursor = static_cast<MStdCursor>(i);
        if (const MBaseStyle::Cursor* drawn = style.FindCursor(cursor))
            system.SetDrawnCursor(cursor, drawn->image, drawn->hotSpot);
    }
}
