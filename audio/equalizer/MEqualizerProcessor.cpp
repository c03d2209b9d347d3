// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/MEqualizerProcessor.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr double sameNumber = 1e-50;

double DecibelsFromRatio(double ratio)
{
    return 20 * std::log10(ratio);
}

double RatioFromDecibels(double db)
{
    return std::pow(10.0, db * 0.05);
}
}   // namespace

void MEqualizerProcessor::InitProcessing(std::int32_t channels, double newSampleRate)
{
    const std::int32_t count = std::clamp(channels, 1, MaxChannels);
    sampleRate = newSampleRate;
    normalEngine.Prepare(count);
    linearEngine.Prepare(count);
    fftEngine.Prepare(count);
    engines.Prepare(count, newSampleRate);
    engines.Select(EngineOf(mode));
    prepared = true;
}

EqualizerEngine& MEqualizerProcessor::EngineOf(std::int32_t ofMode)
{
    switch (static_cast<EqualizerMode>(ofMode))
    {
    case EqualizerMode::Normal:
        return normalEngine;
    case EqualizerMode::LinearPhaseFFT:
        return fftEngine;
    default:
        return linearEngine;
    }
}

void MEqualizerProcessor::SetModeAndRatio(std::int32_t newMode, double wetRatio, double newSampleRate)
{
    modeChanged = newMode != mode;
    mode = newMode;
    sampleRate = newSampleRate;
    parameterRatio = static_cast<float>(wetRatio);
    Update();
}

void MEqualizerProcessor::Update()
{
    const MSynchronizerGuard guard(lock);
    wet = parameterRatio;
    filters.Clear();
    if (sampleRate > 0)
        AddCountedBands(filters, ListKind::Full);
    sectionCount = filters.count;
    switch (static_cast<EqualizerMode>(mode))
    {
    case EqualizerMode::Normal:
        // The ratio has gone into the sections' gains.
        wet = 1;
        normalEngine.SetFilters(filters.filters.data(), filters.count);
        break;
    case EqualizerMode::LinearPhase:
        UpdateLinearFilters();
        linearEngine.SetFilters(linearFilters.filters.data(), linearFilters.count);
        linearEngine.SetWet(wet);
        break;
    case EqualizerMode::LinearPhaseFFT:
        fftEngine.SetFilters(filters, wet);
        if (!engines.HasStarted())
            fftEngine.SettleFilters();
        break;
    }
    engines.Select(EngineOf(mode));
}

void MEqualizerProcessor::AddCountedBands(FilterList& list, ListKind kind) const
{
    if (listening)
    {
        list.Add(MAudioFilters::BandPass, 0, listenFrequency, sampleRate, QFromWidth(listenWidth));
        return;
    }
    std::int32_t first = 0;
    std::int32_t last = BandCount - 1;
    if (SoloActive())
        first = last = std::clamp<std::int32_t>(selectedBand, 0, BandCount - 1);
    for (std::int32_t index = first; index <= last; ++index)
        if (Band(index).enabled)
            AddBandSections(Band(index), list, kind);
}

void MEqualizerProcessor::UpdateLinearFilters()
{
    linearFilters.Clear();
    if (!(sampleRate > 0))
        return;
    AddCountedBands(linearFilters, ListKind::Linear);
    if (upsamplingRatio > 1)
    {
        // 20 kHz at 44.1 kHz: takes out the images of the rate before upsampling.
        constexpr double cutoffPerSample = 0.45351473922902497;
        linearFilters.Add(MAudioFilters::LowPass, 0, sampleRate / upsamplingRatio * cutoffPerSample,
                          sampleRate, 0.73);
    }
}

void MEqualizerProcessor::AddBandSections(const BandPoint& band, FilterList& list, ListKind kind) const
{
    const std::int32_t type = band.type;
    const bool linear = kind == ListKind::Linear;
    const double frequency = band.FrequencyHz();
    double q = band.Q();
    double gain = band.y;
    // A shelf is always two passes of half the gain; a peak only where every section runs twice anyway.
    if (type == MAudioFilters::LowShelf || type == MAudioFilters::HighShelf ||
        (type == MAudioFilters::Peak && linear))
        gain *= 0.5;
    if (static_cast<EqualizerMode>(mode) == EqualizerMode::Normal)
        gain = DecibelsFromRatio(RatioFromDecibels(gain) * wet + (1 - static_cast<double>(wet)));
    const bool hasHarmonics = type <= MAudioFilters::HighShelf;
    const std::int32_t passes =
        hasHarmonics ? std::clamp<std::int32_t>(band.harmonicsMaxCount, 0, BandPoint::MaxHarmonics) + 1
                     : std::clamp<std::int32_t>(band.order, 0, 9) + 1;
    if (SoloActive())
    {
        AddSoloSections(band, gain, passes, list);
        return;
    }
    const double semitones = band.harmonicsSemitones;
    const bool octaves = std::fabs(semitones - 12) < sameNumber;
    double sectionFrequency = frequency;
    for (std::int32_t pass = 0; pass < passes; ++pass)
    {
        if (pass == 0 || !hasHarmonics || band.harmonicsEnabled[static_cast<std::size_t>(pass - 1)])
        {
            list.Add(type, gain, sectionFrequency, sampleRate, q);
            if (!linear && type != MAudioFilters::Peak)
                list.Add(type, gain, sectionFrequency, sampleRate, q);
        }
        if (!hasHarmonics)
            continue;
        gain *= band.harmonicsDepth;
        if (std::fabs(gain) < 0.001)
            break;
        const double harmonic = pass + 2;
        if (band.harmonicsLinear)
        {
            sectionFrequency = octaves ? harmonic * frequency
                                       : frequency * std::pow(harmonic, std::pow(2.0, semitones / 12) - 1);
            q += (20 - q) * 0.1;   // each further harmonic is narrower
        }
        else
        {
            sectionFrequency *= octaves ? 2.0 : std::pow(2.0, semitones / 12);
        }
        if (sectionFrequency >= sampleRate / 2)
            break;
    }
}

void MEqualizerProcessor::AddSoloSections(const BandPoint& band, double gainDb, std::int32_t passes,
                                          FilterList& list) const
{
    const std::int32_t type = band.type;
    const double frequency = band.FrequencyHz();
    const double q = band.Q();
    if (type >= MAudioFilters::LowPass && type <= MAudioFilters::BandPass)
    {
        for (std::int32_t pass = 0; pass < passes; ++pass)
            list.Add(type, 0, frequency, sampleRate, q);   // they have no gain
        return;
    }
    // What passes is the response less 1: just what the band changes, whether it boosts or cuts.
    const double gain = std::fabs(DecibelsFromRatio(RatioFromDecibels(gainDb) + 1));
    MAudioFilters::Filter<double>& section = list.Add(type, gain, frequency, sampleRate, q);
    section.b0 -= 1;
    section.b1 += section.a1;
    section.b2 += section.a2;
}

void MEqualizerProcessor::ProcessChannels(const float* const* inputs, float* const* outputs,
                                          std::int32_t frames)
{
    const MSynchronizerGuard guard(lock);
    if (prepared)
        engines.Process(inputs, outputs, frames, bandsEnabled);
}
