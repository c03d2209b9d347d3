// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "audio/stages/MFIRFilter.h"
#include "foundation/vector/BiquadCascade.h"

/// Brings one channel to a multiple of the host's rate and back.
///
/// Up fills `UpSamples()` with the channel at the higher rate and clears `DownSamples()`, in which an effect
/// leaves its result; Down brings that back. High quality filters with linear phase and adds
/// LatencySamples() in all: within 0.001 dB up to 0.45 of the host's rate on each way, and more than 130 dB
/// down from 0.55 on, where images and aliases of that band lie. Plain filters with a Butterworth low-pass of
/// order 20 at 0.4535 of the host's rate, whose delay isn't reported; from 0.55 on it is 52 dB down at a
/// factor of 2 and 37 dB at 4. Main thread initializes, audio thread processes; the owner keeps the two
/// apart.
class MUpsampler
{
public:
    struct Setup
    {
        double sampleRate = 44100;   ///< of the host, Hz
        std::int32_t factor = 1;   ///< 1 to 4; nothing but 2 and above is meant to run
        bool highQuality = true;

        bool operator==(const Setup&) const = default;
    };

    /// Above this rate of the effect, in Hz, the filter is four times as long.
    static constexpr double LongFilterRate = 200000;
    /// What both ways together add at the host's rate. Source of the figures: for each way a group delay of
    /// 256 (1024) samples and a hop of 512 (2048) at the higher rate.
    static std::int32_t LatencySamples(const Setup& setup);

    /// Designs the filters and forgets all audio. Allocates.
    void Init(const Setup& newSetup);
    const Setup& CurrentSetup() const { return setup; }
    /// Forgets all audio.
    void Reset();
    /// Whether the plain way down is filtered: not where the effect itself has removed what would alias. A
    /// change forgets the audio of the plain filter. Any thread that holds the owner's lock; never allocates.
    void SetDownFiltered(bool filtered);

    /// Audio thread; allocates only for a block longer than all before. A null input is silence.
    void Up(const float* input, std::int32_t sampleCount);
    /// Takes every factor-th sample of the filtered result, `sampleCount` of them.
    void Down(float* output, std::int32_t sampleCount);
    float* UpSamples() { return upBuffer.data(); }
    float* DownSamples() { return downBuffer.data(); }

private:
    static constexpr std::int32_t SectionCount = 10;
    enum Way : std::int32_t
    {
        WayUp = 0,
        WayDown = 1
    };

    void RunPlain(float* srcDst, std::int32_t sampleCount, Way way);

    Setup setup;
    MFIRFilter fir;
    std::array<MVector::CascadeTaps, SectionCount> iir;
    std::array<std::array<MVector::CascadeMemory, SectionCount>, 2> iirMemory;
    bool filterIIR = true;
    std::vector<float> upBuffer;
    std::vector<float> downBuffer;
};
