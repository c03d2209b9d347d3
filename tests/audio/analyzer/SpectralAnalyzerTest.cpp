// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/MSpectralAnalyzer.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>
#include <string>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "audio/analyzer/SpectrumOperations.h"
#include "tests/Signals.h"

namespace
{
using Signals::Noise;
using Signals::Sine;

using Points = std::array<float, 1024>;
constexpr float Silence = 1e-10f;

AnalyzerClientParameters Parameters(double overlap = 0.75, bool superResolution = false)
{
    AnalyzerClientParameters parameters;
    parameters.averageLength = 1.0;
    parameters.overlap = overlap;
    parameters.superResolution = superResolution;
    parameters.processors = { true, true, true, true };
    return parameters;
}

void Feed(MSpectralAnalyzer& analyzer, AnalyzerClient& client, const std::vector<float>& samples)
{
    analyzer.Analyse(client, samples.data(), static_cast<std::int32_t>(samples.size()));
}

Points Spectrum(MSpectralAnalyzer& analyzer, AnalyzerClient& client, std::int32_t processor,
                double deharmonize = 0.0)
{
    Points points;
    points.fill(-1.0f);
    analyzer.GetSpectrum(client, points.data(), processor, deharmonize);
    return points;
}

struct Case
{
    double sampleRate;
    std::int32_t frameSize;
    double overlap;
    double averageLength;
    double timeResolution = 0;
    double peakDetection = 0;
    double deharmonize = 0;
    bool logarithmic = true;
};

// What the analyzer promises, in double and bin by bin.
class Reference
{
public:
    Reference(const Case& setting, const MSpectralAnalyzer& measured, const std::vector<float>& samples)
        : each(setting), analyzer(measured)
    {
        for (std::size_t i = 0; i < Size(); ++i)
            circle.push_back(
                std::polar(1.0, 2.0 * std::numbers::pi * static_cast<double>(i) / each.frameSize));
        // Exact to 4 samples, and a frame takes something new.
        const std::int32_t keep =
            std::min(static_cast<std::int32_t>(each.frameSize * each.overlap) / 4, each.frameSize / 4 - 1) *
            4;
        for (std::size_t start = 0; start + Size() <= samples.size();
             start += static_cast<std::size_t>(each.frameSize - keep))
            frames.push_back(Bins(samples.data() + start));
    }

    // How many samples of 20 ms and the square of what remains the window covers.
    std::int32_t WindowLength() const
    {
        const std::int32_t shortest =
            std::min(static_cast<std::int32_t>(0.02 * each.sampleRate), each.frameSize);
        return shortest + static_cast<std::int32_t>((each.frameSize - shortest) *
                                                    std::pow(1.0 - each.timeResolution, 2.0));
    }

    std::size_t FrameCount() const { return frames.size(); }

    std::vector<double> Statistic(std::int32_t processor) const
    {
        const double framesPerSecond = each.sampleRate / ((1.0 - each.overlap) * each.frameSize);
        const double covered = std::max(1.0, std::floor(framesPerSecond * each.averageLength));
        const std::size_t oldest =
            processor != ProcessorAverage || covered > static_cast<double>(frames.size())
                ? 0
                : frames.size() - static_cast<std::size_t>(covered);
        std::vector<double> result(Size() / 2, processor < ProcessorMaximum ? 0.0 : -400.0);
        for (std::size_t j = oldest; j < frames.size(); ++j)
            for (std::size_t bin = 0; bin < result.size(); ++bin)
            {
                const double age = static_cast<double>(frames.size() - 1 - j) / framesPerSecond;
                if (processor < ProcessorMaximum)
                    result[bin] += frames[j][bin] / static_cast<double>(frames.size() - oldest);
                else
                    result[bin] =
                        std::max(result[bin], frames[j][bin] - (processor == ProcessorMaximum ? age : 0.0));
            }
        return result;
    }

