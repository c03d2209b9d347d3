// SPDX-License-Identifier: GPL-3.0-or-later
// The road of one audio block through the driver.
#include <algorithm>

#include "audio/stages/GrowBuffer.h"
#include "foundation/vector/VectorOperations.h"
#include "plugin/driver/MAudioPlugin.h"

namespace
{
// Keeps recursions out of denormal numbers, whatever the processor's control flags say.
constexpr float denormalGuard = 1e-15f;
}   // namespace

float** MAudioPlugin::Scratch(std::vector<std::vector<float>>& buffers, ChannelSet& pointers,
                              std::int32_t channels, std::int32_t sampleCount)
{
    if (buffers.size() < static_cast<std::size_t>(channels))
        buffers.resize(static_cast<std::size_t>(channels));
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(channels); ++channel)
    {
        GrowBuffer(buffers[channel], sampleCount);
        pointers.pointers[channel] = buffers[channel].data();
    }
    return pointers.pointers.data();
}

void MAudioPlugin::ProcessBlock(float* const* inputs, float* const* outputs, std::int32_t sampleCount,
                                bool replacing)
{
    const MSynchronizerGuard processGuard(processLock, 0);
    const MSynchronizerGuard settingsGuard(settingsLock);

    const std::int32_t inputGroups = inputs != nullptr ? GetInputGroups() : 0;
    const std::int32_t outputGroups = GetOutputGroups();
    if (sampleCount < 1 || outputs == nullptr || outputs[0] == nullptr || outputGroups < 1)
        return;

    // The groups stand `groupStride` apart in the host's arrays and side by side in these.
    ChannelSet in;
    ChannelSet out;
    const auto gather = [this](ChannelSet& set, float* const* channels, std::int32_t groups)
    {
        for (std::int32_t group = 0; group < groups; ++group)
            for (std::int32_t channel = 0; channel < channelsPerGroup; ++channel)
                set.pointers[static_cast<std::size_t>(group * channelsPerGroup + channel)] =
                    channels[group * groupStride + channel];
    };
    if (inputGroups > 0)
    {
        gather(in, inputs, inputGroups);
        FixAudioBuffers(in, connectedInputs, inputGroups, true, sampleCount);
    }
    gather(out, outputs, outputGroups);
    FixAudioBuffers(out, connectedOutputs, outputGroups, false, sampleCount);

    for (std::int32_t group = 0; group < inputGroups; ++group)
        for (std::int32_t channel = 0; channel < inputsPerGroup; ++channel)
            MVector::AddConstantInPlace(
                denormalGuard, in.pointers[static_cast<std::size_t>(group * channelsPerGroup + channel)],
                sampleCount);

    if (bypass)
    {
        ProcessBypassed(in, out, sampleCount, replacing);
        return;
    }
    ProcessingBegin(in.pointers.data(), out.pointers.data(), sampleCount, replacing);
    if (agcActive)
        MeasureInput(in, sampleCount, inputGroups);
    if (upsamplingFactor == 1 || inputs == nullptr)
        ProcessDirect(in, out, sampleCount, replacing);
    else
        ProcessUpsampled(in, out, sampleCount, replacing);
    if (agcActive)
        gainControl.Process(out.pointers.data(), sampleCount, outputsPerGroup);
    ProcessingEnd(in.pointers.data(), out.pointers.data(), sampleCount, replacing);
}

void MAudioPlugin::ProcessDirect(ChannelSet& inputs, ChannelSet& outputs, std::int32_t sampleCount,
                                 bool replacing)
{
    const std::int32_t inputChannels = std::max(GetInputGroups(), 1) * channelsPerGroup;
    const std::int32_t outputChannels = GetOutputGroups() * channelsPerGroup;
    if (!replacing && !outputsAccumulate)
    {
        ChannelSet scratch;
        Scratch(outputScratch, scratch, outputChannels, sampleCount);
        ChannelSet routed = scratch;
        ProcessChannels(inputs, routed, sampleCount);
        for (std::int32_t channel = 0; channel < outputsPerGroup; ++channel)
            MVector::AddInPlace(scratch.pointers[static_cast<std::size_t>(channel)],
                                outputs.pointers[static_cast<std::size_t>(channel)], sampleCount);
        return;
    }
    // A mode that mixes channels works in place, and the host's input is the host's.
    const bool mixes = activeChannelMode >= ChannelMode::Mid && activeChannelMode < ChannelMode::Surround;
    if (replacing && (mixes || (noInPlace && inputs.pointers[0] == outputs.pointers[0])))
    {
        ChannelSet scratch;
        Scratch(inputScratch, scratch, inputChannels, sampleCount);
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(inputChannels); ++channel)
            if (inputs.pointers[channel] != nullptr)
                MVector::Copy(inputs.pointers[channel], scratch.pointers[channel], sampleCount);
        inputs = scratch;
    }
    if (replacing && outputsAccumulate)
        for (std::int32_t channel = 0; channel < outputsPerGroup; ++channel)
            MVector::Zero(outputs.pointers[static_cast<std::size_t>(channel)], sampleCount);
    ProcessChannels(inputs, outputs, sampleCount);
}

