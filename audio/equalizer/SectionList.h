// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

#include "audio/filters/Filter.h"
#include "foundation/vector/BiquadCascade.h"

/// The coefficients of a list of sections as the engines run them, with room for every list there is: taking
/// a new one over allocates nothing.
class SectionList
{
public:
    static constexpr std::int32_t Capacity = 376;

    SectionList() = default;
    SectionList(const SectionList& other) { *this = other; }
    SectionList& operator=(const SectionList& other);

    /// 0 <= count <= Capacity; what is beyond is left out.
    void Set(const MAudioFilters::Filter<double>* sections, std::int32_t sectionCount);
    void Clear() { count = 0; }

    std::int32_t Count() const { return count; }
    const MVector::CascadeTaps* Taps() const { return taps.data(); }

    /// Whether both filter alike: the same coefficients, whatever designed them.
    friend bool operator==(const SectionList& a, const SectionList& b);

private:
    std::array<MVector::CascadeTaps, Capacity> taps;
    std::int32_t count = 0;
};