    std::vector<double> OnTheAxis(std::int32_t processor) const
    {
        std::vector<float> bins;
        for (const double value : Statistic(processor))
            bins.push_back(static_cast<float>(each.logarithmic ? std::exp(value) : value));
        std::vector<float> scratch(bins.size());
        SpectrumOperations::Deharmonize(bins.data(), each.frameSize / 2, each.deharmonize, scratch.data());
        const double top = std::min(20000.0, std::trunc(each.sampleRate / 2.0));
        std::vector<double> points;
        bool takesMaxima = false;
        for (std::size_t i = 0; i < 1024; ++i)
        {
            const double hz = 20.0 * std::pow(top / 20.0, (static_cast<double>(i) + 0.5) / 1024.0);
            const double position = analyzer.FullMap().BinPosition()[i];   // floats decide at whole bins
            EXPECT_NEAR(position, hz * each.frameSize / each.sampleRate, 1e-3);
            EXPECT_NEAR(analyzer.FullMap().Frequency()[i], hz, 2e-3);
            const double previous = analyzer.FullMap().BinPosition()[i == 0 ? 0 : i - 1];
            takesMaxima = takesMaxima || position - 1.0 > previous;
            const auto bin = static_cast<std::size_t>(position);
            const double share = position - std::floor(position);
            if (takesMaxima)
                points.push_back(*std::max_element(bins.begin() + static_cast<std::ptrdiff_t>(previous),
                                                   bins.begin() + static_cast<std::ptrdiff_t>(bin)));
            else
                points.push_back(std::pow(bins[bin], 1.0 - share) *
                                 std::pow(bins[std::min(bin + 1, bins.size() - 1)], share));
        }
        EXPECT_EQ(takesMaxima, each.frameSize > 64);
        return points;
    }

private:
    std::size_t Size() const { return static_cast<std::size_t>(each.frameSize); }

    std::vector<double> Bins(const float* samples) const
    {
        const auto length = static_cast<std::size_t>(WindowLength());
        const float* window = analyzer.Window().Data();
        const double windowSum = std::accumulate(window, window + length, 0.0);
        std::vector<float> bins;
        for (std::size_t bin = 0; bin < Size() / 2; ++bin)
        {
            double real = 0, imaginary = 0;
            for (std::size_t i = 0; i < length; ++i)
            {
                const std::complex<double>& turn = circle[bin * i & (Size() - 1)];
                real += static_cast<double>(samples[i] * window[i]) * turn.real();
                imaginary += static_cast<double>(samples[i] * window[i]) * turn.imag();
            }
            bins.push_back(static_cast<float>(std::hypot(real, imaginary) / windowSum));
        }
        if (each.peakDetection > 0)
            SpectrumOperations::KeepPeaks(bins.data(), each.frameSize / 2, each.peakDetection, -30.0);
        std::vector<double> result;
        for (const float bin : bins)
            result.push_back(each.logarithmic ? std::log(std::max(static_cast<double>(bin), 1e-10)) : bin);
        return result;
    }

