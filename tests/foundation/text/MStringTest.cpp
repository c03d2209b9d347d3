// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MString.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/text/LetterFolding.h"

namespace
{
TEST(MString, TakesNullAsTheEmptyLiteral)
{
    const MString text(static_cast<const char*>(nullptr));
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_TRUE(text.IsLiteral());
    EXPECT_EQ(text.BlockSize(), 0);
    EXPECT_EQ(text[0], 0);
}

TEST(MString, TakesBlocksOfPowersOfTwo)
{
    const struct
    {
        int length;
        int blockSize;
    } cases[] = { { 1, 16 }, { 3, 16 }, { 4, 32 }, { 11, 32 }, { 12, 64 }, { 251, 512 }, { 252, 1024 } };
    for (const auto& [length, blockSize] : cases)
        EXPECT_EQ(MString::Copy(std::string(static_cast<std::size_t>(length), 'a')).BlockSize(), blockSize)
            << length;
}

TEST(MString, SharesItsBlockUntilOneOfTheCopiesIsWrittenTo)
{
    MString first = MString::Copy("abc");
    MString second = first;
    EXPECT_EQ(first.ShareCount(), 2);
    first.Append(MString("def"));
    EXPECT_EQ(first.ShareCount(), 1);
    EXPECT_EQ(second.ShareCount(), 1);
    EXPECT_EQ(first.ToUTF8(), "abcdef");
    EXPECT_EQ(second.ToUTF8(), "abc");

    MString literal = "constant";
    const MString literalCopy = literal;
    literal.Delete(0, 3);
    EXPECT_EQ(literal.ToUTF8(), "stant");
    EXPECT_EQ(literalCopy.ToUTF8(), "constant");
    EXPECT_TRUE(literalCopy.IsLiteral());
}

TEST(MString, PointsAtLiteralsOnlyAndCopiesWhatMayGoAway)
{
    char buffer[8] = "abc";
    const char* pointer = buffer;
    MString appended;
    appended.Append(buffer);
    const MString texts[] = { buffer, pointer, appended, "abc" + MString(), MString() + pointer };
    buffer[0] = 'x';
    for (const MString& text : texts)
        EXPECT_EQ(text.ToUTF8(), "abc");
    EXPECT_TRUE(MString("abc").IsLiteral());
    EXPECT_TRUE(MString::Literal(pointer).IsLiteral());
    EXPECT_TRUE(MString::Literal(nullptr).IsEmpty());
}

TEST(MString, ReservesWithoutShrinkingAnOwnBlockAndCutsWhatItCopies)
{
    MString own = MString::Copy("0123456789");
    own.Reserve(3);
    EXPECT_EQ(own.BlockSize(), 32);
    EXPECT_EQ(own.Length(), 10);
    own.Reserve(100);
    EXPECT_EQ(own.BlockSize(), 256);
    EXPECT_EQ(own.ToUTF8(), "0123456789");

    MString shared = own;
    shared.Reserve(4);
    EXPECT_EQ(shared.ToUTF8(), "012");
    EXPECT_EQ(own.ShareCount(), 1);
    MString literal = "0123456789";
    literal.Reserve(4);
    EXPECT_EQ(literal.ToUTF8(), "012");
}

// Every editing operation against std::string, from both forms and with copies around.
TEST(MString, EditsLikeAnOrdinaryString)
{
    constexpr unsigned Seed = 20240611;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    const auto pick = [&random](int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    MString text = "a literal start";
    std::string expected = "a literal start";
    for (int round = 0; round < 20000; ++round)
    {
        const MString before = text;
        const std::string beforeExpected = expected;
        const int length = static_cast<int>(expected.size());
        const int start = pick(0, length);
        const int count = pick(0, 5);
        const std::string piece(static_cast<std::size_t>(pick(0, 3)), static_cast<char>('a' + pick(0, 3)));
        switch (pick(0, 5))
        {
        case 0:
            text.Append(MString::Copy(piece));
            expected += piece;
            break;
        case 1:
            text.Insert(start, MString::Copy(piece));
            expected.insert(static_cast<std::size_t>(start), piece);
            break;
        case 2:
            text.Delete(start, count);
            expected.erase(static_cast<std::size_t>(start), static_cast<std::size_t>(count));
            break;
        case 3:
            text = text.SubString(start / 2, length);
            expected = expected.substr(static_cast<std::size_t>(start / 2));
            break;
        case 4:
        {
            const char replaced = static_cast<char>('a' + pick(0, 3));
            int replacements = 0;
            std::string result;
            for (const char character : expected)
            {
                replacements += character == replaced ? 1 : 0;
                if (character == replaced)
                    result += piece;
                else
                    result += character;
            }
            if (result.size() > 200)
                break;
            expected = result;
            EXPECT_EQ(text.Replace(static_cast<char16_t>(replaced), MString::Copy(piece)), replacements);
            break;
        }
        default:
            text.Append(u'z');
            expected += 'z';
            break;
        }
        ASSERT_EQ(text.ToUTF8(), expected) << "round " << round;
        ASSERT_EQ(before.ToUTF8(), beforeExpected) << "round " << round;
        const std::size_t found = expected.find(piece);
        ASSERT_EQ(text.Find(MString::Copy(piece)), found == std::string::npos ? -1 : static_cast<int>(found));
    }
}

TEST(MString, InsertsAndAppendsItself)
{
    MString text = MString::Copy("ab");
    text.Insert(1, text);
    EXPECT_EQ(text.ToUTF8(), "aabb");
    text += text;
    EXPECT_EQ(text.ToUTF8(), "aabbaabb");
}

TEST(MString, ClampsPlacesOutsideTheText)
{
    const MString text = "abc";
    EXPECT_EQ(text.SubString(-5, 2).ToUTF8(), "");
    EXPECT_EQ(text.SubString(-1, 2).ToUTF8(), "a");
    EXPECT_EQ(text.SubString(2, 0x7FFFFFFF).ToUTF8(), "c");
    EXPECT_EQ(text.SubString(7, 1).ToUTF8(), "");
    MString deleted = "abc";
    deleted.Delete(1, 0x7FFFFFFF);
    EXPECT_EQ(deleted.ToUTF8(), "a");
}

TEST(MString, CountsItsSharersAcrossThreads)
{
    const MString text = MString::Copy("shared by many");
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back(
            [&text]
            {
                for (int round = 0; round < 20000; ++round)
                {
                    MString copy = text;
                    const MString another = copy;
                    copy.Append(u'!');
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(text.ShareCount(), 1);
    EXPECT_EQ(text.ToUTF8(), "shared by many");
}

TEST(MString, WritesIntegers)
{
    EXPECT_EQ(MString::FromInt(-5, 10, 4, '0').ToUTF8(), "-0005");
    EXPECT_EQ(MString::FromInt(5, 10, 4).ToUTF8(), "   5");
    EXPECT_EQ(MString::FromInt(255, 16).ToUTF8(), "FF");
    EXPECT_EQ(MString::FromInt(std::numeric_limits<std::int64_t>::min()).ToUTF8(), "-9223372036854775808");
    EXPECT_EQ(MString::FromUnsigned(~std::uint64_t{ 0 }, 2).Length(), 64);
    EXPECT_EQ(MString::FromUnsigned(~std::uint64_t{ 0 }, 36).ToUTF8(), "3W5E11264SGSF");
}

TEST(MString, ReadsIntegersAndTellsHowFarItCame)
{
    const struct
    {
        const char* text;
        int radix;
        std::int64_t value;
        int consumed;
    } cases[] = {
        { "", 10, 0, 0 },
        { "-", 10, 0, 0 },
        { "x", 10, 0, 0 },
        { " 1", 10, 0, 0 },
        { "-12a", 10, -12, 3 },
        { "007", 10, 7, 3 },
        { "fFz", 16, 255, 2 },
        { "102", 2, 2, 2 },
        { "9223372036854775807", 10, std::numeric_limits<std::int64_t>::max(), 19 },
        { "9223372036854775808", 10, std::numeric_limits<std::int64_t>::max(), 19 },
        { "-9223372036854775808", 10, std::numeric_limits<std::int64_t>::min(), 20 },
        { "-99999999999999999999999", 10, std::numeric_limits<std::int64_t>::min(), 24 },
    };
    for (const auto& [text, radix, value, consumed] : cases)
    {
        int got = -1;
        EXPECT_EQ(MString(text).ToInt(radix, &got), value) << text;
        EXPECT_EQ(got, consumed) << text;
    }
}

TEST(MString, WritesDoublesLikePrintfOfTheCLocale)
{
    constexpr unsigned Seed = 77;
    SCOPED_TRACE(Seed);
    std::mt19937_64 random(Seed);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> exponent(-300, 300);
    for (int round = 0; round < 20000; ++round)
    {
        const double value = mantissa(random) * std::pow(10.0, exponent(random) / (round % 2 == 0 ? 1 : 30));
        const int precision = round % 21;
        char expected[400];
        std::snprintf(expected, sizeof expected, precision < 10 ? "%.*f" : "%.*g", precision, value);
        ASSERT_EQ(MString::FromDouble(value, precision).ToUTF8(), expected) << value << " " << precision;
    }
    EXPECT_EQ(MString::FromDouble(std::numeric_limits<double>::max(), 9).Length(), 319);
    EXPECT_EQ(MString::FromDouble(std::numeric_limits<double>::infinity(), 2).ToUTF8(), "inf");
}

TEST(MString, ReadsDoublesLikeStrtodOfTheCLocale)
{
    const char* cases[] = { "",
                            "  -3.5 dB",
                            "+2",
                            "+-2",
                            "-+2",
                            "1e3x",
                            "1e",
                            ".5",
                            "5.",
                            ".",
                            "-.25e-2",
                            "1e400",
                            "-1e400",
                            "1e-400",
                            "0.00001e330",
                            "1e-9999999999999",
                            "0e999",
                            "100000e-330",
                            "inf",
                            "-nan",
                            "1,5",
                            "00012.5",
                            "1e99999999999",
                            "12345678901234567890" };
    for (const char* text : cases)
    {
        char* end = nullptr;
        const double expected = std::strtod(text, &end);
        int consumed = -1;
        const double value = MString(text).ToDouble(&consumed);
        EXPECT_EQ(consumed, end - text) << text;
        if (std::isnan(expected))
            EXPECT_TRUE(std::isnan(value)) << text;
        else
            EXPECT_EQ(value, expected) << text;
    }
    // Longer than any buffer on the stack, and not ASCII behind the number.
    EXPECT_EQ(MString::Copy(std::string(300, '0').replace(0, 1, "1")).ToDouble(), 1e299);
    EXPECT_EQ(MString(u"2.5\u00B5").ToDouble(), 2.5);
}

TEST(MString, ComparesWithoutCaseAndAccents)
{
    const struct
    {
        const char16_t* a;
        const char16_t* b;
        int sign;
    } cases[] = {
        { u"Bypass", u"bYPASS", 0 },
        { u"\u00C9", u"e", 0 },
        { u"caf\u00E9", u"CAFE", 0 },
        { u"\u1EA4", u"a", 0 },
        { u"\uFB4E", u"\u05E4", 0 },
        { u"a", u"b", -1 },
        { u"b", u"A", 1 },
        { u"ab", u"abc", -1 },
        { u"", u"a", -1 },
        { u"\u4E00", u"\u4E01", -1 },
        { u"[", u"a", -1 },
        { u"Z", u"[", 1 },
    };
    const auto sign = [](int value)
    {
        return (value > 0) - (value < 0);
    };
    for (const auto& [a, b, expected] : cases)
    {
        EXPECT_EQ(sign(MString::CompareNoCase(MString(a), MString(b))), expected) << MString(a).ToUTF8();
        EXPECT_EQ(sign(MString::CompareNoCase(MString(b), MString(a))), -expected) << MString(a).ToUTF8();
    }
    EXPECT_EQ(MString::CompareNoCase("parameter12", "PARAMETER34", 9), 0);
    EXPECT_NE(MString::CompareNoCase("parameter12", "PARAMETER34", 10), 0);
}

TEST(MString, FoldsByASortedTableThatEndsInBaseLetters)
{
    for (int index = 0; index < LetterFoldCount; ++index)
    {
        EXPECT_GE(LetterFolds[index].letter, 192);
        EXPECT_TRUE(index == 0 || LetterFolds[index - 1].letter < LetterFolds[index].letter) << index;
        EXPECT_EQ(FoldLetter(LetterFolds[index].base), FoldLetter(LetterFolds[index].letter));
    }
    EXPECT_EQ(FoldLetter(0x00D7), 0x00D7);   // the multiplication sign stands among letters and is none
}

TEST(MString, HashesWithoutCaseAndSamplesLongTexts)
{
    EXPECT_EQ(MString().Hash(), 0u);
    EXPECT_EQ(MString("AB").Hash(), ('a' ^ ('b' << 1)));
    EXPECT_EQ(MString("ab").Hash(), MString("AB").Hash());
    EXPECT_EQ(MString(u"\u00E9").Hash(), 0xFFFFFFE9u);   // the low byte counts with its sign
    EXPECT_EQ(MString("abcdefghijklmnop").Hash(), static_cast<unsigned>('a'));
    EXPECT_EQ(MString("abcdefghijklmnopqrstuvwxyz").Hash(), ('a' ^ ('e' << 4)));
}

TEST(MString, DecodesAndEncodesUTF8)
{
    const struct
    {
        std::string bytes;
        std::u16string text;
    } roundTrips[] = { { "plain", u"plain" },
                       { "\xC3\xA9\xE2\x82\xAC", u"\u00E9\u20AC" },
                       { "\xF0\x9F\x8E\xB5!", u"\U0001F3B5!" },
                       { "\xF4\x8F\xBF\xBF", u"\U0010FFFF" } };
    for (const auto& [bytes, text] : roundTrips)
    {
        EXPECT_EQ(MString::FromUTF8(bytes), MString(text));
        EXPECT_EQ(MString(text).ToUTF8(), bytes);
    }
    const struct
    {
        std::string bytes;
        std::u16string text;
    } oneWay[] = { { "\xEF\xBB\xBFx\xEF\xBB\xBFy", u"xy" },   // byte-order marks
                   { "a\x80\xBF\xFF"
                     "b",
                     u"ab" },   // bytes that start nothing
                   { "\xC3"
                     "Ab",
                     u"\u0001b" },   // broken
                   { "\xE2\x82", u"" },   // cut off
                   { "\xF7\xBF\xBF\xBF", u"\u0001" },   // beyond Unicode
                   { std::string("a\0b", 3), u"a" } };
    for (const auto& [bytes, text] : oneWay)
        EXPECT_EQ(MString::FromUTF8(bytes), MString(text));
    const char16_t lone[] = { u'a', 0xD800, u'b', 0xDC00, 0 };
    EXPECT_EQ(MString(lone).ToUTF8(), "ab");
}
}   // namespace
