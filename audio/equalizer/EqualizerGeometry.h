// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Lengths that all modes of the equalizer share, in samples at any sample rate.
struct EqualizerGeometry
{
    static constexpr std::int32_t LatencySamples = 32768;
    /// Frames of the linear-phase modes; the time-domain one overlaps them by half and fades over half of
    /// that.
    static constexpr std::int32_t FrameSize = 32768;
    static constexpr std::int32_t HopSize = 16384;
    static constexpr std::int32_t FadeSize = 8192;
    static constexpr std::int32_t MaxChannels = 8;

    /// Added to each sample that sections have filtered: keeps denormals out of what follows.
    static constexpr float OutputGuard = 1e-15f;
    /// Added to what runs into sections, so that no recursion dies away into denormals. No float beside 1e-22
    /// shows it.
    static constexpr double RunGuard = 1e-30;
    /// No stable list gets a section's memory near this from audio; an unstable one that does is taken back
    /// to silence.
    static constexpr double AbsurdState = 1e20;
};
