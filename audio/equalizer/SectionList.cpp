// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/SectionList.h"

#include <algorithm>
#include <cassert>

SectionList& SectionList::operator=(const SectionList& other)
{
    if (this != &other)
    {
        std::copy_n(other.taps.begin(), other.count, taps.begin());
        count = other.count;
    }
    return *this;
}

void SectionList::Set(const MAudioFilters::Filter<double>* sections, std::int32_t sectionCount)
{
    assert(sectionCount >= 0 && sectionCount <= Capacity);
    count = std::clamp(sectionCount, 0, Capacity);
    std::transform(
        sections, sections + count, taps.begin(),
        [](const MAudioFilters::Filter<double>& section) {
            return MVector::CascadeTaps{ section.b0, section.b1, section.b2, section.a1, section.a2 };
        });
}

bool operator==(const SectionList& a, const SectionList& b)
{
    const auto equal = [](const MVector::CascadeTaps& s, const MVector::CascadeTaps& t)
    {
        return s.b0 == t.b0 && s.b1 == t.b1 && s.b2 == t.b2 && s.a1 == t.a1 && s.a2 == t.a2;
    };
    return a.count == b.count && std::equal(a.taps.begin(), a.taps.begin() + a.count, b.taps.begin(), equal);
}
