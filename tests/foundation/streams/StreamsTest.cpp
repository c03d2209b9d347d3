// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zlib.h>

#include "foundation/streams/MHexaStream.h"
#include "foundation/streams/MMD5Stream.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MZLibStream.h"
#include "foundation/streams/StreamAdapters.h"
#include "foundation/text/MEncoding.h"
#include "foundation/text/MException.h"

namespace
{
struct Failure
{
    std::string message;
    int code = -1;
    bool operator==(const Failure&) const = default;
};

std::ostream& operator<<(std::ostream& output, const Failure& failure)
{
    return output << failure.code << " " << failure.message;
}

Failure FailureOf(auto&& operation)
{
    try
    {
        operation();
    }
    catch (const MException& error)
    {
        return { error.Message.ToUTF8(), error.Code };
    }
    return {};
}

MMemoryStream Holding(const std::string& bytes)
{
    return MMemoryStream(MDataBlock(bytes.data(), static_cast<std::int32_t>(bytes.size())));
}

std::string ContentOf(const MMemoryStream& stream)
{
    const MDataBlock& block = stream.Block();
    return { reinterpret_cast<const char*>(block.Data()), static_cast<std::size_t>(block.Size()) };
}

// Reads and nothing else, at most `step` bytes at a time: what a socket is like.
class PlainSource : public MStream
{
public:
    PlainSource(std::string source, std::int32_t step) : bytes(std::move(source)), largestRead(step) {}
    std::int32_t Read(void* buffer, std::int32_t size) override
    {
        const auto left = static_cast<std::int32_t>(bytes.size()) - position;
        const std::int32_t count = std::min({ size, largestRead, left });
        std::memcpy(buffer, bytes.data() + position, static_cast<std::size_t>(count));
        position += count;
        return count;
    }
    std::int64_t GetPosition() override { return position; }

private:
    std::string bytes;
    std::int32_t largestRead;
    std::int32_t position = 0;
};

std::string RandomBytes(std::size_t count)
{
    std::mt19937 random(99);   // fixed, so that a failure comes again
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random() & (count % 2 == 0 ? 0xFF : 0x03));
    return bytes;
}

TEST(MStream, ThrowsForEveryServiceThatAClassDoesNotOffer)
{
    MStream stream;
    const auto missing = [](const char* service)
    {
        return Failure{ "Service \"" + std::string(service) + "\" is not implemented.", 0 };
    };
    char buffer[4];
    EXPECT_EQ(FailureOf([&] { stream.GetSubStream(); }), missing("return substream"));
    EXPECT_EQ(FailureOf([&] { stream.Write("x", 1); }), missing("write to stream"));
    EXPECT_EQ(FailureOf([&] { stream.WriteBlank(3); }), missing("write to stream"));
    EXPECT_EQ(FailureOf([&] { stream.Read(buffer, 1); }), missing("read from stream"));
    EXPECT_EQ(FailureOf([&] { stream.GetPosition(); }), missing("get stream position"));
    EXPECT_EQ(FailureOf([&] { stream.Flush(); }), missing("flush stream"));
    EXPECT_EQ(FailureOf([&] { stream.IsEnd(); }), missing("end of stream test"));
    EXPECT_EQ(FailureOf([&] { stream.Truncate(); }), missing("truncate stream"));
    EXPECT_EQ(FailureOf([&] { stream.GetSize(); }), missing("stream size detection"));
    EXPECT_EQ(FailureOf([&] { stream.Seek(-1, MStream::Current); }), missing("backward seek in a stream"));
    EXPECT_TRUE(stream.IsOpen());
}

TEST(MStream, ReadsLines)
{
    using Line = MStream::Line;
    struct Expected
    {
        Line state;
        std::string text;
    };
    const struct
    {
        std::string bytes;
        std::int32_t bufferSize;
        std::vector<Expected> lines;
    } cases[] = {
        { "ab\r\ncd", 256, { { Line::Read, "ab" }, { Line::Read, "cd" }, { Line::NoData, "" } } },
        { "abcd\n", 3, { { Line::BufferFull, "ab" }, { Line::BufferFull, "cd" }, { Line::Read, "" } } },
        { std::string("a\0b", 3), 9, { { Line::Read, "a" }, { Line::Read, "b" }, { Line::NoData, "" } } },
        { "\n\r\n\r",
          9,
          { { Line::Read, "" }, { Line::Read, "" }, { Line::Read, "" }, { Line::NoData, "" } } },
        { "x", 1, { { Line::BufferFull, "" } } },
    };
    for (const auto& [bytes, bufferSize, lines] : cases)
    {
        PlainSource generic(bytes, 1);
        MMemoryStream memory = Holding(bytes);
        for (MStream* stream : { static_cast<MStream*>(&generic), static_cast<MStream*>(&memory) })
            for (const auto& [state, text] : lines)
            {
                char buffer[256] = "?";
                EXPECT_EQ(stream->ReadLine(buffer, bufferSize), state) << bytes;
                EXPECT_EQ(buffer, text) << bytes;
            }
    }
}

