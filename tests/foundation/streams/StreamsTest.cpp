// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>
#include <zlib.h>

#include "foundation/streams/MConsoleStream.h"
#include "foundation/streams/MHexaStream.h"
#include "foundation/streams/MMD5Stream.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MZLibStream.h"
#include "foundation/streams/StreamAdapters.h"
#include "foundation/text/MEncoding.h"
#include "tests/ErrorOf.h"

namespace
{
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
    char buffer[4];
    const std::pair<const char*, std::function<void()>> services[] = {
        { "return substream",
          [&]
          {
              stream.GetSubStream();
          } },
        { "write to stream",
          [&]
          {
              stream.Write("x", 1);
          } },
        { "write to stream",
          [&]
          {
              stream.WriteBlank(1);
          } },
        { "read from stream",
          [&]
          {
              stream.Read(buffer, 1);
          } },
        { "get stream position",
          [&]
          {
              stream.GetPosition();
          } },
        { "flush stream",
          [&]
          {
              stream.Flush();
          } },
        { "end of stream test",
          [&]
          {
              stream.IsEnd();
          } },
        { "truncate stream",
          [&]
          {
              stream.Truncate();
          } },
        { "stream size detection",
          [&]
          {
              stream.GetSize();
          } },
        { "backward seek in a stream",
          [&]
          {
              stream.Seek(-1, MStream::Current);
          } },
    };
    for (const auto& [service, call] : services)
        EXPECT_EQ(CodedErrorOf(call), "0 Service \"" + std::string(service) + "\" is not implemented.");
    EXPECT_TRUE(stream.IsOpen());
    stream.WriteBlank(0);
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
    EXPECT_EQ(CodedErrorOf([&] { ReadLineOrFail(stream); }), "256 Could not load a line from stream.");
    EXPECT_EQ(CodedErrorOf([&] { ReadExact(stream, nullptr, 1); }),
              "256 Could not read required data from stream.");
    for (const int count : { 1, 1024, 1025 })
    {
        MMemoryStream blank;
        blank.WriteBlank(count);
        EXPECT_EQ(ContentOf(blank), std::string(static_cast<std::size_t>(count), '\0'));
    }
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
    EXPECT_EQ(CodedErrorOf([&] { source.Seek(0, 3); }), "2 Invalid seek origin.");
    const char noWayBack[] = "Service \"backward seek in a stream\" is not implemented.";
    EXPECT_EQ(ErrorOf([&] { source.Seek(3000, MStream::Begin); }), noWayBack);
    source.Seek(100, MStream::Current);
    EXPECT_EQ(source.GetPosition(), 3002);
    PlainSource digits("00112233", 8);
    MHexaStream hexa(digits);
    hexa.Seek(4, MStream::Begin);
    hexa.Read(&character, 1);
    EXPECT_EQ(character, 0x22);
    EXPECT_EQ(ErrorOf([&] { hexa.Seek(0, MStream::Begin); }), noWayBack);
}

TEST(MMemoryStream, SeeksReadsAndWritesLikeAByteVector)
{
    std::mt19937 random(31);
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
    EXPECT_EQ(CodedErrorOf([&] { stream.Seek(0, 3); }), "2 Invalid seek origin.");
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
    const std::string bytes = RandomBytes(1000);
    MMemoryStream digits;
    MHexaStream writer(digits);
    writer.Write(bytes.data(), 1000);
    EXPECT_EQ(writer.GetPosition(), 1000);
    EXPECT_EQ(writer.GetSize(), 1000);
    std::string upper;
    for (const char byte : bytes)
    {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02X", static_cast<unsigned char>(byte));
        upper += pair;
    }
    EXPECT_EQ(ContentOf(digits), upper);
    std::string lower = upper;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return std::tolower(c); });
    for (const std::string& text : { upper, lower })
    {
        MMemoryStream source = Holding(text);
        std::string back(1200, '\0');
        EXPECT_EQ(MHexaStream(source).Read(back.data(), 1200), 1000);
        EXPECT_EQ(back.substr(0, 1000), bytes);
    }
    MMemoryStream all = Holding(bytes);
    all.Seek(1, MStream::Begin);
    EXPECT_EQ(ReadAllAsHex(all, false).ToUTF8(), upper.substr(2));
    EXPECT_EQ(ReadAllAsHex(all, true).ToUTF8(), upper);
    for (const char* text : { "0G", "0 ", "123", "1", "/0", ":0", "@0", "`0", "0\xFF" })
    {
        MMemoryStream source = Holding(text);
        char buffer[8];
        EXPECT_EQ(CodedErrorOf([&] { MHexaStream(source).Read(buffer, 8); }),
                  "0 Invalid character to be converted to a number.")
            << text;
    }
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

