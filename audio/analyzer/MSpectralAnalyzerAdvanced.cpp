// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/MSpectralAnalyzerAdvanced.h"

#include <algorithm>
#include <cmath>

#include "control/envelope/MEnvelopeComputer.h"
#include "foundation/text/MException.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr double TopFrequency = 20000.0;
constexpr float NepersPerDecibel = 0.115129255f;   // ln(10) / 20
// Stored values may be anything; the engine works within the ranges of their controls.
constexpr std::int32_t LowestFFTSizePow = 10;
constexpr std::int32_t HighestFFTSizePow = 18;
constexpr std::int32_t HighestOverlapPow = 12;
// From this width on, in points, there is something to smooth.
constexpr double SmallestSmoothWidth = 3.0;
}   // namespace

MSpectralAnalyzerAdvancedT<float, 1024>::MSpectralAnalyzerAdvancedT()
{
    SetSmoothness(settings.smoothness);
}

void MSpectralAnalyzerAdvancedT<float, 1024>::Store(const MStoreParams& params)
{
    const MSynchronizerGuard guard(lock);
    settings.Store(params);
    if (params.saving == 0)
        SetSmoothness(settings.smoothness);
}

void MSpectralAnalyzerAdvancedT<float, 1024>::SetSmoothness(double smoothness)
{
    const MSynchronizerGuard guard(lock);
    settings.smoothness = smoothness;
    interpolator.SetWidth(SmoothingWidth(smoothness));
}

double MSpectralAnalyzerAdvancedT<float, 1024>::SmoothingWidth(double smoothness)
{
    const double width = std::floor(smoothness * PointCount + 0.5);
    return width >= SmallestSmoothWidth ? std::min(width, PointCount * 1.0) : 1.0;
}

void MSpectralAnalyzerAdvancedT<float, 1024>::Initialise(double newSampleRate, bool force)
{
    const MSynchronizerGuard guard(lock);
    const std::int32_t power = std::clamp(settings.fftSizePow, LowestFFTSizePow, HighestFFTSizePow);
    const std::int32_t frameSize = settings.superResolution ? SuperResolutionFrameSize : 1 << power;
    SetWindowType(settings.windowType);
    Setup(newSampleRate, frameSize, TopFrequency, settings.timeResolution);
    if (settings.enabled || settings.sonogramEnabled)
        BuildPrefilter();
    if (force)
        ConfigureClients();
    latchedEnabled = settings.enabled;
    latchedSonogramEnabled = settings.sonogramEnabled;
    UpdateVisibility();
}

void MSpectralAnalyzerAdvancedT<float, 1024>::ConfigureClients()
{
    AnalyzerClientParameters parameters;
    parameters.averageLength = settings.averageLength;
    parameters.overlap = 1.0 - std::ldexp(1.0, -std::clamp(settings.overlapPow, 0, HighestOverlapPow));
    parameters.superResolution = settings.superResolution;
    parameters.logarithmic = true;
    for (std::size_t p = 0; p < AnalyzerProcessorCount; ++p)
        parameters.processors[p] = settings.enabled && settings.processors[p].enabled;
    latchedProcessors = parameters.processors;
    // The sonogram reads the first statistic, whether its curve is shown or not.
    parameters.processors[ProcessorAverage] |= settings.sonogramEnabled;
    latchedChannelMode = settings.channelMode;

    if (settings.enabled || settings.sonogramEnabled)
    {
        ConfigureClient(ownClients[0], parameters);
        if (latchedChannelMode == ChannelModeLeftAndRight)
            ConfigureClient(ownClients[1], parameters);
    }
    for (const AddedClient& added : addedClients)
    {
        for (std::size_t p = 0; p < AnalyzerProcessorCount; ++p)
            parameters.processors[p] =
                added.processorIndex == AllProcessors || added.processorIndex == static_cast<std::int32_t>(p);
        ConfigureClient(*added.client, parameters);
    }
}

void MSpectralAnalyzerAdvancedT<float, 1024>::UpdateVisibility()
{
    for (std::size_t p = 0; p < AnalyzerProcessorCount; ++p)
        visibility.processors[p] = { latchedProcessors[p],
                                     latchedProcessors[p] && latchedChannelMode == ChannelModeLeftAndRight };
    visibility.sonogram = settings.sonogramEnabled;
    visibility.comparison = settings.comparisonEnable;
    displayFloor = settings.resolutionDb;
}

void MSpectralAnalyzerAdvancedT<float, 1024>::ApplyTimeResolution()
{
    const MSynchronizerGuard guard(lock);
    SetupWindow(settings.timeResolution);
}

