// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/SpectralFrame.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/vector/FFT.h"
#include "tests/foundation/vector/Targets.h"

namespace
{
constexpr std::size_t Length = SpectralFrame::Length;

std::vector<float> Noise(std::size_t count, std::uint32_t seed, float low)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> values(low, 1.0f);
    std::vector<float> noise(count);
    std::generate(noise.begin(), noise.end(), [&] { return values(random); });
    return noise;
}

/// Gains of all bins at random, each twice.
std::vector<float> RandomGains()
{
    std::vector<float> gains = Noise(Length, 3, 0.0f);
    for (std::size_t i = 0; i < Length; i += 2)
        gains[i + 1] = gains[i];
    return gains;
}

/// Window, packed transform, product, inverse: the long way.
std::vector<float> ThePackedWay(const std::vector<float>& samples, const std::vector<float>& window,
                                const std::vector<float>& gains)
{
    std::vector<float> frame(Length);
    std::transform(samples.begin(), samples.end(), window.begin(), frame.begin(), std::multiplies<>());
    MFFT transform(15, FFTNoScaling);
    transform.Forward(frame.data());
    std::transform(frame.begin(), frame.end(), gains.begin(), frame.begin(), std::multiplies<>());
    transform.Inverse(frame.data());
    return frame;
}

TEST(SpectralFrame, EqualsTheWayThroughThePackedSpectrum)
{
    const std::vector<float> samples = Noise(Length, 1, -1.0f);
    const std::vector<float> window = Noise(Length, 2, 0.0f);
    const std::vector<float> gains = RandomGains();
    const std::vector<float> expected = ThePackedWay(samples, window, gains);
    ForEveryTarget(
        [&]
        {
            SpectralFrame frame;
            // In pieces that rows of the inner matrix don't divide.
            frame.Load(samples.data(), window.data(), 0, 1002);
            frame.Load(samples.data() + 1002, window.data() + 1002, 1002,
                       static_cast<std::int32_t>(Length) - 1002);
            frame.Process(gains.data());
            std::vector<float> actual(Length, 5.0f);
            frame.Unload(0, 1.0f, actual.data(), 300, true);
            frame.Unload(300, 1.0f, actual.data() + 300, static_cast<std::int32_t>(Length) - 300, false);
            for (std::size_t i = 0; i < Length; ++i)
            {
                const double before = i < 300 ? 0.0 : 5.0;
                // Sums of 32768 values up to 1 in float: some units of 1e-7 of 32768.
                ASSERT_NEAR(actual[i], expected[i] + before, 0.03) << i;
            }
        });
}

TEST(SpectralFrame, EveryBinHasItsOwnGain)
{
    // Bins around the borders of rows and the mirrored ones; the last bin takes the gain of the first.
    const std::vector<float> gains = RandomGains();
    const std::vector<float> ones(Length, 1.0f);
    ForEveryTarget(
        [&]
        {
            SpectralFrame frame;
            for (const std::size_t bin :
                 { 0,    1,    2,    7,    15,    16,    17,    127,   128,   129,  8064,
                   8191, 8192, 8193, 8320, 16255, 16256, 16257, 16369, 16383, 16384 })
            {
                std::vector<float> samples(Length);
                for (std::size_t i = 0; i < Length; ++i)
                    samples[i] = static_cast<float>(std::cos(
                        2.0 * std::numbers::pi * static_cast<double>(bin * i % Length) / Length + 0.1));
                frame.Load(samples.data(), ones.data(), 0, static_cast<std::int32_t>(Length));
                frame.Process(gains.data());
                std::vector<float> actual(Length);
                frame.Unload(0, 1.0f / Length, actual.data(), static_cast<std::int32_t>(Length), true);
                const float gain = gains[bin == 16384 ? 0 : 2 * bin];
                for (std::size_t i = 0; i < Length; i += 11)
                    ASSERT_NEAR(actual[i], gain * samples[i], 2e-6) << "bin " << bin << " sample " << i;
            }
        });
}

TEST(SpectralFrame, WithoutGainsTheFrameComesBack)
{
    const std::vector<float> samples = Noise(Length, 1, -1.0f);
    const std::vector<float> ones(Length, 1.0f);
    SpectralFrame frame;
    frame.Load(samples.data(), ones.data(), 0, static_cast<std::int32_t>(Length));
    frame.Process(nullptr);
    std::vector<float> actual(Length);
    frame.Unload(0, 1.0f / Length, actual.data(), static_cast<std::int32_t>(Length), true);
    for (std::size_t i = 0; i < Length; ++i)
        ASSERT_NEAR(actual[i], samples[i], 1e-6) << i;
}
}   // namespace
