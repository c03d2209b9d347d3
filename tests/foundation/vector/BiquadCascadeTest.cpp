// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/BiquadCascade.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

#include "tests/Signals.h"
#include "tests/foundation/vector/Targets.h"

namespace
{
using MVector::CascadeDirection;
using MVector::CascadeMemory;
using MVector::CascadeTaps;

constexpr std::uint32_t Seed = 99;
constexpr double Guard = 777.0;

std::vector<double> Noise(std::size_t count, std::uint32_t seed)
{
    const std::vector<float> noise = Signals::Noise(count, seed);
    return { noise.begin(), noise.end() };
}

/// Peaks of moderate gain, poles from 40 Hz to 15 kHz at 48 kHz.
std::vector<CascadeTaps> Peaks(std::int32_t count)
{
    std::vector<CascadeTaps> taps;
    for (const double place : Noise(static_cast<std::size_t>(count), Seed))
    {
        const double w = 2.0 * std::numbers::pi * 775.0 * std::pow(19.0, place) / 48000.0;
        const double alpha = std::sin(w) / 3.0;
        const double a = 1.0 + 0.3 * place;
        const double n = 1.0 / (1.0 + alpha / a);
        taps.push_back({ n * (1.0 + alpha * a), -2.0 * n * std::cos(w), n * (1.0 - alpha * a),
                         2.0 * n * std::cos(w), -n * (1.0 - alpha / a) });
    }
    return taps;
}

/// The last one is a guard.
std::vector<CascadeMemory> RandomMemory(std::size_t count)
{
    const std::vector<double> values = Noise(4 * count, Seed + 1);
    std::vector<CascadeMemory> memory(count + 1, { { Guard, Guard }, { Guard, Guard } });
    for (std::size_t i = 0; i < count; ++i)
        memory[i] = { { values[4 * i], values[4 * i + 1] }, { values[4 * i + 2], values[4 * i + 3] } };
    return memory;
}

/// Poles at 40 Hz amplify a rounding of 1e-16 by 1 / w^2 = 4e4, and as often as sections follow.
constexpr double Tolerance = 1e-9;

void CompareWithPlain(std::int32_t sectionCount, std::int32_t n, CascadeDirection direction)
{
    const std::vector<CascadeTaps> taps = Peaks(sectionCount);
    std::vector<CascadeMemory> expectedMemory = RandomMemory(taps.size());
    std::vector<CascadeMemory> memory = expectedMemory;
    const auto size = static_cast<std::size_t>(2 * n);
    std::vector<double> expected = Noise(size, Seed + 2);
    std::vector<double> guarded(size + 16, Guard);
    std::copy(expected.begin(), expected.end(), guarded.begin() + 9);
    MVector::CascadeRunPlain(taps.data(), expectedMemory.data(), sectionCount, expected.data(), n, direction);
    MVector::CascadeRun(taps.data(), memory.data(), sectionCount, guarded.data() + 9, n, direction);
    for (std::size_t i = 0; i < guarded.size(); ++i)
    {
        if (i < 9 || i >= 9 + size)
            ASSERT_EQ(guarded[i], Guard) << "guard " << i;
        else
            ASSERT_NEAR(guarded[i], expected[i - 9], Tolerance) << "value " << i - 9;
    }
    for (std::size_t i = 0; i < memory.size(); ++i)
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            ASSERT_NEAR(memory[i].s1[channel], expectedMemory[i].s1[channel], Tolerance) << "section " << i;
            ASSERT_NEAR(memory[i].s2[channel], expectedMemory[i].s2[channel], Tolerance) << "section " << i;
        }
}

TEST(BiquadCascade, EqualsSectionAfterSectionForEveryCountAndDirection)
{
    ForEveryTarget(
        []
        {
            for (std::int32_t sectionCount = 0; sectionCount <= 23; ++sectionCount)
            {
                for (const std::int32_t n : { 0, 1, 2, 3, 19, 20, 21, 22, 23, 40, 301 })
                {
                    SCOPED_TRACE(testing::Message() << sectionCount << " sections, " << n << " pairs");
                    CompareWithPlain(sectionCount, n, CascadeDirection::Forward);
                    CompareWithPlain(sectionCount, n, CascadeDirection::Backward);
                    if (HasFatalFailure())
                        return;
                }
            }
            CompareWithPlain(170, 200, CascadeDirection::Backward);
        });
}

TEST(BiquadCascade, SilencesTheChannelWhoseMemoryIsOutOfOrder)
{
    constexpr std::size_t Count = 3;
    for (const double value : { 0.9, 1.0, -1.0, 1e300, std::nan(""), -HUGE_VAL })
        for (std::size_t place = 0; place < 4 * Count; ++place)
        {
            std::vector<CascadeMemory> memory = RandomMemory(Count);
            const std::size_t channel = place % 2;
            (place / 2 % 2 == 0 ? memory[place / 4].s1 : memory[place / 4].s2)[channel] = value;
            const std::vector<CascadeMemory> bad = memory;
            const bool isSane = value == 0.9;
            EXPECT_EQ(MVector::CascadeKeepSane(memory.data(), Count, 1.0), isSane);
            for (std::size_t i = 0; i < Count; ++i)
                for (std::size_t c = 0; c < 2; ++c)
                {
                    EXPECT_EQ(memory[i].s1[c], isSane || c != channel ? bad[i].s1[c] : 0.0) << value;
                    EXPECT_EQ(memory[i].s2[c], isSane || c != channel ? bad[i].s2[c] : 0.0) << value;
                }
        }
}
}   // namespace
