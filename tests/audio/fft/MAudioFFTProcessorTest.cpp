// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/fft/MAudioFFTProcessor.h"

#include <algorithm>
#include <bit>
#include <vector>

#include <gtest/gtest.h>

#include "audio/fft/MAudioFFTReader.h"
#include "tests/Signals.h"

namespace
{
constexpr std::uint32_t Seed = 12;

// Keeps the spectra that it is handed, and halves them.
template <typename Base>
class Observed : public Base
{
public:
    std::vector<std::vector<float>> frames;

protected:
    void ProcessSpectrum(std::int32_t size, float* spectrum) override
    {
        frames.emplace_back(spectrum, spectrum + size);
        std::for_each(spectrum, spectrum + size, [](float& value) { value *= 0.5f; });
    }
};

// Transforms of frames a hop apart under a Hann window.
void ExpectSpectra(const std::vector<std::vector<float>>& frames, const std::vector<float>& input,
                   std::int32_t size, std::int32_t hop, bool complementary)
{
    ASSERT_EQ(frames.size(),
              1 + (input.size() - static_cast<std::size_t>(size)) / static_cast<std::size_t>(hop));
    MSignalWindowType window;
    window.Build(size, MSignalWindowType::Hann, complementary);
    MFFT transform(std::countr_zero(static_cast<std::uint32_t>(size)), FFTNoScaling);
    for (std::size_t frame = 0; frame < frames.size(); ++frame)
    {
        const auto begin = input.begin() + hop * static_cast<std::ptrdiff_t>(frame);
        std::vector<float> expected(begin, begin + size);
        for (std::size_t i = 0; i < expected.size(); ++i)
            expected[i] *= window.Data()[i];
        transform.Forward(expected.data());
        EXPECT_LT(Signals::LargestDifference(frames[frame], expected, 0, expected.size()), 1e-4)
            << "frame " << frame;
    }
}

// In place, in blocks of changing length.
template <typename Process>
void InBlocks(std::size_t count, std::size_t maxBlock, Process process)
{
    process(std::size_t{ 0 }, 0);
    for (std::size_t done = 0, n = 0; done < count; done += n)
    {
        n = std::min((done * 7 + n * 13) % maxBlock + 1, count - done);
        process(done, static_cast<std::int32_t>(n));
    }
}

TEST(MAudioFFTProcessor, HandsOutSpectraAndReturnsThemOneFrameLate)
{
    struct Case
    {
        std::int32_t frameSize, overlap;
        std::size_t maxBlock;
        bool synthesisWindow;
    };
    // Squares of Hann windows add up to a constant from 4 frames on.
    const Case cases[] = { { 1024, 8, 64, false }, { 1024, 2, 3000, false }, { 64, 16, 7, false },
                           { 64, 4, 1, false },    { 256, 4, 500, true },    { 2048, 16, 129, false } };
    Observed<MAudioFFTProcessor> processor;   // one after the other: a new size forgets the audio
    MAudioFFTProcessor plain;
    for (const Case& known : cases)
    {
        SCOPED_TRACE(testing::Message() << known.frameSize << " by " << known.overlap);
        const auto latency = static_cast<std::size_t>(known.frameSize);
        const std::vector<float> input = Signals::Noise(latency * 5 + 77, Seed);
        for (MAudioFFTProcessor* each : { static_cast<MAudioFFTProcessor*>(&processor), &plain })
        {
            each->SetFrameSize(known.frameSize);
            each->SetOverlap(known.overlap);
            each->SetSynthesisWindow(known.synthesisWindow);
            each->Update();
            each->Reset();
            processor.frames.clear();
            std::vector<float> output = input;
            InBlocks(input.size(), known.maxBlock,
                     [&](std::size_t at, std::int32_t n)
                     { each->Process(output.data() + at, output.data() + at, n); });
            // Squared windows of N points, complemented on one side, are not quite constant. The first
            // samples fade in, since no earlier frames hold them.
            std::vector<float> expected = input;
            if (each == &processor)
            {
                ExpectSpectra(processor.frames, input, known.frameSize, known.frameSize / known.overlap,
                              true);
                std::for_each(expected.begin(), expected.end(), [](float& value) { value *= 0.5f; });
            }
            EXPECT_LT(Signals::LargestDifference(output, expected, 2 * latency, output.size(), latency),
                      known.synthesisWindow ? 0.02 : 1e-6);
        }
    }
}

TEST(MAudioFFTReader, ReadsOverlappingFramesWhateverTheBlocks)
{
    const std::vector<float> two = Signals::Noise(9000, Seed);
    Observed<MAudioFFTReader> fresh;
    fresh.Process(two.data(), 9000);
    ExpectSpectra(fresh.frames, two, 4096, 4096, false);
    for (const std::int32_t size : { 256, 4096, 64 })
        for (const double overlap : { 0.0, 0.75, 0.3, 0.999 })
        {
            SCOPED_TRACE(testing::Message() << size << " with " << overlap);
            Observed<MAudioFFTReader> reader;
            reader.SetFrameSize(size);
            reader.SetOverlap(overlap);
            const std::vector<float> input = Signals::Noise(static_cast<std::size_t>(size) + 400, Seed);
            InBlocks(input.size(), 99,
                     [&](std::size_t at, std::int32_t n) { reader.Process(input.data() + at, n); });
            const auto keep = static_cast<std::int32_t>(size * overlap);
            EXPECT_EQ(reader.EffectiveOverlap(), static_cast<double>(keep) / size);
            ExpectSpectra(reader.frames, input, size, size - keep, false);
        }
}
}   // namespace
