// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "plugin/driver/Transport.h"

TEST(Transport, TakesWhatTheHostTellsAndKeepsTheRest)
{
    Transport transport;
    EXPECT_EQ(transport.Context(64).tempo, -1);
    transport.Take({ .tempo = 120,
                     .position = 4.5,
                     .barStart = 3.7,
                     .signature = Transport::Report::Signature{ 4, 4 },
                     .cycleStart = 4,
                     .cycleEnd = 8,
                     .playing = true });
    EXPECT_FALSE(transport.IsPlaying()) << "the position jumped there: it may be one block early";
    EXPECT_EQ(transport.Context(64).position, -1);
    transport.Take({ .position = 4.6, .playing = true });
    ASSERT_TRUE(transport.IsPlaying());
    EXPECT_EQ(transport.CycleEnd(), -1) << "no cycle was told";
    transport.Advance(24000, 48000);
    const MProcessContext context = transport.Context(64);
    EXPECT_EQ(context.tempo, 120);
    EXPECT_DOUBLE_EQ(context.position, 5.6) << "half a second at two quarters a second";
    EXPECT_EQ(context.barStart, 4);
    EXPECT_EQ(context.timeSignatureNumerator, 4);
    EXPECT_EQ(context.maxBlockSize, 64);
    transport.Take({ .barStart = 10.26,
                     .signature = Transport::Report::Signature{ 7, 16 },
                     .cycleStart = 1,
                     .cycleEnd = 2.5,
                     .playing = true });
    EXPECT_EQ(transport.Context(64).barStart, 10.25) << "sixteenths start on quarters of a quarter";
    EXPECT_EQ(transport.CycleStart(), 1);
    EXPECT_EQ(transport.CycleEnd(), 2.5);
    transport.Take({ .playing = false });
    EXPECT_EQ(transport.Context(64).position, -1);
    EXPECT_EQ(transport.Context(64).tempo, 120);
}
