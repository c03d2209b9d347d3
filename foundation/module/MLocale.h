// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/module/LocaleCodes.h"
#include "foundation/text/MEnumLabels.h"

/// Languages and countries as a user chooses them. The values are indexes into the tables of codes and of
/// English names; 0 is the blank choice, the rest is ordered by name.
struct MLocale
{
#define TONALIGN_CODE(code, label) code,
    enum class Language
    {
        Blank,
        TONALIGN_LANGUAGES(TONALIGN_CODE) Count
    };
    enum class Country
    {
        Blank,
        TONALIGN_COUNTRIES(TONALIGN_CODE) Count
    };
#undef TONALIGN_CODE

#define TONALIGN_CODE(code, label) #code,
    static constexpr const char* LanguageCodes[] = { "", TONALIGN_LANGUAGES(TONALIGN_CODE) };
    static constexpr const char* CountryCodes[] = { "", TONALIGN_COUNTRIES(TONALIGN_CODE) };
#undef TONALIGN_CODE

#define TONALIGN_CODE(code, label) label,
    static constexpr const char* LanguageLabels[] = { "", TONALIGN_LANGUAGES(TONALIGN_CODE) };
    static constexpr const char* CountryLabels[] = { "", TONALIGN_COUNTRIES(TONALIGN_CODE) };
#undef TONALIGN_CODE
};

template <>
struct MEnumLabels<MLocale::Language>
{
    static constexpr auto& Labels = MLocale::LanguageLabels;
};

template <>
struct MEnumLabels<MLocale::Country>
{
    static constexpr auto& Labels = MLocale::CountryLabels;
};
