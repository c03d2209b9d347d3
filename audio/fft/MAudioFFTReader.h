// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/fft/MSignalWindowType.h"
#include "foundation/text/MObject.h"
#include "foundation/vector/FFT.h"

/// Spectra of overlapping frames for analysis: like MAudioFFTProcessor without the way back.
class MAudioFFTReader : public MObject
{
public:
    static constexpr std::int32_t MaxFrameSize = 32768;

    /// Frames of 4096 samples without overlap; Update must follow. Allocates for the largest frame size.
    MAudioFFTReader();

    /// A power of two up to MaxFrameSize; Update takes it over.
    void SetFrameSize(std::int32_t samples) { frameSize = samples; }
    std::int32_t FrameSize() const { return frameSize; }
    /// The fraction of a frame that the next one repeats, 0 to below 1; Update takes it over.
    void SetOverlap(double fraction) { overlap = fraction; }
    /// The fraction after rounding to samples.
    double EffectiveOverlap() const { return effectiveOverlap; }

    /// Allocates when the frame size has changed.
    virtual void Update();
    /// Thread: audio. Allocates after a change of the frame size only.
    void Process(const float* input, std::int32_t n);

protected:
    /// `spectrum` is packed as FFTForward leaves it; it may be changed.
    virtual void ProcessSpectrum(std::int32_t size, float* spectrum);

private:
    std::vector<float> inputFrame;
    std::vector<float> work;
    std::int32_t inputPosition = 0;
    std::int32_t frameSize = 4096;
    double overlap = 0;
    double effectiveOverlap = 0;
    std::int32_t keep = 0;   // samples kept from frame to frame
    MSignalWindowType window;
    std::int32_t transformSize = 0;
    MFFT transform;
};