TEST(MStream, ReadsLinesOfAnyLengthAndEncodesThem)
{
    const std::string longLine(1000, 'x');
    // The accent lies across the end of a piece of 255 bytes.
    const std::string accent = std::string(254, 'y') + "\xC3\xA9";
    MMemoryStream stream;
    stream.WriteTextLine(MString::FromUTF8(longLine));
    stream.WriteTextLine(MString::FromUTF8(accent));
    stream.WriteTextLine("");
    stream.WriteText("end");
    stream.Seek(0, MStream::Begin);
    for (const std::string& expected : { longLine, accent, std::string(), std::string("end") })
        EXPECT_EQ(ReadLineOrFail(stream).ToUTF8(), expected);
    EXPECT_EQ(FailureOf([&] { ReadLineOrFail(stream); }),
              (Failure{ "Could not load a line from stream.", 256 }));
    EXPECT_EQ(FailureOf([&] { ReadExact(stream, nullptr, 1); }),
              (Failure{ "Could not read required data from stream.", 256 }));
}

TEST(MStream, SeeksForwardByReading)
{
    PlainSource source(std::string(3000, 'a') + "bc", 7);
    source.Seek(3000, MStream::Begin);
    char character = 0;
    source.Read(&character, 1);
    EXPECT_EQ(character, 'b');
    source.Seek(0, MStream::Current);
    EXPECT_EQ(source.GetPosition(), 3001);
    EXPECT_EQ(FailureOf([&] { source.Seek(0, 3); }), (Failure{ "Invalid seek origin.", 2 }));
    EXPECT_EQ(FailureOf([&] { source.Seek(3000, MStream::Begin); }),
              (Failure{ "Service \"backward seek in a stream\" is not implemented.", 0 }));
    source.Seek(100, MStream::Current);
    EXPECT_EQ(source.GetPosition(), 3002);
}

