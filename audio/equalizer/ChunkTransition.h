// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/equalizer/SectionList.h"
#include "foundation/vector/StateTransition.h"

/// The map of a list's memory over one chunk of silence, built section by section so that the work can be
/// spread over blocks. Lists beyond MaxSections have none: their matrix would be larger than a processor's
/// cache.
class ChunkTransition
{
public:
    static constexpr std::int32_t MaxSections = 176;

    /// Allocates.
    void Prepare();
    /// Starts to build the map of a list, which must live and stay until it is ready.
    void Begin(const SectionList& newList);
    bool IsReady() const { return ready; }
    bool HasWork() const { return !ready && list != nullptr && list->Count() <= MaxSections; }
    /// Does a section's share of the work, and tells its cost in sections by samples. Only while there is
    /// work.
    std::int64_t BuildNext();

    /// What all that is left to do costs.
    std::int64_t CostLeft() const;

    /// inOut += map of `states`; see StateTransition::Apply.
    void Apply(const MVector::CascadeMemory* states, MVector::CascadeMemory* inOut) const
    {
        transition.Apply(states, inOut);
    }

private:
    const SectionList* list = nullptr;
    MVector::StateTransition transition;
    std::int32_t next = 0;
    bool ready = false;
    std::vector<MVector::CascadeMemory> memory;
    std::vector<double> pairs;
};
