// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/MEqualizerProcessor.h"

#include <algorithm>
#include <cmath>

#include "foundation/vector/VectorOperations.h"

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

void MEqualizerProcessor::InitProcessing(std::int32_t channels)
{
    preparedChannels = std::clamp(channels, 1, MaxChannels);
    if (gainCurve.empty())
    {
        gainCurve.assign(FFTSize, 1.0f);
        magnitudeGrid.Prepare(FFTSize / 2, FilterList::Capacity);
    }
    normalEngine.Prepare(preparedChannels);
    linearEngine.Prepare(preparedChannels);
    fftEngine.Prepare(preparedChannels);
    fftEngine.SetGainCurve(gainCurve.data());
    normalEngine.Reset();
    linearEngine.Reset();
    fftEngine.Reset();
    dryQueues.resize(static_cast<std::size_t>(preparedChannels));
    for (MArrayQueue<float>& queue : dryQueues)
    {
        queue.Clear();
        queue.Reserve(2 * FFTSize);
        queue.PushZeros(FFTSize);
    }
}

void MEqualizerProcessor::SetModeAndRatio(std::int32_t newMode, double wetRatio, double newSampleRate)
{
    modeChanged = newMode != mode;
    mode = newMode;
    sampleRate = newSampleRate;
    parameterRatio = static_cast<float>(wetRatio);
    Update();
    if (modeChanged)
        PrimeAfterModeChange();
}

void MEqualizerProcessor::PrimeAfterModeChange()
{
    switch (static_cast<EqualizerMode>(mode))
    {
    case EqualizerMode::Normal:
        normalEngine.Reset();
        break;
    case EqualizerMode::LinearPhase:
        linearEngine.Reset();
        for (MArrayQueue<float>& queue : dryQueues)
        {
            queue.Clear();
            queue.PushZeros(FFTSize);
        }
        break;
    default:
        break;   // the frames of the FFT run on
    }
}

void MEqualizerProcessor::Update()
{
    const MSynchronizerGuard guard(lock);
    wet = parameterRatio;
    filters.Clear();
    AddCountedBands(filters, ListKind::Full);
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
        break;
    case EqualizerMode::LinearPhaseFFT:
        UpdateGainCurve();
        break;
    }
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
    AddCountedBands(linearFilters, ListKind::Linear);
    if (upsamplingRatio > 1)
    {
        // 20 kHz at 44.1 kHz: takes out the images of the rate before upsampling.
        constexpr double cutoffPerSample = 0.45351473922902497;
        linearFilters.Add(MAudioFilters::LowPass, 0, sampleRate / upsamplingRatio * cutoffPerSample,
                          sampleRate, 0.73);
    }
}

void MEqualizerProcessor::UpdateGainCurve()
{
    if (gainCurve.empty())
        return;   // not prepared yet: InitProcessing is followed by an update
    const double* magnitudes = magnitudeGrid.Evaluate(filters.filters.data(), filters.count);
    for (std::size_t bin = 0; bin < FFTSize / 2; ++bin)
    {
        const auto gain = static_cast<float>(wet * magnitudes[bin] + (1 - static_cast<double>(wet)));
        gainCurve[2 * bin] = gain;
        gainCurve[2 * bin + 1] = gain;
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
            list.Add(type, std::fabs(gainDb), frequency, sampleRate, q);
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
                                          std::int32_t frames, std::int32_t channels)
{
    const MSynchronizerGuard guard(lock);
    const std::int32_t count = std::min(channels, preparedChannels);
    if (frames > static_cast<std::int32_t>(mixBuffer.size()))
        mixBuffer.resize(static_cast<std::size_t>(frames));
    switch (static_cast<EqualizerMode>(mode))
    {
    case EqualizerMode::Normal:
        normalEngine.SetEnabled(bandsEnabled);
        normalEngine.Process(inputs, outputs, frames);
        break;
    case EqualizerMode::LinearPhase:
        linearEngine.SetEnabled(bandsEnabled);
        linearEngine.Process(inputs, outputs, frames);
        MixDry(inputs, outputs, frames, count);
        break;
    case EqualizerMode::LinearPhaseFFT:
        fftEngine.SetEnabled(bandsEnabled);
        fftEngine.Process(inputs, outputs, frames);
        break;
    }
}

void MEqualizerProcessor::MixDry(const float* const* inputs, float* const* outputs, std::int32_t frames,
                                 std::int32_t channels)
{
    for (std::int32_t channel = 0; channel < channels; ++channel)
    {
        MArrayQueue<float>& queue = dryQueues[static_cast<std::size_t>(channel)];
        queue.Push(inputs[channel], frames);
        if (wet >= 1)
        {
            queue.DropFront(std::min(frames, queue.Count()));
            continue;
        }
        queue.Pull(mixBuffer.data(), frames);
        MVector::MultiplyConstantInPlace(outputs[channel], frames, wet);
        MVector::AddScaled(outputs[channel], mixBuffer.data(), frames, 1 - wet);
    }
}
