// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/fft/MAudioFFTProcessor.h"

#include <algorithm>
#include <bit>

#include "foundation/vector/VectorOperations.h"

namespace
{
/// Keeps denormals out of what a subclass computes.
constexpr float SpectrumGuard = 1e-15f;
}   // namespace

MAudioFFTProcessor::MAudioFFTProcessor()
    : inputFrame(MaxFrameSize), accumulator(2 * MaxFrameSize), work(MaxFrameSize)
{
    window.Build(frameSize, MSignalWindowType::Hann, true);
}

void MAudioFFTProcessor::Update()
{
    if (window.Size() == frameSize)
        return;
    window.Build(frameSize, MSignalWindowType::Hann, true);
    Reset();
}

void MAudioFFTProcessor::Reset()
{
    position = 0;
    std::fill(inputFrame.begin(), inputFrame.end(), 0.0f);
}

void MAudioFFTProcessor::PrepareTransform()
{
    if (transformSize == frameSize)
        return;
    transform = MFFT(std::countr_zero(static_cast<std::uint32_t>(frameSize)), FFTNoScaling);
    transformSize = frameSize;
}

void MAudioFFTProcessor::Process(float* output, const float* input, std::int32_t n)
{
    const std::int32_t hop = frameSize / overlap;
    const std::int32_t keep = frameSize - hop;
    const float windowed = synthesisWindow ? window.SumOfSquares() : window.Sum();
    const float scale = 1.0f / (static_cast<float>(overlap) * windowed);
    PrepareTransform();
    while (n > 0)
    {
        const std::int32_t taken = std::min(n, frameSize - position);
        MVector::Copy(input, inputFrame.data() + position, taken);
        MVector::Copy(accumulator.data() + position, output, taken);
        input += taken;
        output += taken;
        n -= taken;
        position += taken;
        if (position < frameSize)
            break;
        ProcessFrame(scale);
        MVector::Move(accumulator.data() + hop, accumulator.data(), keep + frameSize);
        MVector::Zero(accumulator.data() + keep + frameSize, hop);
        MVector::Move(inputFrame.data() + hop, inputFrame.data(), keep);
        position = keep;
    }
}

void MAudioFFTProcessor::ProcessFrame(float scale)
{
    MVector::Multiply(inputFrame.data(), window.Data(), work.data(), frameSize);
    transform.Forward(work.data());
    MVector::AddConstantInPlace(SpectrumGuard, work.data(), frameSize);
    ProcessSpectrum(frameSize, work.data());
    transform.Inverse(work.data());
    MVector::MultiplyConstantInPlace(work.data(), frameSize, scale);
    if (synthesisWindow)
        MVector::Multiply(work.data(), window.Data(), work.data(), frameSize);
    MVector::AddInPlace(work.data(), accumulator.data() + frameSize, frameSize);
}

void MAudioFFTProcessor::ProcessSpectrum(std::int32_t /*size*/, float* /*spectrum*/) {}
