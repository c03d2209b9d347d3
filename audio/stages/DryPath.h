// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "audio/stages/BypassFade.h"
#include "audio/stages/ChannelRouting.h"
#include "audio/stages/MSampleQueue.h"

/// The way past an effect: its input as late as its output, and the fade between the two. It runs at all
/// times, so that a bypass brings neither old audio nor a gap.
class DryPath
{
public:
    /// Forgets all audio. Thread: main, under the processing locks.
    void Prepare(double sampleRate, bool bypassed, std::int32_t channels, std::int32_t latencySamples);
    std::int32_t Latency() const { return latency; }

    // For each block, on the audio thread; nothing allocates once blocks of this size have passed.
    void Begin(bool bypassed, std::int32_t sampleCount) { fade.Begin(bypassed, sampleCount); }
    /// Whether the block has a share of the dry signal.
    bool IsHeard() const { return fade.IsHeard(); }
    /// Feeds a channel; what comes out late goes to `late`, or nowhere if that is null.
    void Run(std::size_t channel, const float* input, float* late, std::int32_t sampleCount);
    /// Puts the dry signal's share into the processed one. Both arrays may change.
    void Mix(float* processed, float* dry) const { fade.Apply(processed, dry); }

private:
    BypassFade fade;
    std::int32_t latency = 0;
    std::array<MSampleQueue, ChannelRouting::MaxChannels> delays;
};
