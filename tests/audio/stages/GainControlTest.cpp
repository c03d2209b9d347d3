// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "audio/stages/MAutomaticGainControl.h"

namespace
{
constexpr double rate = 48000;
constexpr std::int32_t block = 480;

// A stereo sine through the control, block after block.
class Stage
{
public:
    Stage(std::int32_t channelCount = 2, std::int32_t latencySamples = 0) : channels(channelCount)
    {
        control.Init(rate, channels, latencySamples);
    }

    struct Tone
    {
        double hertz = 1000;
        double amplitude = 0.1;
    };

    // Answers the last block of the first output channel.
    std::vector<float> Run(double seconds, Tone in, Tone out, bool withInput = true)
    {
        std::vector<float> output;
        for (std::int32_t done = 0; done < seconds * rate; done += block)
        {
            std::vector<std::vector<float>> inputs(static_cast<std::size_t>(channels), Wave(in));
            std::vector<std::vector<float>> outputs(static_cast<std::size_t>(channels), Wave(out));
            std::vector<float*> inPointers;
            std::vector<float*> outPointers;
            for (std::size_t channel = 0; channel < inputs.size(); ++channel)
            {
                inPointers.push_back(inputs[channel].data());
                outPointers.push_back(outputs[channel].data());
            }
            if (withInput)
                control.MeasureInput(inPointers.data(), block, channels);
            else
                control.AssumeInput();
            control.Process(outPointers.data(), block, channels);
            highestGain = std::max(highestGain, control.Gain());
            output = outputs[0];
            time += block;
        }
        return output;
    }

    MAutomaticGainControl control;
    double highestGain = 0;

private:
    std::vector<float> Wave(Tone tone) const
    {
        std::vector<float> wave(block);
        for (std::size_t index = 0; index < wave.size(); ++index)
            wave[index] = static_cast<float>(
                tone.amplitude * std::sin(2 * std::numbers::pi * tone.hertz *
                                          (static_cast<double>(time) + static_cast<double>(index)) / rate));
        return wave;
    }

    std::int32_t channels;
    std::int64_t time = 0;
};

double DbOf(double ratio)
{
    return 20 * std::log10(ratio);
}

// Magnitude of the two sections that ITU-R BS.1770-4 prints for 48 kHz, tables 1 and 2.
double PublishedWeightingDb(double hertz)
{
    const std::complex<double> z = std::polar(1.0, -2 * std::numbers::pi * hertz / 48000);
    const auto section = [&](double b0, double b1, double b2, double a1, double a2)
    {
        return std::abs((b0 + b1 * z + b2 * z * z) / (1.0 + a1 * z + a2 * z * z));
    };
    return DbOf(
        section(1.53512485958697, -2.69169618940638, 1.19839281085285, -1.69065929318241, 0.73248077421585) *
        section(1, -2, 1, -1.99004745483398, 0.99007225036621));
}
}   // namespace

TEST(GainControl, HoldsBackForTwoSecondsAndOnlyLowersMeanwhile)
{
    Stage quiet;
    quiet.Run(2, { .amplitude = 0.2 }, { .amplitude = 0.1 });
    EXPECT_LE(quiet.highestGain, 1);
    quiet.Run(0.05, { .amplitude = 0.2 }, { .amplitude = 0.1 });
    EXPECT_NEAR(DbOf(quiet.control.Gain()), 6.0206, 0.01);

    Stage loud;
    const std::vector<float> output = loud.Run(1, { .amplitude = 0.1 }, { .amplitude = 0.2 });
    EXPECT_NEAR(DbOf(loud.control.Gain()), -6.0206, 0.01) << "6 dB more are taken back at once";
    EXPECT_NEAR(*std::max_element(output.begin(), output.end()), 0.1, 1e-4);
}

TEST(GainControl, SilenceGetsAGainOfOneAndExtremesAreBounded)
{
    struct Case
    {
        double in;
        double out;
        double expected;
    };
    // The window holds 0.4 s, so that 3 s are past the hold-off and full of the tone.
    for (const Case& each : { Case{ 0, 0, 1 }, Case{ 0.5, 0, 1 }, Case{ 0.5, 1e-5, 1 }, Case{ 0, 0.5, 0.01 },
                              Case{ 0.5, 1e-4, 100 }, Case{ 0.05, 0.5, 0.1 } })
    {
        Stage stage;
        stage.Run(3, { .amplitude = each.in }, { .amplitude = each.out });
        EXPECT_NEAR(stage.control.Gain(), each.expected, 1e-4 * each.expected)
            << each.in << " to " << each.out;
    }
}

