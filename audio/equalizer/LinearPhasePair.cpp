// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/LinearPhasePair.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "foundation/vector/ChannelPairs.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr std::int32_t ChunkSize = LinearPhaseGeometry::ChunkSize;
constexpr std::int32_t ChunkCount = LinearPhaseGeometry::ChunkCount;
constexpr std::int32_t FadeChunk = LinearPhaseGeometry::FadeChunk;
constexpr std::int32_t FadeSize = LinearPhaseGeometry::FadeSize;

/// Ringing below this is silence: 400 dB under full scale.
constexpr double Negligible = 1e-20;
using MVector::CascadeMemory;

double Largest(const CascadeMemory* memory, std::int32_t count)
{
    double largest = 0.0;
    for (std::int32_t i = 0; i < count; ++i)
    {
        for (std::size_t channel = 0; channel < 2; ++channel)
            largest = std::max({ largest, std::abs(memory[i].s1[channel]), std::abs(memory[i].s2[channel]) });
    }
    return largest;
}

bool KeepSane(CascadeMemory* memory, std::int32_t count)
{
    return MVector::CascadeKeepSane(memory, count, EqualizerGeometry::AbsurdState);
}

void Silence(CascadeMemory* memory, std::int32_t count)
{
    std::fill_n(memory, count, CascadeMemory());
}

void Add(const CascadeMemory* source, CascadeMemory* target, std::int32_t count, double factor)
{
    for (std::int32_t i = 0; i < count; ++i)
    {
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            target[i].s1[channel] += factor * source[i].s1[channel];
            target[i].s2[channel] += factor * source[i].s2[channel];
        }
    }
}
}   // namespace

void LinearPhasePair::Prepare(const float* fadeWindow, bool isStereo)
{
    window = fadeWindow;
    stereo = isStereo;
    const auto places = [](std::int32_t count)
    {
        return static_cast<std::size_t>(count) * static_cast<std::size_t>(SectionList::Capacity);
    };
    for (std::vector<float>& segment : samples)
        segment.resize(LinearPhaseGeometry::HopSize);
    for (std::size_t slot = 0; slot < SlotCount; ++slot)
    {
        wholeEnds[slot].resize(places(ChunkCount));
        fadedEnds[slot].resize(places(ChunkCount - FadeChunk));
        outgoing[slot].resize(places(LinearPhaseGeometry::BoundaryCount));
    }
    incoming.resize(places(LinearPhaseGeometry::BoundaryCount));
    forward.resize(places(1));
    scratch.resize(places(1));
    pairs.resize(2 * ChunkSize);
    otherPairs.resize(2 * ChunkSize);
    for (auto* chunks : { &produced, &dry })
        for (std::vector<float>& chunk : *chunks)
            chunk.resize(ChunkSize);
    Reset();
}

void LinearPhasePair::Reset()
{
    for (std::vector<float>& segment : samples)
        std::fill(segment.begin(), segment.end(), 0.0f);
    for (std::size_t slot = 0; slot < SlotCount; ++slot)
    {
        for (States* states : { &wholeEnds[slot], &fadedEnds[slot], &outgoing[slot] })
            Silence(states->data(), static_cast<std::int32_t>(states->size()));
    }
    Silence(incoming.data(), static_cast<std::int32_t>(incoming.size()));
    Silence(forward.data(), SectionList::Capacity);
    lowestRinging = ChunkCount;
}

void LinearPhasePair::Write(std::int32_t slot, std::int32_t position, const float* a, const float* b,
                            std::int32_t n)
{
    const auto first = static_cast<std::size_t>(2 * slot);
    MVector::CopyAudio(a, samples[first].data() + position, n);
    if (stereo)
        MVector::CopyAudio(b, samples[first + 1].data() + position, n);
}

const float* LinearPhasePair::Samples(std::int32_t slot, std::int32_t channel, std::int32_t chunk) const
{
    if (channel == 1 && !stereo)
        return nullptr;
    return samples[static_cast<std::size_t>(2 * slot + channel)].data() + chunk * ChunkSize;
}

