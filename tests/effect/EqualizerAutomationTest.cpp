// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/EqualizerAutomation.h"

#include <gtest/gtest.h>

TEST(Bands, AutomationReachesEveryFieldAndReadsItsOwnTexts)
{
    MEqualizerBase equalizer;
    int changes = 0;
    EqualizerAutomation automation(equalizer, [&changes](std::int32_t) { ++changes; });
    ASSERT_EQ(automation.targetCount, 70);
    for (std::int32_t sub = 0; sub < 70; ++sub)
    {
        SCOPED_TRACE(sub);
        automation.SetValue(sub, 1.0, false);
        EXPECT_NEAR(automation.GetValue(sub), 1, 1e-12);
        automation.SetValue(sub, 0.375, false);
        const double kept = automation.GetValue(sub);
        MString text;
        automation.GetValueName(text, sub);
        EXPECT_FALSE(text.IsEmpty());
        // A type's text doesn't come back: the host steps through the types.
        const double expected = sub % 7 == EqualizerAutomation::Type_ ? 0 : kept;
        EXPECT_NEAR(automation.ParseValueName(sub, text), expected, 0.01) << text.ToUTF8();
    }
    EXPECT_EQ(changes, 140);
    EXPECT_EQ(equalizer.Band(2).type, 3) << "0.375 of eight steps";
    automation.SetValue(4, 1, true);
    EXPECT_EQ(equalizer.Band(0).type, MAudioFilters::Notch);
    EXPECT_EQ(changes, 140) << "a silent set tells nobody";
    MString text;
    automation.GetID(text, 8);
    EXPECT_EQ(text.ToUTF8(), "Equalizer band 2");
    automation.GetValueNameFrom01(text, 2, 0.75);
    EXPECT_EQ(text.ToUTF8(), "+12.00 dB");
    EXPECT_NEAR(automation.GetDefaultValue(35), 1, 0) << "the sixth band is on";
}