TEST(GainControl, WeightsAsPublished)
{
    // Both sides at one amplitude, the input at another frequency: the gain is the ratio of the weights.
    // 0.03 dB: the sections come from a design formula with rounded corner frequencies, not from the table.
    for (const double hertz : { 100.0, 200.0, 1500.0, 2000.0, 10000.0 })
    {
        Stage stage;
        stage.Run(3, { .hertz = hertz }, { .hertz = 1000 });
        EXPECT_NEAR(DbOf(stage.control.Gain()), PublishedWeightingDb(hertz) - PublishedWeightingDb(1000),
                    0.03)
            << hertz;
    }
    Stage plain;
    plain.control.useWeighting = false;
    plain.control.Init(rate, 2, 0);
    plain.Run(3, { .hertz = 50 }, { .hertz = 5000 });
    EXPECT_NEAR(plain.control.Gain(), 1, 1e-4) << "every frequency counts the same";
    // The recommendation's own anchor: a sine of 997 Hz at full scale in one channel reads -3.01 LKFS, which
    // is 10 log10 of the weighted mean square less 0.691 dB.
    Stage alone(1);
    alone.Run(3, {}, { .hertz = 997, .amplitude = 1 }, false);
    const double weightedMean = 0.05 / (alone.control.Gain() * alone.control.Gain());
    EXPECT_NEAR(10 * std::log10(weightedMean) - 0.691, -3.01, 0.02);
}

TEST(GainControl, ComparesTheSameSoundWhateverTheLatency)
{
    // The output starts as late as the latency says. Were the input's measure not as late, a soft input
    // behind a loud one would be compared with the loud one's output.
    constexpr std::int32_t latency = 48000;
    Stage stage(2, latency);
    stage.Run(1, { .amplitude = 0.4 }, { .amplitude = 0 });
    stage.Run(1, { .amplitude = 0.1 }, { .amplitude = 0.4 });
    EXPECT_NEAR(stage.control.Gain(), 1, 1e-3);
    stage.Run(1, { .amplitude = 0.1 }, { .amplitude = 0.1 });
    EXPECT_NEAR(stage.control.Gain(), 1, 1e-3);
}

TEST(GainControl, RampsInsideTheBlockOnceForASharedChannel)
{
    MAutomaticGainControl control;
    control.Init(rate, 2, 0);
    std::vector<float> ones(100, 1e-7f);
    float* channels[] = { ones.data(), ones.data() };
    control.MeasureInput(channels, 100, 2);
    control.Process(channels, 100, 2);
    for (std::size_t i = 0; i < 100; ++i)   // from the gain of a fresh start, 0, to the 1 of silence
        EXPECT_FLOAT_EQ(ones[i], 1e-9f * static_cast<float>(i));
}

TEST(GainControl, RecoversFromSamplesThatAreNoNumbers)
{
    Stage stage;
    std::vector<float> broken(block, std::nanf(""));
    float* channels[] = { broken.data(), broken.data() };
    stage.control.MeasureInput(channels, block, 2);
    stage.control.Process(channels, block, 2);
    EXPECT_TRUE(std::isfinite(stage.control.Gain()));
    stage.Run(3, { .amplitude = 0.05 }, { .amplitude = 0.1 });
    EXPECT_NEAR(DbOf(stage.control.Gain()), -6.0206, 0.01);
}

TEST(SlidingSum, FollowsTheMeanOfTheWindowForAnyBlockLengthAndForgetsWhatIsNoNumber)
{
    for (const std::size_t window : { 1u, 7u, 100u })
        for (const std::size_t length : { 1u, 3u, 64u, 1000u })
        {
            SlidingSum sum;
            sum.Prepare(static_cast<std::int32_t>(window));
            std::vector<float> all(window, 0.0f);
            for (std::size_t done = 0; done < 2000; done += length)
            {
                for (std::size_t index = done; index < done + length; ++index)
                    all.push_back(index == 500 ? std::nanf("") : static_cast<float>(index * 37 % 101));
                sum.Slide(all.data() + all.size() - length, static_cast<std::int32_t>(length));
                const double mean =
                    std::accumulate(all.end() - static_cast<std::ptrdiff_t>(window), all.end(), 0.0) /
                    static_cast<double>(window);
                // It may take two windows: the sum is made anew once in each.
                if (done + length < 500 || done > 500 + 2 * window)
                {
                    ASSERT_NEAR(sum.Mean(), mean, 1e-9) << window << " " << length << " " << done;
                }
            }
        }
}
