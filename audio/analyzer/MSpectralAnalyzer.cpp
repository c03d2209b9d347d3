// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/MSpectralAnalyzer.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "audio/analyzer/SpectrumOperations.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr double LowestFrequency = 20.0;
// Rates above this are decimated, to no less than the second one.
constexpr double HighestRate = 100000.0;
constexpr double LowestDecimatedRate = 50000.0;
constexpr float InputDecimatorHz = 24900.0f;
constexpr double ShortestWindowSeconds = 0.02;

constexpr float SpectrumGuard = 1e-15f;
constexpr float SilentAmplitude = 1e-10f;
constexpr std::int32_t LongestAverage = 0x7FFFFFFF;

std::int32_t Size(const std::vector<float>& values)
{
    return static_cast<std::int32_t>(values.size());
}

// Frames that the average length covers; whatever isn't a sensible number counts as 1.
std::int32_t AverageFrameCount(double framesPerSecond, double seconds)
{
    const double count = framesPerSecond * seconds;
    if (!(count > 1.0))
        return 1;
    return static_cast<std::int32_t>(std::min(count, static_cast<double>(LongestAverage)));
}

std::unique_ptr<BlockProcessor> CreateProcessor(std::size_t index)
{
    switch (index)
    {
    case ProcessorAverage:
        return std::make_unique<BlockProcessorAverage>();
    case ProcessorAverageInfinite:
        return std::make_unique<BlockProcessorAverageInfinite>();
    case ProcessorMaximum:
        return std::make_unique<BlockProcessorMaximum>();
    default:
        return std::make_unique<BlockProcessorMaximumInfinite>();
    }
}

// Multiplies by a line from `start` in `count` steps of `step`; the step after the last is left out.
void MultiplyByLine(float* values, std::int32_t count, double start, double step)
{
    for (std::int32_t i = 0; i < count; ++i)
        values[i] = static_cast<float>(values[i] * (start + step * i));
}
}   // namespace

void MSpectralAnalyzerT<float, 1024>::ApplyPrefilter(float* /*array*/) const {}

void MSpectralAnalyzerT<float, 1024>::Setup(double newSampleRate, std::int32_t frameSize, double topFrequency,
                                            double timeResolution)
{
    SetupDecimation(newSampleRate);
    if (frameSize != fftSize)
    {
        fft = MFFT(std::countr_zero(static_cast<std::uint32_t>(frameSize)), FFTDivideInverse);
        fftSize = frameSize;
        // The memory of a longer frame goes back: several instances may run in one host.
        frameData = std::vector<float>(static_cast<std::size_t>(fftSize));
        magnitudes = std::vector<float>(static_cast<std::size_t>(fftSize / 2));
        levelScratch = std::vector<float>(static_cast<std::size_t>(fftSize));
    }
    SetupWindow(timeResolution);
    const double top = std::min(topFrequency, std::trunc(sampleRate / 2.0));
    fullMap.Build(fftSize, sampleRate, LowestFrequency, top, PointCount);
    SetupLevels();
    inputScratch.resize(decimation > 1 ? DecimationChunk : 0);
}

void MSpectralAnalyzerT<float, 1024>::SetupDecimation(double newSampleRate)
{
    inputSampleRate = newSampleRate;
    decimation = 1;
    if (newSampleRate > HighestRate)
    {
        const auto ratio = static_cast<std::uint32_t>(newSampleRate / LowestDecimatedRate);
        decimation = static_cast<std::int32_t>(ratio > 2 ? std::bit_ceil(ratio) : ratio);
        if (newSampleRate / decimation < LowestDecimatedRate)
            decimation /= 2;
        inputDecimator.SetLowPass(InputDecimatorHz, static_cast<float>(newSampleRate));
    }
    sampleRate = newSampleRate / decimation;
}

