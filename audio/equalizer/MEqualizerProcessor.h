// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/equalizer/FFTEngine.h"
#include "audio/equalizer/LinearPhaseEngine.h"
#include "audio/equalizer/MEqualizerBase.h"
#include "audio/equalizer/NormalEngine.h"
#include "audio/equalizer/SoftSaturator.h"
#include "audio/filters/FilterMagnitudes.h"
#include "foundation/containers/MArrayQueue.h"

enum class EqualizerMode : std::int32_t
{
    Normal = 0,   ///< minimum-phase sections behind a plain delay
    LinearPhase = 1,   ///< each section once backward over frames, once forward
    LinearPhaseFFT = 2   ///< the product of all magnitudes, multiplied onto spectra of frames
};

/// Runs the bands on audio. All three modes have the same latency of 32768 samples, at every sample rate,
/// so that no change of mode or of filters changes what a host has to compensate.
///
/// There is no crossfade between filter sets; only the output gain is ramped. The owner's lock covers
/// everything here but the construction.
class MEqualizerProcessor : public MEqualizerBase
{
public:
    static constexpr std::int32_t FFTSize = 32768;
    static constexpr std::int32_t OverlapSize = 16384;
    static constexpr std::int32_t MaxChannels = 8;

    /// Makes room for the channels and forgets all audio; the delay stays primed. Main thread.
    void InitProcessing(std::int32_t channels);
    /// Rebuilds the filter lists from the bands. Throws MException "Could not acquire mutex.", or "Invalid
    /// filter type." for a band that a fault has damaged.
    void Update() override;
    virtual void ResetChannel(std::int32_t) {}
    /// One block of all channels. Audio thread.
    void ProcessChannels(const float* const* inputs, float* const* outputs, std::int32_t frames,
                         std::int32_t channels);

    std::int32_t GetLatency() const { return FFTSize; }
    /// Samples that still come out after the input has ended, for the host.
    std::int32_t GetTailSize() const { return (filters.count + 1) * 1024; }
    const FilterList& LinearFilters() const { return linearFilters; }
    const float* GainCurve() const { return gainCurve.data(); }

    /// The factor by which the effect runs above the host's rate, 1 where the driver filters by itself.
    std::int32_t upsamplingRatio = 1;

protected:
    /// Takes a mode and a ratio in and primes what a change of mode has to start anew.
    void SetModeAndRatio(std::int32_t newMode, double wetRatio, double newSampleRate);

    SoftSaturator saturator;

private:
    enum class ListKind
    {
        Full,   ///< full gains, sections doubled as "Normal" runs them
        Linear   ///< half gains: each section runs twice
    };

    void AddBandSections(const BandPoint& band, FilterList& list, ListKind kind) const;
    void AddSoloSections(const BandPoint& band, double gainDb, std::int32_t passes, FilterList& list) const;
    void AddCountedBands(FilterList& list, ListKind kind) const;
    void UpdateLinearFilters();
    void UpdateGainCurve();
    void PrimeAfterModeChange();
    void MixDry(const float* const* inputs, float* const* outputs, std::int32_t frames,
                std::int32_t channels);
    bool SoloActive() const { return autoListen && selectedBand >= 0; }

    FilterList linearFilters;
    std::vector<float> gainCurve;   // one multiplier for each float of a packed spectrum
    MAudioFilters::MagnitudeGrid magnitudeGrid;
    NormalEngine normalEngine;
    LinearPhaseEngine linearEngine;
    FFTEngine fftEngine;
    std::vector<MArrayQueue<float>> dryQueues;
    std::vector<float> mixBuffer;
    float parameterRatio = 1;   // the parameter; `wet` is 1 where the sections hold it already
    std::int32_t preparedChannels = 0;
};
