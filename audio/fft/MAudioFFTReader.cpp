// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/fft/MAudioFFTReader.h"

#include <algorithm>
#include <bit>

#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr float SpectrumGuard = 1e-15f;
}   // namespace

MAudioFFTReader::MAudioFFTReader() : inputFrame(MaxFrameSize), work(MaxFrameSize) {}

void MAudioFFTReader::Update()
{
    inputPosition = std::min(inputPosition, frameSize);
    if (!window.IsBuiltAs(frameSize, MSignalWindowType::Hann))
        window.Build(frameSize, MSignalWindowType::Hann, false);
    keep = std::clamp(static_cast<std::int32_t>(frameSize * overlap), 0, frameSize - 1);
    effectiveOverlap = static_cast<double>(keep) / frameSize;
    if (transformSize != frameSize)
    {
        transform = MFFT(std::countr_zero(static_cast<std::uint32_t>(frameSize)), FFTNoScaling);
        transformSize = frameSize;
    }
}

void MAudioFFTReader::Process(const float* input, std::int32_t n)
{
    if (transformSize != frameSize)
        Update();
    while (n > 0)
    {
        const std::int32_t taken = std::min(n, frameSize - inputPosition);
        MVector::Copy(input, inputFrame.data() + inputPosition, taken);
        input += taken;
        n -= taken;
        inputPosition += taken;
        if (inputPosition < frameSize)
            break;
        MVector::Multiply(inputFrame.data(), window.Data(), work.data(), frameSize);
        transform.Forward(work.data());
        MVector::AddConstantInPlace(SpectrumGuard, work.data(), frameSize);
        ProcessSpectrum(frameSize, work.data());
        MVector::Move(inputFrame.data() + frameSize - keep, inputFrame.data(), keep);
        inputPosition = keep;
    }
}

void MAudioFFTReader::ProcessSpectrum(std::int32_t /*size*/, float* /*spectrum*/) {}
