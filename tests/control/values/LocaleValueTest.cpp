// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "control/values/MValueEnum.h"
#include "foundation/module/MLocale.h"

namespace
{
TEST(LocaleValues, ChooseByName)
{
    MRelaxed<int> language = 0;
    MValueEnum<MLocale::Language> value(&language);
    EXPECT_EQ(value.GetText().ToUTF8(), "");
    value.SetText("Albanian");
    EXPECT_STREQ(MLocale::LanguageCodes[language], "SQ");
    EXPECT_EQ(value.GetEnum(), MLocale::Language::SQ);
    MValueEnum<MLocale::Country> country(&language, MLocale::Country::ZW);
    country.SetDefault();
    EXPECT_EQ(country.GetText().ToUTF8(), "Zimbabwe");
}
}   // namespace
