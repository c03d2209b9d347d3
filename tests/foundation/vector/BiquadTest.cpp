// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/Biquad.h"
#include "tests/Signals.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace
{
using Signals::Noise;

constexpr double Taps[6] = { 0.3, -0.2, 0.1, 1.0, -1.6, 0.7 };
constexpr float FloatTaps[6] = { 0.3f, -0.2f, 0.1f, 1.0f, -1.6f, 0.7f };

/// The difference equation over inputs and outputs, without any section memory.
std::vector<double> ByDifferenceEquation(const std::vector<float>& x, const double* taps)
{
    std::vector<double> y(x.size());
    const auto past = [](const auto& values, std::size_t i, std::size_t delay)
    {
        return i < delay ? 0.0 : static_cast<double>(values[i - delay]);
    };
    for (std::size_t i = 0; i < x.size(); ++i)
        y[i] = taps[0] * past(x, i, 0) + taps[1] * past(x, i, 1) + taps[2] * past(x, i, 2) -
               taps[4] * past(y, i, 1) - taps[5] * past(y, i, 2);
    return y;
}

TEST(Biquad, FollowsTheDifferenceEquationOverBlocksOfAnyLengthInPlaceAndFloat)
{
    const std::vector<float> input = Noise(500, 11);
    const std::vector<double> expected = ByDifferenceEquation(input, Taps);
    BiquadState* state = nullptr;
    BiquadStateFloat* floatState = nullptr;
    BiquadCreate(&state, Taps, 1, 0);
    BiquadCreateFloat(&floatState, FloatTaps, 1, 0);
    std::vector<float> inPlace = input;
    std::vector<float> output(input.size());
    std::size_t position = 0;
    for (const std::size_t block : { 0, 1, 2, 3, 100, 64, 7, 323 })
    {
        BiquadRun(inPlace.data() + position, inPlace.data() + position, static_cast<std::int32_t>(block),
                  state);
        BiquadRunFloat(input.data() + position, output.data() + position, static_cast<std::int32_t>(block),
                       floatState);
        position += block;
    }
    ASSERT_EQ(position, input.size());
    for (std::size_t i = 0; i < input.size(); ++i)
    {
        ASSERT_NEAR(inPlace[i], expected[i], 1.2e-7 * 4) << i;   // one rounding to float, values below 4
        ASSERT_NEAR(output[i], expected[i], 1e-5) << i;   // float taps and memory, poles at 0.84
    }
    BiquadFree(state);
    BiquadFree(floatState);
}

TEST(Biquad, NewTapsKeepTheMemory)
{
    // A section that only delays by two samples holds its memory in the open: after the taps have changed
    // to a plain wire, the two samples inside still come out, added to the new ones.
    const double delay[6] = { 0, 0, 1, 1, 0, 0 };
    const double wire[6] = { 1, 0, 0, 1, 0, 0 };
    BiquadState* state = nullptr;
    BiquadCreate(&state, delay, 1, 0);
    const float before[3] = { 1.0f, 2.0f, 3.0f };
    float output[3];
    BiquadRun(before, output, 3, state);
    EXPECT_EQ(output[2], 1.0f);
    BiquadSetTaps(wire, state);
    const float after[3] = { 10.0f, 20.0f, 30.0f };
    BiquadRun(after, output, 3, state);
    EXPECT_EQ(output[0], 12.0f);
    EXPECT_EQ(output[1], 23.0f);
    EXPECT_EQ(output[2], 30.0f);
    BiquadFree(state);
}
}   // namespace
