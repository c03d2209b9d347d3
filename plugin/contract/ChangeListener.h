// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "plugin/contract/ChangeFeed.h"

/// One reader of a ChangeFeed: remembers what it has seen, and tells what is new.
///
/// Any number of them may listen to one feed, which has to outlive them. A new one has seen all that was
/// marked before it.
/// Thread: one at a time, GUI; IsBehind is for any.
class ChangeListener
{
public:
    explicit ChangeListener(const ChangeFeed& source);

    /// Whether something was marked since the last Drain.
    bool IsBehind() const
    {
        return feed.generation.load(std::memory_order_acquire) !=
               seenGeneration.load(std::memory_order_relaxed);
    }
    /// Takes what was marked since the last call; false when there is nothing. The queries below tell of that
    /// until the next call. Never allocates after the first growth.
    bool Drain();

    bool Has(Change what) const;
    const std::vector<std::int32_t>& Bands() const { return bands; }
    /// In rising order, those that were changed inside among them.
    const std::vector<std::int32_t>& Parameters() const { return parameters; }
    /// Those that the host doesn't know of.
    const std::vector<std::int32_t>& InsideParameters() const { return insideParameters; }

private:
    bool Take(std::int32_t place);
    void Collect(std::vector<std::int32_t>& out, std::int32_t first, std::int32_t count);

    const ChangeFeed& feed;
    std::atomic<std::uint32_t> seenGeneration = 0;
    std::array<std::uint32_t, ChangeFeed::PlaceCount> seen{};
    std::uint32_t changes = 0;   // a bit for each Change
    std::vector<std::int32_t> bands;
    std::vector<std::int32_t> parameters;
    std::vector<std::int32_t> insideParameters;
};
