// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "audio/equalizer/ChunkTransition.h"
#include "audio/equalizer/EqualizerEngine.h"
#include "audio/equalizer/LinearPhasePair.h"
#include "audio/equalizer/SectionList.h"
#include "audio/fft/MSignalWindowType.h"

/// The "Linear-phase" mode: every section runs backward in time over overlapping frames and forward over
/// their sum, so that magnitudes add up and phases cancel. The output equals PlainLinearPhase's up to float
/// rounding, at any block lengths, but the work comes evenly instead of in bursts:
///
/// A hop is cut into chunks. A chunk that has arrived is run backward from silence at once, to know its state
/// at its beginning. When the hop is complete, these states are carried through it by the map of the filters'
/// memory over one chunk, which gives the true state at every boundary. A chunk of output is then run
/// backward from its state, and forward, in the block that needs it.
///
/// A new list is taken over TakeOverLead samples before a hop is complete, for the frame that ends there and
/// the hop that then comes out. In these samples all that was computed with the old list is made again, a
/// like share in each block. Lists that come in between wait for the next hop: however often a list changes,
/// no block has to catch up at once.
///
class LinearPhaseEngine final : public EqualizerEngine
{
public:
    /// 85 ms at 48 kHz: twice the time that lists of ten bands need beside a host's shortest blocks.
    static constexpr std::int32_t TakeOverLead = 4096;

    void Prepare(std::int32_t channels) override;
    void Reset() override;
    /// 0 to SectionList::Capacity sections; in force at once while no sample was processed since a Reset.
    /// Between two blocks, under the owner's lock. Never allocates.
    void SetFilters(const MAudioFilters::Filter<double>* sections, std::int32_t count);
    /// The share of the filtered signal, 0 to 1, from the next block on; the rest is the input, as late.
    void SetWet(float share) { wet = share; }
    /// In force when the filters are. Off, the frames still fade.
    void SetEnabled(bool filtered) override;
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames) override;

private:
    using Stamp = std::uint32_t;

    /// Which list the chunk states of a segment were made with.
    struct Segment
    {
        std::array<Stamp, LinearPhaseGeometry::ChunkCount> whole{};
        std::array<Stamp, LinearPhaseGeometry::ChunkCount> faded{};   // from FadeChunk on
        std::int32_t arrived = 0;   // chunks
    };

    bool IsCurrent(Stamp stamp) const { return stamp == current || stamp == Silent; }
    void TakeList();
    void SettleBeforeStart();
    void Step(const float* const* inputs, float* const* outputs, std::int32_t offset, std::int32_t frames);
    void CompleteHop();
    void BeginHop(std::int32_t slot);
    bool HasAllFadeStates(const Segment& segment) const;

    void Work(std::int32_t frames, bool produced);
    std::int64_t WorkOnce();
    std::int64_t CatchUpCost() const;
    std::int64_t ChunkCost() const;
    std::int64_t RunPendingChunk(std::int32_t slot, bool wholeFirstHalf);
    void RunPendingForHop(std::int32_t slot);

    static constexpr Stamp Never = 0;
    static constexpr Stamp Silent = 1;   // of silence, whatever the list
    static constexpr Stamp FirstList = 2;

    std::int32_t channelCount = 0;
    MSignalWindowType fade;
    std::vector<LinearPhasePair> channelPairs;

    SectionList given;   // by the owner
    SectionList active;   // what runs: given, or nothing
    SectionList latched;   // of the hop that comes out, and of the frame that its last hop completed
    SectionList previous;   // of the frame before
    bool enabled = true;
    float wet = 1.0f;
    bool catchingUp = false;   // with a list that was just taken over
    bool started = false;
    Stamp current = FirstList;   // of `active`
    ChunkTransition transition;
    LinearPhasePair::Lists lists;

    std::array<Segment, LinearPhasePair::SlotCount> segments;
    std::int32_t arrivingSlot = 0;   // also the one whose former segment comes out
    std::int32_t position = 0;   // in the hop
};
