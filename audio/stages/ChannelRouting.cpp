// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/stages/ChannelRouting.h"

#include <algorithm>
#include <cstddef>

#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr ChannelModeInfo modes[ChannelModeCount] = {
    { "Left + Right", "Left + Right", "L+R", "Default setting for stereo (or mono) processing.", 2, 2, false,
      false },
    { "Left", "Left", "L", "Processes the left channel only.", 1, 2, false, false },
    { "Right", "Right", "R", "Processes the right channel only.", 1, 2, false, false },
    { "Mono", "Mid", "M", "Processes mono content.", 1, 2, true, true },
    { "Stereo", "Side", "S", "Processes stereo content.", 1, 2, true, true },
    { "Mono + Stereo", "Mid + Side", "M+S", "Processes mono & stereo contents separately.", 2, 2, true,
      true },
    { "Left + Right (neg)", "Left + Right (neg)", "L+R-",
      "Processes both channels, but inverts the right one.", 2, 2, false, true },
    { "Surround", "Surround", "7.1", "Surround processing of up to 8 channels.", 8, 8, false, false },
};

// M = (L + R) / 2, S = (L - R) / 2, in place.
void ToMidSide(float* left, float* right, std::int32_t sampleCount)
{
    for (std::int32_t index = 0; index < sampleCount; ++index)
    {
        const float mid = (left[index] + right[index]) * 0.5f;
        right[index] = (left[index] - right[index]) * 0.5f;
        left[index] = mid;
    }
}

// L = M + S, R = M - S, in place.
void ToLeftRight(float* mid, float* side, std::int32_t sampleCount)
{
    for (std::int32_t index = 0; index < sampleCount; ++index)
    {
        const float left = mid[index] + side[index];
        side[index] = mid[index] - side[index];
        mid[index] = left;
    }
}

// Holds exactly `length` zeros.
void Prime(MSampleQueue& queue, std::int32_t length)
{
    queue.Clear();
    queue.Reserve(2 * length + 8192);
    queue.PushZeros(length);
}
}   // namespace

const ChannelModeInfo& InfoOf(ChannelMode mode)
{
    return modes[static_cast<std::size_t>(mode)];
}

bool FindChannelMode(const MString& longName, ChannelMode& mode)
{
    for (std::int32_t index = 0; index < ChannelModeCount; ++index)
        if (longName == MString(modes[index].longName))
        {
            mode = static_cast<ChannelMode>(index);
            return true;
        }
    return false;
}

void ChannelRouting::Prepare(const Setup& newSetup)
{
    setup = newSetup;
    // Of the channels that are there: a host may connect fewer than the mode has.
    const std::ptrdiff_t present = std::clamp<std::int32_t>(setup.width, 0, 8);
    enabledCount =
        static_cast<std::int32_t>(std::count(setup.enabled.begin(), setup.enabled.begin() + present, true));
    dryLatency = 0;
    converted = false;
    if (InfoOf(setup.mode).inputChannels < 2)
    {
        dryLatency = setup.latency;
        Prime(dryDelay, dryLatency);
    }
    else if (Selects())
    {
        dryLatency = setup.latency;
        for (std::int32_t group = 0; group < setup.inputGroups; ++group)
            for (std::int32_t channel = 0; channel < setup.width; ++channel)
                Prime(surroundDelays[static_cast<std::size_t>(group * setup.groupStride + channel)],
                      dryLatency);
    }
}

void ChannelRouting::Before(Channels& inputs, Channels& outputs, std::int32_t sampleCount)
{
    converted = false;
    if (setup.mode == ChannelMode::LeftAndRight)
        return;
    if (setup.mode == ChannelMode::Surround)
    {
        if (Selects())
            Select(inputs, outputs, sampleCount);
        return;
    }
    // Equal pointers are a mono route: there is no side to take apart.
    if (setup.width != 2 || inputs[0] == inputs[1] || outputs[0] == outputs[1])
        return;
    converted = true;
    for (std::int32_t group = 0; group < setup.inputGroups; ++group)
        ConvertGroup(inputs.data() + group * setup.groupStride, outputs.data() + group * setup.groupStride,
                     sampleCount);
}

void ChannelRouting::ConvertGroup(float** in, float** out, std::int32_t sampleCount) const
{
    const auto swapPairs = [in, out]
    {
        std::swap(in[0], in[1]);
        std::swap(out[0], out[1]);
    };
    switch (setup.mode)
    {
    case ChannelMode::Right:
        swapPairs();
        break;
    case ChannelMode::Mid:
    case ChannelMode::MidAndSide:
        ToMidSide(in[0], in[1], sampleCount);
        break;
    case ChannelMode::Side:
        ToMidSide(in[0], in[1], sampleCount);
        swapPairs();
        break;
    case ChannelMode::LeftAndInvertedRight:
        MVector::MultiplyConstantInPlace(in[1], sampleCount, -1.0f);
        break;
    default:
        break;
    }
}

void ChannelRouting::After(Channels& inputs, Channels& outputs, std::int32_t sampleCount)
{
    if (!converted)
        return;
    for (std::int32_t group = 0; group < setup.outputGroups; ++group)
        RestoreGroup(inputs.data() + group * setup.groupStride, outputs.data() + group * setup.groupStride,
                     sampleCount);
}

void ChannelRouting::RestoreGroup(float** in, float** out, std::int32_t sampleCount)
{
    switch (setup.mode)
    {
    case ChannelMode::Left:
        Delayed(in[1], out[1], sampleCount);
        break;
    case ChannelMode::Right:
        Delayed(in[1], out[1], sampleCount);
        std::swap(out[0], out[1]);
        break;
    case ChannelMode::Mid:
        Delayed(in[1], out[1], sampleCount);
        ToLeftRight(out[0], out[1], sampleCount);
        break;
    case ChannelMode::Side:
        Delayed(in[1], out[1], sampleCount);
        std::swap(out[0], out[1]);
        ToLeftRight(out[0], out[1], sampleCount);
        break;
    case ChannelMode::MidAndSide:
        ToLeftRight(out[0], out[1], sampleCount);
        break;
    default:
        break;   // the inverted right stays inverted
    }
}

void ChannelRouting::Delayed(const float* source, float* destination, std::int32_t sampleCount)
{
    if (dryLatency > 0)
        dryDelay.Delay(source, destination, sampleCount);
    else if (source != destination)
        MVector::Copy(source, destination, sampleCount);
}

void ChannelRouting::Select(Channels& inputs, Channels& outputs, std::int32_t sampleCount)
{
    Channels inputSelection{};
    Channels outputSelection{};
    for (std::int32_t group = 0; group < std::max(setup.inputGroups, setup.outputGroups); ++group)
    {
        const std::int32_t first = group * setup.groupStride;
        std::int32_t packed = first;
        for (std::int32_t channel = 0; channel < setup.width; ++channel)
        {
            const auto place = static_cast<std::size_t>(first + channel);
            float* in = group < setup.inputGroups ? inputs[place] : nullptr;
            float* out = group < setup.outputGroups ? outputs[place] : nullptr;
            if (setup.enabled[static_cast<std::size_t>(channel)])
            {
                inputSelection[static_cast<std::size_t>(packed)] = in;
                outputSelection[static_cast<std::size_t>(packed)] = out;
                ++packed;
            }
            else if (in != nullptr && out != nullptr)
            {
                surroundDelays[place].Delay(in, out, sampleCount);
            }
            else if (out != nullptr)
            {
                MVector::Zero(out, sampleCount);
            }
        }
    }
    inputs = inputSelection;
    outputs = outputSelection;
}
