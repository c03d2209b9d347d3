// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

#include "audio/filters/Filter.h"
#include "foundation/text/MException.h"

/// A flat list of filter sections. Ten bands of at most 34 sections each, the sections of an auto-listen and
/// one behind them fit by construction.
struct FilterList
{
    static constexpr std::int32_t Capacity = 376;

    std::array<MAudioFilters::Filter<double>, Capacity> filters;
    std::int32_t count = 0;

    void Clear() { count = 0; }
    MAudioFilters::Filter<double>& Add(std::int32_t type, double gainDb, double frequencyHz,
                                       double sampleRate, double q)
    {
        MAudioFilters::Filter<double>& section = filters[static_cast<std::size_t>(count)];
        section.Set(type, gainDb, frequencyHz, sampleRate, q);
        ++count;   // only now: a design that throws leaves the list as it was
        return section;
    }
};
