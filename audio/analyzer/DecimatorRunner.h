// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "audio/filters/FilterCascade.h"
#include "foundation/vector/Biquad.h"

/// The memory of one signal in a decimator's low-pass. The sections belong to the engine, which may redesign
/// them; the memory then stays.
class DecimatorRunner
{
public:
    /// Starts with an empty memory. Allocates.
    void Prepare(const MAudioFilters::DecimatorCascade& cascade);
    bool IsPrepared() const { return states[0] != nullptr; }
    /// In place. Thread: audio. Never allocates.
    void Run(const MAudioFilters::DecimatorCascade& cascade, float* samples, std::int32_t n);

private:
    struct Free
    {
        void operator()(BiquadStateFloat* state) const { BiquadFree(state); }
    };
    static constexpr std::size_t SectionCount = MAudioFilters::DecimatorCascade::MaxSections;

    std::array<std::unique_ptr<BiquadStateFloat, Free>, SectionCount> states;
    std::array<std::int32_t, SectionCount> generations{};
};
