// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "audio/analyzer/AnalyzerClient.h"
#include "audio/analyzer/AnalyzerFrequencyMap.h"
#include "audio/fft/MSignalWindowType.h"
#include "audio/filters/FilterCascade.h"
#include "foundation/containers/MEventBase.h"
#include "foundation/vector/FFT.h"

/// From sample streams to spectra of PointCount points, evenly spaced on a logarithmic axis from 20 Hz to 20
/// kHz (or half the sample rate). One engine serves any number of clients.
///
/// Point i stands for 10^(log10 20 + (i + 0.5) s) Hz with s = (log10 T - log10 20) / 1024 and
/// T = min(20000, half the rate), so at rates of 40 kHz and above an index means the same frequency. Values
/// are linear amplitudes: a sine of amplitude A reads A / 2, as the other half lies at its negative
/// frequency.
///
/// Setup and ConfigureClient run outside the audio thread and under the effect's lock; Analyse runs on the
/// audio thread, allocates nothing, and waits for a client's lock only while its spectrum is being read.
template <typename Sample, int Points>
class MSpectralAnalyzerT;

template <>
class MSpectralAnalyzerT<float, 1024> : public MEventTarget
{
public:
    static constexpr std::int32_t PointCount = 1024;
    static constexpr std::int32_t LevelCount = AnalyzerLevelCount;
    static constexpr std::int32_t SuperResolutionFrameSize = 2048;

    MSpectralAnalyzerT() = default;
    MSpectralAnalyzerT(const MSpectralAnalyzerT&) = delete;
    MSpectralAnalyzerT& operator=(const MSpectralAnalyzerT&) = delete;
    ~MSpectralAnalyzerT() override = default;

    /// Fills out[0 .. PointCount - 1] from a statistic (AnalyzerProcessor); zeros where the client doesn't
    /// keep it.
    /// @param deharmonize  0 to 1, see SpectrumOperations::Deharmonize
    /// Thread: any. Throws "Could not acquire mutex.".
    virtual void GetSpectrum(AnalyzerClient& client, float* out, std::int32_t processorIndex,
                             double deharmonize);
    /// Weights a spectrum of PointCount values; here not at all.
    virtual void ApplyPrefilter(float* array) const;

    /// Everything that depends on the sample rate and the frame.
    /// @param newSampleRate   Hz, of the incoming samples; above 100 kHz they are decimated first
    /// @param frameSize       FFT length, a power of two up to 2^18
    /// @param topFrequency    Hz, upper end of the axis, limited to half the rate after decimation
    /// @param timeResolution  0: the window covers the frame, 1: 20 ms of it, zeros behind
    void Setup(double newSampleRate, std::int32_t frameSize, double topFrequency, double timeResolution);
    /// Creates what a client needs and starts its frames anew. Statistics of an unchanged size stay.
    void ConfigureClient(AnalyzerClient& client, const AnalyzerClientParameters& parameters);
    /// Feeds n samples of a mono signal; what is no audio (MVector::CopyAudio) counts as 0. A client that
    /// wasn't configured since the last change of the frame size is passed by. Thread: audio.
    void Analyse(AnalyzerClient& client, const float* samples, std::int32_t n);
    /// Clears the statistics and leaves the frames alone.
    void ResetClient(AnalyzerClient& client);

    double SampleRate() const { return sampleRate; }
    double InputSampleRate() const { return inputSampleRate; }
    std::int32_t Decimation() const { return decimation; }
    std::int32_t FFTSize() const { return fftSize; }
    const MSignalWindowType& Window() const { return window; }
    const AnalyzerFrequencyMap& FullMap() const { return fullMap; }

    double peakDetection = 0;   ///< 0 to 1
    double peakDetectionThreshold = -40;   ///< dB below the largest bin
    double displayFloor = -120;   ///< lower end of the display in dB

protected:
    /// Only the window, for a changed time resolution; takes effect with the next frame.
    void SetupWindow(double timeResolution);
    void SetWindowType(std::int32_t type);

private:
    static constexpr std::int32_t DecimationChunk = 4096;

    void BuildWindow(std::int32_t length);
    void SetupDecimation(double newSampleRate);
    void SetupLevels();
    bool IsConfigured(const AnalyzerClient& client) const;
    void Feed(AnalyzerClient& client, const float* samples, std::int32_t n);
    void ProcessFrame(AnalyzerClient& client, std::int32_t level);
    void FeedNextLevel(AnalyzerClient& client, std::int32_t level);
    void ComputeMagnitudes(const std::vector<float>& frame, bool logarithmic);
    void ReadLevel(AnalyzerClient& client, std::int32_t level, std::size_t processorIndex,
                   double deharmonize);
    void GetSuperResolutionSpectrum(AnalyzerClient& client, float* out, std::size_t processorIndex,
                                    double deharmonize);

    double sampleRate = 44100;   // after decimation
    double inputSampleRate = 44100;
    std::int32_t decimation = 1;
    std::int32_t fftSize = 0;
    MFFT fft;
    MSignalWindowType window;
    std::int32_t windowType = MSignalWindowType::Hann;
    float windowScale = 0;
    std::vector<float> magnitudes;   // fftSize / 2
    std::vector<float> frameData;   // fftSize
    std::vector<float> inputScratch;   // DecimationChunk, only with a decimation
    std::vector<float> levelScratch;   // fftSize
    AnalyzerFrequencyMap fullMap;
    std::array<AnalyzerFrequencyMap, LevelCount> levelMaps;
    std::array<std::int32_t, LevelCount> levelFirst{};
    std::array<std::int32_t, LevelCount> levelLast{};
    std::array<std::int32_t, LevelCount + 1> levelBounds{};   // from the top of the axis to its bottom
    MAudioFilters::DecimatorCascade inputDecimator;
    MAudioFilters::DecimatorCascade halfBandDecimator;
};

using MSpectralAnalyzer = MSpectralAnalyzerT<float, 1024>;