/// Runs a chunk's samples backward from the state in `memory`, which becomes that at its beginning. A run
/// that has grown beyond all measure is silent.
void LinearPhasePair::RunChunk(double* target, std::int32_t slot, std::int32_t chunk, Fade fade,
                               const SectionList& list, Memory* memory) const
{
    const float* a = Samples(slot, 0, chunk);
    const float* b = Samples(slot, 1, chunk);
    const double guard = list.Count() > 0 ? LinearPhaseGeometry::RunGuard : 0.0;
    if (fade == Fade::None)
        MVector::PairsFromFloats(a, b, guard, target, ChunkSize);
    else
    {
        const float* half = fade == Fade::In ? window : window + FadeSize;
        MVector::PairsFromFloatsTimes(a, b, half + (chunk - FadeChunk) * ChunkSize, guard, target, ChunkSize);
    }
    RunBackward(target, list, memory);
}

/// The same without input.
void LinearPhasePair::RunSilence(double* target, const SectionList& list, Memory* memory) const
{
    std::fill_n(target, 2 * ChunkSize, list.Count() > 0 ? LinearPhaseGeometry::RunGuard : 0.0);
    RunBackward(target, list, memory);
}

void LinearPhasePair::RunBackward(double* target, const SectionList& list, Memory* memory)
{
    MVector::CascadeRun(list.Taps(), memory, list.Count(), target, ChunkSize,
                        MVector::CascadeDirection::Backward);
    if (!KeepSane(memory, list.Count()))
        std::fill_n(target, 2 * ChunkSize, 0.0);
}

void LinearPhasePair::RunWholeChunk(std::int32_t slot, std::int32_t chunk, const SectionList& list)
{
    Memory* end = At(wholeEnds[static_cast<std::size_t>(slot)], chunk);
    Silence(end, list.Count());
    RunChunk(pairs.data(), slot, chunk, Fade::None, list, end);
}

void LinearPhasePair::RunFadedChunk(std::int32_t slot, std::int32_t chunk, const SectionList& list)
{
    Memory* end = At(fadedEnds[static_cast<std::size_t>(slot)], chunk - FadeChunk);
    Silence(end, list.Count());
    RunChunk(pairs.data(), slot, chunk, Fade::Out, list, end);
}

void LinearPhasePair::ChainOutgoing(std::int32_t slot, const SectionList& list,
                                    const ChunkTransition& transition)
{
    const auto index = static_cast<std::size_t>(slot);
    const std::int32_t count = list.Count();
    States& states = outgoing[index];
    Silence(At(states, ChunkCount), count);
    for (std::int32_t chunk = ChunkCount - 1; chunk >= 0; --chunk)
    {
        const Memory* end =
            chunk >= FadeChunk ? At(fadedEnds[index], chunk - FadeChunk) : At(wholeEnds[index], chunk);
        std::copy_n(end, count, At(states, chunk));
        transition.Apply(At(states, chunk + 1), At(states, chunk));
        KeepSane(At(states, chunk), count);
    }
}

void LinearPhasePair::RunOutgoing(std::int32_t slot, const SectionList& list)
{
    const std::int32_t count = list.Count();
    States& states = outgoing[static_cast<std::size_t>(slot)];
    Silence(At(states, ChunkCount), count);
    for (std::int32_t chunk = ChunkCount - 1; chunk >= 0; --chunk)
    {
        std::copy_n(At(states, chunk + 1), count, At(states, chunk));
        RunChunk(pairs.data(), slot, chunk, chunk >= FadeChunk ? Fade::Out : Fade::None, list,
                 At(states, chunk));
    }
}

void LinearPhasePair::ChainIncoming(std::int32_t slot, const SectionList& list,
                                    const ChunkTransition& transition)
{
    const auto index = static_cast<std::size_t>(slot);
    const std::int32_t count = list.Count();
    std::copy_n(At(outgoing[1 - index], 0), count, At(incoming, ChunkCount));
    for (std::int32_t chunk = ChunkCount - 1; chunk >= FadeChunk; --chunk)
    {
        // What fades in is all without what fades out: the window is complementary.
        Memory* state = At(incoming, chunk);
        std::copy_n(At(wholeEnds[index], chunk), count, state);
        Add(At(fadedEnds[index], chunk - FadeChunk), state, count, -1.0);
        transition.Apply(At(incoming, chunk + 1), state);
        KeepSane(state, count);
    }
    Ring(count, FadeChunk, list, &transition);
}

void LinearPhasePair::RunIncoming(std::int32_t slot, const SectionList& list,
                                  const ChunkTransition* transition)
{
    const std::int32_t count = list.Count();
    std::copy_n(At(outgoing[static_cast<std::size_t>(1 - slot)], 0), count, At(incoming, ChunkCount));
    for (std::int32_t chunk = ChunkCount - 1; chunk >= FadeChunk; --chunk)
    {
        std::copy_n(At(incoming, chunk + 1), count, At(incoming, chunk));
        RunChunk(pairs.data(), slot, chunk, Fade::In, list, At(incoming, chunk));
    }
    Ring(count, FadeChunk, list, transition);
}

