// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/stages/MUpsampler.h"

#include <algorithm>
#include <cstddef>

#include "audio/filters/FilterCascade.h"
#include "audio/stages/GrowBuffer.h"
#include "foundation/vector/ChannelPairs.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
// Keeps the recursions out of denormal numbers, whatever the processor's control flags say.
constexpr float denormalGuard = 1e-15f;

constexpr std::int32_t shortTaps = 513;
constexpr std::int32_t longTaps = 2049;
constexpr double firCutoff = 0.49;   // of the host's rate
constexpr double iirCutoff = 0.45351473922902497;   // 20000 / 44100 of the host's rate

// Beyond this a state can only come from something that isn't audio.
constexpr double absurdState = 1e10;

bool NeedsLongFilter(const MUpsampler::Setup& setup)
{
    return setup.factor * setup.sampleRate > MUpsampler::LongFilterRate;
}
}   // namespace

std::int32_t MUpsampler::LatencySamples(const Setup& setup)
{
    if (setup.factor < 2 || !setup.highQuality)
        return 0;
    return (NeedsLongFilter(setup) ? 6144 : 1536) / setup.factor;
}

void MUpsampler::Init(const Setup& newSetup)
{
    setup = newSetup;
    if (setup.factor < 2)
        return;
    const double rate = setup.factor * setup.sampleRate;
    if (setup.highQuality)
    {
        const std::int32_t taps = NeedsLongFilter(setup) ? longTaps : shortTaps;
        fir.SetLowPass(firCutoff * setup.sampleRate, rate, taps, taps);
    }
    else
    {
        MAudioFilters::FilterCascade design;
        design.SetLowPass(setup.sampleRate * iirCutoff, rate, SectionCount);
        for (std::size_t index = 0; index < iir.size(); ++index)
        {
            const MAudioFilters::Filter<double>& section = design.sections[index];
            iir[index] = {
                .b0 = section.b0, .b1 = section.b1, .b2 = section.b2, .a1 = section.a1, .a2 = section.a2
            };
        }
    }
    Reset();
}

void MUpsampler::Reset()
{
    fir.Reset();
    iirMemory = {};
}

void MUpsampler::SetDownFiltered(bool filtered)
{
    if (filtered == filterIIR)
        return;
    filterIIR = filtered;
    iirMemory = {};
}

void MUpsampler::Up(const float* input, std::int32_t sampleCount)
{
    const std::int32_t count = setup.factor * sampleCount;
    GrowBuffer(upBuffer, count);
    GrowBuffer(downBuffer, count);
    MVector::Set(denormalGuard, upBuffer.data(), count);
    // The zeros between the samples take the level down by the factor.
    const auto gain = static_cast<float>(setup.factor);
    if (input != nullptr)
    {
        float* target = upBuffer.data();
        for (std::int32_t index = 0; index < sampleCount; ++index, target += setup.factor)
            *target = (input[index] + denormalGuard) * gain;
    }
    if (setup.highQuality)
        fir.Process(upBuffer.data(), count, WayUp);
    else
        RunPlain(upBuffer.data(), count, WayUp);
    MVector::Zero(downBuffer.data(), count);
}

void MUpsampler::Down(float* output, std::int32_t sampleCount)
{
    const std::int32_t count = setup.factor * sampleCount;
    if (setup.highQuality)
        fir.Process(downBuffer.data(), count, WayDown);
    else if (filterIIR)
        RunPlain(downBuffer.data(), count, WayDown);
    const float* source = downBuffer.data();
    for (std::int32_t index = 0; index < sampleCount; ++index, source += setup.factor)
        output[index] = *source;
}

void MUpsampler::RunPlain(float* srcDst, std::int32_t sampleCount, Way way)
{
    constexpr std::int32_t chunk = 256;
    double pairs[2 * chunk];
    std::array<MVector::CascadeMemory, SectionCount>& memory = iirMemory[static_cast<std::size_t>(way)];
    for (std::int32_t done = 0; done < sampleCount; done += chunk)
    {
        const std::int32_t run = std::min(chunk, sampleCount - done);
        MVector::PairsFromFloats(srcDst + done, nullptr, denormalGuard, pairs, run);
        MVector::CascadeRun(iir.data(), memory.data(), SectionCount, pairs, run,
                            MVector::CascadeDirection::Forward);
        if (!MVector::CascadeKeepSane(memory.data(), SectionCount, absurdState))
            std::fill_n(pairs, 2 * run, 0.0);
        MVector::PairsToFloats(pairs, denormalGuard, srcDst + done, nullptr, run);
    }
}
