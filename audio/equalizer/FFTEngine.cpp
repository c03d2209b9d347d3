// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/FFTEngine.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr std::int32_t BinCount = EqualizerGeometry::FrameSize / 2;
/// 240 dB: no band gets there, and no sum of a frame leaves the range of floats.
constexpr double HighestGain = 1e12;
static_assert(EqualizerGeometry::FrameSize == SpectralFrame::Length);
static_assert(EqualizerGeometry::LatencySamples == EqualizerGeometry::FrameSize);

/// Runs over n places of a ring from `begin` on: visit(place in the ring, offset, length) for each piece.
template <typename Visit>
void OverRing(std::int32_t ringSize, std::int32_t begin, std::int32_t n, Visit visit)
{
    const std::int32_t first = std::min(n, ringSize - begin);
    visit(begin, 0, first);
    if (first < n)
        visit(0, first, n - first);
}
}   // namespace

void FFTEngine::Prepare(std::int32_t channelCount)
{
    assert(channelCount >= 1 && channelCount <= EqualizerGeometry::MaxChannels);
    if (frame == nullptr)
    {
        frame = std::make_unique<SpectralFrame>();
        grid.Prepare(BinCount, FilterList::Capacity);
        zeros.resize(HopSize);
        window.resize(WindowSize);
        double sum = 0;
        for (std::size_t i = 0; i < window.size(); ++i)
        {
            const double sine = std::sin(std::numbers::pi * (static_cast<double>(i) + 0.5) / WindowSize);
            window[i] = static_cast<float>(sine * sine);
            sum += sine * sine;
        }
        // The unscaled transforms multiply by the frame's size, the windows add up to sum / HopSize.
        scale = static_cast<float>(HopSize / (sum * FrameSize));
        for (std::vector<float>& gains : curves)
            gains.resize(FrameSize);
    }
    channels = std::vector<Channel>(static_cast<std::size_t>(channelCount));
    for (Channel& channel : channels)
    {
        channel.input.resize(FrameSize);
        channel.sum.resize(SumSize);
    }
    Reset();
    changed = true;
    SettleFilters();
}

void FFTEngine::Reset()
{
    for (Channel& channel : channels)
    {
        std::fill(channel.input.begin(), channel.input.end(), 0.0f);
        std::fill(channel.sum.begin(), channel.sum.end(), 0.0f);
    }
    hopPosition = 0;
    inputPosition = 0;
    outputPosition = 0;
    changed = changed || evaluating;   // what is half done begins again
    evaluating = false;
    BeginFrame();
}

void FFTEngine::SetFilters(const FilterList& list, double wet)
{
    std::copy_n(list.filters.begin(), list.count, given.filters.begin());
    given.count = list.count;
    givenWet = wet;
    changed = true;
}

void FFTEngine::SettleFilters()
{
    if (!changed || frame == nullptr)
        return;
    grid.Begin(given.filters.data(), given.count);
    evaluatedWet = givenWet;
    changed = false;
    evaluating = false;
    for (std::int32_t share = 0; share < ShareCount; ++share)
        EvaluateShare(share);
    active = 1 - active;
}

void FFTEngine::Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
{
    for (std::int32_t done = 0; done < frames;)
    {
        // Shares and rings end at the same samples.
        const std::int32_t n = std::min(frames - done, ShareSize - hopPosition % ShareSize);
        // All inputs are read before any output is written: arrays may be shared, crosswise too.
        for (std::size_t i = 0; i < channels.size(); ++i)
            MVector::CopyAudio(inputs[i] + done, channels[i].input.data() + inputPosition, n);
        for (std::size_t i = 0; i < channels.size(); ++i)
            MVector::Copy(channels[i].sum.data() + outputPosition, outputs[i] + done, n);
        inputPosition = (inputPosition + n) % FrameSize;
        outputPosition = (outputPosition + n) % SumSize;
        hopPosition += n;
        done += n;
        if (hopPosition % ShareSize == 0)
            WorkShare(hopPosition / ShareSize - 1);
        if (hopPosition == HopSize)
        {
            hopPosition = 0;
            BeginFrame();
        }
    }
}

/// The frame that has just become complete: what the channels compute in the hop that begins here.
void FFTEngine::BeginFrame()
{
    frameBegin = (inputPosition + HopSize) % FrameSize;
    frameOutput = (outputPosition + HopSize) % SumSize;
    filtersFrame = enabled;
    if (evaluating)
        active = 1 - active;
    evaluating = changed && frame != nullptr;
    if (!evaluating)
        return;
    grid.Begin(given.filters.data(), given.count);
    evaluatedWet = givenWet;
    changed = false;
}

void FFTEngine::WorkShare(std::int32_t share)
{
    const auto count = static_cast<std::int32_t>(channels.size());
    const std::int32_t spacing = ShareCount / count;
    if (share % spacing == 0 && share / spacing < count)
        ComputeFrame(channels[static_cast<std::size_t>(share / spacing)]);
    if (evaluating)
        EvaluateShare(share);
}

void FFTEngine::ComputeFrame(Channel& channel)
{
    OverRing(FrameSize, frameBegin, WindowSize,
             [&](std::int32_t place, std::int32_t at, std::int32_t n)
             { frame->Load(channel.input.data() + place, window.data() + at, at, n); });
    frame->Load(zeros.data(), zeros.data(), WindowSize, HopSize);
    frame->Process(filtersFrame ? curves[active].data() : nullptr);
    // Nothing was added to the last hop yet: its places still hold what has come out.
    OverRing(SumSize, frameOutput, WindowSize,
             [&](std::int32_t place, std::int32_t at, std::int32_t n)
             { frame->Unload(at, scale, channel.sum.data() + place, n, false); });
    OverRing(SumSize, (frameOutput + WindowSize) % SumSize, HopSize,
             [&](std::int32_t place, std::int32_t at, std::int32_t n)
             { frame->Unload(WindowSize + at, scale, channel.sum.data() + place, n, true); });
}

void FFTEngine::EvaluateShare(std::int32_t share)
{
    constexpr std::int32_t points = BinCount / ShareCount;
    const double* magnitudes = grid.Evaluate(share * points, points);
    float* gains = curves[1 - active].data() + 2 * share * points;
    for (std::int32_t i = 0; i < points; ++i)
    {
        const double gain = evaluatedWet * magnitudes[i] + (1.0 - evaluatedWet);
        gains[2 * i] = gains[2 * i + 1] = static_cast<float>(std::min(gain, HighestGain));
    }
}
