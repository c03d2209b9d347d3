// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MEncoding.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iconv.h>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/text/Codecs.h"
#include "foundation/text/MCharFilter.h"
#include "tests/ErrorOf.h"

namespace
{
class TextSource final : public MByteSource
{
public:
    // `step` bytes at a time, so that line ends fall on every place of the reader's buffer.
    TextSource(std::string source, std::size_t step) : bytes(std::move(source)), largestRead(step) {}
    std::int32_t ReadBytes(void* buffer, std::int32_t size) override
    {
        const std::size_t count =
            std::min({ static_cast<std::size_t>(size), largestRead, bytes.size() - position });
        std::memcpy(buffer, bytes.data() + position, count);
        position += count;
        return static_cast<std::int32_t>(count);
    }

private:
    std::string bytes;
    std::size_t largestRead;
    std::size_t position = 0;
};

class TextSink final : public MByteSink
{
public:
    void WriteBytes(const void* data, std::int32_t size) override
    {
        bytes.append(static_cast<const char*>(data), static_cast<std::size_t>(size));
    }
    std::string bytes;
};

std::string BytesOf(const MDataBlock& block)
{
    return { reinterpret_cast<const char*>(block.Data()), static_cast<std::size_t>(block.Size()) };
}

TEST(MEncoding, FindsCodecsByEveryNameWithoutCase)
{
    std::vector<std::pair<std::string, std::string>> names = { { "", "ascii" },
                                                               { "us-ascii", "ascii" },
                                                               { "ASCII", "ascii" },
                                                               { "Utf8", "utf8" },
                                                               { "UTF-8", "utf8" },
                                                               { "utf16", "utf16" },
                                                               { "utf-16", "utf16" },
                                                               { "KOI8-RU", "KOI8-U" },
                                                               { "latin2", "ISO-8859-2" },
                                                               { "iso-ir-101", "ISO-8859-2" },
                                                               { "ISO-8859-1", "windows-1252" } };
    for (const CodePage& page : CodePages)
        for (const char* name : page.names)
            if (name != nullptr)
                names.emplace_back(name, page.names[0]);
    for (auto [name, codec] : names)
        for (const auto change : std::initializer_list<int (*)(int)>{ std::tolower, std::toupper })
        {
            std::transform(name.begin(), name.end(), name.begin(), change);
            EXPECT_EQ(MEncoding::Find(MString::Copy(name)).GetName().ToUTF8(), codec) << name;
        }
    EXPECT_EQ(ErrorOf([] { MEncoding::Find("ebcdic"); }), "No codec found for encoding ebcdic.");
}

// The C library has tables of its own for most code pages. Where they differ, they leave characters out.
TEST(MEncoding, AgreesWithTheSystemsConverter)
{
    int compared = 0;
    for (const CodePage& page : CodePages)
    {
        SCOPED_TRACE(page.names[0]);
        iconv_t converter = iconv_open("UTF-8", page.names[0]);
        if (converter == reinterpret_cast<iconv_t>(-1))
            continue;
        const MEncoding::Codec& codec = MEncoding::Find(MString::Literal(page.names[0]));
        for (int byte = 1; byte < 256; ++byte)
        {
            char input = static_cast<char>(byte);
            char output[8] = {};
            char* from = &input;
            char* to = output;
            std::size_t fromSize = 1;
            std::size_t toSize = sizeof output;
            iconv(converter, nullptr, nullptr, nullptr, nullptr);
            // Letters that may combine with a following mark come out with the flush.
            const bool isDefined = iconv(converter, &from, &fromSize, &to, &toSize) == 0 &&
                                   iconv(converter, nullptr, nullptr, &to, &toSize) == 0;
            const MString decoded = codec.Decode(std::string_view(&input, 1));
            if (!isDefined || decoded[0] == CodePage::Undefined ||
                (byte >= 0x80 && byte < 0xA0 && output[0] == '\xC2'))
                continue;
            EXPECT_EQ(decoded.ToUTF8(), output) << byte;
            EXPECT_EQ(BytesOf(codec.Encode(decoded, false)), std::string(1, input)) << byte;
            ++compared;
        }
        iconv_close(converter);
    }
    EXPECT_GT(compared, 20 * 220);
}

TEST(MEncoding, WritesAndReadsEachFormOfText)
{
    const MString text(u"a\u00E9\u20AC");
    EXPECT_EQ(BytesOf(MEncoding::Find("").Encode(text, false)), "a\xE9\xAC");
    EXPECT_EQ(BytesOf(MEncoding::Find("utf8").Encode(text, true)), std::string("a\xC3\xA9\xE2\x82\xAC\0", 7));
    EXPECT_EQ(BytesOf(MEncoding::Find("CP1252").Encode(text, true)), std::string("a\xE9\x80\0", 4));
    EXPECT_EQ(BytesOf(MEncoding::Find("CP866").Encode(text, false)), "a??");
    EXPECT_EQ(BytesOf(MEncoding::Find("utf16").Encode(text, true)), std::string("a\0\xE9\0\xAC\x20\0\0", 8));
    EXPECT_EQ(MEncoding::Find("utf16").Decode(std::string_view("a\0\xE9\0\xAC\x20", 6)), text);
    EXPECT_EQ(MEncoding::Find("utf16").Decode(std::string_view("\xFE\xFF\0a\0\xE9\x20\xAC", 8)), text);
    EXPECT_EQ(MEncoding::Find("utf16").Decode(std::string_view("\xFF\xFE"
                                                               "a\0\xE9",
                                                               5)),
              MString("a"));
}

TEST(MEncoding, ReadsLines)
{
    const struct
    {
        const char* encoding;
        std::string bytes;
    } cases[] = { { "utf8", std::string("ab\r\ncd\n\n\xC3\xA9\0x", 13) },
                  { "cp1252", std::string("ab\r\ncd\n\n\xE9\0x", 12) },
                  { "utf16", std::string("a\0b\0\r\0\n\0c\0d\0\n\0\n\0\xE9\0\0\0x\0", 22) } };
    for (const auto& [encoding, bytes] : cases)
        for (const std::size_t step : { 1u, 2u, 3u, 100u })
        {
            SCOPED_TRACE(encoding);
            TextSource source(bytes, step);
            MByteReader reader(source);
            const MEncoding::Codec& codec = MEncoding::Find(encoding);
            for (const char16_t* expected : { u"ab", u"cd", u"", u"\u00E9", u"x" })
            {
                MString line;
                EXPECT_TRUE(codec.ReadLine(reader, line));
                EXPECT_EQ(line, MString(expected));
            }
            MString line = "old";
            EXPECT_FALSE(codec.ReadLine(reader, line));
            EXPECT_TRUE(line.IsEmpty());
            EXPECT_THROW(reader.Next(), MException);
        }
}

TEST(MEncoding, PutsAByteOrderMarkBeforeUTF16Only)
{
    for (const char* encoding : { "ascii", "utf8", "utf16", "cp1250" })
    {
        SCOPED_TRACE(encoding);
        const MEncoding::Codec& codec = MEncoding::Find(encoding);
        TextSink sink;
        codec.WriteBOM(sink);
        EXPECT_EQ(sink.bytes, encoding == std::string("utf16") ? "\xFF\xFE" : "");
        codec.WriteLine(sink, "x");
        TextSource source(sink.bytes, 100);
        MByteReader reader(source);
        codec.ReadBOM(reader);
        EXPECT_EQ(reader.Next(), 'x');
    }
}

TEST(MDataBlock, CopiesBeforeItWrites)
{
    const char foreign[] = "foreign";
    MDataBlock first = MDataBlock::Borrow(foreign, 7);
    EXPECT_TRUE(first.IsBorrowed());
    EXPECT_EQ(first.WritableData(), nullptr);
    first.MakeUnique(9);
    EXPECT_FALSE(first.IsBorrowed());
    first.WritableData()[0] = 'F';
    EXPECT_EQ(BytesOf(first).substr(0, 7), "Foreign");
    EXPECT_STREQ(foreign, "foreign");

    MDataBlock second = first;
    EXPECT_FALSE(first.IsUnique());
    EXPECT_EQ(second.WritableData(), nullptr);
    second.MakeUnique(3);
    second.WritableData()[0] = 'f';
    EXPECT_EQ(BytesOf(second), "for");
    second.MakeUnique(2);
    EXPECT_EQ(BytesOf(second), "fo");
    EXPECT_EQ(BytesOf(first).substr(0, 7), "Foreign");
    EXPECT_TRUE(first.IsUnique());
    second = std::move(first);
    EXPECT_TRUE(second.IsUnique());
    EXPECT_EQ(first.Size(), 0);
    EXPECT_EQ(first.Data(), nullptr);
    EXPECT_FALSE(first.IsUnique());
    for (const auto& [bytes, size] : { std::pair<const char*, int>{ nullptr, 5 }, { foreign, -1 } })
        EXPECT_EQ(MDataBlock::Borrow(bytes, size).Size(), 0);
    EXPECT_EQ(CodedErrorOf([] { MDataBlock(-1); }), "2 A data block cannot have a negative size.");
}

TEST(MCharFilter, AllowsItsCharacters)
{
    const std::string digits = "0123456789";
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const LettersFilter lettersFilter;
    const AlphaStrictFilter strict;
    const AlphaFilter alpha;
    const IntegerFilter integer;
    const IntegerHexaFilter hexa;
    const FloatFilter floating;
    const AllFilter all;
    const struct
    {
        const MCharFilter& filter;
        std::string allowed;
        int mask;
    } cases[] = { { lettersFilter, letters, 1 },          { strict, letters + digits, 3 },
                  { alpha, letters + digits + "-. ", 7 }, { integer, digits + "-", 2 },
                  { hexa, digits + "abcdefABCDEF", 10 },  { floating, digits + "-.", 6 } };
    for (const auto& [filter, allowed, mask] : cases)
    {
        EXPECT_EQ(filter.GetMask(), mask);
        for (char16_t character = 1; character < 512; ++character)
        {
            const bool isExpected =
                character < 128 && allowed.find(static_cast<char>(character)) != std::string::npos;
            EXPECT_EQ(filter.IsAllowed(character), isExpected) << mask << " " << int{ character };
        }
    }
    EXPECT_EQ(all.GetMask(), 23);
    EXPECT_TRUE(all.IsAllowed(0x4E00));
}
}   // namespace
