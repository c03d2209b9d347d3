// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/LinearPhaseEngine.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace
{
constexpr std::int32_t ChunkSize = LinearPhaseGeometry::ChunkSize;
constexpr std::int32_t ChunkCount = LinearPhaseGeometry::ChunkCount;
constexpr std::int32_t FadeChunk = LinearPhaseGeometry::FadeChunk;

constexpr std::int32_t TakeOverPosition = LinearPhaseGeometry::HopSize - LinearPhaseEngine::TakeOverLead;
static_assert(TakeOverPosition % ChunkSize == 0);

/// Work beside the output at rest, in sections by samples of a channel pair, for each BudgetFrames of a
/// block: some 15 microseconds, or a whole chunk where that is more.
constexpr std::int64_t Budget = 30000;
constexpr std::int32_t BudgetFrames = 64;
/// Blocks up to this leave such work to a block that puts out no chunk.
constexpr std::int32_t ShortBlock = ChunkSize / 4;

template <typename Sample>
Sample* ArrayOf(Sample* const* arrays, std::size_t channel, std::int32_t channelCount, std::int32_t start)
{
    return channel < static_cast<std::size_t>(channelCount) ? arrays[channel] + start : nullptr;
}
}   // namespace

void LinearPhaseEngine::Prepare(std::int32_t channels)
{
    assert(channels >= 1 && channels <= EqualizerGeometry::MaxChannels);
    channelCount = channels;
    fade.Build(2 * LinearPhaseGeometry::FadeSize, MSignalWindowType::Hann, true);
    transition.Prepare();
    channelPairs = std::vector<LinearPhasePair>(static_cast<std::size_t>((channels + 1) / 2));
    for (std::size_t i = 0; i < channelPairs.size(); ++i)
        channelPairs[i].Prepare(fade.Data(), 2 * static_cast<std::int32_t>(i) + 1 < channels);
    transition.Begin(active);
    Reset();
}

void LinearPhaseEngine::Reset()
{
    for (LinearPhasePair& pair : channelPairs)
        pair.Reset();
    for (Segment& segment : segments)
    {
        segment.whole.fill(Silent);
        segment.faded.fill(Silent);
        segment.arrived = ChunkCount;
    }
    arrivingSlot = 0;
    position = 0;
    started = false;
}

void LinearPhaseEngine::SetFilters(const MAudioFilters::Filter<double>* sections, std::int32_t count)
{
    given.Set(sections, count);
    SettleBeforeStart();
}

void LinearPhaseEngine::SetEnabled(bool filtered)
{
    enabled = filtered;
    SettleBeforeStart();
}

void LinearPhaseEngine::SettleBeforeStart()
{
    if (!started)
        TakeList();
}

void LinearPhaseEngine::TakeList()
{
    if (enabled ? active == given : active.Count() == 0)
        return;
    if (enabled)
        active = given;
    else
        active.Clear();
    ++current;
    if (current < FirstList)
        current = FirstList;
    catchingUp = true;
    transition.Begin(active);
}

void LinearPhaseEngine::Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
{
    if (!started)
    {
        TakeList();   // a Reset leaves the one before
        // The hop of silence that primes the latency is complete before the first sample.
        started = true;
        previous = active;
        latched = active;
        lists = { &previous, &latched, true };
        BeginHop(1);
    }
    for (std::int32_t done = 0; done < frames;)
    {
        const std::int32_t offset = position % ChunkSize;
        const std::int32_t n = std::min(frames - done, ChunkSize - offset);
        Step(inputs, outputs, done, n);
        done += n;
        // Piece by piece and before the hop ends, so that a block of any length takes the same way.
        Work(n, offset == 0);
        if (position == TakeOverPosition)
            TakeList();
        if (position == LinearPhaseGeometry::HopSize)
            CompleteHop();
    }
}

/// Frames within one chunk, from `start` of the block on.
void LinearPhaseEngine::Step(const float* const* inputs, float* const* outputs, std::int32_t start,
                             std::int32_t frames)
{
    const std::int32_t offset = position % ChunkSize;
    // All inputs are read before any output is written: arrays may be shared, crosswise too. The chunk that
    // is put out is read before its samples are overwritten.
    for (std::size_t i = 0; i < channelPairs.size(); ++i)
    {
        if (offset == 0)
            channelPairs[i].ProduceChunk(arrivingSlot, position / ChunkSize, lists);
        channelPairs[i].Write(arrivingSlot, position, ArrayOf(inputs, 2 * i, channelCount, start),
                              ArrayOf(inputs, 2 * i + 1, channelCount, start), frames);
    }
    for (std::size_t i = 0; i < channelPairs.size(); ++i)
        channelPairs[i].Read(offset, ArrayOf(outputs, 2 * i, channelCount, start),
                             ArrayOf(outputs, 2 * i + 1, channelCount, start), frames, wet);
    position += frames;
    if (position % ChunkSize == 0)
        segments[static_cast<std::size_t>(arrivingSlot)].arrived = position / ChunkSize;
}

bool LinearPhaseEngine::HasAllFadeStates(const Segment& segment) const
{
    for (std::size_t chunk = FadeChunk; chunk < ChunkCount; ++chunk)
    {
        if (!IsCurrent(segment.whole[chunk]) || !IsCurrent(segment.faded[chunk]))
            return false;
    }
    return true;
}

