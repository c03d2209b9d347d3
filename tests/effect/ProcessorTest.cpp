// SPDX-License-Identifier: GPL-3.0-or-later
#include <random>

#include <gtest/gtest.h>

#include "audio/filters/FilterMagnitudes.h"
#include "effect/FilterFitter.h"
#include "tests/effect/EqualizerHarness.h"

namespace
{
constexpr EqualizerMode allModes[] = { EqualizerMode::Normal, EqualizerMode::LinearPhase,
                                       EqualizerMode::LinearPhaseFFT };
constexpr std::size_t latency = MEqualizerProcessor::FFTSize;

const char* NameOf(EqualizerMode mode)
{
    static constexpr const char* names[] = { "Normal", "Linear-phase", "Linear-phase FFT based" };
    return names[static_cast<int>(mode)];
}

// The magnitude that the lists of a mode promise, in dB.
double PromisedDb(const EqualizerHarness& harness, EqualizerMode mode, double hertz)
{
    if (mode != EqualizerMode::LinearPhase)
        return 20 * std::log10(MAudioFilters::MagnitudeOfList(harness.equalizer.filters.filters.data(),
                                                              harness.equalizer.filters.count, hertz));
    const FilterList& list = harness.equalizer.LinearFilters();
    return 40 * std::log10(MAudioFilters::MagnitudeOfList(list.filters.data(), list.count, hertz));
}

std::vector<float> Noise(std::size_t count, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> samples(-0.7f, 0.7f);
    std::vector<float> noise(count);
    for (float& sample : noise)
        sample = samples(generator);
    return noise;
}
}   // namespace

TEST(EqualizerProcessor, ListsHoldTheSectionsThatTheBandsAskFor)
{
    EqualizerHarness harness(EqualizerMode::LinearPhase);
    const auto counts = [&harness]
    {
        harness.Update();
        return std::pair{ harness.equalizer.filters.count, harness.equalizer.LinearFilters().count };
    };
    EXPECT_EQ(counts(), std::pair(0, 0));
    BandPoint& band = harness.SetBand(0, MAudioFilters::Peak, 1000, 6, 1);
    EXPECT_EQ(counts(), std::pair(1, 1));
    band.type = MAudioFilters::LowShelf;
    EXPECT_EQ(counts(), std::pair(2, 1)) << "a shelf is two passes of half the gain";
    EXPECT_NEAR(harness.equalizer.filters.filters[0].gain, 3, 1e-12);
    band.type = MAudioFilters::LowPass;
    band.order = 9;
    EXPECT_EQ(counts(), std::pair(20, 10));
    band.type = MAudioFilters::Peak;
    band.harmonicsDepth = 1.0;
    EXPECT_EQ(counts(), std::pair(5, 5)) << "1, 2, 4, 8 and 16 kHz; 32 kHz lies beyond half the rate";
    band.harmonicsEnabled[0] = false;
    EXPECT_EQ(counts(), std::pair(4, 4));
    band.harmonicsEnabled[0] = true;
    band.harmonicsLinear = true;
    EXPECT_EQ(counts(), std::pair(17, 17)) << "1 kHz and its sixteen multiples";
    EXPECT_NEAR(harness.equalizer.filters.filters[2].frequency, 3000, 1e-6);
    EXPECT_NEAR(harness.equalizer.filters.filters[1].q, 1 + 19 * 0.1, 1e-9) << "each harmonic is narrower";
    band.harmonicsDepth = -0.5;
    harness.Update();
    EXPECT_LT(harness.equalizer.filters.filters[1].gain, 0);
    EXPECT_GT(harness.equalizer.filters.filters[2].gain, 0);
    band.harmonicsDepth = 1.0;
    band.x = std::log10(15000.0);
    EXPECT_EQ(counts(), std::pair(1, 1));
    for (std::int32_t index = 0; index < 10; ++index)
    {
        BandPoint& each = harness.SetBand(index, MAudioFilters::LowShelf, 20, 20, 1);
        each.harmonicsDepth = 1.0;
        each.harmonicsLinear = true;
    }
    EXPECT_EQ(counts(), std::pair(340, 170)) << "the longest lists fit";
}

