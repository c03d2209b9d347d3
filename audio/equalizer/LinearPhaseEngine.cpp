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

/// Work beside the output, in sections by samples of a channel pair, for each BudgetFrames of a block: some
/// 15 microseconds. Enough to make all states of a hop again within a quarter of it, with 10 sections.
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
    TakeList();
}

void LinearPhaseEngine::SetEnabled(bool filtered)
{
    enabled = filtered;
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
    changed = true;
    transition.Begin(active);
}

void LinearPhaseEngine::Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
{
    if (!started)
    {
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
        changed = false;
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
                             ArrayOf(outputs, 2 * i + 1, channelCount, start), frames);
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

/// Work that no sample of this block waits for. A block that puts out a chunk has had its share, and a list
/// that has just changed may change again.
void LinearPhaseEngine::Work(std::int32_t frames, bool produced)
{
    if (changed || (produced && frames <= ShortBlock))
        return;
    std::int64_t budget = Budget * frames / BudgetFrames + 1;
    while (budget > 0)
    {
        const std::int64_t cost = WorkOnce();
        if (cost == 0)
            return;
        budget -= cost;
    }
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
    const std::int64_t cost =
        std::int64_t{ active.Count() + 1 } * ChunkSize * static_cast<std::int64_t>(channelPairs.size());
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