TEST(MMemoryStream, SeeksReadsAndWritesLikeAByteVector)
{
    constexpr unsigned Seed = 31;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    const auto pick = [&random](int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    MMemoryStream stream;
    std::string expected;
    std::size_t position = 0;
    for (int round = 0; round < 5000; ++round)
    {
        const auto size = static_cast<std::size_t>(pick(0, 20));
        if (pick(0, 2) == 0)
        {
            const std::string bytes(size, static_cast<char>('a' + pick(0, 25)));
            stream.Write(bytes.data(), static_cast<std::int32_t>(size));
            expected.resize(std::max(expected.size(), position + size));
            expected.replace(position, size, bytes);
            position += size;
        }
        else if (pick(0, 1) == 0)
        {
            std::string bytes(size, '\0');
            const auto got =
                static_cast<std::size_t>(stream.Read(bytes.data(), static_cast<std::int32_t>(size)));
            ASSERT_EQ(bytes.substr(0, got), expected.substr(position, size));
            position += got;
        }
        else
        {
            const int origin = pick(0, 2);
            const int offset = pick(-500, 500);
            const auto length = static_cast<std::int64_t>(expected.size());
            const std::int64_t bases[] = { 0, static_cast<std::int64_t>(position), length };
            stream.Seek(offset, origin);
            position = static_cast<std::size_t>(std::clamp<std::int64_t>(bases[origin] + offset, 0, length));
        }
        ASSERT_EQ(stream.GetPosition(), static_cast<std::int64_t>(position));
        ASSERT_EQ(stream.IsEnd(), position == expected.size());
        ASSERT_TRUE(round % 50 != 0 || ContentOf(stream) == expected);
    }
    EXPECT_EQ(FailureOf([&] { stream.Seek(0, 3); }), (Failure{ "Invalid seek origin.", 2 }));
    stream.Seek(std::numeric_limits<std::int64_t>::max(), MStream::Current);
    EXPECT_TRUE(stream.IsEnd());
}

TEST(MMemoryStream, CopiesASharedOrBorrowedBlockBeforeWriting)
{
    MMemoryStream first = Holding("content");
    MMemoryStream second = first;
    second.Write("C", 1);
    EXPECT_EQ(ContentOf(first), "content");
    EXPECT_EQ(ContentOf(second), "Content");

    char foreign[] = "foreign";
    MMemoryStream borrowed = MMemoryStream::Borrow(foreign, 7);
    EXPECT_EQ(borrowed.GetCurrentPointer(), reinterpret_cast<const std::uint8_t*>(foreign));
    borrowed.Write("F", 1);
    EXPECT_STREQ(foreign, "foreign");
    EXPECT_EQ(ContentOf(borrowed), "Foreign");
    borrowed.Seek(0, MStream::End);
    borrowed.Write(borrowed.Block().Data(), 7);   // from itself, while it moves
    EXPECT_EQ(ContentOf(borrowed), "ForeignForeign");
}

TEST(MHexaStream, WritesUpperCaseAndReadsEither)
{
    MMemoryStream target;
    MHexaStream(target).Write("\x0A\xFF", 2);
    EXPECT_EQ(ContentOf(target), "0AFF");

    const std::string bytes = RandomBytes(1000);
    MMemoryStream digits;
    MHexaStream writer(digits);
    writer.Write(bytes.data(), 1000);
    EXPECT_EQ(writer.GetPosition(), 1000);
    EXPECT_EQ(writer.GetSize(), 1000);
    std::string lower = ContentOf(digits);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' ? static_cast<char>(c + 32) : c; });
    for (const std::string& text : { ContentOf(digits), lower })
    {
        MMemoryStream source = Holding(text);
        MHexaStream reader(source);
        std::string back(1200, '\0');
        EXPECT_EQ(reader.Read(back.data(), 1200), 1000);
        EXPECT_EQ(back.substr(0, 1000), bytes);
    }
    MMemoryStream all = Holding("\x0A\xFF");
    all.Seek(0, MStream::End);
    EXPECT_EQ(ReadAllAsHex(all, true).ToUTF8(), "0AFF");
    EXPECT_EQ(ReadAllAsHex(all, true).ToUTF8(), "0AFF");
}

TEST(MHexaStream, RefusesWhatIsNoDigit)
{
    const Failure invalid = { "Invalid character to be converted to a number.", 0 };
    for (const char* text : { "0G", "0 ", "123", "1", "/0", ":0", "@0", "`0" })
    {
        MMemoryStream source = Holding(text);
        char buffer[8];
        EXPECT_EQ(FailureOf([&] { MHexaStream(source).Read(buffer, 8); }), invalid) << text;
    }
}

TEST(MHexaStream, SeeksForwardInASourceThatOnlyReads)
{
    PlainSource source("00112233", 8);
    MHexaStream stream(source);
    stream.Seek(4, MStream::Begin);
    std::uint8_t byte = 0;
    stream.Read(&byte, 1);
    EXPECT_EQ(byte, 0x22);
    EXPECT_EQ(FailureOf([&] { stream.Seek(0, MStream::Begin); }).message,
              "Service \"backward seek in a stream\" is not implemented.");
}

std::string Compressed(const std::string& bytes, int quality)
{
    MMemoryStream target;
    MZLibStream stream(&target, MZLibStream::Direction::Compress, quality);
    stream.Write(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    EXPECT_EQ(stream.GetPosition(), static_cast<std::int64_t>(bytes.size()));
    stream.Finish();
    stream.Close();
    return ContentOf(target);
}

std::string Inflated(MStream& source, std::int32_t step)
{
    MZLibStream stream(&source, MZLibStream::Direction::Inflate);
    std::string bytes;
    std::string piece(static_cast<std::size_t>(step), '\0');
    while (const std::int32_t got = stream.Read(piece.data(), step))
        bytes.append(piece, 0, static_cast<std::size_t>(got));
    EXPECT_EQ(stream.GetPosition(), static_cast<std::int64_t>(bytes.size()));
    return bytes;
}

TEST(MZLibStream, InflatesWhatItCompressed)
{
    for (const std::size_t size : { 0u, 1u, 4095u, 4096u, 100000u, 100001u })
        for (const int quality : { 1, 50, 100 })
        {
            SCOPED_TRACE(testing::Message() << size << " bytes, quality " << quality);
            const std::string bytes = RandomBytes(size);
            const std::string compressed = Compressed(bytes, quality);
            EXPECT_EQ(static_cast<unsigned char>(compressed[0]), 0x78);   // RFC 1950: deflate, 32 KiB window
            PlainSource source(compressed, 11);
            EXPECT_EQ(Inflated(source, 1000), bytes);

            uLongf size2 = static_cast<uLongf>(size) + 1;   // one more than the library may fill
            std::string direct(size + 1, '\0');
            EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(direct.data()), &size2,
                                 reinterpret_cast<const Bytef*>(compressed.data()),
                                 static_cast<uLong>(compressed.size())),
                      Z_OK);
            EXPECT_EQ(direct.substr(0, size2), bytes);
        }
    // The level of quality 100 is 9, which the header tells as "maximum compression".
    EXPECT_EQ(static_cast<unsigned char>(Compressed("x", 100)[1]), 0xDA);
}

