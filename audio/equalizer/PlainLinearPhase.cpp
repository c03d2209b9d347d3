// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/PlainLinearPhase.h"

#include <algorithm>
#include <cstddef>

#include "audio/equalizer/EqualizerGeometry.h"
#include "foundation/vector/ChannelPairs.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr std::int32_t HopSize = EqualizerGeometry::HopSize;
constexpr std::int32_t FrameSize = EqualizerGeometry::FrameSize;
constexpr std::int32_t FadeSize = EqualizerGeometry::FadeSize;
}   // namespace

PlainLinearPhase::BackwardPass::BackwardPass(const PlainLinearPhase& newOwner)
    : owner(newOwner), pairs(2 * FrameSize)
{
    SetOverlaps(HopSize, 0);
    SetPadding(false, true);
}

void PlainLinearPhase::BackwardPass::ProcessFrame(float* frame, std::int32_t length)
{
    const float* window = owner.fade.Data();
    const SectionList& list = owner.ActiveList();
    MVector::Zero(frame, FadeSize);
    MVector::Multiply(frame + FadeSize, window, frame + FadeSize, FadeSize);
    float* end = frame + length - FadeSize;
    MVector::Multiply(end, window + FadeSize, end, FadeSize);
    if (list.Count() > 0)
    {
        std::vector<MVector::CascadeMemory> memory(static_cast<std::size_t>(list.Count()));
        MVector::PairsFromFloats(frame, nullptr, 0.0, pairs.data(), length);
        MVector::CascadeRunPlain(list.Taps(), memory.data(), list.Count(), pairs.data(), length,
                                 MVector::CascadeDirection::Backward);
        MVector::PairsToFloats(pairs.data(), 0.0f, frame, nullptr, length);
    }
    MVector::Multiply(frame, window, frame, FadeSize);
}

PlainLinearPhase::PlainLinearPhase()
    : backward(*this), forwardMemory(SectionList::Capacity), hop(HopSize), hopPairs(2 * HopSize)
{
    fade.Build(2 * FadeSize, MSignalWindowType::Hann, true);
    Reset();
}

void PlainLinearPhase::Reset()
{
    std::fill(forwardMemory.begin(), forwardMemory.end(), MVector::CascadeMemory());
    backward.ClearBuffers();
    processedQueue.Clear();
    inputQueue.Clear();
    inputQueue.PushZeros(HopSize);
}

void PlainLinearPhase::SetFilters(const MAudioFilters::Filter<double>* newSections, std::int32_t count)
{
    sections.Set(newSections, count);
}

void PlainLinearPhase::Process(const float* input, float* output, std::int32_t frames)
{
    inputQueue.Push(input, frames);
    while (inputQueue.Count() >= HopSize)
        ProcessHop();
    processedQueue.Pull(output, frames);
}

void PlainLinearPhase::ProcessHop()
{
    inputQueue.Pull(hop.data(), HopSize);
    backward.Process(hop.data(), hop.data(), HopSize);
    const SectionList& list = ActiveList();
    if (list.Count() > 0)
    {
        MVector::PairsFromFloats(hop.data(), nullptr, 0.0, hopPairs.data(), HopSize);
        MVector::CascadeRunPlain(list.Taps(), forwardMemory.data(), list.Count(), hopPairs.data(), HopSize,
                                 MVector::CascadeDirection::Forward);
        MVector::PairsToFloats(hopPairs.data(), EqualizerGeometry::OutputGuard, hop.data(), nullptr, HopSize);
    }
    processedQueue.Push(hop.data(), HopSize);
}
