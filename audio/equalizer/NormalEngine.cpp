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
    delays = std::vector<DelayRing>(static_cast<std::size_t>(channels));
    for (DelayRing& delay : delays)
        delay.Prepare(EqualizerGeometry::LatencySamples);
    memory.assign((delays.size() + 1) / 2, std::vector<MVector::CascadeMemory>(SectionList::Capacity));
    pairs.resize(2 * DelayRing::MaxPiece);
}

void NormalEngine::Reset()
{
    for (DelayRing& delay : delays)
        delay.Reset();
    for (auto& sections : memory)
        std::fill(sections.begin(), sections.end(), MVector::CascadeMemory());
}

void NormalEngine::Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
{
    if (delays.empty())
        return;
    const float* delayed[EqualizerGeometry::MaxChannels];
    for (std::int32_t done = 0; done < frames;)
    {
        const std::int32_t n = delays[0].PieceLength(frames - done);
        for (std::size_t channel = 0; channel < delays.size(); ++channel)
            delayed[channel] = delays[channel].Exchange(inputs[channel] + done, n);
        for (std::size_t first = 0; first < delays.size(); first += 2)
        {
            const bool single = first + 1 == delays.size();
            FilterPair(first / 2, delayed[first], single ? nullptr : delayed[first + 1],
                       outputs[first] + done, single ? nullptr : outputs[first + 1] + done, n);
        }
        done += n;
    }
}

/// The second channel is null where there is none.
void NormalEngine::FilterPair(std::size_t pair, const float* a, const float* b, float* outA, float* outB,
                              std::int32_t n)
{
    const std::int32_t count = enabled ? list.Count() : 0;
    if (count == 0)
    {
        MVector::Copy(a, outA, n);
        if (b != nullptr)
            MVector::Copy(b, outB, n);
        return;
    }
    MVector::CascadeMemory* sections = memory[pair].data();
    MVector::PairsFromFloats(a, b, EqualizerGeometry::RunGuard, pairs.data(), n);
    MVector::CascadeRun(list.Taps(), sections, count, pairs.data(), n, MVector::CascadeDirection::Forward);
    if (!MVector::CascadeKeepSane(sections, count, EqualizerGeometry::AbsurdState))
        std::fill(pairs.begin(), pairs.end(), 0.0);
    MVector::PairsToFloats(pairs.data(), EqualizerGeometry::OutputGuard, outA, outB, n);
}