TEST(EqualizerProcessor, SoloAndListenPassWhatABandChanges)
{
    EqualizerHarness harness(EqualizerMode::Normal);
    harness.SetBand(0, MAudioFilters::Peak, 200, 12, 1);
    harness.SetBand(1, MAudioFilters::Peak, 5000, -12, 1);
    harness.equalizer.autoListen = true;
    harness.equalizer.selectedBand = 0;
    harness.Update();
    ASSERT_EQ(harness.equalizer.filters.count, 1);
    EXPECT_GT(PromisedDb(harness, EqualizerMode::Normal, 200), 0);
    EXPECT_LT(PromisedDb(harness, EqualizerMode::Normal, 15000), -30);
    harness.equalizer.listening = true;
    harness.equalizer.listenFrequency = 3000;
    harness.Update();
    ASSERT_EQ(harness.equalizer.filters.count, 1);
    EXPECT_NEAR(PromisedDb(harness, EqualizerMode::Normal, 3000), 0, 1e-6);
}

TEST(EqualizerProcessor, WithoutBandsTheInputReturnsAfterTheLatency)
{
    for (const EqualizerMode mode : allModes)
        for (const std::vector<std::int32_t>& blocks :
             { std::vector{ 1 }, { 17 }, { 64 }, { 441 }, { 4096 }, { 1, 4096, 333, 16384, 40000, 64 } })
        {
            SCOPED_TRACE(::testing::Message() << NameOf(mode) << ", first block " << blocks[0]);
            const std::vector<float> input = Noise(3 * latency, 7);
            EqualizerHarness harness(mode, 48000, 2);
            const std::vector<float> output = harness.Run(input, blocks);
            double worst = 0;
            for (std::size_t index = 0; index < output.size(); ++index)
            {
                const float expected = index < latency ? 0 : input[index - latency];
                worst = std::max(worst, std::fabs(static_cast<double>(output[index]) - expected));
            }
            // Below -120 dB of the signal's 0.7 where spectra or frames are added up again.
            EXPECT_LE(worst, mode == EqualizerMode::Normal ? 2e-15 : 7e-7);
        }
}

TEST(EqualizerProcessor, EveryModeKeepsThePromisedMagnitude)
{
    struct Case
    {
        std::int32_t type;
        double hertz, gainDb, q;
        std::int32_t order;
    };
    using namespace MAudioFilters;
    const Case cases[] = {
        { Peak, 1000, 12, 1, 0 },       { Peak, 40, -12, 4, 0 },       { Peak, 12000, 24, 0.3, 0 },
        { Peak, 100, 6, 2, 0 },         { LowShelf, 120, -9, 0.7, 0 }, { HighShelf, 6000, 15, 0.9, 0 },
        { LowPass, 5000, 0, 0.707, 0 }, { LowPass, 900, 0, 1.1, 1 },   { HighPass, 80, 0, 0.707, 0 },
        { LowPass6, 3000, 0, 1, 0 },    { HighPass6, 150, 0, 1, 1 },   { BandPass, 1500, 0, 0.6, 0 },
        { Notch, 1000, 0, 2, 0 },       { Notch, 9000, 0, 0.5, 0 },
    };
    for (const double rate : { 44100.0, 48000.0 })
        for (const EqualizerMode mode : allModes)
            for (const Case& each : cases)
            {
                SCOPED_TRACE(::testing::Message() << NameOf(mode) << ", " << rate << " Hz, type " << each.type
                                                  << " at " << each.hertz << " Hz, " << each.gainDb
                                                  << " dB, Q " << each.q << ", order " << each.order);
                EqualizerHarness harness(mode, rate);
                harness.SetBand(0, each.type, each.hertz, each.gainDb, each.q).order = each.order;
                harness.Update();
                const std::vector<float> response = harness.Impulse();
                for (double hertz = 30; hertz < 0.45 * rate; hertz *= 1.19)
                {
                    const double promised = PromisedDb(harness, mode, hertz);
                    // Float samples leave a floor of about -150 dB of the impulse; 60 dB above it rounding
                    // costs 0.01 dB at the most. In spectra, half the sample rate shares the gain of 0 Hz:
                    // a floor of 1 / 32768 where a filter takes the top away.
                    if (promised < (mode == EqualizerMode::LinearPhaseFFT ? -30 : -85))
                        continue;
                    // A band of 10 Hz rings so long that the frames of the spectra begin to show.
                    const bool rings = mode == EqualizerMode::LinearPhaseFFT && each.hertz < 50;
                    EXPECT_NEAR(MeasuredDb(response, hertz, rate), promised, rings ? 0.015 : 0.01)
                        << hertz << " Hz";
                }
                if (mode == EqualizerMode::Normal)
                    continue;
                double asymmetry = 0;
                for (std::size_t distance = 1; distance < latency; ++distance)
                {
                    const double after = response[latency + distance];
                    const double before = response[latency - distance];
                    asymmetry = std::max(asymmetry, std::fabs(after - before));
                }
                EXPECT_LT(asymmetry, 1e-5 * std::max(1.0, static_cast<double>(response[latency])))
                    << "-100 dB of the impulse";
            }
}

