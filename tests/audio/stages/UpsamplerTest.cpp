// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "audio/stages/MUpsampler.h"
#include "tests/Signals.h"

namespace
{
using Signals::Noise;

// Sines have whole periods in this many samples of the host's rate, so that a plain sum over them separates
// them from all others.
constexpr std::int32_t frame = 4096;

float Sine(double cyclesPerSample, std::int64_t index)
{
    return static_cast<float>(std::sin(2 * std::numbers::pi * cyclesPerSample * static_cast<double>(index)));
}

// The amplitude in dB of a sine of `cyclesPerSample` in samples that hold whole periods of it.
double LevelDb(const std::vector<float>& samples, double cyclesPerSample)
{
    std::complex<double> sum = 0;
    for (std::size_t index = 0; index < samples.size(); ++index)
        sum += static_cast<double>(samples[index]) *
               std::polar(1.0, -2 * std::numbers::pi * cyclesPerSample * static_cast<double>(index));
    return 20 * std::log10(2 * std::abs(sum) / static_cast<double>(samples.size()) + 1e-20);
}

// The last whole frame at the higher rate, of a sine at `k` cycles a frame of the host's rate.
std::vector<float> UpOfSine(MUpsampler& upsampler, std::int32_t factor, std::int32_t k)
{
    upsampler.Reset();
    std::vector<float> input(frame);
    for (std::int32_t turn = 0; turn < 3; ++turn)
    {
        for (std::int32_t index = 0; index < frame; ++index)
            input[static_cast<std::size_t>(index)] = Sine(static_cast<double>(k) / frame, index);
        upsampler.Up(input.data(), frame);
    }
    return { upsampler.UpSamples(), upsampler.UpSamples() + factor * frame };
}

// The last whole frame at the host's rate, of a sine at the higher rate with `k` cycles a frame.
std::vector<float> DownOfSine(MUpsampler& upsampler, std::int32_t factor, std::int32_t k)
{
    upsampler.Reset();
    std::vector<float> output(frame);
    for (std::int32_t turn = 0; turn < 3; ++turn)
    {
        upsampler.Up(nullptr, frame);
        for (std::int32_t index = 0; index < factor * frame; ++index)
            upsampler.DownSamples()[index] = Sine(static_cast<double>(k) / (factor * frame), index);
        upsampler.Down(output.data(), frame);
    }
    return output;
}

// Up and down with nothing between, in blocks of the given lengths in turn.
std::vector<float> RoundTrip(MUpsampler& upsampler, const std::vector<float>& input,
                             const std::vector<std::int32_t>& lengths)
{
    upsampler.Reset();
    std::vector<float> output(input.size());
    const std::int32_t factor = upsampler.CurrentSetup().factor;
    std::size_t turn = 0;
    for (std::size_t done = 0; done < input.size(); ++turn)
    {
        const auto run = static_cast<std::int32_t>(std::min<std::size_t>(
            static_cast<std::size_t>(lengths[turn % lengths.size()]), input.size() - done));
        upsampler.Up(input.data() + done, run);
        std::copy_n(upsampler.UpSamples(), factor * run, upsampler.DownSamples());
        upsampler.Down(output.data() + done, run);
        done += static_cast<std::size_t>(run);
    }
    return output;
}

const std::vector<MUpsampler::Setup> highQualitySetups{
    { 44100, 2, true }, { 192000, 2, true }, { 48000, 3, true }, { 50000, 4, true }, { 96000, 3, true }
};

std::string NameOf(const MUpsampler::Setup& setup)
{
    return std::to_string(setup.sampleRate) + " Hz x " + std::to_string(setup.factor);
}
}   // namespace

TEST(Upsampler, HighQualityKeepsThePassBandAndNothingElseOnBothWays)
{
    for (const MUpsampler::Setup& setup : highQualitySetups)
    {
        SCOPED_TRACE(NameOf(setup));
        MUpsampler upsampler;
        upsampler.Init(setup);
        const double unit = 1.0 / (setup.factor * frame);
        for (const double share : { 0.002, 0.25, 0.43, 0.45 })
        {
            SCOPED_TRACE(share);
            const auto k = static_cast<std::int32_t>(share * frame);
            const std::vector<float> up = UpOfSine(upsampler, setup.factor, k);
            EXPECT_NEAR(LevelDb(up, k * unit), 0, 0.01);
            for (std::int32_t image = 1; image < setup.factor; ++image)
            {
                EXPECT_LT(LevelDb(up, (image * frame - k) * unit), -90) << image;
                EXPECT_LT(LevelDb(up, (image * frame + k) * unit), -90) << image;
            }
            EXPECT_NEAR(LevelDb(DownOfSine(upsampler, setup.factor, k), static_cast<double>(k) / frame), 0,
                        0.01);
        }
        // From 0.55 of the host's rate on, whatever comes back lands at 0.45 or below.
        for (double share = 0.55; share <= setup.factor / 2.0; share += 0.22)
        {
            const auto k = static_cast<std::int32_t>(std::ceil(share * frame));
            EXPECT_LT(LevelDb(DownOfSine(upsampler, setup.factor, k), static_cast<double>(k) / frame), -90)
                << share;
        }
    }
}

