// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/MSpectralAnalyzerAdvanced.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "foundation/text/MException.h"
#include "foundation/threads/MLock.h"
#include "state/tree/MAttribute.h"
#include "tests/Signals.h"

namespace
{
using Points = std::array<float, 1024>;

constexpr double SampleRate = 48000.0;
constexpr double LeftHz = 1000.0;
constexpr double RightHz = 5000.0;
constexpr double ThirdHz = 9000.0;

// One sine of amplitude 1 on each channel.
struct Channels
{
    Channels()
    {
        for (const double hz : { LeftHz, RightHz, ThirdHz })
            samples.push_back(Signals::Sine(24000, hz, SampleRate));
        for (const std::vector<float>& channel : samples)
            pointers.push_back(channel.data());
    }
    void Feed(MSpectralAnalyzerAdvanced& analyzer, AnalyzerClient& added, std::int32_t channelCount = 2) const
    {
        analyzer.AnalyseOwn(pointers.data(), 24000, channelCount);
        analyzer.AnalyseClient(added, pointers.data(), 24000, channelCount);
    }
    Signals::Channels samples;
    std::vector<const float*> pointers;
};

// The amplitude of the sine near hz, 0 where there is none. The window loses up to 1.42 dB.
double Level(MSpectralAnalyzerAdvanced& analyzer, AnalyzerClient& client, double hz,
             std::int32_t processor = ProcessorAverage)
{
    Points points;
    analyzer.GetSpectrum(client, points.data(), processor, 0.0);
    const auto near = points.begin() + static_cast<std::ptrdiff_t>(std::log10(hz / 20.0) * 1024.0 / 3.0);
    const double level = 2.0 * *std::max_element(near - 4, near + 5);
    return level < 0.01 ? 0.0 : level;
}

TEST(AdvancedAnalyzer, TakesTheChannelsThatTheModeSays)
{
    struct Row
    {
        std::int32_t mode;
        std::int32_t channelCount;
        double left[3];   // amplitudes in client 0, and in an added one
        double right[3];   // in client 1
    };
    const double third = 1.0 / 3.0;
    const Row rows[] = { { ChannelModeLeft, 2, { 1, 0, 0 }, { 0, 0, 0 } },
                         { ChannelModeRight, 2, { 0, 1, 0 }, { 0, 0, 0 } },
                         { ChannelModeRight, 1, { 1, 0, 0 }, { 0, 0, 0 } },
                         { ChannelModeMix, 1, { 1, 0, 0 }, { 0, 0, 0 } },
                         { ChannelModeMix, 2, { 0.5, 0.5, 0 }, { 0, 0, 0 } },
                         { ChannelModeMix, 3, { third, third, third }, { 0, 0, 0 } },
                         { ChannelModeLeftAndRight, 2, { 1, 0, 0 }, { 0, 1, 0 } },
                         { ChannelModeLeftAndRight, 1, { 1, 0, 0 }, { 0, 0, 0 } } };
    const Channels channels;
    for (const Row& row : rows)
    {
        SCOPED_TRACE(std::to_string(row.mode) + " with " + std::to_string(row.channelCount) + " channels");
        MSpectralAnalyzerAdvanced analyzer;
        AnalyzerClient added;
        analyzer.settings.channelMode = row.mode;
        analyzer.AddClient(added, ProcessorAverageInfinite);
        analyzer.Initialise(SampleRate, true);
        channels.Feed(analyzer, added, row.channelCount);
        const double hz[] = { LeftHz, RightHz, ThirdHz };
        for (std::size_t i = 0; i < 3; ++i)
        {
            EXPECT_NEAR(Level(analyzer, analyzer.OwnClient(0), hz[i]), row.left[i], 0.16 * row.left[i]);
            EXPECT_NEAR(Level(analyzer, analyzer.OwnClient(1), hz[i]), row.right[i], 0.16 * row.right[i]);
            EXPECT_NEAR(Level(analyzer, added, hz[i], ProcessorAverageInfinite), row.left[i],
                        0.16 * row.left[i]);
        }
        EXPECT_EQ(Level(analyzer, added, LeftHz, ProcessorMaximum), 0.0);   // wasn't asked for
    }
}

TEST(AdvancedAnalyzer, MixesAtHighRatesWithoutLosingASample)
{
    const std::vector<float> noise = Signals::Noise(40000, 5, 0.2f);
    const float* const channels[] = { noise.data(), noise.data() };
    Points spectra[2];
    for (const std::int32_t mode : { ChannelModeLeft, ChannelModeMix })
    {
        MSpectralAnalyzerAdvanced analyzer;
        analyzer.settings.channelMode = mode;
        analyzer.Initialise(384000.0, true);
        analyzer.AnalyseOwn(channels, 40000, 2);
        analyzer.GetSpectrum(analyzer.OwnClient(0), spectra[mode == ChannelModeMix ? 1 : 0].data(), 0, 0.0);
    }
    EXPECT_GT(spectra[0][500], 1e-8f);
    for (std::size_t i = 0; i < 1024; ++i)   // the chunks of the low-pass differ in rounding
        ASSERT_NEAR(spectra[1][i], spectra[0][i], 1e-3f * spectra[0][i]) << i;
}

TEST(AdvancedAnalyzer, LatchesItsSettingsAndFeedsWhatTheyAskFor)
{
    const Channels channels;
    for (unsigned bits = 0; bits < 16; ++bits)
    {
        const bool enabled = (bits & 1) != 0, sonogram = (bits & 2) != 0, frozen = (bits & 4) != 0;
        const bool forced = (bits & 8) != 0;
        SCOPED_TRACE(bits);
        MSpectralAnalyzerAdvanced analyzer;
        AnalyzerClient added;
        analyzer.AddClient(added, MSpectralAnalyzerAdvanced::AllProcessors);
        analyzer.Initialise(SampleRate, true);
        analyzer.settings.enabled = enabled;
        analyzer.settings.sonogramEnabled = sonogram;
        analyzer.settings.freeze = frozen;
        analyzer.settings.comparisonEnable = enabled != sonogram;
        analyzer.settings.resolutionDb = -75;
        analyzer.settings.channelMode = ChannelModeLeftAndRight;
        analyzer.settings.processors[2].enabled = true;
        EXPECT_TRUE(analyzer.IsLatchedEnabled());
        analyzer.Initialise(SampleRate, forced);
        EXPECT_EQ(analyzer.IsLatchedEnabled(), enabled);
        EXPECT_EQ(analyzer.IsLatchedSonogramEnabled(), sonogram);
        EXPECT_EQ(analyzer.LatchedChannelMode(), forced ? ChannelModeLeftAndRight : ChannelModeMix);
        // With the analyzer off only the sonogram's statistic runs, and no curve is drawn.
        const bool latched[] = { forced ? enabled : true, false, forced && enabled, false };
        for (std::size_t p = 0; p < 4; ++p)
        {
            EXPECT_EQ(analyzer.LatchedProcessors()[p], latched[p]) << p;
            EXPECT_EQ(analyzer.Visibility().processors[p][0], latched[p]) << p;
            EXPECT_EQ(analyzer.Visibility().processors[p][1], latched[p] && forced) << p;
        }
        EXPECT_EQ(analyzer.Visibility().sonogram, sonogram);
        EXPECT_EQ(analyzer.Visibility().comparison, enabled != sonogram);
        EXPECT_EQ(analyzer.displayFloor, -75.0);
        channels.Feed(analyzer, added);
        EXPECT_EQ(Level(analyzer, analyzer.OwnClient(0), LeftHz) > 0.4, (enabled || sonogram) && !frozen);
        for (const std::int32_t processor : { 0, 1, 2, 3 })
            EXPECT_EQ(Level(analyzer, added, LeftHz, processor) > 0.4, !frozen);
    }
}

TEST(AdvancedAnalyzer, BringsTheEngineInLineWithSaneAndInsaneSettings)
{
    struct Row
    {
        std::int32_t fftSizePow;
        std::int32_t overlapPow;
        bool superResolution;
        double averageLength;
        std::int32_t frameSize;
        std::int32_t keep;
    };
    const Row rows[] = { { 12, 2, false, 0.1, 4096, 3072 },      { 10, 0, false, 5.0, 1024, 0 },
                         { 13, 1, true, 0.1, 2048, 1024 },       { 999, 1, false, 0.0, 262144, 131072 },
                         { -5, 999, false, -1e300, 1024, 1020 }, { 10, -3, false, 1e300, 1024, 0 } };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.fftSizePow);
        MSpectralAnalyzerAdvanced analyzer;
        analyzer.settings.fftSizePow = row.fftSizePow;
        analyzer.settings.overlapPow = row.overlapPow;
        analyzer.settings.superResolution = row.superResolution;
        analyzer.settings.averageLength = row.averageLength;
        analyzer.Initialise(SampleRate, true);
        EXPECT_EQ(analyzer.FFTSize(), row.frameSize);
        EXPECT_EQ(analyzer.OwnClient(0).keep, row.keep);
        EXPECT_EQ(analyzer.OwnClient(0).averageLength, row.averageLength);
        Points points;
        analyzer.GetSpectrum(analyzer.OwnClient(0), points.data(), 0, 0.0);
        EXPECT_NEAR(points[500], 1e-10f, 1e-14f);
    }
    MSpectralAnalyzerAdvanced analyzer;
    analyzer.settings.windowType = 4;
    analyzer.settings.timeResolution = 1.0;
    analyzer.Initialise(44100.0, false);
    EXPECT_EQ(analyzer.Window().GetType(), 4);
    EXPECT_EQ(analyzer.Window().Size(), 882);
    analyzer.settings.timeResolution = 0.0;
    analyzer.ApplyTimeResolution();
    EXPECT_EQ(analyzer.Window().Size(), 4096);
    analyzer.settings.windowType = 3;
    analyzer.Initialise(44100.0, false);
    EXPECT_EQ(analyzer.Window().GetType(), 3);
}