void MSpectralAnalyzerT<float, 1024>::SetupWindow(double timeResolution)
{
    const std::int32_t shortest =
        static_cast<std::int32_t>(std::min(sampleRate * ShortestWindowSeconds, fftSize * 1.0));
    const double free = fftSize - shortest;
    const double extra = std::trunc(free * (1.0 - timeResolution) * (1.0 - timeResolution));
    const std::int32_t length =
        shortest + static_cast<std::int32_t>(extra > 0.0 ? std::min(extra, free) : 0.0);
    BuildWindow(length);
}

void MSpectralAnalyzerT<float, 1024>::SetWindowType(std::int32_t type)
{
    windowType = type;
    if (window.Size() > 0)
        BuildWindow(window.Size());
}

void MSpectralAnalyzerT<float, 1024>::BuildWindow(std::int32_t length)
{
    if (window.IsBuiltAs(length, windowType))
        return;
    window.Build(length, windowType, false);
    windowScale = 1.0f / window.Sum();
}

// The axis in fifths. Each level but the lowest two covers the upper fifth of what it reaches alone with its
// upper neighbour and the lower one with its lower neighbour.
void MSpectralAnalyzerT<float, 1024>::SetupLevels()
{
    for (std::int32_t k = 0; k <= LevelCount; ++k)
        levelBounds[static_cast<std::size_t>(LevelCount - k)] = std::max(PointCount * k / LevelCount - 1, 0);
    for (std::size_t k = 0; k < LevelCount; ++k)
    {
        levelFirst[k] = levelBounds[std::min<std::size_t>(k + 2, LevelCount)];
        levelLast[k] = levelBounds[k];
    }
    halfBandDecimator.SetLowPass(1.0f, 4.0f);   // a quarter of any rate
    double rate = sampleRate;
    for (std::size_t k = 0; k < LevelCount; ++k, rate *= 0.5)
    {
        const auto& frequency = fullMap.Frequency();
        levelMaps[k].Build(fftSize, rate, frequency[static_cast<std::size_t>(levelFirst[k])],
                           frequency[static_cast<std::size_t>(levelLast[k])],
                           levelLast[k] - levelFirst[k] + 1);
    }
}

void MSpectralAnalyzerT<float, 1024>::ConfigureClient(AnalyzerClient& client,
                                                      const AnalyzerClientParameters& parameters)
{
    const MSynchronizerGuard guard(client);
    client.averageLength = parameters.averageLength;
    client.superResolution = parameters.superResolution;
    client.logarithmic = parameters.logarithmic;
    // Clearing two bits keeps the overlap exact to 4 samples. A frame always takes something new.
    const double overlap = std::clamp(parameters.overlap, 0.0, 1.0);
    client.keep = std::clamp(static_cast<std::int32_t>(fftSize * overlap) & ~3, 0, std::max(fftSize - 4, 0));
    client.frameSize = fftSize;
    client.readSpectrum = std::vector<float>(static_cast<std::size_t>(fftSize / 2));
    client.readScratch = std::vector<float>(static_cast<std::size_t>(fftSize / 2));
    if (decimation > 1)
        client.inputDecimator.Prepare(inputDecimator);

    double rate = sampleRate;
    for (std::int32_t index = 0; index < LevelCount; ++index, rate *= 0.5)
    {
        AnalyzerLevel& level = client.levels[static_cast<std::size_t>(index)];
        if (index > 0 && !client.superResolution)
        {
            level = AnalyzerLevel();
            continue;
        }
        level.frame = std::vector<float>(static_cast<std::size_t>(fftSize));
        level.position = 0;
        level.halfBand.Prepare(halfBandDecimator);
        const double framesPerSecond = rate / ((1.0 - overlap) * fftSize);
        for (std::size_t p = 0; p < AnalyzerProcessorCount; ++p)
        {
            auto& processor = level.processors[p];
            if (!parameters.processors[p])
                processor.reset();
            else if (!processor)
                processor = CreateProcessor(p);
            if (processor)
                processor->Init(AverageFrameCount(framesPerSecond, client.averageLength), fftSize,
                                framesPerSecond);
        }
    }
}

