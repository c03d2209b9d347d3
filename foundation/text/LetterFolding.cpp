// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/LetterFolding.h"

#include <algorithm>

#include "foundation/text/MString.h"

namespace
{
constexpr char16_t FirstAccentedLetter = 192;

char16_t BaseLetter(char16_t character) noexcept
{
    const LetterFold* end = LetterFolds + LetterFoldCount;
    const LetterFold* found =
        std::lower_bound(LetterFolds, end, character,
                         [](const LetterFold& fold, char16_t wanted) { return fold.letter < wanted; });
    return found != end && found->letter == character ? found->base : character;
}

char16_t SmallLetter(char16_t character) noexcept
{
    return character >= u'A' && character <= u'Z' ? static_cast<char16_t>(character + (u'a' - u'A'))
                                                  : character;
}
}   // namespace

char16_t FoldLetter(char16_t character) noexcept
{
    return SmallLetter(character < FirstAccentedLetter ? character : BaseLetter(character));
}

int MString::CompareNoCase(const MString& a, const MString& b, int maxLength) noexcept
{
    for (int index = 0; index < maxLength; ++index)
    {
        const char16_t left = index < a.length ? a[index] : u'\0';
        const char16_t right = index < b.length ? b[index] : u'\0';
        if (left != right)
        {
            const int difference = FoldLetter(left) - FoldLetter(right);
            if (difference != 0)
                return difference;
        }
        if (left == 0)
            return 0;
    }
    return 0;
}

std::uint32_t MString::Hash() const noexcept
{
    // Long texts are sampled at every fourth of the first few characters.
    const bool isLong = length >= 16;
    const int end = isLong ? std::min(length / 4, 8) : length;
    const int step = isLong ? 4 : 1;
    std::uint32_t hash = 0;
    for (int index = 0; index < end; index += step)
    {
        const auto character = static_cast<std::int8_t>(SmallLetter((*this)[index]));
        hash ^= static_cast<std::uint32_t>(std::int32_t{ character }) << (index % 32);
    }
    return hash;
}
