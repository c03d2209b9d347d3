// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/stages/DryPath.h"

void DryPath::Prepare(double sampleRate, bool bypassed, std::int32_t channels, std::int32_t latencySamples)
{
    constexpr std::int32_t usualBlock = 8192;
    latency = latencySamples;
    for (std::int32_t channel = 0; channel < channels; ++channel)
    {
        MSampleQueue& delay = delays[static_cast<std::size_t>(channel)];
        delay.Clear();
        delay.Reserve(latency + usualBlock);
        delay.PushZeros(latency);
    }
    fade.Prepare(sampleRate, bypassed);
}

void DryPath::Run(std::size_t channel, const float* input, float* late, std::int32_t sampleCount)
{
    MSampleQueue& delay = delays[channel];
    delay.Push(input, sampleCount);
    if (late != nullptr)
        delay.Pull(late, sampleCount);
    else
        delay.DropFront(sampleCount);
}
