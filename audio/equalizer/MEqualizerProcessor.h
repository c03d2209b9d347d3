// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "audio/equalizer/EngineSwitch.h"
#include "audio/equalizer/FFTEngine.h"
#include "audio/equalizer/LinearPhaseEngine.h"
#include "audio/equalizer/MEqualizerBase.h"
#include "audio/equalizer/NormalEngine.h"
#include "audio/equalizer/SoftSaturator.h"

enum class EqualizerMode : std::int32_t
{
    Normal = 0,   ///< minimum-phase sections behind a plain delay
    LinearPhase = 1,   ///< each section once backward over frames, once forward
    LinearPhaseFFT = 2   ///< the product of all magnitudes, multiplied onto spectra of frames
};

/// Runs the bands on audio. All three modes have the same latency of 32768 samples, at every sample rate,
/// so that no change of mode or of filters changes what a host has to compensate.
///
/// There is no crossfade between filter sets. A change of mode costs no audio: the old mode plays on until
/// the new one has caught up with the last second of input, then they are faded (EngineSwitch). The owner's
/// lock covers everything here but the construction and GetTailSize.
class MEqualizerProcessor : public MEqualizerBase
{
public:
    static constexpr std::int32_t FFTSize = 32768;
    static constexpr std::int32_t OverlapSize = 16384;
    static constexpr std::int32_t MaxChannels = 8;

    /// Makes room for the channels and forgets all audio. Main thread.
    void InitProcessing(std::int32_t channels, double newSampleRate);
    /// Takes the mode, the share of the equalized signal (0 to 1) and the rate in, and updates.
    void SetModeAndRatio(std::int32_t newMode, double wetRatio, double newSampleRate);
    /// Rebuilds the filter lists from the bands. Throws MException "Could not acquire mutex.", or "Invalid
    /// filter type." for a band that a fault has damaged.
    void Update() override;
    /// One block of all channels; an output may be an input's array. Audio thread.
    void ProcessChannels(const float* const* inputs, float* const* outputs, std::int32_t frames);

    /// The input of a channel in the block that comes next, as late as its output will be; `input` is what
    /// ProcessChannels will get. Audio thread, under the lock.
    void ReadDelayedInput(std::int32_t channel, const float* input, float* delayed, std::int32_t frames) const
    {
        engines.ReadDelayed(channel, input, delayed, frames);
    }

    std::int32_t GetLatency() const { return FFTSize; }
    /// Samples that still come out after the input has ended, for the host. Any thread, without the lock.
    std::int32_t GetTailSize() const { return (sectionCount + 1) * 1024; }
    const FilterList& LinearFilters() const { return linearFilters; }

    /// The factor by which the effect runs above the host's rate, 1 where the driver filters by itself.
    std::int32_t upsamplingRatio = 1;

protected:
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
    EqualizerEngine& EngineOf(std::int32_t ofMode);
    bool SoloActive() const { return autoListen && selectedBand >= 0; }

    FilterList linearFilters;
    NormalEngine normalEngine;
    LinearPhaseEngine linearEngine;
    FFTEngine fftEngine;
    EngineSwitch engines;
    MRelaxed<std::int32_t> sectionCount = 0;   // of `filters`
    float parameterRatio = 1;   // the parameter; `wet` is 1 where the sections hold it already
    bool prepared = false;
};
