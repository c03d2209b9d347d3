// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/stages/MFIRFilter.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <numbers>

#include "audio/fft/MSignalWindowType.h"
#include "foundation/vector/VectorOperations.h"

void MFIRFilter::SetLowPass(double cutoffHz, double sampleRate, std::int32_t taps, std::int32_t maximumTaps)
{
    assert(cutoffHz > 0 && cutoffHz < sampleRate / 2);
    const std::int32_t count = std::min(taps | 1, maximumTaps);
    assert(std::has_single_bit(static_cast<std::uint32_t>(count - 1)) && count > 16);
    hop = count - 1;
    const std::int32_t length = 2 * hop;
    transform = MFFT(std::countr_zero(static_cast<std::uint32_t>(length)), FFTNoScaling);

    MSignalWindowType window;
    window.Build(count, MSignalWindowType::Kaiser, false);
    response.assign(static_cast<std::size_t>(length), 0.0f);
    // The transforms don't scale; the division by their length goes into the taps.
    const double cutoffOfNyquist = 2 * cutoffHz / sampleRate;
    for (std::int32_t tap = 0; tap < count; ++tap)
    {
        const double angle = std::numbers::pi * (tap - hop / 2);
        const double ideal = tap == hop / 2 ? cutoffOfNyquist : std::sin(angle * cutoffOfNyquist) / angle;
        response[static_cast<std::size_t>(tap)] = static_cast<float>(ideal * window.Data()[tap] / length);
    }
    transform.Forward(response.data());

    work.resize(static_cast<std::size_t>(length));
    Reset();
}

void MFIRFilter::Reset()
{
    for (State& signal : states)
    {
        signal.gathered.assign(static_cast<std::size_t>(2 * hop), 0.0f);
        signal.ready.assign(static_cast<std::size_t>(hop), 0.0f);
        signal.position = 0;
    }
}

void MFIRFilter::Process(float* srcDst, std::int32_t sampleCount, std::int32_t state)
{
    State& signal = states[static_cast<std::size_t>(state)];
    while (sampleCount > 0)
    {
        const std::int32_t run = std::min(sampleCount, hop - signal.position);
        MVector::Copy(srcDst, signal.gathered.data() + hop + signal.position, run);
        MVector::Copy(signal.ready.data() + signal.position, srcDst, run);
        signal.position += run;
        if (signal.position == hop)
            FilterHop(signal);
        srcDst += run;
        sampleCount -= run;
    }
}

void MFIRFilter::FilterHop(State& signal)
{
    signal.position = 0;
    MVector::Copy(signal.gathered.data(), work.data(), 2 * hop);
    transform.Forward(work.data());
    // Bins 0 and N/2 are real and share the first pair.
    work[0] *= response[0];
    work[1] *= response[1];
    MVector::ComplexMultiply(work.data() + 2, response.data() + 2, work.data() + 2, hop - 1);
    transform.Inverse(work.data());
    // The first half is wrapped around; the second is the convolution.
    MVector::Copy(work.data() + hop, signal.ready.data(), hop);
    MVector::Copy(signal.gathered.data() + hop, signal.gathered.data(), hop);
}