/// The incoming frame's states below a boundary, until they are negligible.
void LinearPhasePair::Ring(std::int32_t sectionCount, std::int32_t fromBoundary, const SectionList& list,
                           const ChunkTransition* transition)
{
    lowestRinging = fromBoundary;
    while (lowestRinging > 0 && Largest(At(incoming, lowestRinging), sectionCount) > Negligible)
    {
        const Memory* state = At(incoming, lowestRinging);
        Memory* next = At(incoming, --lowestRinging);
        if (transition != nullptr)
        {
            Silence(next, sectionCount);
            transition->Apply(state, next);
            KeepSane(next, sectionCount);
        }
        else
        {
            std::copy_n(state, sectionCount, next);
            RunSilence(pairs.data(), list, next);
        }
    }
}

void LinearPhasePair::JoinFrames(std::int32_t slot, std::int32_t sectionCount)
{
    States& states = outgoing[static_cast<std::size_t>(slot)];
    for (std::int32_t boundary = FadeChunk + 1; boundary <= ChunkCount; ++boundary)
        Add(At(incoming, boundary), At(states, boundary), sectionCount, 1.0);
}

void LinearPhasePair::ProduceChunk(std::int32_t slot, std::int32_t chunk, const Lists& lists)
{
    for (std::int32_t channel = 0; channel < (stereo ? 2 : 1); ++channel)
        MVector::Copy(Samples(slot, channel, chunk), dry[static_cast<std::size_t>(channel)].data(),
                      ChunkSize);
    const bool fading = chunk >= FadeChunk;
    Memory* state = scratch.data();
    std::copy_n(At(outgoing[static_cast<std::size_t>(slot)], chunk + 1), lists.outgoing->Count(), state);
    RunChunk(pairs.data(), slot, chunk, fading && !lists.joined ? Fade::Out : Fade::None, *lists.outgoing,
             state);
    if (fading && !lists.joined)
        AddIncomingAlone(slot, chunk, *lists.incoming);
    if (!fading && chunk >= lowestRinging)
        AddRinging(chunk, *lists.incoming);

    const SectionList& list = *lists.incoming;
    MVector::CascadeRun(list.Taps(), forward.data(), list.Count(), pairs.data(), ChunkSize,
                        MVector::CascadeDirection::Forward);
    if (!KeepSane(forward.data(), list.Count()))
        std::fill(pairs.begin(), pairs.end(), 0.0);
    const float guard = list.Count() > 0 ? EqualizerGeometry::OutputGuard : 0.0f;
    MVector::PairsToFloats(pairs.data(), guard, produced[0].data(), stereo ? produced[1].data() : nullptr,
                           ChunkSize);
}

/// Adds the incoming frame's own part of a chunk of the second half.
void LinearPhasePair::AddIncomingAlone(std::int32_t slot, std::int32_t chunk, const SectionList& list)
{
    std::copy_n(At(incoming, chunk + 1), list.Count(), scratch.data());
    RunChunk(otherPairs.data(), slot, chunk, Fade::In, list, scratch.data());
    MVector::PairsAdd(otherPairs.data(), pairs.data(), ChunkSize);
}

/// Adds what the incoming frame rings into a chunk of the first half, faded in.
void LinearPhasePair::AddRinging(std::int32_t chunk, const SectionList& list)
{
    std::copy_n(At(incoming, chunk + 1), list.Count(), scratch.data());
    RunSilence(otherPairs.data(), list, scratch.data());
    MVector::PairsAddTimes(otherPairs.data(), window + chunk * ChunkSize, pairs.data(), ChunkSize);
}

void LinearPhasePair::Read(std::int32_t offset, float* a, float* b, std::int32_t n, float wet) const
{
    for (std::size_t channel = 0; channel < (stereo ? 2 : 1); ++channel)
    {
        float* out = channel == 0 ? a : b;
        const float* filtered = produced[channel].data() + offset;
        if (wet >= 1.0f)
        {
            MVector::Copy(filtered, out, n);
            continue;
        }
        MVector::MultiplyConstant(filtered, wet, out, n);
        MVector::AddScaled(out, dry[channel].data() + offset, n, 1.0f - wet);
    }
}
