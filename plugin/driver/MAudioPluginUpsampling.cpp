// SPDX-License-Identifier: GPL-3.0-or-later
// The stages around an effect: upsampling, and what the gain control measures.
#include <algorithm>
#include <cstddef>

#include "foundation/vector/VectorOperations.h"
#include "plugin/driver/MAudioPlugin.h"

void MAudioPlugin::MeasureInput(const ChannelSet& inputs, std::int32_t sampleCount, std::int32_t inputGroups)
{
    if (inputGroups > 0)
        gainControl.MeasureInput(inputs.pointers.data(), sampleCount, inputsPerGroup);
    else
        gainControl.AssumeInput();
}

/// The routing and the effect know a mono route by channels that share their samples, at either rate: such a
/// channel shares those of its predecessor's upsampler too.
MAudioPlugin::ChannelSet MAudioPlugin::FeedUpsamplers(const ChannelSet& inputs, std::int32_t sampleCount)
{
    ChannelSet fed;
    const std::int32_t width = std::max(inputsPerGroup, outputsPerGroup);
    const bool downFiltered = NeedsDownFilter();
    for (std::int32_t group = 0; group < buses.MostGroups(); ++group)
        for (std::int32_t channel = 0; channel < width; ++channel)
        {
            const std::size_t index = buses.SlotOf(group, channel);
            MUpsampler& upsampler = *upsamplers[index];
            upsampler.SetDownFiltered(downFiltered);
            upsampler.Up(inputs.pointers[index], sampleCount);
            const bool shared = channel > 0 && inputs.pointers[index] == inputs.pointers[index - 1];
            fed.pointers[index] = shared ? fed.pointers[index - 1] : upsampler.UpSamples();
        }
    return fed;
}

MAudioPlugin::ChannelSet MAudioPlugin::EffectOutputs()
{
    ChannelSet work;
    for (std::int32_t group = 0; group < buses.OutputGroups(); ++group)
        for (std::int32_t channel = 0; channel < std::max(inputsPerGroup, outputsPerGroup); ++channel)
        {
            const std::size_t index = buses.SlotOf(group, channel);
            work.pointers[index] = upsamplers[index]->DownSamples();
        }
    return work;
}

void MAudioPlugin::ProcessUpsampled(const ChannelSet& inputs, const ChannelSet& outputs,
                                    std::int32_t sampleCount)
{
    // ProcessChannels moves pointers about; `inputs` and `outputs` remain as they are.
    ChannelSet in = FeedUpsamplers(inputs, sampleCount);
    ChannelSet out = EffectOutputs();
    ProcessChannels(in, out, upsamplingFactor * sampleCount);

    for (std::int32_t group = 0; group < buses.OutputGroups(); ++group)
        for (std::int32_t channel = 0; channel < outputsPerGroup; ++channel)
        {
            const std::size_t index = buses.SlotOf(group, channel);
            upsamplers[index]->Down(outputs.pointers[index], sampleCount);
        }
    LimitOutputs(outputs, sampleCount);
}

void MAudioPlugin::LimitOutputs(const ChannelSet& outputs, std::int32_t sampleCount)
{
    const double limit = GetOutputLimit();
    if (limit < 0)
        return;
    for (std::int32_t group = 0; group < buses.OutputGroups(); ++group)
        for (std::int32_t channel = 0; channel < outputsPerGroup; ++channel)
            if (float* output = outputs.pointers[buses.SlotOf(group, channel)])
                MVector::ClipInPlace(output, sampleCount, static_cast<float>(-limit),
                                     static_cast<float>(limit));
}
