// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/fft/MSignalWindowType.h"

#include <cmath>
#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "foundation/text/MException.h"

namespace
{
TEST(MSignalWindowType, ShapesHaveTheirKnownValues)
{
    struct Case
    {
        std::int32_t type;
        double edge, quarter, middle;   // at i = 0, 16, 32 of 65 points
    };
    const double quarterOfGauss = std::exp(-0.5 * 1.25 * 1.25);
    const double edgeOfGauss = std::exp(-0.5 * 2.5 * 2.5);
    const Case cases[] = {
        { MSignalWindowType::Rectangular, 1, 1, 1 },
        { MSignalWindowType::Hamming, 0.07672, 0.53836, 1 },
        { MSignalWindowType::Hann, 0, 0.5, 1 },
        { MSignalWindowType::Blackman, 0, 0.34, 1 },
        { MSignalWindowType::Cosine, 0, std::sqrt(0.5), 1 },
        { MSignalWindowType::Lanczos, std::sin(1.0), std::sin(0.5) / 0.5, 1 },
        { MSignalWindowType::Bartlett, 0, 0.5, 1 },
        { MSignalWindowType::Gauss, edgeOfGauss, quarterOfGauss, 1 },
    };
    for (const Case& known : cases)
    {
        SCOPED_TRACE(MSignalWindowType::Names[known.type]);
        MSignalWindowType window;
        window.Build(65, known.type, false);
        EXPECT_NEAR(window.Data()[0], known.edge, 1e-7);   // float rounding
        EXPECT_NEAR(window.Data()[16], known.quarter, 1e-7);
        EXPECT_NEAR(window.Data()[32], known.middle, 1e-7);
        EXPECT_NEAR(window.Data()[48], known.quarter, 1e-7);
        EXPECT_NEAR(window.Data()[64], known.edge, 1e-7);
    }
}

TEST(MSignalWindowType, KaiserFollowsTheBesselFunction)
{
    MSignalWindowType window;
    window.Build(64, MSignalWindowType::Kaiser, false);
    const double b = 17.77526;   // for 170 dB
    for (int i = 0; i < 64; ++i)
    {
        const double offset = (i - 32) / 32.0;
        const double expected =
            std::cyl_bessel_i(0, b * std::sqrt(1 - offset * offset)) / std::cyl_bessel_i(0, b);
        // The series stops at a term of 1e-8 of the sum.
        EXPECT_NEAR(window.Data()[i], expected, 1e-6) << i;
    }
    window.KaiserAttenuation = 10.0;
    window.Build(64, MSignalWindowType::Kaiser, false);
    EXPECT_EQ(window.Data()[0], 1.0f);
}

TEST(MSignalWindowType, ComplementaryHalvesAddUpToExactlyOne)
{
    for (std::int32_t type = 0; type < MSignalWindowType::TypeCount; ++type)
    {
        MSignalWindowType window;
        window.Build(16384, type, true);
        for (std::ptrdiff_t i = 0; i < 8192; ++i)
            ASSERT_EQ(window.Data()[i] + window.Data()[i + 8192], 1.0f)
                << MSignalWindowType::Names[type] << i;
    }
}

TEST(MSignalWindowType, SumsFollowEveryRebuild)
{
    MSignalWindowType window;
    EXPECT_FALSE(window.IsBuiltAs(0, MSignalWindowType::Hann));
    for (const std::int32_t size : { 1024, 4096, 100, 32768 })
    {
        window.Build(size, MSignalWindowType::Hann, false);
        EXPECT_TRUE(window.IsBuiltAs(size, MSignalWindowType::Hann));
        EXPECT_NEAR(window.Sum(), (size - 1) / 2.0, 1e-5 * size);   // float sums
        EXPECT_NEAR(window.SumOfSquares(), 3.0 * (size - 1) / 8.0, 1e-5 * size);
    }
}

TEST(MSignalWindowType, AnUnknownTypeIsRefused)
{
    for (const std::int32_t type : { -1, 9 })
    {
        MSignalWindowType window;
        try
        {
            window.Build(16, type, false);
            ADD_FAILURE() << type;
        }
        catch (const MException& refusal)
        {
            EXPECT_EQ(refusal.Message.ToUTF8(), "Unknown signal window type.");
        }
    }
}
}   // namespace
