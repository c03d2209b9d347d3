// SPDX-License-Identifier: GPL-3.0-or-later
// The road of one audio block through the driver.
#include <algorithm>

#include "audio/stages/GrowBuffer.h"
#include "foundation/text/Boundary.h"
#include "foundation/vector/VectorOperations.h"
#include "plugin/driver/MAudioPlugin.h"

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

    const std::int32_t inputGroups = inputs != nullptr ? buses.InputGroups() : 0;
    const std::int32_t outputGroups = buses.OutputGroups();
    if (sampleCount < 1 || outputs == nullptr || outputGroups < 1)
        return;

    // The work is done in arrays of our own: the host's inputs stay as they are, and its arrays may be shared
    // in any way. Its outputs are worked in where each is one and holds nothing that is to stay.
    dryPath.Begin(bypass, sampleCount);
    ChannelSet in = TakeInputs(inputs, inputGroups, sampleCount);
    ChannelSet dry = DelayDry(in, inputGroups, outputGroups, sampleCount);
    ChannelSet wet;
    const bool directly = replacing && GatherOwnOutputs(wet, outputs);
    if (!directly)
        Scratch(outputScratch, wet, outputGroups * buses.Width(), sampleCount);

    ProcessingBegin(in.pointers.data(), wet.pointers.data(), sampleCount, replacing);
    if (agcActive)
        MeasureInput(in, sampleCount, inputGroups);
    if (upsamplingFactor == 1)
        ProcessDirect(in, wet, sampleCount);
    else
        ProcessUpsampled(in, wet, sampleCount);
    // A mono route has no sides to be told apart: what the effect makes of its one channel plays on both.
    if (IsMonoRoute(in) && effectChannels < outputsPerGroup)
        MVector::Copy(wet.pointers[0], wet.pointers[1], sampleCount);
    if (agcActive)
        gainControl.Process(wet.pointers.data(), sampleCount, outputsPerGroup);
    ProcessingEnd(in.pointers.data(), wet.pointers.data(), sampleCount, replacing);

    if (dryPath.IsHeard())
        for (std::int32_t group = 0; group < outputGroups; ++group)
            for (std::int32_t channel = 0; channel < outputsPerGroup; ++channel)
            {
                const std::size_t index = buses.SlotOf(group, channel);
                dryPath.Mix(wet.pointers[index], dry.pointers[index]);
            }
    if (!directly)
        Deliver(wet, dry, outputs, sampleCount, replacing);
}

/// The host's outputs, if the effect writes all of them and each is an array for itself.
bool MAudioPlugin::GatherOwnOutputs(ChannelSet& wet, float* const* outputs) const
{
    if (outputsPerGroup != buses.Width() || buses.ConnectedOutputs() < buses.Width())
        return false;
    float** next = wet.pointers.data();
    for (std::int32_t group = 0; group < buses.OutputGroups(); ++group)
        for (std::int32_t channel = 0; channel < buses.Width(); ++channel)
        {
            float* target = outputs[buses.HostSlotOf(group, channel)];
            if (target == nullptr || std::find(wet.pointers.data(), next, target) != next)
                return false;
            *next++ = target;
        }
    return true;
}

bool MAudioPlugin::ProcessBlockOrSilence(float* const* inputs, float* const* outputs,
                                         std::int32_t sampleCount, bool replacing) noexcept
{
    const bool processed = AtBoundary("MAudioPlugin::ProcessBlock", false,
                                      [&]
                                      {
                                          ProcessBlock(inputs, outputs, sampleCount, replacing);
                                          return true;
                                      });
    if (processed || !replacing || outputs == nullptr || sampleCount < 1)
        return processed;
    for (std::int32_t group = 0; group < buses.OutputGroups(); ++group)
        for (std::int32_t channel = 0; channel < buses.Width(); ++channel)
            if (float* target = outputs[buses.HostSlotOf(group, channel)])
                MVector::Zero(target, sampleCount);
    return false;
}

MAudioPlugin::ChannelSet MAudioPlugin::TakeInputs(float* const* inputs, std::int32_t inputGroups,
                                                  std::int32_t sampleCount)
{
    ChannelSet host;
    const std::int32_t groups = std::max(inputGroups, buses.OutputGroups());
    std::fill_n(host.pointers.begin(), groups * buses.Width(), nullptr);
    for (std::int32_t group = 0; group < inputGroups; ++group)
        for (std::int32_t channel = 0; channel < buses.Width(); ++channel)
            host.pointers[buses.SlotOf(group, channel)] = inputs[buses.HostSlotOf(group, channel)];
    if (inputGroups > 0)
        FixInputs(host, inputGroups, sampleCount);
    ChannelSet own;
    Scratch(inputScratch, own, groups * buses.Width(), sampleCount);
    for (std::size_t index = 0; index < static_cast<std::size_t>(groups * buses.Width()); ++index)
    {
        const float* source = host.pointers[index];
        if (source == nullptr)
            MVector::Zero(own.pointers[index], sampleCount);
        else if (index % static_cast<std::size_t>(buses.Width()) > 0 && source == host.pointers[index - 1])
            own.pointers[index] = own.pointers[index - 1];   // a mono route stays one
        else
            MVector::CopyAudio(source, own.pointers[index], sampleCount);
    }
    return own;
}

