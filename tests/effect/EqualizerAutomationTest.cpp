// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/EqualizerAutomation.h"

#include <gtest/gtest.h>

TEST(Bands, AutomationReachesEveryFieldAndReadsItsOwnTexts)
{
    MEqualizerBase equalizer;
    std::vector<std::int32_t> changed;
    EqualizerAutomation automation(equalizer, [&changed](std::int32_t band) { changed.push_back(band); });
    ASSERT_EQ(automation.targetCount, 70);
    MString text;
    for (std::int32_t sub = 0; sub < 70; ++sub)
    {
        SCOPED_TRACE(sub);
        const BandPoint before = equalizer.Band(sub / 7);
        automation.SetValue(sub, automation.GetDefaultValue(sub), true);
        EXPECT_TRUE(changed.empty()) << "a silent set tells nobody";
        EXPECT_TRUE(equalizer.Band(sub / 7).x == before.x && equalizer.Band(sub / 7).y == before.y);
        const bool isType = sub % 7 == EqualizerAutomation::Type_, isSwitch = sub % 7 == 0;
        for (const double value : { 1.0, 0.0, 0.375 })
        {
            automation.SetValue(sub, value, false);
            const double kept = isSwitch ? value >= 0.5 : value;
            EXPECT_NEAR(automation.GetValue(sub), kept, 1e-12);
            automation.GetValueName(text, sub);
            EXPECT_FALSE(text.IsEmpty());
            // A type's text doesn't come back: the host steps through the types.
            EXPECT_NEAR(automation.ParseValueName(sub, text), isType ? 0 : kept, 0.01) << text.ToUTF8();
        }
        EXPECT_EQ(changed, std::vector<std::int32_t>(3, sub / 7));
        changed.clear();
        EXPECT_EQ(automation.ParseValueName(sub, "nan"), 0);
        EXPECT_EQ(automation.GetType(sub), isSwitch ? AutomationAdapter::Type::Boolean
                                           : isType ? AutomationAdapter::Type::Enumeration
                                                    : AutomationAdapter::Type::Float);
    }
    const BandPoint& band = equalizer.Band(2);
    for (const std::int32_t type : { 0, 1, 7, 8, 3 })
    {
        automation.SetValue(18, type / 8.0, true);
        EXPECT_EQ(band.type, type);
    }
    EXPECT_NEAR(band.x, 1.301 + 0.375 * 3, 1e-3);
    EXPECT_NEAR(band.y, 0.75 * 24 - 24, 1e-9);
    EXPECT_NEAR(band.harmonicsDepth, -0.25, 1e-9);
    automation.RefreshCache();
    EXPECT_EQ(automation.CachedValue(15), 0.375);
    automation.GetName(text, 8);
    EXPECT_EQ(text.ToUTF8(), "Frequency 2");
    automation.GetID(text, 8);
    EXPECT_EQ(text.ToUTF8(), "Equalizer band 2");
    const char* const texts[] = { "On", "3557 Hz", "+12.00 dB", "", "", "50.0%", "36.25" };
    for (std::int32_t role = 0; role < 7; ++role)
    {
        automation.GetValueNameFrom01(text, role, 0.75);
        if (*texts[role] != 0)
        {
            EXPECT_EQ(text.ToUTF8(), texts[role]);
        }
    }
    EXPECT_EQ(automation.GetDefaultValue(35), 1) << "the sixth band is on";
}
