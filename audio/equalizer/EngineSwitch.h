// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "audio/equalizer/EqualizerEngine.h"
#include "audio/equalizer/EqualizerGeometry.h"

/// Runs one of several engines and changes over to another without a gap and without old audio.
///
/// An engine that is selected anew starts from silence and is fed with the last second of input, some samples
/// of it beside each new one, so that no block has to do it all. The old engine plays meanwhile. When the new
/// one has caught up with the present, the two are faded into each other. At which samples this happens
/// doesn't depend on the lengths of the blocks.
///
/// Thread: Process is audio, the rest is not at once with it.
class EngineSwitch
{
public:
    /// What an engine has to have heard before it may be heard: its latency and the time that it then needs
    /// for what rings on.
    static constexpr std::int32_t WarmSamples =
        EqualizerGeometry::LatencySamples + EqualizerGeometry::HopSize;
    /// Samples that an engine takes for each new one until it has caught up: 0.15 s at 48 kHz.
    static constexpr std::int32_t CatchUpSpeed = 8;
    static constexpr double FadeSeconds = 0.02;

    /// 1 to 8 channels. Allocates everything; Reset is included.
    void Prepare(std::int32_t channels, double sampleRate);
    /// Forgets the input; the next selection holds at once.
    void Reset();
    /// The engine to be heard, prepared for as many channels. While nothing was processed since a Reset it is
    /// heard at once.
    void Select(EqualizerEngine& engine);
    bool HasStarted() const { return started; }
    /// Any number of frames; an output may be an input's array. Never allocates.
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames, bool enabled);
    /// The input of a channel in the block that comes next, LatencySamples late.
    void ReadDelayed(std::int32_t channel, const float* input, float* delayed, std::int32_t frames) const;

private:
    static constexpr std::int32_t PieceSize = 512;
    static constexpr std::int32_t HistorySize = 65536;
    static_assert(HistorySize >= WarmSamples + PieceSize && HistorySize % PieceSize == 0);
    using Inputs = std::array<const float*, EqualizerGeometry::MaxChannels>;
    using Outputs = std::array<float*, EqualizerGeometry::MaxChannels>;

    std::int32_t PieceLength(std::int32_t wanted) const;
    Inputs HistoryAt(std::int32_t place) const;
    void ChangeOver(const Outputs& outputs, std::int32_t n, bool enabled);
    void Feed(std::int32_t n);
    void Fade(const Outputs& outputs, std::int32_t n);

    std::vector<std::vector<float>> history;   // rings of the input, by channel
    std::vector<std::vector<float>> second;   // output of the entering engine, a piece by channel
    std::int32_t position = 0;   // in the rings, where the next piece goes
    bool started = false;
    EqualizerEngine* selected = nullptr;
    EqualizerEngine* playing = nullptr;
    EqualizerEngine* entering = nullptr;   // null at rest
    std::int32_t lag = 0;   // samples that the entering engine is behind
    std::int32_t fadeLength = 1;
    std::int32_t faded = 0;
};