void MAudioPlugin::ProcessChannels(ChannelSet& inputs, ChannelSet& outputs, std::int32_t sampleCount)
{
    PrepareForProcessingOnce();
    routing.Before(inputs.pointers, outputs.pointers, sampleCount);
    // With every channel of a surround group switched off there is nothing to hand to the effect.
    if (activeChannelMode != ChannelMode::Surround || routing.EnabledCount() > 0)
        RunEffect(inputs.pointers.data(), outputs.pointers.data(), sampleCount);
    routing.After(inputs.pointers, outputs.pointers, sampleCount);
}

void MAudioPlugin::RunEffect(float** inputs, float** outputs, std::int32_t sampleCount)
{
    std::int32_t block = maxProcessBlock;
    bool interpolating = false;
    if (sampleCount > interpolationBlock)
    {
        interpolating = interpolator.Prepare(sampleCount);
        if (interpolating)
        {
            Update();
            if (interpolationBlock <= block)
                block = interpolationBlock;
        }
    }
    if (block < 1)
        block = 256;

    if (block >= sampleCount)
    {
        Process(inputs, outputs, sampleCount);
    }
    else
    {
        ChannelSet in;
        ChannelSet out;
        const std::size_t channels =
            static_cast<std::size_t>(std::max(inputsPerGroup, std::max(outputsPerGroup, effectChannels)));
        if (!wantsTimeInfo)
            transport.Rewind();
        for (std::int32_t done = 0; done < sampleCount;)
        {
            const std::int32_t run = std::min(block, sampleCount - done);
            for (std::size_t channel = 0; channel < channels; ++channel)
            {
                in.pointers[channel] = inputs[channel] != nullptr ? inputs[channel] + done : nullptr;
                out.pointers[channel] = outputs[channel] != nullptr ? outputs[channel] + done : nullptr;
            }
            Process(in.pointers.data(), out.pointers.data(), run);
            done += run;
            if (done < sampleCount)
            {
                if (wantsTimeInfo)
                    transport.Advance(run, processingSampleRate);
                if (interpolating)
                {
                    interpolator.Advance(run);
                    Update();
                }
            }
        }
    }
    if (interpolating)
    {
        interpolator.Finish();
        Update();
    }
}

void MAudioPlugin::ProcessBypassed(const ChannelSet& inputs, const ChannelSet& outputs,
                                   std::int32_t sampleCount, bool replacing)
{
    const std::int32_t inputGroups = GetInputGroups();
    const std::int32_t outputGroups = GetOutputGroups();
    for (std::int32_t group = 0; group < outputGroups; ++group)
        for (std::int32_t channel = 0; channel < outputsPerGroup; ++channel)
        {
            const auto index = static_cast<std::size_t>(group * channelsPerGroup + channel);
            float* out = outputs.pointers[index];
            if (group >= inputGroups || channel >= inputsPerGroup)
            {
                if (replacing)
                    MVector::Zero(out, sampleCount);
                continue;
            }
            const float* in = inputs.pointers[index];
            if (replacing)
            {
                bypassDelay[index].Delay(in, out, sampleCount);
                continue;
            }
            ChannelSet scratch;
            Scratch(outputScratch, scratch, static_cast<std::int32_t>(index) + 1, sampleCount);
            bypassDelay[index].Delay(in, scratch.pointers[index], sampleCount);
            MVector::AddInPlace(scratch.pointers[index], out, sampleCount);
        }
}

void MAudioPlugin::FixAudioBuffers(ChannelSet& channels, std::int32_t connected, std::int32_t groups,
                                   bool isInput, std::int32_t sampleCount)
{
    // All channels are connected, unless the host knows better: hosts pass null for what nothing is plugged
    // into.
    const auto end = channels.pointers.begin() + groups * channelsPerGroup;
    if (connected == 0 && std::find(channels.pointers.begin(), end, nullptr) == end)
        return;
    std::vector<float>& fillerBuffer = isInput ? silentInput : discardOutput;
    GrowBuffer(fillerBuffer, sampleCount);
    if (isInput)
        MVector::Zero(fillerBuffer.data(), sampleCount);   // the guard constant was added to it last time
    float* const filler = fillerBuffer.data();

    const std::int32_t real = connected <= 0 ? channelsPerGroup : std::min(connected, channelsPerGroup);
    for (std::int32_t group = 0; group < groups; ++group)
    {
        float** first = channels.pointers.data() + group * channelsPerGroup;
        const bool present = first[0] != nullptr;
        for (std::int32_t channel = 0; channel < channelsPerGroup; ++channel)
        {
            if (!present || channel >= real)
                first[channel] = filler;
            else if (first[channel] == nullptr)
                first[channel] = first[channel - 1];
        }
        // A mono input plays as dual mono.
        if (isInput && connected == 1 && channelsPerGroup == 2)
            first[1] = first[0];
    }
}
