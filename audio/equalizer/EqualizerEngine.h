// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// One way to run filters on audio, late by EqualizerGeometry::LatencySamples.
class EqualizerEngine
{
public:
    EqualizerEngine() = default;
    EqualizerEngine(const EqualizerEngine&) = delete;
    EqualizerEngine& operator=(const EqualizerEngine&) = delete;
    virtual ~EqualizerEngine() = default;

    /// 1 to 8 channels. Allocates everything; Reset is included. Thread: main.
    virtual void Prepare(std::int32_t channels) = 0;
    /// Silence. The filters stay. Thread: any, not at once with Process; never allocates.
    virtual void Reset() = 0;
    /// Off, the signal passes unfiltered, as late. The same threads.
    virtual void SetEnabled(bool filtered) = 0;
    /// Any number of frames; an output may be an input's array. What is no audio (MVector::CopyAudio)
    /// is taken as 0.
    /// Thread: audio. Never allocates.
    virtual void Process(const float* const* inputs, float* const* outputs, std::int32_t frames) = 0;
};