bool MSpectralAnalyzerT<float, 1024>::IsConfigured(const AnalyzerClient& client) const
{
    return fftSize > 0 && client.frameSize == fftSize;
}

void MSpectralAnalyzerT<float, 1024>::Analyse(AnalyzerClient& client, const float* samples, std::int32_t n)
{
    if (!IsConfigured(client) || (decimation > 1 && !client.inputDecimator.IsPrepared()))
        return;
    if (decimation == 1)
    {
        Feed(client, samples, n);
        return;
    }
    // A chunk is a multiple of every decimation, so it makes no difference to n / decimation samples in all.
    float* scratch = inputScratch.data();
    while (n > 0)
    {
        const std::int32_t count = std::min(n, DecimationChunk);
        MVector::CopyAudio(samples, scratch, count);
        client.inputDecimator.Run(inputDecimator, scratch, count);
        const std::int32_t kept = count / decimation;
        for (std::int32_t i = 1; i < kept; ++i)
            scratch[i] = scratch[i * decimation];
        Feed(client, scratch, kept);
        samples += count;
        n -= count;
    }
}

void MSpectralAnalyzerT<float, 1024>::Feed(AnalyzerClient& client, const float* samples, std::int32_t n)
{
    AnalyzerLevel& level = client.levels[0];
    while (n > 0)
    {
        const std::int32_t count = std::min(n, fftSize - level.position);
        MVector::CopyAudio(samples, level.frame.data() + level.position, count);
        level.position += count;
        samples += count;
        n -= count;
        if (level.position == fftSize)
            ProcessFrame(client, 0);
    }
}

void MSpectralAnalyzerT<float, 1024>::ProcessFrame(AnalyzerClient& client, std::int32_t levelIndex)
{
    const MSynchronizerGuard guard(client);
    if (client.superResolution && levelIndex + 1 < LevelCount)
        FeedNextLevel(client, levelIndex);
    AnalyzerLevel& level = client.levels[static_cast<std::size_t>(levelIndex)];
    ComputeMagnitudes(level.frame, client.logarithmic);
    for (const auto& processor : level.processors)
        if (processor)
            processor->Process(magnitudes.data());
    MVector::Move(level.frame.data() + fftSize - client.keep, level.frame.data(), client.keep);
    level.position = client.keep;
    if (levelIndex == 0)
        client.TellListeners();
}

// The new samples of a full frame go down one level at half the rate.
void MSpectralAnalyzerT<float, 1024>::FeedNextLevel(AnalyzerClient& client, std::int32_t levelIndex)
{
    AnalyzerLevel& level = client.levels[static_cast<std::size_t>(levelIndex)];
    const std::int32_t nextIndex = levelIndex + 1;
    AnalyzerLevel& next = client.levels[static_cast<std::size_t>(nextIndex)];
    const float* source = level.frame.data() + client.keep;
    std::int32_t pairsLeft = (fftSize - client.keep) / 2;
    while (pairsLeft > 0)
    {
        const std::int32_t pairs = std::min(pairsLeft, fftSize - next.position);
        float* scratch = levelScratch.data();
        MVector::Copy(source, scratch, 2 * pairs);
        level.halfBand.Run(halfBandDecimator, scratch, 2 * pairs);
        float* kept = next.frame.data() + next.position;
        for (std::int32_t i = 0; i < pairs; ++i)
            kept[i] = scratch[2 * i];
        next.position += pairs;
        source += 2 * pairs;
        pairsLeft -= pairs;
        if (next.position == fftSize)
            ProcessFrame(client, nextIndex);
    }
}

