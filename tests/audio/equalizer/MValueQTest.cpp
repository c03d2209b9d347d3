// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/MValueQ.h"

#include <gtest/gtest.h>

namespace
{
TEST(MValueQ, EditsABandsWidthByItsQ)
{
    BandPoint band;
    MValueQ value(&band.width);
    EXPECT_EQ(value.ToText().ToUTF8(), "0.71");
    for (const auto& [text, q] : { std::pair<const char*, double>{ "2", 2.0 },
                                   { "0.05", 0.05 },
                                   { "10", 10.0 },
                                   { "99", 10.0 },
                                   { "0", 0.05 },
                                   { "-3", 0.05 } })
    {
        EXPECT_TRUE(value.SetDisplayText(text)) << text;
        EXPECT_NEAR(band.Q(), q, 1e-9) << text;
    }
    EXPECT_FALSE(value.SetDisplayText("wide"));
    value.SetNormalized(0.25);   // the place on the scale is the width
    EXPECT_EQ(band.width, 0.25);
    MValueQ percent(&band.width, MValueQ::Display::Percent);
    EXPECT_EQ(percent.ToText().ToUTF8(), "25.0%");
    EXPECT_TRUE(percent.SetDisplayText("50%"));
    EXPECT_EQ(band.width, 0.5);
    value.SetDefault();
    EXPECT_NEAR(band.Q(), 0.7071067811865, 1e-9);
}
}   // namespace
