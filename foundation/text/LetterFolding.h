// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// A precomposed letter and the letter it is built on: U+00C9 and "E".
struct LetterFold
{
    char16_t letter;
    char16_t base;
};

inline constexpr int LetterFoldCount = 988;
extern const LetterFold LetterFolds[LetterFoldCount];   // sorted by letter

/// What a character counts as where case and accents don't matter.
char16_t FoldLetter(char16_t character) noexcept;
