// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Fades between a processed signal and the dry one along a line. Both have to run on all the time, so that
/// neither way brings old audio or a gap.
class BypassFade
{
public:
    static constexpr double Seconds = 0.02;

    /// Starts on one side, without a fade. Thread: main, under the processing locks.
    void Prepare(double sampleRate, bool bypassed);
    /// Begins a block that is to end, or to go on its way to end, on one side.
    void Begin(bool bypassed, std::int32_t sampleCount);
    /// Whether the block has a share of the dry signal.
    bool IsHeard() const { return fading > 0 || share > 0.0; }
    /// One channel of the block: puts the dry signal's share into the processed one. Both arrays may change.
    /// Thread: audio. Never allocates.
    void Apply(float* processed, float* dry) const;

private:
    double step = 1.0;   // a sample
    double share = 0.0;   // of the dry signal, behind the block
    double shareBefore = 0.0;
    double direction = 0.0;   // of this block
    std::int32_t count = 0;
    std::int32_t fading = 0;   // samples of the block until the share stands still
};
