// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/contract/ChangeListener.h"

#include <cstddef>

ChangeListener::ChangeListener(const ChangeFeed& source) : feed(source)
{
    Drain();
    changes = 0;
    bands.clear();
    parameters.clear();
    insideParameters.clear();
}

bool ChangeListener::Take(std::int32_t place)
{
    const auto index = static_cast<std::size_t>(place);
    const std::uint32_t now = feed.counters[index].load(std::memory_order_acquire);
    if (now == seen[index])
        return false;
    seen[index] = now;
    return true;
}

void ChangeListener::Collect(std::vector<std::int32_t>& out, std::int32_t first, std::int32_t count)
{
    out.clear();
    for (std::int32_t offset = 0; offset < count; ++offset)
        if (Take(first + offset))
            out.push_back(offset);
}

bool ChangeListener::Drain()
{
    // What is marked while this runs may be taken now or be left for the next call, which will then see a
    // new generation.
    const std::uint32_t generation = feed.generation.load(std::memory_order_acquire);
    changes = 0;
    if (generation == seenGeneration.load(std::memory_order_relaxed))
    {
        bands.clear();
        parameters.clear();
        insideParameters.clear();
        return false;
    }
    seenGeneration.store(generation, std::memory_order_relaxed);
    for (std::int32_t place = 0; place < ChangeFeed::FirstBand; ++place)
        if (Take(place))
            changes |= 1u << place;
    Collect(bands, ChangeFeed::FirstBand, ChangeFeed::MaxBands);
    Collect(parameters, ChangeFeed::FirstParameter, ChangeFeed::MaxParameters);
    Collect(insideParameters, ChangeFeed::FirstInside, ChangeFeed::MaxParameters);
    return changes != 0 || !bands.empty() || !parameters.empty() || !insideParameters.empty();
}

bool ChangeListener::Has(Change what) const
{
    return (changes >> static_cast<std::int32_t>(what) & 1u) != 0;
}
