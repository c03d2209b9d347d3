// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/BlockProcessors.h"

#include <algorithm>

#include "foundation/vector/VectorOperations.h"

namespace
{
// As a logarithm below any amplitude that a float holds: an unused maximum reads as 0.
constexpr float EmptyMaximum = -400.0f;

std::size_t BinCount(std::int32_t frameSize)
{
    return static_cast<std::size_t>(frameSize / 2);
}

std::int32_t Count(const std::vector<float>& values)
{
    return static_cast<std::int32_t>(values.size());
}
}   // namespace

void BlockProcessorAverage::Init(std::int32_t newLength, std::int32_t frameSize, double /*framesPerSecond*/)
{
    const std::size_t bins = BinCount(frameSize);
    const std::int64_t frameBytes = static_cast<std::int64_t>(bins * sizeof(float));
    const std::int64_t most = std::max<std::int64_t>(MaxHistoryBytes / frameBytes, 1);
    const auto usedLength = static_cast<std::int32_t>(std::clamp<std::int64_t>(newLength, 1, most));
    if (sum.size() == bins && length == usedLength)
        return;
    length = usedLength;
    sum.assign(bins, 0.0f);
    history = std::vector<float>(bins * static_cast<std::size_t>(length));
    position = 0;
    filled = 0;
}

void BlockProcessorAverage::Reset()
{
    std::fill(sum.begin(), sum.end(), 0.0f);
    std::fill(history.begin(), history.end(), 0.0f);
    position = 0;
    filled = 0;
}

void BlockProcessorAverage::Process(const float* spectrum)
{
    const std::int32_t bins = Count(sum);
    float* oldest = history.data() + static_cast<std::size_t>(position) * sum.size();
    MVector::SubInPlace(oldest, sum.data(), bins);
    MVector::AddInPlace(spectrum, sum.data(), bins);
    MVector::Copy(spectrum, oldest, bins);
    position = (position + 1) % length;
    filled = std::min(filled + 1, length);
}

void BlockProcessorAverage::Get(float* outSpectrum) const
{
    if (filled < 1)
        MVector::Set(SilentLogarithm, outSpectrum, Count(sum));
    else
        MVector::MultiplyConstant(sum.data(), 1.0f / static_cast<float>(filled), outSpectrum, Count(sum));
}

void BlockProcessorAverageInfinite::Init(std::int32_t /*length*/, std::int32_t frameSize,
                                         double /*framesPerSecond*/)
{
    if (sum.size() == BinCount(frameSize))
        return;
    sum.assign(BinCount(frameSize), 0.0f);
    count = 0;
}

void BlockProcessorAverageInfinite::Reset()
{
    std::fill(sum.begin(), sum.end(), 0.0f);
    count = 0;
}

void BlockProcessorAverageInfinite::Process(const float* spectrum)
{
    MVector::AddInPlace(spectrum, sum.data(), Count(sum));
    ++count;
}

void BlockProcessorAverageInfinite::Get(float* outSpectrum) const
{
    if (count < 1)
        MVector::Set(SilentLogarithm, outSpectrum, Count(sum));
    else
        MVector::MultiplyConstant(sum.data(), 1.0f / static_cast<float>(count), outSpectrum, Count(sum));
}

void BlockProcessorMaximumInfinite::Init(std::int32_t /*length*/, std::int32_t frameSize,
                                         double /*framesPerSecond*/)
{
    if (values.size() != BinCount(frameSize))
        values.assign(BinCount(frameSize), EmptyMaximum);
}

void BlockProcessorMaximumInfinite::Reset()
{
    std::fill(values.begin(), values.end(), EmptyMaximum);
}

void BlockProcessorMaximumInfinite::Process(const float* spectrum)
{
    MVector::MaxEveryInPlace(spectrum, values.data(), Count(values));
}

void BlockProcessorMaximumInfinite::Get(float* outSpectrum) const
{
    MVector::Copy(values.data(), outSpectrum, Count(values));
}

void BlockProcessorMaximum::Init(std::int32_t length, std::int32_t frameSize, double framesPerSecond)
{
    BlockProcessorMaximumInfinite::Init(length, frameSize, framesPerSecond);
    decay = static_cast<float>(-1.0 / framesPerSecond);
}

void BlockProcessorMaximum::Process(const float* spectrum)
{
    MVector::AddConstantInPlace(decay, values.data(), Count(values));
    BlockProcessorMaximumInfinite::Process(spectrum);
}
