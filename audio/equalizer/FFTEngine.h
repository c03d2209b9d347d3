// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "audio/equalizer/EqualizerGeometry.h"
#include "audio/fft/MSignalWindowType.h"
#include "foundation/vector/SpectralFrame.h"

/// The "Linear-phase FFT based" mode: the gain curve is multiplied onto the spectrum of frames of 32768
/// samples, 16 of which overlap. The output equals that of an MAudioFFTProcessor whose ProcessSpectrum does
/// so, up to rounding, with two differences: the channels complete their frames at different times, so that
/// their work falls into different blocks, and the first samples come out whole, as if silence had been fed
/// before them.
///
/// Samples that are not finite are taken as 0. Thread: Process is audio, the rest is main, never at once with
/// it.
class FFTEngine
{
public:
    static constexpr std::int32_t Overlap = 16;
    static constexpr std::int32_t HopSize = EqualizerGeometry::FrameSize / Overlap;

    /// 1 to 8 channels. Allocates everything; Reset is included.
    void Prepare(std::int32_t channels);
    /// Silence. The curve stays.
    void Reset();
    /// 32768 values, the gain of each of 16384 bins twice; it is read while frames are processed and may
    /// change between blocks. Null, the first state, multiplies nothing.
    void SetGainCurve(const float* curve) { gainCurve = curve; }
    void SetEnabled(bool filtered) { enabled = filtered; }
    /// Any number of frames; an output may be an input's array. Thread: audio. Never allocates.
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames);

private:
    /// Input and output of a channel, the output one frame behind: both rings have the length of a frame, so
    /// input and output of the same time stand at the same place.
    struct Channel
    {
        std::vector<float> input;
        std::vector<float> sum;
        std::int32_t untilFrame = HopSize;
    };

    void CompleteFrame(Channel& channel);

    std::vector<Channel> channels;
    std::int32_t position = 0;   // in the rings
    const float* gainCurve = nullptr;
    bool enabled = true;
    MSignalWindowType window;
    float scale = 1.0f;
    std::unique_ptr<SpectralFrame> frame;   // of all channels, one after the other
};
