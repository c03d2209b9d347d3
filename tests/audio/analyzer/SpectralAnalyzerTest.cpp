// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/MSpectralAnalyzer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "foundation/text/MException.h"
#include "foundation/vector/VectorOperations.h"
#include "tests/Signals.h"

namespace
{
using Signals::Noise;

using Points = std::array<float, 1024>;

AnalyzerClientParameters Parameters(double overlap = 0.75)
{
    AnalyzerClientParameters parameters;
    parameters.averageLength = 1.0;
    parameters.overlap = overlap;
    parameters.processors = { true, true, true, true };
    return parameters;
}

std::vector<float> Sine(double hz, double sampleRate, int count, double amplitude = 1.0)
{
    std::vector<float> samples(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(
            amplitude * std::sin(2 * std::numbers::pi * hz * static_cast<double>(i) / sampleRate + 0.3));
    return samples;
}

void Feed(MSpectralAnalyzer& analyzer, AnalyzerClient& client, const std::vector<float>& samples)
{
    analyzer.Analyse(client, samples.data(), static_cast<std::int32_t>(samples.size()));
}

Points Spectrum(MSpectralAnalyzer& analyzer, AnalyzerClient& client, std::int32_t processor)
{
    Points points;
    points.fill(-1.0f);
    analyzer.GetSpectrum(client, points.data(), processor, 0.0);
    return points;
}

std::size_t PointOf(double hz)
{
    return static_cast<std::size_t>(std::log10(hz / 20.0) * 1024.0 / 3.0);
}

TEST(SpectralAnalyzer, GridIsTheSameAtAllUsualRates)
{
    for (const double sampleRate : { 44100.0, 48000.0, 96000.0, 192000.0 })
    {
        MSpectralAnalyzer analyzer;
        analyzer.Setup(sampleRate, 4096, 20000, 0);
        ASSERT_EQ(analyzer.FullMap().Count(), 1024);
        for (std::size_t i = 0; i < 1024; i += 31)
            ASSERT_NEAR(analyzer.FullMap().Frequency()[i],
                        20.0 * std::pow(1000.0, (static_cast<double>(i) + 0.5) / 1024.0), 2e-3);
        EXPECT_NEAR(analyzer.FullMap().PointsPerDecade(), 1024.0 / 3.0, 1e-9);
    }
    MSpectralAnalyzer low;
    low.Setup(22051.0, 4096, 20000, 0);
    EXPECT_NEAR(low.FullMap().Frequency()[1023], 11025.0 * std::pow(11025.0 / 20.0, -0.5 / 1024.0), 1e-2);
}

TEST(SpectralAnalyzer, DecimatesHighRates)
{
    struct Row
    {
        double sampleRate;
        int decimation;
    };
    for (const Row& row : { Row{ 44100, 1 }, Row{ 96000, 1 }, Row{ 100000, 1 }, Row{ 176400, 2 },
                            Row{ 192000, 2 }, Row{ 352800, 4 }, Row{ 384000, 4 }, Row{ 768000, 8 } })
    {
        MSpectralAnalyzer analyzer;
        analyzer.Setup(row.sampleRate, 4096, 20000, 0);
        EXPECT_EQ(analyzer.Decimation(), row.decimation) << row.sampleRate;
        EXPECT_EQ(analyzer.SampleRate(), row.sampleRate / row.decimation);
        EXPECT_EQ(analyzer.InputSampleRate(), row.sampleRate);
    }
}

TEST(SpectralAnalyzer, WindowShortensWithTheTimeResolution)
{
    struct Row
    {
        double timeResolution;
        int length;
    };
    // 20 ms are 882 samples; what remains to 4096 shrinks by the square.
    for (const Row& row : { Row{ 0.0, 4096 }, Row{ 1.0, 882 }, Row{ 0.5, 882 + 803 }, Row{ -3.0, 4096 } })
    {
        MSpectralAnalyzer analyzer;
        analyzer.Setup(44100.0, 4096, 20000, row.timeResolution);
        EXPECT_EQ(analyzer.Window().Size(), row.length) << row.timeResolution;
    }
}

// A Hann window loses at most 1.42 dB for a sine between two bins, and a short one blurs nothing more.
TEST(SpectralAnalyzer, SineReadsHalfItsAmplitude)
{
    struct Row
    {
        double sampleRate;
        std::int32_t frameSize;
        double lowestHz;   // a few bins above 0
    };
    for (const Row& row : { Row{ 44100, 1024, 200 }, Row{ 48000, 4096, 50 }, Row{ 96000, 16384, 30 },
                            Row{ 192000, 4096, 100 } })
    {
        MSpectralAnalyzer analyzer;
        analyzer.Setup(row.sampleRate, row.frameSize, 20000, 0);
        for (std::size_t point = PointOf(row.lowestHz); point < 1015; point += 97)
        {
            AnalyzerClient client;
            analyzer.ConfigureClient(client, Parameters(0.0));
            const double hz = analyzer.FullMap().Frequency()[point];
            SCOPED_TRACE(std::to_string(hz) + " Hz at " + std::to_string(row.sampleRate));
            const int count = row.frameSize * analyzer.Decimation() * 4;
            Feed(analyzer, client, Sine(hz, row.sampleRate, count, 0.8));
            for (const std::int32_t processor : { 0, 1, 3 })
            {
                const Points points = Spectrum(analyzer, client, processor);
                const auto near = static_cast<std::ptrdiff_t>(point);
                const float level = *std::max_element(points.begin() + near - 3, points.begin() + near + 4);
                EXPECT_NEAR(20 * std::log10(level / 0.4), -0.71, 0.78) << "processor " << processor;
                EXPECT_LT(points[point > 600 ? point - 300 : point + 300], 0.01f);
            }
        }
    }
}

TEST(SpectralAnalyzer, KeepsWhatTheOverlapSaysAndCallsListeners)
{
    struct Counter : AnalyzerClient::Listener
    {
        explicit Counter(AnalyzerClient& client) : registration(client, *this) {}
        void OnFrame(AnalyzerClient&) override { ++count; }
        int count = 0;
        AnalyzerClient::Registration registration;
    };
    struct Row
    {
        std::int32_t frameSize;
        double overlap;
        std::int32_t keep;
        int frames;   // of 20000 samples
    };
    for (const Row& row : { Row{ 4096, 0.75, 3072, 16 }, Row{ 4096, 0.0, 0, 4 }, Row{ 1024, 0.5, 512, 38 },
                            Row{ 1024, 0.999755859375, 1020, 4745 }, Row{ 1024, 1.0, 1020, 4745 } })
    {
        MSpectralAnalyzer analyzer;
        analyzer.Setup(44100.0, row.frameSize, 20000, 0);
        auto client = std::make_unique<AnalyzerClient>();
        analyzer.ConfigureClient(*client, Parameters(row.overlap));
        EXPECT_EQ(client->keep, row.keep);
        Counter staying(*client);
        {
            const Counter leaving(*client);
            Feed(analyzer, *client, Noise(8, 1, 0.2f));
        }
        Feed(analyzer, *client, Noise(19992, 1, 0.2f));
        EXPECT_EQ(staying.count, row.frames) << row.overlap;
        client.reset();   // before its listener
    }
}

TEST(SpectralAnalyzer, BlockLengthsMakeNoDifference)
{
    for (const bool superResolution : { false, true })
        for (const double sampleRate : { 48000.0, 192000.0 })
        {
            const std::vector<float> samples = Noise(65536, 5, 0.2f);
            MSpectralAnalyzer analyzer;
            analyzer.Setup(sampleRate, 2048, 20000, 0);
            AnalyzerClientParameters parameters = Parameters();
            parameters.superResolution = superResolution;
            AnalyzerClient whole, parts;
            analyzer.ConfigureClient(whole, parameters);
            analyzer.ConfigureClient(parts, parameters);
            Feed(analyzer, whole, samples);
            std::size_t position = 0;
            for (std::size_t length = 2; position < samples.size(); length = length * 3 % 4094 + 2)
            {
                const std::size_t count = std::min(length & ~std::size_t{ 1 }, samples.size() - position);
                analyzer.Analyse(parts, samples.data() + position, static_cast<std::int32_t>(count));
                position += count;
            }
            // The decimator runs in floats, whose rounding depends on how the samples come.
            for (const std::int32_t processor : { 0, 1, 2, 3 })
            {
                const Points expected = Spectrum(analyzer, whole, processor);
                const Points actual = Spectrum(analyzer, parts, processor);
                for (std::size_t i = 0; i < actual.size(); ++i)
                    ASSERT_NEAR(actual[i], expected[i], 1e-3f * expected[i])
                        << sampleRate << " Hz, point " << i;
            }
        }
}

TEST(SpectralAnalyzer, EmptyStatisticsAndSilenceReadAsToldApart)
{
    MSpectralAnalyzer analyzer;
    AnalyzerClient client;
    EXPECT_EQ(Spectrum(analyzer, client, 0), Points{});   // before any setup
    analyzer.Setup(48000.0, 4096, 20000, 0);
    EXPECT_EQ(Spectrum(analyzer, client, 0), Points{});   // not configured
    AnalyzerClientParameters parameters = Parameters();
    parameters.processors = { true, true, true, false };
    analyzer.ConfigureClient(client, parameters);
    EXPECT_EQ(Spectrum(analyzer, client, 3), Points{});
    EXPECT_EQ(Spectrum(analyzer, client, -1), Points{});
    EXPECT_EQ(Spectrum(analyzer, client, 4), Points{});
    for (const std::int32_t processor : { 0, 1 })
        for (const float value : Spectrum(analyzer, client, processor))
            ASSERT_NEAR(value, 1e-10f, 1e-14f);
    for (const float value : Spectrum(analyzer, client, 2))
        ASSERT_EQ(value, 0.0f);
    Feed(analyzer, client, std::vector<float>(20000));
    for (const std::int32_t processor : { 0, 1, 2 })
        for (const float value : Spectrum(analyzer, client, processor))
            ASSERT_NEAR(value, 1e-10f, 1e-14f) << processor;

    Feed(analyzer, client, Noise(20000, 3, 0.2f));
    EXPECT_GT(Spectrum(analyzer, client, 1)[700], 1e-8f);
    analyzer.ResetClient(client);
    for (const float value : Spectrum(analyzer, client, 1))
        ASSERT_NEAR(value, 1e-10f, 1e-14f);

    // A frame of another size passes a client by until it is configured for it.
    Feed(analyzer, client, Noise(20000, 3, 0.2f));
    analyzer.Setup(48000.0, 8192, 20000, 0);
    Feed(analyzer, client, Noise(20000, 3, 0.2f));
    EXPECT_EQ(Spectrum(analyzer, client, 1), Points{});
    analyzer.ConfigureClient(client, parameters);
    Feed(analyzer, client, Noise(20000, 3, 0.2f));
    EXPECT_GT(Spectrum(analyzer, client, 1)[700], 1e-4f);
}

TEST(SpectralAnalyzer, SuperResolutionReadsSinesAcrossItsLevels)
{
    MSpectralAnalyzer analyzer;
    analyzer.Setup(48000.0, MSpectralAnalyzer::SuperResolutionFrameSize, 20000, 0);
    AnalyzerClientParameters parameters = Parameters();
    parameters.superResolution = true;
    for (std::size_t point = 20; point < 1010; point += 41)
    {
        AnalyzerClient client;
        analyzer.ConfigureClient(client, parameters);
        const double hz = analyzer.FullMap().Frequency()[point];
        Feed(analyzer, client, Sine(hz, 48000.0, 48000 * 4));
        const Points points = Spectrum(analyzer, client, ProcessorMaximumInfinite);
        const auto near = static_cast<std::ptrdiff_t>(point);
        const float level = *std::max_element(points.begin() + near - 5, points.begin() + near + 6);
        // Level 0 alone loses 1.42 dB between bins. Where two levels meet, their maps lie up to a point
        // apart, and the mean of two logarithms at the flanks of a line loses up to 9 dB. A missing level
        // would lose 100 dB.
        const double levelDb = 20 * std::log10(level / 0.5);
        EXPECT_LT(levelDb, 0.4) << hz << " Hz";
        EXPECT_GT(levelDb, point > 818 ? -1.5 : -9.0) << hz << " Hz";
    }
}

TEST(SpectralAnalyzer, SuperResolutionContinuesTheSingleResolution)
{
    // Pink enough that a step between levels would show: noise through a one-pole low-pass at 500 Hz.
    std::vector<float> samples = Noise(48000 * 40, 11, 0.2f);
    float state = 0;
    for (float& sample : samples)
        sample = state += 0.0635f * (sample - state);
    const auto measure = [&](bool superResolution, std::int32_t frameSize)
    {
        MSpectralAnalyzer analyzer;
        analyzer.Setup(48000.0, frameSize, 20000, 0);
        AnalyzerClientParameters parameters = Parameters();
        parameters.superResolution = superResolution;
        AnalyzerClient client;
        analyzer.ConfigureClient(client, parameters);
        Feed(analyzer, client, samples);
        return Spectrum(analyzer, client, ProcessorAverageInfinite);
    };
    // Level k of 2048 points resolves as one frame of 2048 2^k points: compare each fifth with the frame that
    // has the resolution of its own level.
    const Points super = measure(true, 2048);
    struct Row
    {
        std::size_t first, last;
        std::int32_t frameSize;
        double toleranceDb;
    };
    for (const Row& row : { Row{ 819, 1000, 2048, 0.1 }, Row{ 590, 635, 4096, 1.5 },
                            Row{ 385, 430, 8192, 1.5 }, Row{ 180, 225, 16384, 1.5 } })
    {
        const Points single = measure(false, row.frameSize);
        double difference = 0;
        for (std::size_t i = row.first; i <= row.last; ++i)
            difference += 20 * std::log10(super[i] / single[i]);
        difference /= static_cast<double>(row.last - row.first + 1);
        EXPECT_NEAR(difference, 0.0, row.toleranceDb) << "points " << row.first << " to " << row.last;
    }
    // No steps: neighbours differ by the noise of the measurement only.
    for (std::size_t i = 30; i < 1000; ++i)
        ASSERT_NEAR(20 * std::log10(super[i] / super[i - 1]), 0.0, 2.0) << i;
}

TEST(SpectralAnalyzer, PeakDetectionAndDeharmonizeActOnTheSpectrum)
{
    MSpectralAnalyzer analyzer;
    analyzer.Setup(48000.0, 4096, 20000, 0);
    // Bins count from 1 in the harmonic product: what belongs to bin 200 stands at 399, 598 and 797.
    const double binHz = 48000.0 / 4096.0;
    std::vector<float> samples = Noise(48000, 17, 0.2f);
    for (float& sample : samples)
        sample *= 0.01f;
    for (const double harmonic : { 200.0, 399.0, 598.0, 797.0 })
    {
        const std::vector<float> line = Sine(harmonic * binHz, 48000.0, 48000, 200.0 / harmonic);
        MVector::AddInPlace(line.data(), samples.data(), 48000);
    }
    AnalyzerClient plain, peaks;
    analyzer.ConfigureClient(plain, Parameters());
    analyzer.ConfigureClient(peaks, Parameters());
    Feed(analyzer, plain, samples);
    analyzer.peakDetection = 1.0;
    Feed(analyzer, peaks, samples);
    const auto levelDb = [](const Points& points, double hz)
    {
        const auto near = points.begin() + static_cast<std::ptrdiff_t>(PointOf(hz));
        return 20 * std::log10(*std::max_element(near - 4, near + 5));
    };
    const Points before = Spectrum(analyzer, plain, 1);
    const Points after = Spectrum(analyzer, peaks, 1);
    EXPECT_NEAR(levelDb(after, 200 * binHz), levelDb(before, 200 * binHz), 1.0);
    EXPECT_NEAR(levelDb(before, 6000.0) - levelDb(after, 6000.0), 120.0,
                40.0);   // limited by the floor of -200 dB

    Points fundamental;
    analyzer.GetSpectrum(plain, fundamental.data(), 1, 1.0);
    EXPECT_NEAR(levelDb(fundamental, 200 * binHz), levelDb(before, 200 * binHz), 1.0);
    EXPECT_LT(levelDb(fundamental, 399 * binHz), levelDb(before, 399 * binHz) - 60.0);
}

TEST(AnalyzerFrequencyMap, InterpolatesBelowAndTakesMaximaAbove)
{
    AnalyzerFrequencyMap map;
    map.Build(4096, 48000.0, 20.0, 20000.0, 1024);
    std::mt19937 random(23);
    std::uniform_real_distribution<float> uniform(0.01f, 1.0f);
    std::vector<float> bins(2048);
    for (float& bin : bins)
        bin = uniform(random);
    Points out;
    map.MapToPoints(bins.data(), out.data());
    bool maxima = false;
    for (std::size_t i = 0; i < out.size(); ++i)
    {
        const double p = map.BinPosition()[i];
        EXPECT_NEAR(p, map.Frequency()[i] * 4096.0 / 48000.0, 1e-3);
        const double previous = map.BinPosition()[i == 0 ? 0 : i - 1];
        maxima = maxima || p - 1.0 > previous;
        double expected = 0;
        if (!maxima)
        {
            const auto k = static_cast<std::size_t>(p);
            const double u = p - static_cast<double>(k);
            expected = std::exp((1 - u) * std::log(bins[k]) + u * std::log(bins[k + 1]));
        }
        else
            for (auto k = static_cast<std::size_t>(previous); k < static_cast<std::size_t>(p); ++k)
                expected = std::max(expected, static_cast<double>(bins[k]));
        ASSERT_NEAR(out[i], expected, 1e-4) << i;   // positions are floats
    }
    EXPECT_TRUE(maxima);

    // At a low rate the axis goes on above the last bin: nothing there.
    map.Build(1024, 30000.0, 20.0, 20000.0, 1024);
    map.MapToPoints(bins.data(), out.data());
    EXPECT_GT(out[900], 0.0f);
    EXPECT_EQ(out[1023], 0.0f);
}
TEST(SpectralAnalyzer, OneBadSampleIsASampleOfSilenceAndNothingMore)
{
    for (const double sampleRate : { 48000.0, 192000.0 })
        for (const bool superResolution : { false, true })
        {
            MSpectralAnalyzer analyzer;
            analyzer.Setup(sampleRate, superResolution ? 2048 : 4096, 20000, 0);
            AnalyzerClientParameters parameters = Parameters();
            parameters.superResolution = superResolution;
            AnalyzerClient clean, dirty;
            std::vector<float> samples = Noise(200000, 4, 0.2f);
            std::vector<float> bad = samples;
            const float values[] = { std::nanf(""), INFINITY, -INFINITY, 3e38f };
            for (std::size_t i = 0; i < 4; ++i)
            {
                samples[3000 + 10 * i] = 0.0f;
                bad[3000 + 10 * i] = values[i];
            }
            for (AnalyzerClient* client : { &clean, &dirty })
            {
                analyzer.ConfigureClient(*client, parameters);
                Feed(analyzer, *client, client == &clean ? samples : bad);
            }
            for (std::int32_t processor = 0; processor < 4; ++processor)
                EXPECT_EQ(Spectrum(analyzer, dirty, processor), Spectrum(analyzer, clean, processor))
                    << sampleRate << superResolution << processor;
        }
}
}   // namespace