void MSpectralAnalyzerT<float, 1024>::ComputeMagnitudes(const std::vector<float>& frame, bool logarithmic)
{
    float* data = frameData.data();
    float* bins = magnitudes.data();
    const std::int32_t binCount = Size(magnitudes);
    MVector::Multiply(frame.data(), window.Data(), data, window.Size());
    MVector::Zero(data + window.Size(), fftSize - window.Size());
    fft.Forward(data);
    MVector::AddConstantInPlace(SpectrumGuard, data, fftSize);
    data[1] = 0;   // bin N/2, so that pair 0 is bin 0 alone
    MVector::Magnitude(data, bins, binCount);
    MVector::MultiplyConstantInPlace(bins, binCount, windowScale);
    if (peakDetection - 1e-20 > 0)
        SpectrumOperations::KeepPeaks(bins, binCount, peakDetection, peakDetectionThreshold);
    if (logarithmic)
    {
        MVector::ThresholdLowInPlace(bins, binCount, SilentAmplitude);
        MVector::Ln(bins, bins, binCount);
    }
}

void MSpectralAnalyzerT<float, 1024>::ResetClient(AnalyzerClient& client)
{
    const MSynchronizerGuard guard(client);
    for (AnalyzerLevel& level : client.levels)
        for (const auto& processor : level.processors)
            if (processor)
                processor->Reset();
}

void MSpectralAnalyzerT<float, 1024>::GetSpectrum(AnalyzerClient& client, float* out,
                                                  std::int32_t processorIndex, double deharmonize)
{
    const MSynchronizerGuard guard(client);
    const auto index = static_cast<std::size_t>(processorIndex);
    if (!IsConfigured(client) || index >= AnalyzerProcessorCount || !client.levels[0].processors[index])
    {
        MVector::Zero(out, PointCount);
        return;
    }
    if (client.superResolution)
    {
        GetSuperResolutionSpectrum(client, out, index, deharmonize);
        return;
    }
    ReadLevel(client, 0, index, deharmonize);
    fullMap.MapToPoints(client.readSpectrum.data(), out);
}

// Linear amplitudes of one level into the client's scratch.
void MSpectralAnalyzerT<float, 1024>::ReadLevel(AnalyzerClient& client, std::int32_t level,
                                                std::size_t processorIndex, double deharmonize)
{
    float* bins = client.readSpectrum.data();
    const std::int32_t binCount = Size(client.readSpectrum);
    client.levels[static_cast<std::size_t>(level)].processors[processorIndex]->Get(bins);
    if (client.logarithmic)
        MVector::Exp(bins, bins, binCount);
    SpectrumOperations::Deharmonize(bins, binCount, deharmonize, client.readScratch.data());
}

// Level 0 gives the top fifth of the axis alone; each lower fifth is a crossfade of two levels, in
// logarithms.
void MSpectralAnalyzerT<float, 1024>::GetSuperResolutionSpectrum(AnalyzerClient& client, float* out,
                                                                 std::size_t processorIndex,
                                                                 double deharmonize)
{
    MVector::Zero(out, PointCount);
    std::array<float, PointCount> part;
    for (std::size_t k = 0; k < LevelCount; ++k)
    {
        const std::int32_t first = levelFirst[k];
        const std::int32_t count = levelLast[k] - first + 1;
        float* points = part.data() + first;
        ReadLevel(client, static_cast<std::int32_t>(k), processorIndex, deharmonize);
        levelMaps[k].MapToPoints(client.readSpectrum.data(), points);
        MVector::ThresholdLowInPlace(points, count, SilentAmplitude);
        MVector::Ln(points, points, count);
        MVector::ThresholdLowInPlace(points, count, BlockProcessor::SilentLogarithm);
        if (k + 1 < LevelCount)
        {
            const std::int32_t from = levelBounds[k + 2];
            const std::int32_t length = levelBounds[k + 1] - from;
            MultiplyByLine(part.data() + from, length + 1, 0.0, 1.0 / length);
        }
        if (k > 0)
        {
            const std::int32_t from = levelBounds[k + 1];
            const std::int32_t length = levelBounds[k] - from;
            MultiplyByLine(part.data() + from, length + 1, 1.0, -1.0 / length);
        }
        MVector::AddInPlace(points, out + first, count);
    }
    MVector::Exp(out, out, PointCount);
}