TEST(Upsampler, HighQualityIsAsLateAsItSaysAndSymmetric)
{
    for (const MUpsampler::Setup& setup : highQualitySetups)
    {
        SCOPED_TRACE(NameOf(setup));
        const auto latency = MUpsampler::LatencySamples(setup);
        EXPECT_EQ(latency, (setup.factor * setup.sampleRate > 200000 ? 4 : 1) * 1536 / setup.factor);
        MUpsampler upsampler;
        upsampler.Init(setup);
        std::vector<float> impulse(16384, 0.0f);
        impulse[100] = 1;
        const std::vector<float> response = RoundTrip(upsampler, impulse, { 512 });
        const auto peak = std::max_element(response.begin(), response.end());
        EXPECT_EQ(peak - response.begin(), 100 + latency);
        // The window isn't quite symmetric to its sine cardinal: half a sample of the higher rate off.
        for (std::ptrdiff_t distance = 1; distance < 100; ++distance)
            EXPECT_NEAR(*(peak - distance), *(peak + distance), 2e-3) << distance;
    }
    EXPECT_EQ(MUpsampler::LatencySamples({ 48000, 2, false }), 0);
    EXPECT_EQ(MUpsampler::LatencySamples({ 48000, 1, true }), 0);
}

TEST(Upsampler, BlockLengthsDontChangeTheResult)
{
    const std::vector<float> input = Noise(5000, 3, 0.5f);
    for (const bool highQuality : { true, false })
        for (const std::int32_t factor : { 2, 3, 4 })
            for (const double rate : { 44100.0, 96000.0 })
            {
                const MUpsampler::Setup setup{ rate, factor, highQuality };
                SCOPED_TRACE(NameOf(setup));
                MUpsampler upsampler;
                upsampler.Init(setup);
                const std::vector<float> whole = RoundTrip(upsampler, input, { 5000 });
                EXPECT_EQ(RoundTrip(upsampler, input, { 1 }), whole);
                EXPECT_EQ(RoundTrip(upsampler, input, { 64, 1, 511, 7, 1024, 3 }), whole);
            }
}

TEST(Upsampler, PlainIsAButterworthOfOrderTwenty)
{
    const MUpsampler::Setup setup{ 48000, 2, false };
    MUpsampler upsampler;
    upsampler.Init(setup);
    // |H|^2 = 1 / (1 + (tan(pi f / r) / tan(pi fc / r))^40), the bilinear transform of the analog prototype.
    const double cutoff = 20000.0 / 44100;
    for (const double share : { 0.01, 0.3, 0.4, 0.44, 0.46, 0.49 })
    {
        const auto k = static_cast<std::int32_t>(share * frame);
        const double warped =
            std::tan(std::numbers::pi * k / frame / 2) / std::tan(std::numbers::pi * cutoff / 2);
        const double expected = -10 * std::log10(1 + std::pow(warped, 40));
        const std::vector<float> down = DownOfSine(upsampler, 2, k);
        EXPECT_NEAR(LevelDb(down, static_cast<double>(k) / frame), expected, 0.01) << share;
        EXPECT_NEAR(LevelDb(UpOfSine(upsampler, 2, k), k / (2.0 * frame)), expected, 0.01) << share;
    }
}

TEST(Upsampler, PlainLeavesTheWayDownToTheEffectWhereThatFilters)
{
    MUpsampler upsampler;
    upsampler.Init({ 48000, 2, false });
    const std::int32_t k = 3 * frame / 4;
    EXPECT_LT(LevelDb(DownOfSine(upsampler, 2, k), 0.75), -90);
    upsampler.SetDownFiltered(false);
    EXPECT_NEAR(LevelDb(DownOfSine(upsampler, 2, k), 0.75), 0, 0.01) << "aliases to a quarter";
}

TEST(Upsampler, RecoversFromSamplesThatAreNoNumbers)
{
    for (const bool highQuality : { true, false })
    {
        MUpsampler upsampler;
        upsampler.Init({ 48000, 2, highQuality });
        std::vector<float> input(6000, 0.25f);
        input[10] = std::nanf("");
        input[11] = INFINITY;
        const std::vector<float> output = RoundTrip(upsampler, input, { 512 });
        EXPECT_NEAR(output.back(), 0.25, 1e-3) << highQuality;
    }
}
