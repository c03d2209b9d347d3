// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/FFT.h"

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/ErrorOf.h"
#include "tests/Signals.h"
#include "tests/foundation/vector/Targets.h"

namespace
{
/// Compares bins with the sum that defines the transform, in double, and undoes it, at any address.
void CheckTransform(std::int32_t order, std::size_t offset)
{
    SCOPED_TRACE(testing::Message() << "order " << order << ", offset " << offset);
    const std::size_t length = std::size_t{ 1 } << order;
    const std::vector<float> signal = Signals::Noise(length, 7);
    std::vector<float> memory(length + 2, 99.0f);
    float* values = memory.data() + offset;
    const double scale = std::sqrt(static_cast<double>(length));
    std::vector<std::complex<double>> roots(length);
    for (std::size_t n = 0; n < length; ++n)
        roots[n] =
            std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(length));
    for (const FFTFlags flags : { FFTNoScaling, FFTDivideInverse })
    {
        MFFT transform(order, flags);
        std::copy(signal.begin(), signal.end(), values);
        transform.Forward(values);
        for (std::size_t k = 0; k <= length / 2; k += length < 256 ? 1 : 1 + k / 4)
            for (const std::size_t bin : { k, length / 2 - k })
            {
                std::complex<double> sum = 0;
                for (std::size_t n = 0; n < length; ++n)
                    sum += static_cast<double>(signal[n]) * roots[n * bin % length];
                const bool isReal = bin == 0 || bin == length / 2;
                const std::complex<double> actual(bin == length / 2 ? values[1] : values[2 * bin],
                                                  isReal ? 0.0f : values[2 * bin + 1]);
                EXPECT_LT(std::abs(actual - sum), 3e-6 * scale * order) << bin;   // float steps
            }
        transform.Inverse(values);
        const float divisor = flags == FFTNoScaling ? static_cast<float>(length) : 1.0f;
        for (std::size_t n = 0; n < length; ++n)
            ASSERT_NEAR(values[n] / divisor, signal[n], 2e-6) << n;   // some units of the last place of 1
        EXPECT_EQ(memory[length + 1], 99.0f);
        EXPECT_EQ(offset == 0 ? memory[length] : memory[0], 99.0f);
    }
}

TEST(FFT, EqualsTheDefinitionInThePackedLayoutAndIsUndone)
{
    // Several threads plan and run at once.
    std::vector<std::thread> threads;
    for (std::size_t offset = 0; offset < 3; ++offset)
        threads.emplace_back(
            [offset]
            {
                for (std::int32_t order = 1; order <= 14; ++order)
                    CheckTransform(order, offset % 2);
            });
    for (std::thread& thread : threads)
        thread.join();
    CheckTransform(18, 0);
    ForEveryTarget(
        []
        {
            for (std::int32_t order = 1; order <= 7; ++order)
                CheckTransform(order, 1);
        });
    for (const std::int32_t order : { -1, 0, 19, 64 })
        EXPECT_EQ(ErrorOf([order] { MFFT(order, FFTNoScaling); }),
                  "The length of a Fourier transform is out of range.");
}
}   // namespace