/// The inputs as late as the effect, for the bypass and for channels that nothing processes. Where neither is
/// heard the delay only runs on.
MAudioPlugin::ChannelSet MAudioPlugin::DelayDry(const ChannelSet& inputs, std::int32_t inputGroups,
                                                std::int32_t outputGroups, std::int32_t sampleCount)
{
    ChannelSet dry;
    Scratch(dryScratch, dry, outputGroups * buses.Width(), sampleCount);
    for (std::int32_t group = 0; group < outputGroups; ++group)
        for (std::int32_t channel = 0; channel < buses.Width(); ++channel)
        {
            const std::size_t index = buses.SlotOf(group, channel);
            if (group >= inputGroups)
            {
                MVector::Zero(dry.pointers[index], sampleCount);
                continue;
            }
            const bool heard = dryPath.IsHeard() || channel >= outputsPerGroup;
            dryPath.Run(index, inputs.pointers[index], heard ? dry.pointers[index] : nullptr, sampleCount);
        }
    return dry;
}

bool MAudioPlugin::IsMonoRoute(const ChannelSet& inputs) const
{
    return outputsPerGroup == 2 && inputs.pointers[0] == inputs.pointers[1];
}

/// Writes every channel that the host has. Of channels that share an array the first is heard.
void MAudioPlugin::Deliver(const ChannelSet& wet, const ChannelSet& dry, float* const* outputs,
                           std::int32_t sampleCount, bool replacing)
{
    for (std::int32_t group = 0; group < buses.OutputGroups(); ++group)
        for (std::int32_t channel = 0; channel < buses.ConnectedOutputs(); ++channel)
        {
            float* const* first = outputs + buses.HostSlotOf(group, 0);
            float* target = first[channel];
            if (target == nullptr || std::find(first, first + channel, target) != first + channel)
                continue;
            const std::size_t index = buses.SlotOf(group, channel);
            const float* source = channel < outputsPerGroup ? wet.pointers[index] : dry.pointers[index];
            if (replacing)
                MVector::Copy(source, target, sampleCount);
            else
                MVector::AddInPlace(source, target, sampleCount);
        }
}

void MAudioPlugin::ProcessDirect(const ChannelSet& inputs, const ChannelSet& outputs,
                                 std::int32_t sampleCount)
{
    // ProcessChannels moves pointers about; `inputs` and `outputs` remain as they are.
    ChannelSet in;
    ChannelSet out;
    const std::int32_t count = buses.MostGroups() * buses.Width();
    std::copy_n(inputs.pointers.begin(), count, in.pointers.begin());
    std::copy_n(outputs.pointers.begin(), buses.OutputGroups() * buses.Width(), out.pointers.begin());
    if (outputsAccumulate)
        for (std::int32_t channel = 0; channel < outputsPerGroup; ++channel)
            MVector::Zero(outputs.pointers[static_cast<std::size_t>(channel)], sampleCount);
    ProcessChannels(in, out, sampleCount);
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

/// Hosts pass null for what nothing is plugged into, and tell how many channels of a group are theirs.
void MAudioPlugin::FixInputs(ChannelSet& channels, std::int32_t groups, std::int32_t sampleCount)
{
    const auto end = channels.pointers.begin() + groups * buses.Width();
    if (buses.AllInputsConnected() && std::find(channels.pointers.begin(), end, nullptr) == end)
        return;
    GrowBuffer(silentInput, sampleCount);

    for (std::int32_t group = 0; group < groups; ++group)
    {
        float** first = channels.pointers.data() + group * buses.Width();
        const bool present = first[0] != nullptr;
        for (std::int32_t channel = 0; channel < buses.Width(); ++channel)
        {
            if (!present || channel >= buses.ConnectedInputs())
                first[channel] = silentInput.data();
            else if (first[channel] == nullptr)
                first[channel] = first[channel - 1];
        }
        // A mono input plays as dual mono.
        if (buses.IsMonoInput() && buses.Width() == BusLayout::StereoWidth)
            first[1] = first[0];
    }
}