    Case each;
    const MSpectralAnalyzer& analyzer;
    std::vector<std::complex<double>> circle;
    std::vector<std::vector<double>> frames;
};

struct FrameCounter : AnalyzerClient::Listener
{
    explicit FrameCounter(AnalyzerClient& client) : registration(client, *this) {}
    void OnFrame(AnalyzerClient&) override { ++count; }
    std::size_t count = 0;
    AnalyzerClient::Registration registration;
};

TEST(SpectralAnalyzer, ComputesItsStatisticsAsDefinedWhateverTheBlocks)
{
    MSpectralAnalyzer analyzer;   // of all cases: each sets it up anew
    for (const Case& each :
         { Case{ 48000, 1024, 0.5, 0.05 }, Case{ 44100, 1024, 0.75, 0.06 }, Case{ 22050, 64, 0.5, 0.05 },
           Case{ 22050, 64, 0.999, 0.001 }, Case{ 22051, 1024, 0.0, -1.0 },
           Case{ 96000, 2048, 0.5, 9.0, 0.3 }, Case{ 48000, 1024, 0.25, 0.1, 0.0, 0.5, 0.2 },
           Case{ 30000, 1024, 0.5, 0.1, 1.0, 0.0, 0.0, false } })
    {
        SCOPED_TRACE(std::to_string(each.sampleRate) + " Hz, " + std::to_string(each.frameSize));
        analyzer.Setup(each.sampleRate, each.frameSize, 20000, each.timeResolution);
        analyzer.peakDetection = each.peakDetection;
        analyzer.peakDetectionThreshold = -30.0;
        AnalyzerClientParameters parameters = Parameters(each.overlap);
        parameters.averageLength = each.averageLength;
        parameters.logarithmic = each.logarithmic;
        auto client = std::make_unique<AnalyzerClient>();
        analyzer.ConfigureClient(*client, parameters);
        FrameCounter counter(*client);
        const FrameCounter leaving(*client);
        {
            const FrameCounter leavesAtOnce(*client);
        }
        std::vector<float> samples = Noise(6000, 29, 0.2f);
        for (std::size_t i = 4000; i < samples.size(); ++i)
            samples[i] *= 0.01f;   // so that a maximum falls
        for (std::size_t done = 0, length = 1; done < samples.size();
             done += length, length = length * 3 % 3001)
            analyzer.Analyse(*client, samples.data() + done,
                             static_cast<std::int32_t>(std::min(length, samples.size() - done)));
        const Reference reference(each, analyzer, samples);
        EXPECT_EQ(analyzer.Window().Size(), reference.WindowLength());
        EXPECT_EQ(counter.count, reference.FrameCount());
        for (std::int32_t processor = 0; processor < 4; ++processor)
        {
            const std::vector<double> expected = reference.OnTheAxis(processor);
            const Points actual = Spectrum(analyzer, *client, processor, each.deharmonize);
            // Noise of -14 dB through a float transform, and logarithms between bins that differ by 100 dB.
            for (std::size_t i = 0; i < 1024; ++i)
                ASSERT_NEAR(actual[i], expected[i], 4e-3 * expected[i] + 2e-8)
                    << processor << ", point " << i;
        }
        client.reset();   // before its listeners
    }
}

// Lines stand where they belong at half their amplitude, and nothing else does: what lies above the axis
// doesn't come back by decimation, of the input at high rates or of the levels.
TEST(SpectralAnalyzer, ShowsSinesAtEveryRateAndNoAliases)
{
    struct Row
    {
        double sampleRate;
        std::int32_t frameSize;
        bool superResolution;
        double seconds;
        double lowestHz;   // a few bins above 0
    };
    for (const Row& row : { Row{ 44100, 1024, false, 0.1, 200 }, Row{ 96000, 4096, false, 0.2, 110 },
                            Row{ 192000, 4096, false, 0.2, 110 }, Row{ 352800, 4096, false, 0.2, 110 },
                            Row{ 48000, 2048, true, 1.5, 40 }, Row{ 192000, 2048, true, 1, 60 } })
    {
        MSpectralAnalyzer analyzer;
        analyzer.Setup(row.sampleRate, row.frameSize, 20000, 0);
        for (double hz = row.lowestHz; hz < 0.49 * row.sampleRate;
             hz = hz < 20000 ? std::min(1.67 * hz, 20500.0) : hz + 0.037 * row.sampleRate)
        {
            SCOPED_TRACE(std::to_string(hz) + " Hz at " + std::to_string(row.sampleRate));
            AnalyzerClient client;
            analyzer.ConfigureClient(client, Parameters(0.3, row.superResolution));
            Feed(analyzer, client,
                 Sine(static_cast<std::size_t>(row.seconds * row.sampleRate), hz, row.sampleRate, 0.8));
            const double point = std::log10(hz / 20.0) * 1024.0 / 3.0;
            const Points points = Spectrum(analyzer, client, ProcessorAverageInfinite);
            double nearDb = -300, farDb = -300;
            for (std::size_t i = 0; i < 1024; ++i)
            {
                const double distance = std::abs(static_cast<double>(i) - point);
                const double levelDb = 20.0 * std::log10(points[i] / 0.4);
                if (distance < 6)
                    nearDb = std::max(nearDb, levelDb);
                else if (distance > 150)
                    farDb = std::max(farDb, levelDb);
            }
            if (hz > 20000)
            {
                EXPECT_LT(farDb, -80);   // the decimator is of order 8
                continue;
            }
            // A Hann window loses up to 1.42 dB between bins, and points lie between them. Where two levels
            // meet, their maps lie up to a point apart, and the mean of two logarithms at the flanks of a
            // line loses up to 9 dB.
            EXPECT_LT(nearDb, 0.4);
            EXPECT_GT(nearDb, row.superResolution && point < 819 ? -9.0 : -2.0);
            EXPECT_LT(farDb, hz < 400 ? -35 : -70);
        }
    }
}

TEST(SpectralAnalyzer, DecimatesToBetween50And100Kilohertz)
{
    for (double sampleRate = 8000; sampleRate < 1.6e6; sampleRate *= 1.13)
    {
        MSpectralAnalyzer analyzer;
        analyzer.Setup(sampleRate, 1024, 20000, 0);
        const std::int32_t decimation = analyzer.Decimation();
        EXPECT_EQ(analyzer.InputSampleRate(), sampleRate);
        EXPECT_EQ(analyzer.SampleRate(), sampleRate / decimation);
        EXPECT_EQ(decimation & (decimation - 1), 0) << sampleRate;
        EXPECT_LE(analyzer.SampleRate(), 100000);
        if (sampleRate <= 100000)
            EXPECT_EQ(decimation, 1);
        else
            EXPECT_GE(analyzer.SampleRate(), 50000);
    }
}

// Five levels share the axis: each rises over one fifth and falls over the next, so that they add up to one.
// Clearing the statistics of all but one shows the weight of that one, in logarithms.
TEST(SpectralAnalyzer, SuperResolutionCrossfadesItsLevels)
{
    constexpr double fifth = 1024.0 / 5;
    MSpectralAnalyzer analyzer;
    analyzer.Setup(48000.0, 2048, 20000, 0);
    AnalyzerClient client;
    analyzer.ConfigureClient(client, Parameters(0.75, true));
    for (const float value : Spectrum(analyzer, client, ProcessorAverageInfinite))
        ASSERT_NEAR(value, Silence, 1e-14f);
    const std::vector<float> noise = Noise(48000 * 4, 11, 0.2f);
    for (std::size_t only = 0; only < 5; ++only)
    {
        analyzer.ResetClient(client);
        Feed(analyzer, client, noise);
        for (std::size_t level = 0; level < 5; ++level)
            if (level != only)
                client.levels[level].processors[ProcessorAverageInfinite]->Reset();
        const Points points = Spectrum(analyzer, client, ProcessorAverageInfinite);
        // White noise of amplitude 0.2 has logarithms around -52 dB in the bins of level 0. Each further
        // level has half the power and fewer frames to average.
        for (std::size_t i = 0; i < 1024; ++i)
        {
            const double distance = static_cast<double>(i + 1) / fifth - 4.0 + static_cast<double>(only);
            const bool isAlone = (only == 0 && distance > 0) || (only == 4 && distance < 0);
            const double weight = isAlone ? 1.0 : std::max(0.0, 1.0 - std::abs(distance));
            ASSERT_NEAR(20.0 * std::log10(points[i]),
                        -200.0 + weight * (148.0 - 3.01 * static_cast<double>(only)),
                        1.0 + weight * static_cast<double>(1 + only))
                << "level " << only << ", point " << i;
        }
    }
    analyzer.ConfigureClient(client, Parameters());
    EXPECT_TRUE(client.levels[1].frame.empty()) << "what isn't used gives its memory back";
}

TEST(SpectralAnalyzer, PassesByWhatItHasNotConfigured)
{
    MSpectralAnalyzer analyzer;
    AnalyzerClient client;
    Feed(analyzer, client, Noise(100, 1));
    EXPECT_EQ(Spectrum(analyzer, client, 0), Points{}) << "before any setup";
    analyzer.Setup(192000.0, 4096, 20000, 0);
    EXPECT_EQ(Spectrum(analyzer, client, 0), Points{}) << "not configured";
    AnalyzerClientParameters parameters = Parameters();
    parameters.processors = { true, true, true, false };
    const std::vector<float> noise = Noise(40000, 3, 0.2f);
    for (const std::int32_t frameSize : { 1024, 4096 })
    {
        analyzer.Setup(192000.0, frameSize, 20000, 0);
        Feed(analyzer, client, noise);
        EXPECT_EQ(Spectrum(analyzer, client, 1), Points{}) << "configured for another frame";
        analyzer.ConfigureClient(client, parameters);
        for (const std::int32_t absent : { -1, 3, 4 })
            EXPECT_EQ(Spectrum(analyzer, client, absent), Points{});
        EXPECT_EQ(Spectrum(analyzer, client, 2), Points{}) << "a maximum of nothing";
        Feed(analyzer, client, std::vector<float>(40000));
        for (const std::int32_t processor : { 0, 1, 2 })
            EXPECT_THAT(Spectrum(analyzer, client, processor),
                        testing::Each(testing::FloatNear(Silence, 1e-14f)));
        Feed(analyzer, client, noise);
        EXPECT_GT(Spectrum(analyzer, client, 1)[700], 1e-8f);
        analyzer.ResetClient(client);
        EXPECT_THAT(Spectrum(analyzer, client, 1), testing::Each(testing::FloatNear(Silence, 1e-14f)));
    }
    // Another rate needs a decimator that the client doesn't have yet.
    AnalyzerClient plain;
    analyzer.Setup(48000.0, 4096, 20000, 0);
    analyzer.ConfigureClient(plain, parameters);
    analyzer.Setup(192000.0, 4096, 20000, 0);
    Feed(analyzer, plain, noise);
    EXPECT_EQ(Spectrum(analyzer, plain, 2), Points{});
    // A rate that needs the same one gets it redesigned: 16 kHz would be taken away by that of twice the
    // rate.
    analyzer.Setup(384000.0, 4096, 20000, 0);
    analyzer.ConfigureClient(plain, parameters);
    analyzer.Setup(192000.0, 4096, 20000, 0);
    Feed(analyzer, plain, Sine(40000, 16000, 192000));
    const Points points = Spectrum(analyzer, plain, 1);
    EXPECT_GT(*std::max_element(points.begin(), points.end()), 0.4f);
}

TEST(SpectralAnalyzer, OneBadSampleIsASampleOfSilenceAndNothingMore)
{
    for (const double sampleRate : { 48000.0, 192000.0 })
    {
        MSpectralAnalyzer analyzer;
        analyzer.Setup(sampleRate, 2048, 20000, 0);
        AnalyzerClient clean, dirty;
        std::vector<float> samples = Noise(50000, 4, 0.2f);
        analyzer.ConfigureClient(clean, Parameters(0.75, true));
        analyzer.ConfigureClient(dirty, Parameters(0.75, true));
        samples[3000] = samples[3010] = samples[3020] = samples[3030] = 0.0f;
        Feed(analyzer, clean, samples);
        std::tie(samples[3000], samples[3010], samples[3020], samples[3030]) =
            std::tuple(std::nanf(""), INFINITY, -INFINITY, 3e38f);
        Feed(analyzer, dirty, samples);
        for (std::int32_t processor = 0; processor < 4; ++processor)
            EXPECT_EQ(Spectrum(analyzer, dirty, processor), Spectrum(analyzer, clean, processor))
                << sampleRate;
    }
}

TEST(AnalyzerFrequencyMap, ShowsNothingAboveTheLastBin)
{
    AnalyzerFrequencyMap map;
    map.Build(1024, 30000.0, 20.0, 20000.0, 1024);
    EXPECT_NEAR(map.PointsPerDecade(), 1024.0 / 3.0, 1e-9);
    const std::vector<float> bins = Noise(512, 1);
    Points out;
    out.fill(-7.0f);
    map.MapToPoints(bins.data(), out.data());
    for (std::size_t i = 983; i < 1024; ++i)   // above 14999 Hz
        EXPECT_EQ(out[i], 0.0f) << i;
}

TEST(BlockProcessors, KeepWhatFitsWhenInitialisedAgain)
{
    constexpr std::int32_t size = 16;
    BlockProcessorAverage average;
    BlockProcessorAverageInfinite averageInfinite;
    BlockProcessorMaximum maximum;
    BlockProcessorMaximumInfinite maximumInfinite;
    const std::vector<float> fed(size / 2, -2.0f);
    for (BlockProcessor* processor :
         std::initializer_list<BlockProcessor*>{ &average, &averageInfinite, &maximum, &maximumInfinite })
    {
        const auto read = [processor](std::size_t count)
        {
            std::vector<float> out(count, 7.0f);
            processor->Get(out.data());
            return testing::PrintToString(out);
        };
        const auto flat = [](std::size_t count, float value)
        {
            return testing::PrintToString(std::vector<float>(count, value));
        };
        const bool isMaximum = processor == &maximum || processor == &maximumInfinite;
        const float empty = isMaximum ? -400.0f : BlockProcessor::SilentLogarithm;
        processor->Init(4, size, 10.0);
        EXPECT_EQ(read(8), flat(8, empty));
        for (int frame = 0; frame < 3; ++frame)
            processor->Process(fed.data());
        processor->Init(4, size, 20.0);
        EXPECT_EQ(read(8), flat(8, -2.0f));
        processor->Init(5, size, 20.0);
        EXPECT_EQ(read(8), flat(8, processor == &average ? empty : -2.0f)) << "another length";
        processor->Init(5, size / 2, 20.0);
        EXPECT_EQ(read(4), flat(4, empty)) << "another size";
        processor->Process(fed.data());
        processor->Reset();
        EXPECT_EQ(read(4), flat(4, empty));
        processor->Process(fed.data());
        EXPECT_EQ(read(4), flat(4, -2.0f)) << "as after a fresh start";
    }
}
}   // namespace
