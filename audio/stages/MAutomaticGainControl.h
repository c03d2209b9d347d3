// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "audio/stages/MSampleQueue.h"
#include "audio/stages/SlidingSum.h"
#include "foundation/threads/MRelaxed.h"
#include "foundation/vector/BiquadCascade.h"

/// Gives the output of an effect the loudness of its input.
///
/// Both are weighted as ITU-R BS.1770 tells, squared, averaged over the channels and over a sliding window;
/// the root of their ratio is the gain, reached in a ramp across each block. The input's measure lags by the
/// latency, so that both see the same sound. In the first two seconds the gain only lowers. Unlike BS.1770,
/// surround channels count like any other.
/// Order of calls: Init, then for each block MeasureInput and Process. Init on the main thread under the
/// processing locks, the others on the audio thread, where they allocate nothing but what the input's delay
/// needs for a block longer than all before.
class MAutomaticGainControl
{
public:
    static constexpr std::int32_t MaxChannels = 8;
    static constexpr double MaxGain = 100;
    static constexpr double MinGain = 0.01;

    /// Forgets everything. `sampleRate` in Hz; 1 to 8 channels; `latencySamples` of what lies between input
    /// and output.
    void Init(double sampleRate, std::int32_t channelCount, std::int32_t latencySamples);
    /// Only reads. Channels beyond those of Init are left out.
    void MeasureInput(const float* const* channels, std::int32_t sampleCount, std::int32_t channelCount);
    /// For an effect without an input: the output is brought to a mean square of 0.05.
    void AssumeInput();
    /// Measures the outputs, then applies the gain to them. A channel that shares its samples with the one
    /// before gets the gain once.
    void Process(float* const* outputs, std::int32_t sampleCount, std::int32_t channelCount);

    /// The gain now applied, as a ratio. Any thread.
    double Gain() const { return gain; }

    double windowSeconds = 0.4;   ///< in force from the next Init on
    bool useWeighting = true;   ///< likewise

private:
    static constexpr std::int32_t ChunkSize = 256;
    static constexpr std::size_t SectionCount = 2;
    /// The weighting's memory of all channels, two by two.
    using Memory = std::array<std::array<MVector::CascadeMemory, SectionCount>, MaxChannels / 2>;

    void MeasureChunk(const float* const* channels, std::int32_t channelCount, std::int32_t sampleCount,
                      Memory& memory, SlidingSum& energy);
    double TargetGain(std::int32_t sampleCount);

    std::array<MVector::CascadeTaps, SectionCount> weighting;
    bool weighted = true;
    Memory inputMemory;
    Memory outputMemory;
    SlidingSum inputEnergy;
    SlidingSum outputEnergy;
    std::array<MSampleQueue, MaxChannels> inputDelay;
    std::vector<float> delayed;   // a chunk of each channel
    std::int32_t channels = 0;
    std::int32_t latency = 0;
    std::int64_t holdOff = 0;   // samples in which the gain may not rise above 1
    MRelaxed<double> gain = 0.0;
};
