// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/contract/ChangeFeed.h"

void ChangeFeed::MarkBand(std::int32_t band)
{
    if (band >= 0 && band < MaxBands)
        Bump(FirstBand + band);
}

void ChangeFeed::MarkParameter(std::int32_t index)
{
    if (index >= 0 && index < MaxParameters)
        Bump(FirstParameter + index);
}

void ChangeFeed::MarkParameterInside(std::int32_t index)
{
    if (index < 0 || index >= MaxParameters)
        return;
    Bump(FirstInside + index);
    Bump(FirstParameter + index);
}
