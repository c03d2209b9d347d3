// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/SpectralFrame.h"

#include <algorithm>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/vector/FFT.h"
#include "tests/Signals.h"
#include "tests/foundation/vector/Targets.h"

namespace
{
constexpr std::size_t Length = SpectralFrame::Length;

/// Window, packed transform, product, inverse: the long way. A single bin with a wrong gain shows: each adds
/// some tens to the samples.
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
    const std::vector<float> samples = Signals::Noise(Length, 1);
    const std::vector<float> window = Signals::Noise(Length, 2);
    const std::vector<float> ones(Length, 1.0f);
    std::vector<float> gains = Signals::Noise(Length, 3);   // of all bins, each twice
    for (std::size_t i = 0; i < Length; i += 2)
        gains[i + 1] = gains[i];
    constexpr auto Rest = [](std::int32_t at)
    {
        return static_cast<std::int32_t>(Length) - at;
    };
    for (const bool hasGains : { true, false })
    {
        const std::vector<float> expected = ThePackedWay(samples, window, hasGains ? gains : ones);
        ForEveryTarget(
            [&]
            {
                SpectralFrame frame;
                // In pieces that rows of the inner matrix don't divide.
                frame.Load(samples.data(), window.data(), 0, 1002);
                frame.Load(samples.data() + 1002, window.data() + 1002, 1002, Rest(1002));
                frame.Process(hasGains ? gains.data() : nullptr);
                std::vector<float> actual(Length, 5.0f);
                frame.Unload(0, 0.5f, actual.data(), 300, true);
                frame.Unload(300, 1.0f, actual.data() + 300, Rest(300), false);
                for (std::size_t i = 0; i < Length; ++i)
                    // Sums of 32768 values up to 1 in float: some units of 1e-7 of 32768.
                    ASSERT_NEAR(actual[i], i < 300 ? 0.5f * expected[i] : 5.0f + expected[i], 0.03) << i;
            });
    }
}
}   // namespace
