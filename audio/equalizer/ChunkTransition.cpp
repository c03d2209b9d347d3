// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/ChunkTransition.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

#include "audio/equalizer/LinearPhaseGeometry.h"

void ChunkTransition::Prepare()
{
    transition.Prepare(MaxSections);
    memory.resize(MaxSections);
    pairs.resize(2 * LinearPhaseGeometry::ChunkSize);
}

void ChunkTransition::Begin(const SectionList& newList)
{
    list = &newList;
    next = 0;
    ready = list->Count() == 0;
    if (ready)
        transition.Begin(0);
}

std::int64_t ChunkTransition::CostLeft() const
{
    const std::int64_t left = HasWork() ? list->Count() - next : 0;
    return left * (left + 1) / 2 * LinearPhaseGeometry::ChunkSize;
}

std::int64_t ChunkTransition::BuildNext()
{
    assert(HasWork());
    if (next == 0)
        transition.Begin(list->Count());
    const std::int32_t heard = list->Count() - next;
    MVector::CascadeMemory* first = memory.data() + next;
    std::fill_n(first, heard, MVector::CascadeMemory());
    first->s1[0] = 1.0;
    first->s2[1] = 1.0;
    std::fill(pairs.begin(), pairs.end(), LinearPhaseGeometry::RunGuard);
    MVector::CascadeRun(list->Taps() + next, first, heard, pairs.data(), LinearPhaseGeometry::ChunkSize,
                        MVector::CascadeDirection::Forward);
    transition.SetSection(next, memory.data());
    ++next;
    ready = next == list->Count();
    return std::int64_t{ heard } * LinearPhaseGeometry::ChunkSize;
}
