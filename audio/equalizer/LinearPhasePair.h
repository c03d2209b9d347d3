// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "audio/equalizer/ChunkTransition.h"
#include "audio/equalizer/LinearPhaseGeometry.h"
#include "audio/equalizer/SectionList.h"

/// Two channels of LinearPhaseEngine: their samples, and the states of the runs backward through them.
///
/// A segment is the input of one hop. Two frames cross it: the outgoing one, which ends with it and fades out
/// over its second half, and the incoming one, which begins with it and fades in over its second half; into
/// the first half the incoming frame only rings, and that ringing is faded in once more. Boundary i of a
/// segment is where its chunk i begins; a state at a boundary is what a run backward has there, coming from
/// higher boundaries.
///
/// Segments stand in two slots. While one slot's segment is put out, the next input overwrites it chunk by
/// chunk.
class LinearPhasePair
{
public:
    static constexpr std::int32_t SlotCount = 2;

    /// A window of 2 * FadeSize points, rising and falling, which must live. Allocates.
    void Prepare(const float* fadeWindow, bool isStereo);
    void Reset();

    /// Samples of the segment in `slot` from `position` on; what is not finite is taken as 0.
    void Write(std::int32_t slot, std::int32_t position, const float* a, const float* b, std::int32_t n);

    /// Runs a chunk from silence and keeps the state at its beginning: of the samples as they are, or of
    /// those that the outgoing frame sees (second half only).
    void RunWholeChunk(std::int32_t slot, std::int32_t chunk, const SectionList& list);
    void RunFadedChunk(std::int32_t slot, std::int32_t chunk, const SectionList& list);

    /// The states of the outgoing frame at all boundaries of a segment: from those of all its chunks, or by
    /// running through it.
    void ChainOutgoing(std::int32_t slot, const SectionList& list, const ChunkTransition& transition);
    void RunOutgoing(std::int32_t slot, const SectionList& list);

    /// The states of the incoming frame at all boundaries of a segment, coming from the first boundary of the
    /// segment in the other slot: in the second half from the states of its chunks, or by running through it;
    /// in the first half, where it only rings, by the transition if there is one.
    void ChainIncoming(std::int32_t slot, const SectionList& list, const ChunkTransition& transition);
    void RunIncoming(std::int32_t slot, const SectionList& list, const ChunkTransition* transition);

    /// Where both frames filter alike, one run from the sum of their states serves both in the second half.
    void JoinFrames(std::int32_t slot, std::int32_t sectionCount);

    struct Lists
    {
        const SectionList* outgoing = nullptr;   // of the frame that ends with the segment
        const SectionList* incoming = nullptr;   // of the frame that begins with it, and of the forward pass
        bool joined = false;   // JoinFrames was called
    };
    /// Puts out a chunk of the segment in `slot`. Chunks are produced in order.
    void ProduceChunk(std::int32_t slot, std::int32_t chunk, const Lists& lists);
    /// n samples of the produced chunk from `offset` on, `wet` of them and 1 - wet of the input of the same
    /// time; b is null for a single channel.
    void Read(std::int32_t offset, float* a, float* b, std::int32_t n, float wet) const;

private:
    using Memory = MVector::CascadeMemory;
    /// States of one list at several places, each with room for the longest list.
    using States = std::vector<Memory>;

    static Memory* At(States& states, std::int32_t place)
    {
        return states.data() + place * SectionList::Capacity;
    }

    const float* Samples(std::int32_t slot, std::int32_t channel, std::int32_t chunk) const;
    enum class Fade
    {
        None,
        In,
        Out
    };
    void RunChunk(double* target, std::int32_t slot, std::int32_t chunk, Fade fade, const SectionList& list,
                  Memory* memory) const;
    void RunSilence(double* target, const SectionList& list, Memory* memory) const;
    static void RunBackward(double* target, const SectionList& list, Memory* memory);
    void Ring(std::int32_t sectionCount, std::int32_t fromBoundary, const SectionList& list,
              const ChunkTransition* transition);
    void AddRinging(std::int32_t chunk, const SectionList& list);
    void AddIncomingAlone(std::int32_t slot, std::int32_t chunk, const SectionList& list);

    const float* window = nullptr;
    bool stereo = true;
    std::array<std::vector<float>, 2 * SlotCount> samples;   // slot by channel
    std::array<States, SlotCount> wholeEnds;   // by chunk
    std::array<States, SlotCount> fadedEnds;   // by chunk from FadeChunk on
    std::array<States, SlotCount> outgoing;   // by boundary
    States incoming;   // by boundary, of the segment that is put out
    std::int32_t lowestRinging =
        LinearPhaseGeometry::ChunkCount;   // first-half chunk into which it still rings
    States forward;
    States scratch;
    std::vector<double> pairs;
    std::vector<double> otherPairs;
    std::array<std::vector<float>, 2> produced;
    std::array<std::vector<float>, 2> dry;   // the samples of the produced chunk, which new ones overwrite
};
