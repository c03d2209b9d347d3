// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/FFT.h"

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/text/MException.h"

namespace
{
constexpr std::uint32_t Seed = 7;

std::vector<float> RandomSignal(std::size_t length)
{
    std::mt19937 random(Seed);
    std::uniform_real_distribution<float> values(-1.0f, 1.0f);
    std::vector<float> signal(length);
    for (float& value : signal)
        value = values(random);
    return signal;
}

/// The sum that defines the transform, in double, in the packed layout.
std::vector<double> PackedByDefinition(const std::vector<float>& signal)
{
    const std::size_t length = signal.size();
    std::vector<double> packed(length);
    for (std::size_t k = 0; k <= length / 2; ++k)
    {
        std::complex<double> bin = 0;
        for (std::size_t n = 0; n < length; ++n)
        {
            const auto turn = static_cast<double>(n * k % length) / static_cast<double>(length);
            bin += static_cast<double>(signal[n]) * std::polar(1.0, -2.0 * std::numbers::pi * turn);
        }
        if (k == 0)
            packed[0] = bin.real();
        else if (k == length / 2)
            packed[1] = bin.real();
        else
        {
            packed[2 * k] = bin.real();
            packed[2 * k + 1] = bin.imag();
        }
    }
    return packed;
}

TEST(FFT, EqualsTheDefinitionInThePackedLayout)
{
    for (std::int32_t order = 1; order <= 11; ++order)
    {
        SCOPED_TRACE(order);
        MFFT transform(order, FFTNoScaling);
        std::vector<float> values = RandomSignal(std::size_t{ 1 } << order);
        const std::vector<double> expected = PackedByDefinition(values);
        transform.Forward(values.data());
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_NEAR(values[i], expected[i], 3e-6 * std::sqrt(values.size()) * order)
                << i;   // float steps
    }
}

TEST(FFT, InverseUndoesForwardWithAndWithoutScalingFromAnyAddress)
{
    for (std::int32_t order = 1; order <= 18; ++order)
    {
        for (const std::size_t offset : { std::size_t{ 0 }, std::size_t{ 1 } })
        {
            SCOPED_TRACE(order);
            const std::size_t length = std::size_t{ 1 } << order;
            const std::vector<float> signal = RandomSignal(length);
            std::vector<float> memory(length + 2, 99.0f);
            float* values = memory.data() + offset;
            MFFT unscaled(order, FFTNoScaling);
            std::copy(signal.begin(), signal.end(), values);
            unscaled.Forward(values);
            unscaled.Inverse(values);
            MFFT scaled(order, FFTDivideInverse);
            const auto size = static_cast<float>(length);
            for (std::size_t i = 0; i < length; ++i)
                ASSERT_NEAR(values[i] / size, signal[i], 2e-6) << i;
            std::copy(signal.begin(), signal.end(), values);
            scaled.Forward(values);
            scaled.Inverse(values);
            for (std::size_t i = 0; i < length; ++i)
                ASSERT_NEAR(values[i], signal[i], 2e-6) << i;   // some units of the last place of 1
            EXPECT_EQ(memory[length + 1], 99.0f);
            EXPECT_EQ(offset == 0 ? memory[length] : memory[0], 99.0f);
        }
    }
}

TEST(FFT, KnownSignalsLandWhereTheLayoutSays)
{
    MFFT transform(10, FFTNoScaling);
    std::vector<float> impulse(1024, 0.0f);
    impulse[0] = 1.0f;
    transform.Forward(impulse.data());
    for (std::size_t i = 0; i < 1024; ++i)
        ASSERT_EQ(impulse[i], i % 2 == 0 || i == 1 ? 1.0f : 0.0f) << i;

    std::vector<float> cosine(1024);
    for (std::size_t n = 0; n < 1024; ++n)
        cosine[n] =
            static_cast<float>(std::cos(2.0 * std::numbers::pi * 37.0 * static_cast<double>(n) / 1024.0));
    transform.Forward(cosine.data());
    for (std::size_t i = 0; i < 1024; ++i)
        ASSERT_NEAR(cosine[i], i == 74 ? 512.0f : 0.0f, 1e-3) << i;   // rounding of 1024 floats
}

TEST(FFT, AnOrderOutOfRangeIsRefused)
{
    for (const std::int32_t order : { -1, 0, 19, 64 })
        EXPECT_THROW(MFFT(order, FFTNoScaling), MException) << order;
}

TEST(FFT, SeveralThreadsMayPlanAndRunAtOnce)
{
    std::vector<std::thread> threads;
    std::vector<double> worst(4, 1.0);
    for (std::size_t t = 0; t < worst.size(); ++t)
        threads.emplace_back(
            [t, &worst]
            {
                double largest = 0;
                for (std::int32_t order = 3; order <= 14; ++order)
                {
                    MFFT transform(order, FFTDivideInverse);
                    const std::vector<float> signal = RandomSignal(std::size_t{ 1 } << order);
                    std::vector<float> values = signal;
                    transform.Forward(values.data());
                    transform.Inverse(values.data());
                    for (std::size_t i = 0; i < values.size(); ++i)
                        largest = std::max(largest, std::abs(static_cast<double>(values[i] - signal[i])));
                }
                worst[t] = largest;
            });
    for (std::thread& thread : threads)
        thread.join();
    for (const double largest : worst)
        EXPECT_LT(largest, 2e-6);
}
}   // namespace
