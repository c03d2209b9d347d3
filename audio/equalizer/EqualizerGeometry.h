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
};
