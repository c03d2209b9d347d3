// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MString.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iconv.h>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/text/LetterFolding.h"
#include "foundation/text/PathText.h"
#include "tests/ErrorOf.h"

namespace
{
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
    for (const MString& empty : { MString::Literal(nullptr), MString(static_cast<const char*>(nullptr)) })
    {
        EXPECT_TRUE(empty.IsEmpty());
        EXPECT_TRUE(empty.IsLiteral());
        EXPECT_EQ(empty.BlockSize(), 0);
        EXPECT_EQ(empty.ShareCount(), 0);
        EXPECT_EQ(empty[0], 0);
    }
}

TEST(MString, TakesBlocksOfPowersOfTwoAndNeverShrinksItsOwn)
{
    for (const auto& [length, blockSize] : { std::pair<std::size_t, int>{ 1, 16 },
                                             { 3, 16 },
                                             { 4, 32 },
                                             { 11, 32 },
                                             { 12, 64 },
                                             { 251, 512 },
                                             { 252, 1024 } })
        EXPECT_EQ(MString::Copy(std::string(length, 'a')).BlockSize(), blockSize) << length;
    MString own = MString::Copy("0123456789");
    for (const auto& [reserved, blockSize] : { std::pair{ 3, 32 }, { 12, 32 }, { 13, 64 }, { 100, 256 } })
    {
        own.Reserve(reserved);
        EXPECT_EQ(own.BlockSize(), blockSize);
        EXPECT_EQ(own.ToUTF8(), "0123456789");
    }
    EXPECT_EQ(ErrorOf([&] { own.Reserve(1 << 30); }), "A text cannot hold more characters.");
}

// The characters from start on, as many as the count says, or all the others.
std::string Part(const std::string& text, std::int64_t start, std::int64_t count, bool isInside)
{
    std::string part;
    for (std::int64_t index = 0; index < static_cast<std::int64_t>(text.size()); ++index)
        if ((index >= start && index < start + count) == isInside)
            part += text[static_cast<std::size_t>(index)];
    return part;
}