TEST(MZLibStream, RefusesBadDataAndMoreThanItsLimit)
{
    const std::string good = Compressed(RandomBytes(50001), 100);
    std::string damaged = good;
    damaged[damaged.size() / 2] ^= 0x55;
    std::string badSum = good;
    badSum.back() ^= 1;
    for (const auto& [bytes, code] : { std::pair<std::string, std::string>("no zlib data at all", "256"),
                                       { damaged, "256" },
                                       { badSum, "256" },
                                       { good.substr(0, good.size() - 5), "0" },
                                       { "", "0" } })
    {
        MMemoryStream source = Holding(bytes);
        EXPECT_EQ(CodedErrorOf([&] { Inflated(source, 1000); }),
                  code + " Source compressed stream has invalid content.");
    }
    for (const int limit : { 10000, 10999 })
    {
        MMemoryStream source = Holding(Compressed(std::string(1000000, 'x'), 100));
        MZLibStream stream(&source, MZLibStream::Direction::Inflate);
        stream.SetReadLimit(limit);
        char piece[1000];
        EXPECT_EQ(CodedErrorOf(
                      [&]
                      {
                          while (stream.Read(piece, 1000) > 0)
                          {
                          }
                      }),
                  "256 Source compressed stream has invalid content.");
        EXPECT_EQ(stream.GetPosition(), 11000);
    }
}

TEST(MZLibStream, InsistsOnItsEndAndIdlesWithoutATarget)
{
    MMemoryStream target;
    MZLibStream stream(&target, MZLibStream::Direction::Compress);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_EQ(stream.GetSubStream(), &target);
    EXPECT_EQ(CodedErrorOf([&] { stream.Close(); }), "0 ZLIB stream has not been terminated.");
    stream.Finish();
    stream.Close();
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_TRUE(stream.IsEnd());
    target.Seek(0, MStream::Begin);
    stream.Open(&target, MZLibStream::Direction::Inflate);
    EXPECT_FALSE(stream.IsEnd());
    char byte = 0;
    EXPECT_EQ(stream.Read(&byte, 1), 0);
    const char unusable[] = "258 Compressed stream is not initialized.";
    stream.Close();
    EXPECT_EQ(CodedErrorOf([&] { stream.Read(&byte, 1); }), unusable);
    EXPECT_EQ(CodedErrorOf([&] { stream.Write("x", 1); }), unusable);
    MZLibStream idle(nullptr, MZLibStream::Direction::Inflate);
    EXPECT_FALSE(idle.IsOpen());
    EXPECT_EQ(CodedErrorOf([&] { idle.Read(&byte, 1); }), unusable);
    idle.Flush();
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
    MMD5Stream stream;
    for (const auto& [text, digest] : cases)
    {
        stream.Initialize();
        for (const char& character : text)
            stream.Write(&character, 1);
        stream.Finish();
        MMemoryStream hash = MMemoryStream::Borrow(stream.GetHash(), stream.GetHashSize());
        EXPECT_EQ(ReadAllAsHex(hash, true).ToUTF8(), digest);
    }
    MMD5Stream raw;
    EXPECT_EQ(CodedErrorOf([&] { raw.Write("x", 1); }),
              "0 Cryptographic hash stream has not been initialized.");
}

// Its input and output are those of the process: here a pipe each, in a process of its own.
TEST(MConsoleStreamDeathTest, PassesCharactersThrough)
{
    const auto echo = []
    {
        int pipes[2];
        if (pipe(pipes) != 0 || write(pipes[1], "ab\xFF", 3) != 3 || dup2(pipes[0], STDIN_FILENO) < 0)
            _exit(1);
        close(pipes[1]);
        dup2(STDERR_FILENO, STDOUT_FILENO);
        MConsoleStream console;
        char buffer[8] = {};
        bool isRight = !console.IsEnd() && console.Read(buffer, 2) == 2 && !console.IsEnd();
        isRight = isRight && console.Read(buffer + 2, 5) == 1 && console.IsEnd();
        console.Write(buffer, 3);
        console.Flush();
        _exit(isRight ? 0 : 2);
    };
    EXPECT_EXIT(echo(), testing::ExitedWithCode(0), "ab\xFF");
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