TEST(AdvancedAnalyzer, SmoothnessSetsTheKernel)
{
    struct Row
    {
        double smoothness;
        std::int32_t halfLength;
    };
    // Widths in points: rounded, and from 3 on.
    for (const Row& row : { Row{ 0.0, 1 }, Row{ 2.4 / 1024, 1 }, Row{ 2.5 / 1024, 3 }, Row{ 0.05, 51 },
                            Row{ 0.2, 205 }, Row{ 7.0, 1024 }, Row{ -1.0, 1 }, Row{ std::nan(""), 1 } })
    {
        MSpectralAnalyzerAdvanced analyzer;
        EXPECT_EQ(analyzer.SmoothingKernel().HalfLength(), 10);   // of the default 0.01
        analyzer.SetSmoothness(row.smoothness);
        EXPECT_EQ(analyzer.SmoothingKernel().HalfLength(), row.halfLength) << row.smoothness;
    }
    MSpectralAnalyzerAdvanced analyzer;
    MAttribute item("Analyzer");
    item.SetAttribute("Smoothness", "0.1");
    analyzer.Store({ 0, &item });
    EXPECT_EQ(analyzer.SmoothingKernel().HalfLength(), 102);
}

TEST(AdvancedAnalyzer, PrefilterLowersWhatItsCurveRaises)
{
    struct Row
    {
        std::vector<double> levels;   // dB at the ends of the axis, if any
        double depth;
        bool active;
        double firstDb, middleDb, lastDb;
    };
    const Row rows[] = { { {}, 1.0, false, 0, 0, 0 },
                         { { 0, 0 }, 1.0, false, 0, 0, 0 },
                         { { 20, 20 }, 0.5, true, -10, -10, -10 },
                         { { -30, 10 }, 1.0, true, 30, 10, 30 - 40 * 1023.0 / 1024.0 },
                         { { 20, 20 }, 0.0, true, 0, 0, 0 },
                         { {}, 0.0, true, 0, 0, 0 } };
    MSpectralAnalyzerAdvanced analyzer;   // of all rows: each makes the curve anew
    analyzer.settings.enabled = false;
    for (const Row& row : rows)
    {
        analyzer.Initialise(SampleRate, false);
        Points points;
        points.fill(0.5f);
        analyzer.ApplyPrefilter(points.data());
        EXPECT_EQ(points[512], 0.5f) << "nothing while it is off";
        analyzer.settings.prefilter.Edit(
            [&](MArray<MEnvelopePoint>& edited)
            {
                edited.Clear();
                for (const double level : row.levels)
                    edited.Add(
                        { .x = edited.IsEmpty() ? 1.3010299956639813 : 4.301029995663981, .y = level });
            });
        analyzer.settings.prefilterDepth = row.depth;
        analyzer.settings.enabled = true;
        analyzer.Initialise(SampleRate, false);
        EXPECT_EQ(analyzer.IsPrefilterActive(), row.active);
        analyzer.ApplyPrefilter(points.data());
        EXPECT_NEAR(20 * std::log10(points[0] / 0.5), row.firstDb, 1e-4);
        EXPECT_NEAR(20 * std::log10(points[512] / 0.5), row.middleDb, 1e-4);
        EXPECT_NEAR(20 * std::log10(points[1023] / 0.5), row.lastDb, 1e-4);
        analyzer.settings.enabled = false;
    }
}