// Every editing operation against std::string, from both forms, at any place and with copies around.
TEST(MString, EditsLikeAnOrdinaryString)
{
    const char* const pieces[] = { "", "a", "bcd", "zzzzz" };
    std::mt19937 random(20240611);
    MString text = "a literal start";
    std::string expected = "a literal start";
    for (int round = 0; round < 20000; ++round)
    {
        const MString before = text;
        const std::string beforeExpected = expected;
        const auto length = static_cast<int>(expected.size());
        const int start = static_cast<int>(random() % (expected.size() + 7)) - 3;
        const int count = random() % 8 == 0 ? 0x7FFFFFFF : static_cast<int>(random() % 8) - 1;
        const auto place = static_cast<std::size_t>(std::clamp(start, 0, length));
        const char* const characters = pieces[random() % 4];
        const MString piece = random() % 2 == 0 ? MString::Literal(characters) : MString(characters);
        if (length > 100)
            text = MString("start"), expected = "start";
        else
            switch (random() % 8)
            {
            case 0:
                text += piece;
                expected += characters;
                break;
            case 1:
                text.Insert(start, piece);
                expected.insert(place, characters);
                break;
            case 2:
                text.Delete(start, count);
                expected = Part(expected, start, count, false);
                break;
            case 3:
                text = text.SubString(start, count);
                expected = Part(expected, start, count, true);
                break;
            case 4:
            {
                std::string result;
                for (const char character : expected)
                    result += character == 'a' ? characters : std::string(1, character);
                EXPECT_EQ(text.Replace(u'a', piece), std::count(expected.begin(), expected.end(), 'a'));
                expected = result;
                break;
            }
            case 5:
                text.Append(u'z');
                expected += 'z';
                break;
            case 6:
                text.Insert(start, text);
                expected.insert(place, std::string(expected));
                break;
            default:
                text.Reserve(count % 1000);   // as another has the same block, it is cut
                expected = expected.substr(0, static_cast<std::size_t>(std::max(count % 1000, 1) - 1));
                EXPECT_EQ(text.ShareCount(), 1);
            }
        SCOPED_TRACE(round);
        ASSERT_EQ(text.ToUTF8(), expected);
        ASSERT_EQ(before.ToUTF8(), beforeExpected);
        ASSERT_EQ(text[text.Length()], u'\0');
        for (const MString& form : { MString(expected.c_str()), MString::Literal(expected.c_str()) })
        {
            ASSERT_TRUE(text == form && form == text);
            ASSERT_FALSE(text == form + "x");
            ASSERT_FALSE(!expected.empty() && text == "x" + form.SubString(1, length));
        }
        const std::size_t from = static_cast<std::size_t>(std::max(start, 0));
        ASSERT_EQ(text.Find(piece, start), static_cast<int>(expected.find(characters, from)));
        ASSERT_EQ(text.Find(u'b', start), static_cast<int>(expected.find('b', from)));
    }
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

TEST(MString, WritesAndReadsBackIntegersOfEveryRadix)
{
    std::mt19937_64 random(36);
    for (int round = 0; round < 3500; ++round)
    {
        const int radix = 2 + round % 35;
        const auto value = static_cast<std::int64_t>(random()) >> (random() % 64);
        const int width = static_cast<int>(random() % 12);
        char digits[70] = {};
        const std::uint64_t bits = static_cast<std::uint64_t>(value);
        *std::to_chars(digits, std::end(digits), value < 0 ? 0 - bits : bits, radix).ptr = 0;
        std::string expected = digits;
        std::transform(expected.begin(), expected.end(), expected.begin(),
                       [](char c) { return std::toupper(c); });
        expected.insert(0, static_cast<std::size_t>(std::max(0, width - static_cast<int>(expected.size()))),
                        '0');
        EXPECT_EQ(MString::FromInt(value, radix, width, '0').ToUTF8(), (value < 0 ? "-" : "") + expected);
        for (const MString& text : { MString::FromInt(value, radix), MString(digits) })
        {
            int consumed = 0;
            EXPECT_EQ(std::abs(text.ToInt(radix, &consumed)), std::abs(value));
            EXPECT_EQ(consumed, text.Length());
        }
        EXPECT_EQ(MString(digits).ToUnsigned(radix), value < 0 ? 0 - bits : bits);
    }
    EXPECT_EQ(MString::FromInt(5, 10, 4).ToUTF8(), "   5");
    EXPECT_EQ(MString::FromUnsigned(~std::uint64_t{ 0 }, 36).ToUTF8(), "3W5E11264SGSF");
    for (const int radix : { 1, 37 })
        EXPECT_EQ(ErrorOf([radix] { MString::FromInt(1, radix); }), "Invalid radix.");
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
    std::mt19937_64 random(77);
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
    std::vector<std::string> texts = { "",
                                       "  -3.5 dB",
                                       "+-2",
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
                                       "1e99999999999",
                                       "12345678901234567890" };
    const std::string alphabet = "0123456789+-..eE ";
    std::mt19937 random(53);
    for (int round = 0; round < 50000; ++round)
    {
        std::string& text = texts.emplace_back(random() % 9, ' ');
        for (char& character : text)
            character = alphabet[random() % alphabet.size()];
    }
    for (const std::string& text : texts)
    {
        char* end = nullptr;
        const double expected = std::strtod(text.c_str(), &end);
        int consumed = -1;
        const double value = MString(text.c_str()).ToDouble(&consumed);
        ASSERT_EQ(consumed, end - text.c_str()) << text;
        ASSERT_TRUE(value == expected || (std::isnan(value) && std::isnan(expected))) << text << " " << value;
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

TEST(MString, CopesWithBrokenUTF8)
{
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

// The C library converts, too: every character that is no half and no mark, in texts of two.
TEST(MString, AgreesWithTheSystemAboutUTF8)
{
    iconv_t converter = iconv_open("UTF-8", "UTF-32LE");
    ASSERT_NE(converter, reinterpret_cast<iconv_t>(-1));
    for (std::uint32_t codePoint = 1; codePoint < 0x110000; codePoint += codePoint < 0x1000 ? 1 : 0x11)
    {
        if ((codePoint >= 0xD800 && codePoint < 0xE000) || codePoint == 0xFEFF)
            continue;
        std::uint32_t source[] = { codePoint, u'x' };
        char bytes[16] = {};
        char* from = reinterpret_cast<char*>(source);
        char* to = bytes;
        std::size_t fromSize = sizeof source;
        std::size_t toSize = sizeof bytes;
        ASSERT_EQ(iconv(converter, &from, &fromSize, &to, &toSize), 0u);
        const MString text = MString::FromUTF8(bytes);
        ASSERT_EQ(text.Length(), codePoint < 0x10000 ? 2 : 3) << codePoint;
        ASSERT_EQ(text[0], codePoint < 0x10000 ? codePoint : 0xD7C0 + (codePoint >> 10));
        ASSERT_EQ(text.ToUTF8(), bytes) << codePoint;
        EXPECT_EQ(PathText(bytes), text) << codePoint;
    }
    iconv_close(converter);
}

// A path is bytes: none is lost, whatever they are.
TEST(PathText, KeepsEveryByte)
{
    std::mt19937 random(161);
    std::vector<std::string> paths = { "\xC0\xAF",
                                       "\xC1\xBF",
                                       "\xE0\x9F\xBF",
                                       "\xED\xB2\x80",
                                       "\xED\xA0\x80\xED\xB2\x80",
                                       "\xEF\xBB\xBFx",
                                       "\xF0\x8F\xBF\xBF",
                                       "\xF4\x90\x80\x80",
                                       "\xF5\x80\x80\x80",
                                       "\xF0\x9F\x8E\xB5\x80",
                                       "\xF0\x9F\x8E",
                                       "" };
    for (int round = 0; round < 20000; ++round)
    {
        std::string& path = paths.emplace_back(1 + random() % 8, ' ');
        for (char& byte : path)
            byte = static_cast<char>(random() % 3 == 0 ? random() % 128 : 128 + random() % 128);
    }
    for (const std::string& path : paths)
        EXPECT_EQ(PathBytes(PathText(path)), path) << testing::PrintToString(path);
    // U+FFFF and other surrogates are in no file's name, but in a text they do no harm.
    EXPECT_EQ(PathBytes(MString(std::u16string_view(u"a\xD800\xDC00\xD800"
                                                    "b\xDFFF"))),
              "a\xF0\x90\x80\x80"
              "b");
}
}   // namespace
