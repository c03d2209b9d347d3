// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

/// A statistic over the stream of spectra of one analyzer client. Spectra are arrays of natural logarithms of
/// amplitudes, so an average is a geometric mean over time.
///
/// Process runs on the audio thread, the others elsewhere, all under the client's lock.
class BlockProcessor
{
public:
    /// ln 1e-10: what an average returns while it has seen nothing, -200 dB.
    static constexpr float SilentLogarithm = -23.02585f;

    BlockProcessor() = default;
    BlockProcessor(const BlockProcessor&) = delete;
    BlockProcessor& operator=(const BlockProcessor&) = delete;
    virtual ~BlockProcessor() = default;

    /// @param length     frames that the average length covers, at least 1
    /// @param frameSize  FFT length; a spectrum has half as many values
    /// Keeps the statistic where its size stays the same. Allocates.
    virtual void Init(std::int32_t length, std::int32_t frameSize, double framesPerSecond) = 0;
    virtual void Reset() = 0;
    /// Never allocates.
    virtual void Process(const float* spectrum) = 0;
    virtual void Get(float* outSpectrum) const = 0;
};

/// The mean of the last `length` frames, or of as many as there were.
///
/// A running sum: the oldest frame goes, the new one comes, and the sum is never renewed. Rounding therefore
/// stays in it until Reset, and the cost doesn't depend on the length.
class BlockProcessorAverage : public BlockProcessor
{
public:
    /// Lengths that would need more memory than this average over fewer frames. Only settings far from
    /// anything useful get there, such as a hop of a few samples together with seconds of averaging.
    static constexpr std::int64_t MaxHistoryBytes = std::int64_t{ 1 } << 28;

    void Init(std::int32_t length, std::int32_t frameSize, double framesPerSecond) override;
    void Reset() override;
    void Process(const float* spectrum) override;
    void Get(float* outSpectrum) const override;

private:
    std::vector<float> sum;
    std::vector<float> history;   // `length` spectra, one after the other, as a ring
    std::int32_t length = 0;
    std::int32_t position = 0;
    std::int32_t filled = 0;
};

/// The mean of all frames since Reset.
class BlockProcessorAverageInfinite : public BlockProcessor
{
public:
    void Init(std::int32_t length, std::int32_t frameSize, double framesPerSecond) override;
    void Reset() override;
    void Process(const float* spectrum) override;
    void Get(float* outSpectrum) const override;

private:
    std::vector<float> sum;
    std::int32_t count = 0;
};

/// The maximum since Reset.
class BlockProcessorMaximumInfinite : public BlockProcessor
{
public:
    void Init(std::int32_t length, std::int32_t frameSize, double framesPerSecond) override;
    void Reset() override;
    void Process(const float* spectrum) override;
    void Get(float* outSpectrum) const override;

protected:
    std::vector<float> values;
};

/// The maximum, falling by 1 in the logarithm each second: 8.69 dB.
class BlockProcessorMaximum : public BlockProcessorMaximumInfinite
{
public:
    void Init(std::int32_t length, std::int32_t frameSize, double framesPerSecond) override;
    void Process(const float* spectrum) override;

private:
    float decay = 0;
};
