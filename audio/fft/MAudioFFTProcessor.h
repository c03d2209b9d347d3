// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/fft/MSignalWindowType.h"
#include "foundation/text/MObject.h"
#include "foundation/vector/FFT.h"

/// What an owner of spectral processors may do without knowing what they do to a spectrum.
class MAudioFFTProcessorBase : public MObject
{
public:
    /// Takes a new frame size over. Allocates.
    virtual void Update() = 0;
    virtual void Reset() = 0;
};

/// Spectral processing between host blocks of any length: windowed frames overlap by a factor, are
/// transformed, handed to ProcessSpectrum, transformed back and added up.
///
/// The gain is 1 for any window whose copies, one hop apart, add up to a constant; the latency is FrameSize
/// samples exactly. The object takes no lock and serves one thread at a time.
class MAudioFFTProcessor : public MAudioFFTProcessorBase
{
public:
    static constexpr std::int32_t MaxFrameSize = 32768;

    /// Frames of 1024 samples, 8 to a frame's length. Allocates for the largest frame size.
    MAudioFFTProcessor();

    /// A power of two up to MaxFrameSize; Update takes it over.
    void SetFrameSize(std::int32_t samples) { frameSize = samples; }
    std::int32_t FrameSize() const { return frameSize; }
    /// Frames in a frame's length, at least 1; the hop is the frame size divided by it.
    void SetOverlap(std::int32_t frames) { overlap = frames; }
    std::int32_t Overlap() const { return overlap; }
    /// Multiplies by the window once more after the inverse transform.
    void SetSynthesisWindow(bool windowed) { synthesisWindow = windowed; }

    /// Builds the window if the frame size has changed, and resets then. Allocates.
    void Update() override;
    /// Forgets the input and the positions; what is already added up still comes out.
    void Reset() override;
    /// n samples; output and input may be the same array. Thread: audio. Allocates at the first call and
    /// after a change of the frame size only.
    void Process(float* output, const float* input, std::int32_t n);

protected:
    /// `spectrum` is packed as FFTForward leaves it, `size` floats, to be changed in place.
    virtual void ProcessSpectrum(std::int32_t size, float* spectrum);

private:
    void PrepareTransform();
    void ProcessFrame(float scale);

    // Where the input frame is filled and, the latency being one frame, where the accumulator is read.
    std::int32_t position = 0;
    std::int32_t frameSize = 1024;
    std::int32_t transformSize = 0;
    std::int32_t overlap = 8;
    MFFT transform;
    MSignalWindowType window;
    bool synthesisWindow = false;
    std::vector<float> inputFrame;
    std::vector<float> accumulator;   // twice the frame size; the latest frame is added to its second half
    std::vector<float> work;
};
