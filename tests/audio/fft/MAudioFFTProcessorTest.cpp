// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/fft/MAudioFFTProcessor.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "audio/fft/MAudioFFTReader.h"
#include "tests/Signals.h"

namespace
{
using Signals::Noise;

constexpr std::uint32_t Seed = 12;

/// Runs in place in blocks of random length from 0 to maxBlock.
void ProcessInBlocks(MAudioFFTProcessor& processor, std::vector<float>& samples, std::int32_t maxBlock)
{
    std::mt19937 random(Seed + 1);
    std::uniform_int_distribution<std::int32_t> lengths(0, maxBlock);
    std::size_t position = 0;
    while (position < samples.size())
    {
        const auto left = static_cast<std::int32_t>(samples.size() - position);
        const std::int32_t n = std::min(lengths(random), left);
        processor.Process(samples.data() + position, samples.data() + position, n);
        position += static_cast<std::size_t>(n);
    }
}

TEST(MAudioFFTProcessor, WithoutSpectralWorkItIsADelayOfOneFrame)
{
    struct Case
    {
        std::int32_t frameSize, overlap, maxBlock;
        bool synthesisWindow;
    };
    // Squares of Hann windows add up to a constant from 4 frames on.
    const Case cases[] = { { 1024, 8, 64, false }, { 1024, 2, 3000, false }, { 64, 16, 7, false },
                           { 64, 4, 1, false },    { 256, 4, 500, true },    { 2048, 16, 129, false } };
    for (const Case& known : cases)
    {
        SCOPED_TRACE(testing::Message() << known.frameSize << " by " << known.overlap);
        MAudioFFTProcessor processor;
        processor.SetFrameSize(known.frameSize);
        processor.SetOverlap(known.overlap);
        processor.SetSynthesisWindow(known.synthesisWindow);
        processor.Update();
        const std::vector<float> input = Noise(static_cast<std::size_t>(known.frameSize) * 5 + 77, Seed);
        std::vector<float> output = input;
        ProcessInBlocks(processor, output, known.maxBlock);
        // Squared windows of N points, complemented on one side, are not quite constant.
        const double tolerance = known.synthesisWindow ? 0.02 : 1e-6;
        const auto latency = static_cast<std::size_t>(known.frameSize);
        // The first samples fade in, since no earlier frames hold them.
        for (std::size_t i = 2 * latency; i < output.size(); ++i)
            ASSERT_NEAR(output[i], i < latency ? 0.0f : input[i - latency], tolerance) << i;
    }
}

class Observed : public MAudioFFTProcessor
{
public:
    std::vector<std::vector<float>> frames;
    float gain = 1.0f;

protected:
    void ProcessSpectrum(std::int32_t size, float* spectrum) override
    {
        frames.emplace_back(spectrum, spectrum + size);
        std::for_each(spectrum, spectrum + size, [this](float& value) { value *= gain; });
    }
};

TEST(MAudioFFTProcessor, HandsOutWindowedPackedSpectraAndTakesThemBack)
{
    Observed processor;   // 1024 by 8
    processor.gain = 0.5f;
    std::vector<float> samples(4096);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] =
            static_cast<float>(std::cos(2.0 * std::numbers::pi * 20.0 * static_cast<double>(i) / 1024.0));
    const std::vector<float> input = samples;
    ProcessInBlocks(processor, samples, 100);
    ASSERT_EQ(processor.frames.size(), 1u + (4096u - 1024u) / 128u);
    // A cosine under a Hann window: N/4 at its bin, half of that with the opposite sign beside it.
    const std::vector<float>& first = processor.frames.front();
    EXPECT_NEAR(first[40], 256.0f, 0.5);
    EXPECT_NEAR(first[38], -128.0f, 0.5);
    EXPECT_NEAR(first[42], -128.0f, 0.5);
    EXPECT_NEAR(first[60], 0.0f, 0.5);
    for (std::size_t i = 2048; i < samples.size(); ++i)
        ASSERT_NEAR(samples[i], 0.5f * input[i - 1024], 1e-6) << i;
}

class Reader : public MAudioFFTReader
{
public:
    std::vector<std::vector<float>> frames;

protected:
    void ProcessSpectrum(std::int32_t size, float* spectrum) override
    {
        frames.emplace_back(spectrum, spectrum + size);
    }
};

TEST(MAudioFFTReader, ReadsOverlappingFramesWhateverTheBlocks)
{
    Reader reader;
    reader.SetFrameSize(256);
    reader.SetOverlap(0.75);
    reader.Update();
    EXPECT_EQ(reader.EffectiveOverlap(), 0.75);
    const std::vector<float> input = Noise(1000, Seed);
    std::size_t position = 0;
    for (const std::size_t n : { 1, 99, 600, 0, 300 })
    {
        reader.Process(input.data() + position, static_cast<std::int32_t>(n));
        position += n;
    }
    ASSERT_EQ(reader.frames.size(), 12u);   // at 0, 64, ... 704
    MSignalWindowType window;
    window.Build(256, MSignalWindowType::Hann, false);
    MFFT transform(8, FFTNoScaling);
    for (std::size_t frame = 0; frame < reader.frames.size(); ++frame)
    {
        std::vector<float> expected(input.begin() + static_cast<std::ptrdiff_t>(64 * frame),
                                    input.begin() + static_cast<std::ptrdiff_t>(64 * frame + 256));
        for (std::size_t i = 0; i < 256; ++i)
            expected[i] *= window.Data()[i];
        transform.Forward(expected.data());
        for (std::size_t i = 0; i < 256; ++i)
            ASSERT_NEAR(reader.frames[frame][i], expected[i], 1e-5) << "frame " << frame << " at " << i;
    }
}
}   // namespace
