// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/equalizer/EqualizerGeometry.h"

/// How LinearPhaseEngine cuts a hop. A chunk is the unit of work that falls into one block at rest: short
/// ones make the worst block short, long ones save what each run of a cascade costs at its ends.
struct LinearPhaseGeometry : EqualizerGeometry
{
    static constexpr std::int32_t ChunkSize = 1024;
    static constexpr std::int32_t ChunkCount = HopSize / ChunkSize;
    /// The first chunk of the half of a hop in which frames fade.
    static constexpr std::int32_t FadeChunk = FadeSize / ChunkSize;
    /// Boundaries of chunks; boundary i is where chunk i begins, and where a run backward through it ends.
    static constexpr std::int32_t BoundaryCount = ChunkCount + 1;
};