TEST(AdvancedAnalyzer, KeepsStatisticsUntilTheyAreResetAndDetectsPeaksAtOnce)
{
    const Channels channels;
    MSpectralAnalyzerAdvanced analyzer;
    AnalyzerClient added;
    analyzer.AddClient(added, ProcessorMaximumInfinite);
    analyzer.settings.channelMode = ChannelModeLeftAndRight;
    analyzer.Initialise(SampleRate, true);
    analyzer.settings.peakDetection = 0.5;
    analyzer.settings.peakDetectionThreshold = -20.0;
    channels.Feed(analyzer, added);
    Points points;
    analyzer.GetSpectrum(analyzer.OwnClient(0), points.data(), ProcessorAverage, 0.0);
    EXPECT_LT(points[900], 1e-8f) << "what is no peak went down by 60 dB";
    // A forced initialisation of the same sizes keeps what it can.
    analyzer.Initialise(SampleRate, true);
    const auto isFull = [&](AnalyzerClient& client, double hz, std::int32_t processor)
    {
        return Level(analyzer, client, hz, processor) > 0.05;
    };
    EXPECT_TRUE(isFull(added, LeftHz, ProcessorMaximumInfinite));
    EXPECT_TRUE(isFull(analyzer.OwnClient(0), LeftHz, ProcessorAverage));
    EXPECT_TRUE(isFull(analyzer.OwnClient(1), RightHz, ProcessorAverage));
    analyzer.ResetAll();
    EXPECT_FALSE(isFull(added, LeftHz, ProcessorMaximumInfinite));
    EXPECT_FALSE(isFull(analyzer.OwnClient(0), LeftHz, ProcessorAverage));
    EXPECT_FALSE(isFull(analyzer.OwnClient(1), RightHz, ProcessorAverage));
}

TEST(AdvancedAnalyzer, TakesTheLockThatItWasGiven)
{
    struct BusyLock : MSynchronizer
    {
        int Acquire(std::uint32_t) override { return 1; }
        void Release() override {}
    };
    BusyLock busy;
    MSpectralAnalyzerAdvanced analyzer;
    analyzer.SetLock(&busy);
    EXPECT_THROW(analyzer.Initialise(SampleRate, true), MException);
    EXPECT_THROW(analyzer.SetSmoothness(0.1), MException);
    EXPECT_THROW(analyzer.ResetAll(), MException);
    MLock lock;
    analyzer.SetLock(&lock);
    analyzer.Initialise(SampleRate, true);
    EXPECT_EQ(lock.Acquire(0), 0);   // was let go
    lock.Release();
}
}   // namespace
