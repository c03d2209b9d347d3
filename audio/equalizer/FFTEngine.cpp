// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/FFTEngine.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr std::int32_t FrameSize = EqualizerGeometry::FrameSize;
static_assert(FrameSize == SpectralFrame::Length);
static_assert(EqualizerGeometry::LatencySamples == FrameSize);
}   // namespace

void FFTEngine::Prepare(std::int32_t channelCount)
{
    assert(channelCount >= 1 && channelCount <= EqualizerGeometry::MaxChannels);
    window.Build(FrameSize, MSignalWindowType::Hann, true);
    scale = 1.0f / (static_cast<float>(Overlap) * window.Sum());
    if (frame == nullptr)
        frame = std::make_unique<SpectralFrame>();
    channels = std::vector<Channel>(static_cast<std::size_t>(channelCount));
    for (Channel& channel : channels)
    {
        channel.input.resize(FrameSize);
        channel.sum.resize(FrameSize);
    }
    Reset();
}

void FFTEngine::Reset()
{
    position = 0;
    const auto count = static_cast<std::int32_t>(channels.size());
    for (std::int32_t i = 0; i < count; ++i)
    {
        Channel& channel = channels[static_cast<std::size_t>(i)];
        std::fill(channel.input.begin(), channel.input.end(), 0.0f);
        std::fill(channel.sum.begin(), channel.sum.end(), 0.0f);
        // Evenly apart, and an even number of samples, as a SpectralFrame is loaded.
        channel.untilFrame = HopSize - i * (HopSize / EqualizerGeometry::MaxChannels) *
                                           (EqualizerGeometry::MaxChannels / std::max(count, 1));
    }
}

void FFTEngine::Process(const float* const* inputs, float* const* outputs, std::int32_t frames)
{
    for (std::int32_t done = 0; done < frames;)
    {
        std::int32_t n = std::min(frames - done, FrameSize - position);
        for (const Channel& channel : channels)
            n = std::min(n, channel.untilFrame);
        // All inputs are read before any output is written: arrays may be shared, crosswise too.
        for (std::size_t i = 0; i < channels.size(); ++i)
            MVector::CopyFinite(inputs[i] + done, channels[i].input.data() + position, n);
        for (std::size_t i = 0; i < channels.size(); ++i)
            MVector::Copy(channels[i].sum.data() + position, outputs[i] + done, n);
        position = (position + n) % FrameSize;
        done += n;
        for (Channel& channel : channels)
        {
            channel.untilFrame -= n;
            if (channel.untilFrame == 0)
                CompleteFrame(channel);
        }
    }
}

/// The frame begins at the oldest sample, which is the next to be overwritten. The sums of its last hop begin
/// here: their place still holds what has been put out.
void FFTEngine::CompleteFrame(Channel& channel)
{
    const std::int32_t upper = FrameSize - position;
    frame->Load(channel.input.data() + position, window.Data(), 0, upper);
    frame->Load(channel.input.data(), window.Data() + upper, upper, position);
    frame->Process(enabled ? gainCurve : nullptr);
    const std::int32_t fresh = position - HopSize;
    if (fresh >= 0)
    {
        frame->Unload(0, scale, channel.sum.data() + position, upper, false);
        frame->Unload(upper, scale, channel.sum.data(), fresh, false);
        frame->Unload(FrameSize - HopSize, scale, channel.sum.data() + fresh, HopSize, true);
    }
    else
    {
        // The last hop lies across the rings' end.
        frame->Unload(0, scale, channel.sum.data() + position, upper + fresh, false);
        frame->Unload(upper + fresh, scale, channel.sum.data() + FrameSize + fresh, -fresh, true);
        frame->Unload(upper, scale, channel.sum.data(), position, true);
    }
    channel.untilFrame = HopSize;
}