void LinearPhaseEngine::CompleteHop()
{
    const std::int32_t completed = arrivingSlot;
    const std::int32_t leaving = 1 - arrivingSlot;
    previous = latched;
    latched = active;
    const bool mapped = transition.IsReady();
    if (mapped)
        RunPendingForHop(completed);
    const bool chained = mapped && HasAllFadeStates(segments[static_cast<std::size_t>(leaving)]);
    lists = { &previous, &latched, previous == latched };
    for (LinearPhasePair& pair : channelPairs)
    {
        if (mapped)
            pair.ChainOutgoing(completed, latched, transition);
        else
            pair.RunOutgoing(completed, latched);
        if (chained)
            pair.ChainIncoming(leaving, latched, transition);
        else
            pair.RunIncoming(leaving, latched, mapped ? &transition : nullptr);
        if (lists.joined)
            pair.JoinFrames(leaving, latched.Count());
    }
    BeginHop(leaving);
}

/// Puts out the segment in a slot, which the arriving one overwrites.
void LinearPhaseEngine::BeginHop(std::int32_t slot)
{
    arrivingSlot = slot;
    position = 0;
    Segment& arriving = segments[static_cast<std::size_t>(arrivingSlot)];
    arriving.whole.fill(Never);
    arriving.faded.fill(Never);
    arriving.arrived = 0;
}

/// The chunk states that the outgoing frame's chain needs.
void LinearPhaseEngine::RunPendingForHop(std::int32_t slot)
{
    Segment& segment = segments[static_cast<std::size_t>(slot)];
    for (std::int32_t chunk = 0; chunk < ChunkCount; ++chunk)
    {
        const bool faded = chunk >= FadeChunk;
        Stamp& stamp = (faded ? segment.faded : segment.whole)[static_cast<std::size_t>(chunk)];
        if (IsCurrent(stamp))
            continue;
        for (LinearPhasePair& pair : channelPairs)
        {
            if (faded)
                pair.RunFadedChunk(slot, chunk, active);
            else
                pair.RunWholeChunk(slot, chunk, active);
        }
        stamp = current;
    }
}

/// Work that no sample of this block waits for. A block that puts out a chunk has had its share.
void LinearPhaseEngine::Work(std::int32_t frames, bool produced)
{
    if (produced && frames <= ShortBlock)
        return;
    std::int64_t budget = Budget * frames / BudgetFrames + 1;
    if (catchingUp)
    {
        // The last chunk's time belongs to what the hop's end itself costs.
        const std::int32_t left =
            std::max(LinearPhaseGeometry::HopSize - ChunkSize - (position - frames), frames);
        budget = CatchUpCost() * frames / left + 1;
    }
    while (budget > 0)
    {
        const std::int64_t cost = WorkOnce();
        if (cost == 0)
        {
            catchingUp = false;
            return;
        }
        budget -= cost;
    }
}

std::int64_t LinearPhaseEngine::ChunkCost() const
{
    return std::int64_t{ active.Count() + 1 } * ChunkSize * static_cast<std::int64_t>(channelPairs.size());
}

/// What is left to do with a list that was taken over, up to the end of the hop.
std::int64_t LinearPhaseEngine::CatchUpCost() const
{
    std::int64_t chunks = 0;
    for (std::size_t slot = 0; slot < LinearPhasePair::SlotCount; ++slot)
    {
        const bool arriving = slot == static_cast<std::size_t>(arrivingSlot);
        const std::size_t first = arriving ? 0 : FadeChunk;
        for (std::size_t chunk = first; chunk < ChunkCount; ++chunk)
        {
            chunks += IsCurrent(segments[slot].whole[chunk]) ? 0 : 1;
            chunks += chunk >= FadeChunk && !IsCurrent(segments[slot].faded[chunk]) ? 1 : 0;
        }
    }
    return transition.CostLeft() + chunks * ChunkCost();
}

/// One piece of what is left to do; answers its cost, 0 if there was nothing.
std::int64_t LinearPhaseEngine::WorkOnce()
{
    if (transition.HasWork())
        return transition.BuildNext();
    if (!transition.IsReady())
        return 0;
    const std::int64_t cost = RunPendingChunk(1 - arrivingSlot, false);
    return cost != 0 ? cost : RunPendingChunk(arrivingSlot, true);
}

std::int64_t LinearPhaseEngine::RunPendingChunk(std::int32_t slot, bool wholeFirstHalf)
{
    Segment& segment = segments[static_cast<std::size_t>(slot)];
    const std::int64_t cost = ChunkCost();
    for (std::int32_t chunk = wholeFirstHalf ? 0 : FadeChunk; chunk < segment.arrived; ++chunk)
    {
        const auto index = static_cast<std::size_t>(chunk);
        if (chunk >= FadeChunk && !IsCurrent(segment.faded[index]))
        {
            for (LinearPhasePair& pair : channelPairs)
                pair.RunFadedChunk(slot, chunk, active);
            segment.faded[index] = current;
            return cost;
        }
        if (!IsCurrent(segment.whole[index]))
        {
            for (LinearPhasePair& pair : channelPairs)
                pair.RunWholeChunk(slot, chunk, active);
            segment.whole[index] = current;
            return cost;
        }
    }
    return 0;
}
