// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/equalizer/EqualizerEngine.h"
#include "audio/equalizer/SectionList.h"
#include "foundation/containers/MArrayQueue.h"
#include "foundation/vector/BiquadCascade.h"

/// The "Normal" mode: a plain delay of 32768 samples, then the sections in a row, minimum phase.
///
/// The delay lets the sections run over whole chunks ahead of their output, so that the result doesn't depend
/// on the lengths of the blocks, and a short block costs little. A new list takes effect with the next block
/// all the same: the part of a chunk that isn't out yet is run again.
///
/// Without sections the output is the delayed input, bit for bit.
class NormalEngine final : public EqualizerEngine
{
public:
    void Prepare(std::int32_t channels) override;
    void Reset() override;
    /// 0 to SectionList::Capacity sections. Between two blocks, under the owner's lock. Never allocates.
    void SetFilters(const MAudioFilters::Filter<double>* sections, std::int32_t count);
    void SetEnabled(bool filtered) override;
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames) override;

private:
    static constexpr std::int32_t ChunkSize = 256;

    struct ChannelPair
    {
        std::vector<float> delayed[2];   // what the chunk is made of
        std::vector<float> filtered[2];   // what comes out
        std::vector<MVector::CascadeMemory> memory;
        std::vector<MVector::CascadeMemory> memoryAtStart;   // of the chunk
    };

    std::int32_t ActiveCount() const { return enabled ? list.Count() : 0; }
    void TakeChunk();
    void RunChunk();
    void RunPair(ChannelPair& pair, bool single, std::int32_t n);
    /// Brings the sections to where the output stands, and makes a chunk of what was to follow.
    void CutChunk();

    std::vector<MArrayQueue<float>> delays;
    std::vector<ChannelPair> channelPairs;
    std::vector<double> pairs;
    std::vector<float> staging;   // the input of a piece, since outputs may share its arrays
    SectionList list;
    bool enabled = true;
    std::int32_t chunkLength = 0;
    std::int32_t position = 0;   // in the chunk
    bool stale = false;   // the chunk is taken, but not run
};