TEST(MZLibStream, RefusesBadData)
{
    std::string good = Compressed(RandomBytes(50001), 100);
    std::string damaged = good;
    damaged[damaged.size() / 2] ^= 0x55;
    std::string badSum = good;
    badSum.back() ^= 1;
    const struct
    {
        std::string bytes;
        int code;
    } cases[] = { { "no zlib data at all", 256 },
                  { damaged, 256 },
                  { badSum, 256 },
                  { good.substr(0, good.size() - 5), 0 },
                  { "", 0 } };
    for (const auto& [bytes, code] : cases)
    {
        MMemoryStream source = Holding(bytes);
        EXPECT_EQ(FailureOf([&] { Inflated(source, 1000); }),
                  (Failure{ "Source compressed stream has invalid content.", code }));
    }
}

TEST(MZLibStream, StopsAtItsReadLimit)
{
    MMemoryStream source = Holding(Compressed(std::string(1000000, 'x'), 100));
    MZLibStream stream(&source, MZLibStream::Direction::Inflate);
    stream.SetReadLimit(10000);
    char piece[1000];
    EXPECT_EQ(FailureOf(
                  [&]
                  {
                      while (stream.Read(piece, 1000) > 0)
                      {
                      }
                  }),
              (Failure{ "Source compressed stream has invalid content.", 256 }));
    EXPECT_EQ(stream.GetPosition(), 11000);
}

TEST(MZLibStream, InsistsOnItsEndAndIdlesWithoutATarget)
{
    MMemoryStream target;
    MZLibStream stream(&target, MZLibStream::Direction::Compress);
    EXPECT_EQ(FailureOf([&] { stream.Close(); }), (Failure{ "ZLIB stream has not been terminated.", 0 }));
    stream.Finish();
    stream.Close();
    MZLibStream idle(nullptr, MZLibStream::Direction::Inflate);
    EXPECT_FALSE(idle.IsOpen());
    EXPECT_EQ(FailureOf([&] { idle.Write("x", 1); }).code, 258);
    idle.Close();
}

TEST(MMD5Stream, AgreesWithTheTestSuiteOfTheStandard)
{
    const struct
    {
        std::string text;
        const char* digest;
    } cases[] = { // RFC 1321, A.5
                  { "", "D41D8CD98F00B204E9800998ECF8427E" },
                  { "a", "0CC175B9C0F1B6A831C399E269772661" },
                  { "abc", "900150983CD24FB0D6963F7D28E17F72" },
                  { "message digest", "F96B697D7CB7938D525A2F31AAF161D0" },
                  { "abcdefghijklmnopqrstuvwxyz", "C3FCD3D76192E4007DFB496CCA67E13B" },
                  { "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
                    "D174AB98D277D9F5A5611C2C9F419D9F" },
                  { "12345678901234567890123456789012345678901234567890123456789012345678901234567890",
                    "57EDF4A22BE3C955AC49DA2E2107B67A" }
    };
    for (const auto& [text, digest] : cases)
    {
        MMD5Stream stream;
        stream.Initialize();
        for (const char& character : text)
            stream.Write(&character, 1);
        stream.Finish();
        MMemoryStream hash = MMemoryStream::Borrow(stream.GetHash(), stream.GetHashSize());
        EXPECT_EQ(ReadAllAsHex(hash, true).ToUTF8(), digest);
    }
    MMD5Stream raw;
    EXPECT_EQ(FailureOf([&] { raw.Write("x", 1); }),
              (Failure{ "Cryptographic hash stream has not been initialized.", 0 }));
}

TEST(StreamAdapters, LetCodecsWorkOnStreams)
{
    MMemoryStream stream;
    MStreamSink sink(stream);
    const MEncoding::Codec& codec = MEncoding::Find("utf-16");
    codec.WriteBOM(sink);
    codec.WriteLine(sink, MString(u"\u00E9"));
    EXPECT_EQ(ContentOf(stream), std::string("\xFF\xFE\xE9\0\n\0", 6));
    stream.Seek(0, MStream::Begin);
    MStreamSource source(stream);
    MByteReader reader(source);
    MString line;
    codec.ReadBOM(reader);
    EXPECT_TRUE(codec.ReadLine(reader, line));
    EXPECT_EQ(line, MString(u"\u00E9"));
}
}   // namespace