void MSpectralAnalyzerAdvancedT<float, 1024>::BuildPrefilter()
{
    const MEnvelope& envelope = settings.prefilter;
    if (prefilterStamp == envelope.ChangeStamp() && builtPrefilterDepth == settings.prefilterDepth)
        return;
    prefilterStamp = envelope.ChangeStamp();
    builtPrefilterDepth = settings.prefilterDepth;
    const bool isFlat = std::all_of(envelope.Points().begin(), envelope.Points().end(),
                                    [](const MEnvelopePoint& point) { return std::abs(point.y) < 1e-50; });
    prefilterActive = !(settings.prefilterDepth - 1e-20 > 0 && isFlat);
    if (!prefilterActive)
        return;
    MEnvelopeComputer computer;
    try
    {
        computer.Compile(envelope);
    }
    catch (const MException&)
    {
        prefilterActive = false;   // a stored curve that nobody can evaluate must not stop the audio
        return;
    }
    const double step = (envelope.MaxX() - envelope.MinX()) * 0.0009765625;
    computer.Fill(prefilterCurve.data(), envelope.MinX(), step, PointCount);
    // A point above 0 dB lowers its frequency.
    const float factor = -static_cast<float>(settings.prefilterDepth) * NepersPerDecibel;
    MVector::MultiplyConstantInPlace(prefilterCurve.data(), PointCount, factor);
    MVector::Exp(prefilterCurve.data(), prefilterCurve.data(), PointCount);
}

void MSpectralAnalyzerAdvancedT<float, 1024>::ApplyPrefilter(float* array) const
{
    if ((latchedEnabled || latchedSonogramEnabled) && prefilterActive)
        MVector::Multiply(array, prefilterCurve.data(), array, PointCount);
}

void MSpectralAnalyzerAdvancedT<float, 1024>::AddClient(AnalyzerClient& client, std::int32_t processorIndex)
{
    const MSynchronizerGuard guard(lock);
    addedClients.push_back({ &client, processorIndex });
}

void MSpectralAnalyzerAdvancedT<float, 1024>::ResetAll()
{
    const MSynchronizerGuard guard(lock);
    for (AnalyzerClient& client : ownClients)
        ResetClient(client);
    for (const AddedClient& added : addedClients)
        ResetClient(*added.client);
}

void MSpectralAnalyzerAdvancedT<float, 1024>::AnalyseOwn(const float* const* channels, std::int32_t n,
                                                         std::int32_t channelCount)
{
    if ((!latchedEnabled && !latchedSonogramEnabled) || settings.freeze || channelCount < 1)
        return;
    Feed(ownClients[0], channels, n, channelCount);
    if (latchedChannelMode == ChannelModeLeftAndRight && channelCount > 1)
        Analyse(ownClients[1], channels[1], n);
}

void MSpectralAnalyzerAdvancedT<float, 1024>::AnalyseClient(AnalyzerClient& client,
                                                            const float* const* channels, std::int32_t n,
                                                            std::int32_t channelCount)
{
    if (!settings.freeze && channelCount > 0)
        Feed(client, channels, n, channelCount);
}

void MSpectralAnalyzerAdvancedT<float, 1024>::Feed(AnalyzerClient& client, const float* const* channels,
                                                   std::int32_t n, std::int32_t channelCount)
{
    // These two act at once, without any Initialise.
    peakDetection = settings.peakDetection;
    peakDetectionThreshold = settings.peakDetectionThreshold;
    if (channelCount > 1 && latchedChannelMode == ChannelModeMix)
        FeedMix(client, channels, n, channelCount);
    else if (channelCount > 1 && latchedChannelMode == ChannelModeRight)
        Analyse(client, channels[1], n);
    else
        Analyse(client, channels[0], n);
}

// In chunks, which are a multiple of every decimation, so that the scratch needn't grow on the audio thread.
void MSpectralAnalyzerAdvancedT<float, 1024>::FeedMix(AnalyzerClient& client, const float* const* channels,
                                                      std::int32_t n, std::int32_t channelCount)
{
    const float scale = 1.0f / static_cast<float>(channelCount);
    for (std::int32_t start = 0; start < n; start += MixChunk)
    {
        const std::int32_t count = std::min(MixChunk, n - start);
        MVector::Add(channels[0] + start, channels[1] + start, mix.data(), count);
        for (std::int32_t channel = 2; channel < channelCount; ++channel)
            MVector::AddInPlace(channels[channel] + start, mix.data(), count);
        MVector::MultiplyConstantInPlace(mix.data(), count, scale);
        Analyse(client, mix.data(), count);
    }
}
