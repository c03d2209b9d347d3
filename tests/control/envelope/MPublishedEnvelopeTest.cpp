// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MPublishedEnvelope.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "control/envelope/MEnvelope.h"
#include "foundation/text/MException.h"

namespace
{
// Its value is `height` everywhere.
void MakeFlat(MEnvelope& envelope, double height)
{
    envelope.Reset(height, height);
}

TEST(MEnvelope, BearsAStampThatTellsCurvesApart)
{
    MEnvelope envelope;
    MEnvelope other;
    EXPECT_NE(envelope.ChangeStamp(), other.ChangeStamp());
    const MEnvelope copy = envelope;
    EXPECT_EQ(copy.ChangeStamp(), envelope.ChangeStamp());
    std::uint64_t before = envelope.ChangeStamp();
    for (int change = 0; change < 4; ++change, before = envelope.ChangeStamp())
    {
        if (change == 0)
            envelope.Edit([](MArray<MEnvelopePoint>& points) { points[0].y = 0.5; });
        else if (change == 1)
            envelope.SetLimits(0, 2, 0, 2);
        else if (change == 2)
            envelope.Reset(1, 1);
        else
            envelope.Normalize();
        EXPECT_NE(envelope.ChangeStamp(), before) << change;
    }
    EXPECT_ANY_THROW(envelope.Edit([](MArray<MEnvelopePoint>& points) { points[9].y = 1; }));
    EXPECT_NE(envelope.ChangeStamp(), copy.ChangeStamp());
}

TEST(MPublishedEnvelope, GivesTheNewestCurveAndKeepsTheLastGoodOne)
{
    MPublishedEnvelope published;
    EXPECT_EQ(published.Current().Value(0.5), 0.0);
    MEnvelope envelope;
    for (const double height : { 0.25, 0.5, 0.75, 1.0 })
    {
        MakeFlat(envelope, height / 2);
        EXPECT_TRUE(published.Publish(envelope));
        MakeFlat(envelope, height);
        MEnvelopeComputer& before = published.Current();
        EXPECT_TRUE(published.Publish(envelope));
        EXPECT_EQ(before.Value(0.5), height / 2);   // until the next call
        EXPECT_EQ(published.Current().Value(0.5), height);
        EXPECT_FALSE(published.Publish(envelope));
        EXPECT_EQ(published.Current().Value(0.5), height);
    }
    envelope.Edit([](MArray<MEnvelopePoint>& points) { points[0].type = 99; });
    EXPECT_THROW(published.Publish(envelope), MException);
    EXPECT_THROW(published.Publish(envelope), MException);
    EXPECT_EQ(published.Current().Value(0.5), 1.0);
}

// A reader that meets a half-made or a freed curve sees a wrong height, or ThreadSanitizer does.
TEST(MPublishedEnvelope, HandsOverWhileBothSidesRun)
{
    constexpr int Rounds = 2000;
    MPublishedEnvelope published;
    std::thread editor(
        [&published]
        {
            MEnvelope envelope;
            for (int round = 1; round <= Rounds; ++round)
            {
                MakeFlat(envelope, round);
                published.Publish(envelope);
            }
        });
    double last = 0.0;
    while (last < Rounds)
    {
        MEnvelopeComputer& curve = published.Current();
        float values[8];
        curve.Rewind(-1.0);
        curve.Fill(values, -1.0, 0.5, 8);
        for (const float value : values)
            ASSERT_EQ(value, values[0]);
        ASSERT_GE(values[0], last);   // never an older one
        last = values[0];
    }
    editor.join();
}
}   // namespace
