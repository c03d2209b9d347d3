// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/fft/MSignalWindowType.h"

#include <cmath>
#include <cstddef>
#include <numbers>

#include <gtest/gtest.h>

#include "foundation/text/MException.h"

namespace
{
// Over x = 0 to 1. Kaiser's runs over i / size, for 170 dB.
double Shape(std::int32_t type, double x)
{
    const double turn = 2.0 * std::numbers::pi * x;
    const double fromMiddle = 2.0 * x - 1.0;
    constexpr double b = 0.1102 * (170.0 - 8.7);
    switch (type)
    {
    case MSignalWindowType::Hamming:
        return 0.53836 - 0.46164 * std::cos(turn);
    case MSignalWindowType::Hann:
        return 0.5 - 0.5 * std::cos(turn);
    case MSignalWindowType::Blackman:
        return 0.42 - 0.5 * std::cos(turn) + 0.08 * std::cos(2.0 * turn);
    case MSignalWindowType::Cosine:
        return std::sin(0.5 * turn);
    case MSignalWindowType::Lanczos:
        return fromMiddle == 0.0 ? 1.0 : std::sin(fromMiddle) / fromMiddle;
    case MSignalWindowType::Bartlett:
        return 1.0 - std::abs(fromMiddle);
    case MSignalWindowType::Gauss:
        return std::exp(-0.5 * std::pow(fromMiddle / 0.4, 2.0));
    case MSignalWindowType::Kaiser:
        return std::cyl_bessel_i(0, b * std::sqrt(1.0 - fromMiddle * fromMiddle)) / std::cyl_bessel_i(0, b);
    default:
        return 1.0;
    }
}

TEST(MSignalWindowType, HasTheShapesOfTheLiteratureAndTheirSums)
{
    MSignalWindowType window;
    EXPECT_FALSE(window.IsBuiltAs(0, MSignalWindowType::Hann));
    for (std::int32_t type = 0; type < MSignalWindowType::TypeCount; ++type)
        for (const std::int32_t size : { 65, 2, 100, 1024, 1 })
            for (const bool complementary : { false, true })
            {
                SCOPED_TRACE(testing::Message() << MSignalWindowType::Names[type] << " of " << size);
                window.Build(size, type, complementary);
                EXPECT_TRUE(window.IsBuiltAs(size, type));
                EXPECT_FALSE(window.IsBuiltAs(size + 1, type) || window.IsBuiltAs(size, type + 1));
                EXPECT_TRUE(window.Size() == size && window.GetType() == type);
                const double last = type == MSignalWindowType::Kaiser ? size : std::max(size - 1, 1);
                double sum = 0, squares = 0;
                for (std::ptrdiff_t i = 0; i < size; ++i)
                {
                    const float value = window.Data()[i];
                    sum += value;
                    squares += value * value;
                    // The series of Kaiser's window stops at a term of 1e-8 of the sum.
                    const bool isMirrored = complementary && i < size / 2;
                    const double shape = Shape(type, static_cast<double>(i) / last);
                    ASSERT_NEAR(value, isMirrored ? 1.0f - window.Data()[i + size / 2] : shape,
                                isMirrored ? 0 : 1e-6)
                        << i;
                }
                EXPECT_NEAR(window.Sum(), sum, 1e-5 * size);   // float sums
                EXPECT_NEAR(window.SumOfSquares(), squares, 1e-5 * size);
            }
    window.KaiserAttenuation = 10.0;
    window.Build(64, MSignalWindowType::Kaiser, false);
    EXPECT_EQ(window.Data()[0], 1.0f) << "too little for any shape";
    window.KaiserAttenuation = 20.0;
    window.Build(64, MSignalWindowType::Kaiser, false);
    EXPECT_NEAR(window.Data()[0], 1.0 / std::cyl_bessel_i(0, 0.1102 * 11.3), 1e-6);
    for (const std::int32_t type : { -1, 9 })
        EXPECT_THROW(window.Build(16, type, false), MException) << type;
}
}   // namespace
