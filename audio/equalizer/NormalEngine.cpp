// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/NormalEngine.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

#include "audio/equalizer/EqualizerGeometry.h"
#include "foundation/vector/ChannelPairs.h"
#include "foundation/vector/VectorOperations.h"

void NormalEngine::Prepare(std::int32_t channels)
{
    assert(channels >= 1 && channels <= EqualizerGeometry::MaxChannels);
    delays = std::vector<MArrayQueue<float>>(static_cast<std::size_t>(channels));
    for (MArrayQueue<float>& delay : delays)
        delay.Reserve(EqualizerGeometry::LatencySamples + ChunkSize);
    channelPairs = std::vector<ChannelPair>((delays.size() + 1) / 2);
    for (ChannelPair& pair : channelPairs)
    {
        for (std::size_t side = 0; side < 2; ++side)
        {
            pair.delayed[side].resize(ChunkSize);
            pair.filtered[side].resize(ChunkSize);
        }
        pair.memory.resize(SectionList::Capacity);
        pair.memoryAtStart.resize(SectionList::Capacity);
    }
    pairs.resize(std::size_t{ 2 } * ChunkSize);
    staging.resize(delays.size() * ChunkSize);
    Reset();
}

void NormalEngine::Reset()
{
    for (MArrayQueue<float>& delay : delays)
    {
        delay.Clear();
        delay.PushZeros(EqualizerGeometry::LatencySamples);
    }
    for (ChannelPair& pair : channelPairs)
        std::fill(pair.memory.begin(), pair.memory.end(), MVector::CascadeMemory());
    chunkLength = 0;
    position = 0;
    stale = false;
}

void NormalEngine::SetFilters(const MAudioFilters::Filter<double>* sections, std::int32_t count)
{
    CutChunk();
    list.Set(sections, count);
}

void NormalEngine::SetEnabled(bool filtered)
{
    if (filtered == enabled)
        return;
    CutChunk();
    enabled = filtered;
}

void NormalEngine::Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
{
    for (std::int32_t done = 0; done < frames;)
    {
        if (position == chunkLength)
            TakeChunk();
        if (stale)
            RunChunk();
        const std::int32_t n = std::min(frames - done, chunkLength - position);
        for (std::size_t channel = 0; channel < delays.size(); ++channel)
            MVector::CopyAudio(inputs[channel] + done, staging.data() + channel * ChunkSize, n);
        for (std::size_t channel = 0; channel < delays.size(); ++channel)
        {
            delays[channel].Push(staging.data() + channel * ChunkSize, n);
            MVector::Copy(channelPairs[channel / 2].filtered[channel % 2].data() + position,
                          outputs[channel] + done, n);
        }
        position += n;
        done += n;
    }
}

void NormalEngine::TakeChunk()
{
    chunkLength = ChunkSize;
    position = 0;
    for (std::size_t channel = 0; channel < delays.size(); ++channel)
        delays[channel].Pull(channelPairs[channel / 2].delayed[channel % 2].data(), chunkLength);
    stale = true;
}

void NormalEngine::RunChunk()
{
    for (std::size_t index = 0; index < channelPairs.size(); ++index)
    {
        ChannelPair& pair = channelPairs[index];
        std::copy_n(pair.memory.begin(), ActiveCount(), pair.memoryAtStart.begin());
        RunPair(pair, 2 * index + 1 == delays.size(), chunkLength);
    }
    stale = false;
}

/// The first n samples of the chunk.
void NormalEngine::RunPair(ChannelPair& pair, bool single, std::int32_t n)
{
    const float* second = single ? nullptr : pair.delayed[1].data();
    float* secondOut = single ? nullptr : pair.filtered[1].data();
    const std::int32_t count = ActiveCount();
    if (count == 0)
    {
        MVector::Copy(pair.delayed[0].data(), pair.filtered[0].data(), n);
        if (!single)
            MVector::Copy(second, secondOut, n);
        return;
    }
    MVector::PairsFromFloats(pair.delayed[0].data(), second, EqualizerGeometry::RunGuard, pairs.data(), n);
    MVector::CascadeRun(list.Taps(), pair.memory.data(), count, pairs.data(), n,
                        MVector::CascadeDirection::Forward);
    if (!MVector::CascadeKeepSane(pair.memory.data(), count, EqualizerGeometry::AbsurdState))
        std::fill(pairs.begin(), pairs.end(), 0.0);
    MVector::PairsToFloats(pairs.data(), EqualizerGeometry::OutputGuard, pair.filtered[0].data(), secondOut,
                           n);
}

void NormalEngine::CutChunk()
{
    if (stale || position == chunkLength)
        return;
    for (std::size_t index = 0; index < channelPairs.size(); ++index)
    {
        // As far as the chunk is out, with the sections that it was made with.
        ChannelPair& pair = channelPairs[index];
        std::copy_n(pair.memoryAtStart.begin(), ActiveCount(), pair.memory.begin());
        RunPair(pair, 2 * index + 1 == delays.size(), position);
    }
    for (std::size_t channel = 0; channel < delays.size(); ++channel)
    {
        std::vector<float>& delayed = channelPairs[channel / 2].delayed[channel % 2];
        std::copy(delayed.begin() + position, delayed.begin() + chunkLength, delayed.begin());
    }
    chunkLength -= position;
    position = 0;
    stale = true;
}
