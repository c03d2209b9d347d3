// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "tools/gallery/Gallery.h"

/// The gallery's pages, read with the first use.
inline const Gallery& Pages()
{
    static const Gallery gallery(BENCH_PAGES);
    return gallery;
}

inline const Gallery::Page& PageOf(const std::string& name)
{
    for (const Gallery::Page& each : Pages().Pages())
        if (each.name == name)
            return each;
    return Pages().Pages().front();
}
