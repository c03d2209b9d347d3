// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "foundation/vector/BiquadCascade.h"

namespace MVector
{
/// What becomes of the memory of a cascade over a fixed number of samples without input: a linear map. A
/// section hears only the sections before it, so the matrix is block lower triangular.
class StateTransition
{
public:
    /// Tiles of sections: an array that Apply adds to has room for a multiple of this many sections.
    static constexpr std::int32_t TileSections = 4;
    static constexpr std::int32_t PaddedCount(std::int32_t sectionCount)
    {
        return (sectionCount + TileSections - 1) / TileSections * TileSections;
    }

    /// Allocates.
    void Prepare(std::int32_t maxSectionCount);
    /// Forgets the map and sets its size. Never allocates within the count that was prepared.
    void Begin(std::int32_t sectionCount);
    /// The images of two units of memory in one section: `memory`, of all sections, holds in channel 0 what
    /// has become of s1 = 1 and in channel 1 what has become of s2 = 1. Sections before it are silent.
    void SetSection(std::int32_t section, const CascadeMemory* memory);
    /// inOut += map of `memory`, both channels. The arrays differ; inOut has room for PaddedCount sections,
    /// and the padding may be written to. Thread: any; never allocates.
    void Apply(const CascadeMemory* memory, CascadeMemory* inOut) const;

private:
    // Tiles of 8 rows (s1 and s2 of four sections) below each other; in a tile column after column up to its
    // diagonal, each value twice, for the two channels.
    std::vector<double> matrix;
    std::int32_t count = 0;
};
}   // namespace MVector
