// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/equalizer/DelayRing.h"
#include "audio/equalizer/SectionList.h"

/// The "Normal" mode: a delay of 32768 samples, as long as the other modes take, and the sections,
/// minimum-phase. Without a section the output is the delayed input bit for bit. New filters keep the memory
/// of the old ones.
///
/// Samples that are not finite are taken as 0. Thread: Process is audio, the rest is main, never at once with
/// it.
class NormalEngine
{
public:
    /// 1 to 8 channels. Allocates everything; Reset is included.
    void Prepare(std::int32_t channels);
    /// Silence. The filters stay.
    void Reset();
    /// 0 to SectionList::Capacity sections. Between two blocks, under the owner's lock. Never allocates.
    void SetFilters(const MAudioFilters::Filter<double>* sections, std::int32_t count)
    {
        list.Set(sections, count);
    }
    void SetEnabled(bool filtered) { enabled = filtered; }
    /// Any number of frames; an output may be an input's array. Thread: audio. Never allocates.
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames);

private:
    void FilterPair(std::size_t pair, const float* a, const float* b, float* outA, float* outB,
                    std::int32_t n);

    SectionList list;
    bool enabled = true;
    std::vector<DelayRing> delays;   // by channel
    std::vector<std::vector<MVector::CascadeMemory>> memory;   // by pair of channels
    std::vector<double> pairs;
};