TEST(EqualizerProcessor, BlocksOfAnySizeGiveTheSameOutput)
{
    const std::vector<float> input = Noise(100000, 3);
    for (const EqualizerMode mode : allModes)
    {
        SCOPED_TRACE(NameOf(mode));
        std::vector<float> reference;
        for (const std::vector<std::int32_t>& blocks :
             { std::vector{ 512 }, { 1 }, { 17, 4096 }, { 20000 }, { 100000 } })
        {
            EqualizerHarness harness(mode, 48000, 2);
            harness.SetBand(0, MAudioFilters::Peak, 300, 9, 2);
            harness.SetBand(1, MAudioFilters::HighShelf, 5000, -6, 0.7);
            harness.SetBand(2, MAudioFilters::HighPass, 50, 0, 0.7);
            harness.Update();
            const std::vector<float> output = harness.Run(input, blocks);
            if (reference.empty())
                reference = output;
            std::size_t different = 0;
            float largest = 0;
            for (std::size_t index = 0; index < output.size(); ++index)
            {
                different += output[index] != reference[index] ? 1u : 0u;
                largest = std::max(largest, std::fabs(output[index] - reference[index]));
            }
            EXPECT_EQ(different, 0u) << "first block " << blocks[0] << ", differences up to " << largest;
        }
    }
}

TEST(EqualizerProcessor, TheRatioMixesTheDelayedInput)
{
    const std::vector<float> input = Noise(2 * latency, 5);
    for (const EqualizerMode mode : allModes)
    {
        SCOPED_TRACE(NameOf(mode));
        EqualizerHarness harness(mode);
        harness.SetBand(0, MAudioFilters::Peak, 1000, 12, 1);
        harness.parameters[MEqualizerProcessorPlugin::DryWet].number.value = 0.0;
        harness.Update();
        const std::vector<float> output = harness.Run(input, { 480 });
        double worst = 0;
        for (std::size_t index = latency; index < output.size(); ++index)
            worst = std::max(worst, std::fabs(static_cast<double>(output[index]) - input[index - latency]));
        EXPECT_LT(worst, 7e-7) << "-120 dB";

        EqualizerHarness half(mode);
        half.SetBand(0, MAudioFilters::Peak, 1000, 12, 1);
        half.parameters[MEqualizerProcessorPlugin::DryWet].number.value = 0.5;
        half.Update();
        const double expected = 20 * std::log10(0.5 + 0.5 * std::pow(10.0, 12 / 20.0));
        EXPECT_NEAR(MeasuredDb(half.Impulse(), 1000, 48000), expected, 0.01);
    }
}

TEST(EqualizerProcessor, MeasuringSwitchesTheBandsOff)
{
    const std::vector<float> input = Noise(3 * latency, 11);
    for (const EqualizerMode mode : allModes)
    {
        SCOPED_TRACE(NameOf(mode));
        EqualizerHarness harness(mode);
        harness.SetBand(0, MAudioFilters::Peak, 1000, 12, 1);
        harness.Update();
        harness.equalizer.bandsEnabled = false;
        const std::vector<float> output = harness.Run(input, { 1000 });
        double worst = 0;
        for (std::size_t index = latency; index < output.size(); ++index)
            worst = std::max(worst, std::fabs(static_cast<double>(output[index]) - input[index - latency]));
        EXPECT_LT(worst, 7e-7);
    }
}

