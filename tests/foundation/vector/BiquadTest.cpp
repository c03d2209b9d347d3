// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/Biquad.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/Signals.h"

namespace
{
// A new set of taps keeps the memory, so that the state equations of the transposed form have to hold.
TEST(Biquad, FollowsItsEquationsOverBlocksOfAnyLengthInPlaceInFloatAndWithNewTaps)
{
    const double taps[2][6] = { { 0.3, -0.2, 0.1, 1.0, -1.6, 0.7 }, { 1.5, 0.25, -0.5, 1.0, 0.5, -0.25 } };
    const float floatTaps[2][6] = { { 0.3f, -0.2f, 0.1f, 1.0f, -1.6f, 0.7f },
                                    { 1.5f, 0.25f, -0.5f, 1.0f, 0.5f, -0.25f } };
    const std::vector<float> input = Signals::Noise(500, 11);
    BiquadState* state = nullptr;
    BiquadStateFloat* floatState = nullptr;
    BiquadCreate(&state, taps[0], 1, 0);
    BiquadCreateFloat(&floatState, floatTaps[0], 1, 0);
    std::vector<float> inPlace = input;
    std::vector<float> output(input.size());
    double s1 = 0;
    double s2 = 0;
    std::size_t position = 0;
    std::size_t set = 0;
    for (const std::size_t block : { 0, 1, 2, 3, 100, 64, 7, 323 })
    {
        const auto count = static_cast<std::int32_t>(block);
        BiquadRun(inPlace.data() + position, inPlace.data() + position, count, state);
        BiquadRunFloat(input.data() + position, output.data() + position, count, floatState);
        for (const std::size_t end = position + block; position < end; ++position)
        {
            const double x = input[position];
            const double y = taps[set][0] * x + s1;
            s1 = taps[set][1] * x - taps[set][4] * y + s2;
            s2 = taps[set][2] * x - taps[set][5] * y;
            ASSERT_NEAR(inPlace[position], y, 1.2e-7 * 4) << position;   // one rounding to float
            ASSERT_NEAR(output[position], y, 1e-5) << position;   // float taps and memory, poles at 0.84
        }
        set = 1 - set;
        BiquadSetTaps(taps[set], state);
        BiquadSetTapsFloat(floatTaps[set], floatState);
    }
    ASSERT_EQ(position, input.size());
    BiquadFree(state);
    BiquadFree(floatState);
}
}   // namespace
