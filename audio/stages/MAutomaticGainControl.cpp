// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/stages/MAutomaticGainControl.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "audio/filters/FilterCascade.h"
#include "foundation/vector/ChannelPairs.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr double holdOffSeconds = 2;
// A mean square below this is silence, and nothing to compare with.
constexpr double silentEnergy = 1e-10;
constexpr double assumedEnergy = 0.05;
// Keeps the recursions out of denormal numbers.
constexpr double denormalGuard = 1e-15;
// Beyond this a state can only come from something that isn't audio.
constexpr double absurdState = 1e10;

MVector::CascadeTaps TapsOf(const MAudioFilters::Filter<double>& section)
{
    return { .b0 = section.b0, .b1 = section.b1, .b2 = section.b2, .a1 = section.a1, .a2 = section.a2 };
}
}   // namespace

void MAutomaticGainControl::Init(double sampleRate, std::int32_t channelCount, std::int32_t latencySamples)
{
    channels = std::clamp(channelCount, 1, MaxChannels);
    latency = latencySamples;
    weighted = useWeighting;
    const auto windowLength = static_cast<std::int32_t>(sampleRate * windowSeconds);
    inputEnergy.Prepare(windowLength);
    outputEnergy.Prepare(windowLength);

    MAudioFilters::LoudnessWeighting design;
    design.Design(sampleRate);
    weighting = { TapsOf(design.shelf), TapsOf(design.highPass) };
    inputMemory = {};
    outputMemory = {};

    delayed.resize(static_cast<std::size_t>(MaxChannels) * ChunkSize);
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(channels); ++channel)
    {
        inputDelay[channel].Clear();
        inputDelay[channel].Reserve(latency + ChunkSize);
        inputDelay[channel].PushZeros(latency);
    }
    gain = 0;
    holdOff = static_cast<std::int64_t>(holdOffSeconds * sampleRate);
}

void MAutomaticGainControl::AssumeInput()
{
    inputEnergy.Fix(assumedEnergy);
}

void MAutomaticGainControl::MeasureInput(const float* const* inputs, std::int32_t sampleCount,
                                         std::int32_t channelCount)
{
    const std::int32_t measured = std::min(channelCount, channels);
    std::array<const float*, MaxChannels> chunk{};
    for (std::int32_t done = 0; done < sampleCount; done += ChunkSize)
    {
        const std::int32_t run = std::min(ChunkSize, sampleCount - done);
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(measured); ++channel)
        {
            chunk[channel] = inputs[channel] + done;
            if (latency <= 0)
                continue;
            float* late = delayed.data() + channel * ChunkSize;
            inputDelay[channel].Delay(chunk[channel], late, run);
            chunk[channel] = late;
        }
        MeasureChunk(chunk.data(), measured, run, inputMemory, inputEnergy);
    }
}

void MAutomaticGainControl::MeasureChunk(const float* const* samples, std::int32_t channelCount,
                                         std::int32_t sampleCount, Memory& memory, SlidingSum& energy)
{
    double pairs[2 * ChunkSize];
    float squares[ChunkSize] = {};
    for (std::int32_t channel = 0; channel < channelCount; channel += 2)
    {
        const float* second = channel + 1 < channelCount ? samples[channel + 1] : nullptr;
        MVector::PairsFromFloats(samples[channel], second, denormalGuard, pairs, sampleCount);
        auto& states = memory[static_cast<std::size_t>(channel / 2)];
        if (weighted)
        {
            MVector::CascadeRun(weighting.data(), states.data(), SectionCount, pairs, sampleCount,
                                MVector::CascadeDirection::Forward);
            if (!MVector::CascadeKeepSane(states.data(), SectionCount, absurdState))
                std::fill_n(pairs, 2 * sampleCount, 0.0);
        }
        for (std::int32_t index = 0; index < sampleCount; ++index)
            squares[index] += static_cast<float>(pairs[2 * index] * pairs[2 * index] +
                                                 pairs[2 * index + 1] * pairs[2 * index + 1]);
    }
    if (channelCount > 0)
        MVector::MultiplyConstantInPlace(squares, sampleCount, 1.0f / static_cast<float>(channelCount));
    energy.Slide(squares, sampleCount);
}

double MAutomaticGainControl::TargetGain(std::int32_t sampleCount)
{
    double target = 1;
    const double outputMean = outputEnergy.Mean();
    if (outputMean >= silentEnergy)
        target = std::clamp(std::sqrt(std::max(inputEnergy.Mean(), 0.0) / outputMean), MinGain, MaxGain);
    if (!std::isfinite(target))
        target = 1;
    if (holdOff > 0)
    {
        target = std::min(target, 1.0);
        holdOff -= sampleCount;
    }
    return target;
}

void MAutomaticGainControl::Process(float* const* outputs, std::int32_t sampleCount,
                                    std::int32_t channelCount)
{
    const std::int32_t measured = std::min(channelCount, channels);
    std::array<const float*, MaxChannels> chunk{};
    for (std::int32_t done = 0; done < sampleCount; done += ChunkSize)
    {
        const std::int32_t run = std::min(ChunkSize, sampleCount - done);
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(measured); ++channel)
            chunk[channel] = outputs[channel] + done;
        MeasureChunk(chunk.data(), measured, run, outputMemory, outputEnergy);
    }

    const double start = gain;
    const double target = TargetGain(sampleCount);
    const double step = (target - start) / sampleCount;
    for (std::int32_t channel = 0; channel < channelCount; ++channel)
    {
        float* samples = outputs[channel];
        if (channel > 0 && samples == outputs[channel - 1])
            continue;
        for (std::int32_t index = 0; index < sampleCount; ++index)
            samples[index] = static_cast<float>(samples[index] * (start + index * step));
    }
    gain = target;
}