TEST(EqualizerProcessor, OutputGainRampsAndSaturationAddsEvenHarmonics)
{
    EqualizerHarness harness(EqualizerMode::Normal);
    std::vector<float> input(latency + 2000, 0.5f);
    harness.Run(input, { 512 });
    harness.parameters[MEqualizerProcessorPlugin::Gain].number.value = 6.0;
    std::vector<float> block(1000, 0.5f);
    const std::vector<float> ramp = harness.Run(block, { 1000 });
    const double target = std::pow(10.0, 0.3);
    EXPECT_NEAR(ramp[0], 0.5, 1e-6);
    EXPECT_NEAR(ramp[500], 0.5 * (1 + (target - 1) * 0.5), 1e-4) << "a straight line";
    EXPECT_NEAR(harness.Run(block, { 1000 })[10], 0.5 * target, 1e-5);

    harness.parameters[MEqualizerProcessorPlugin::Gain].number.value = 0.0;
    harness.parameters[MEqualizerProcessorPlugin::SoftSaturation].number.value = 1.0;
    harness.Run(block, { 1000 });
    const double v = std::sin(std::numbers::pi / 2 * 0.5);
    EXPECT_NEAR(harness.Run(block, { 1000 })[10], v + 0.8 * (v - 0.5) * (v - 0.5), 1e-5);
}

TEST(EqualizerProcessor, RecoversFromWhatIsNotANumber)
{
    for (const EqualizerMode mode : allModes)
    {
        SCOPED_TRACE(NameOf(mode));
        EqualizerHarness harness(mode);
        harness.SetBand(0, MAudioFilters::HighPass, 100, 0, 0.7);
        harness.Update();
        std::vector<float> input = Noise(2000, 1);
        input[100] = std::nanf("");
        input[200] = INFINITY;
        harness.Run(input, { 64 });
        std::vector<float> clean(4 * latency, 0.25f);
        const std::vector<float> output = harness.Run(clean, { 512 });
        for (std::size_t index = 2 * latency; index < output.size(); ++index)
            ASSERT_TRUE(std::isfinite(output[index])) << index;
    }
}

TEST(EqualizerProcessor, NothingRisesUnderACeilingInAnyModeAtAnyRate)
{
    constexpr unsigned seed = 77;
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> steps(-1.5f, 1.5f);
    for (const double rate : { 8000.0, 22050.0, 44100.0, 48000.0, 96000.0, 384000.0 })
        for (const MFAAlgorithm algorithm : { MFADefault, MFAOptimized })
        {
            SCOPED_TRACE(::testing::Message() << rate << " Hz, algorithm " << algorithm << ", seed " << seed);
            // A wish that wanders, at its highest 0 dB.
            std::array<float, 1024> wanted;
            float level = 0;
            for (std::size_t i = 0; i < wanted.size(); ++i)
                wanted[i] = level = 0.995f * level + steps(generator);
            const float highest = *std::max_element(wanted.begin(), wanted.end());
            double before = 0;
            for (float& value : wanted)
            {
                value -= highest;
                before += value * static_cast<double>(value);
            }

            FilterFitter fitter;
            std::vector<FittedFilter> fitted;
            fitter.Fit(wanted.data(), rate, fitted, 10, algorithm == MFADefault, algorithm, 20, 0.03);
            double after = 0;
            for (std::size_t i = 0; i < static_cast<std::size_t>(FitGrid::UsableCount(rate)); ++i)
                after += wanted[i] * static_cast<double>(wanted[i]);
            EXPECT_LT(after, 0.5 * before) << "and yet it fits";

            for (const EqualizerMode mode : allModes)
                for (const double playedRate : { rate, 44100.0, 48000.0, 96000.0 })
                {
                    EqualizerHarness harness(mode, playedRate);
                    for (std::size_t band = 0; band < fitted.size(); ++band)
                        harness
                            .SetBand(static_cast<std::int32_t>(band), fitted[band].type,
                                     fitted[band].frequency, fitted[band].gain, fitted[band].q)
                            .RoundToStored();
                    harness.Update();
                    for (double hertz = 1; hertz < 0.499 * playedRate; hertz *= 1.013)
                        ASSERT_LE(PromisedDb(harness, mode, hertz), 0.05)
                            << hertz << " Hz in " << NameOf(mode) << " played at " << playedRate;
                }
        }
}
