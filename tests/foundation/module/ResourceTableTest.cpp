// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/module/MModule.h"
#include "tests/ErrorOf.h"

namespace
{
std::string Word(std::uint32_t value)
{
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

std::string Compressed(const std::string& content)
{
    MMemoryStream target;
    MZLibStream stream(&target, MZLibStream::Direction::Compress);
    stream.Write(content.data(), static_cast<std::int32_t>(content.size()));
    stream.Finish();
    return { reinterpret_cast<const char*>(target.Block().Data()),
             static_cast<std::size_t>(target.Block().Size()) };
}

std::string Block(const std::string& description, const std::string& data)
{
    return Word(0) + Word(static_cast<std::uint32_t>(description.size())) +
           Word(static_cast<std::uint32_t>(data.size())) + description + data;
}

std::string Entry(const std::string& element, const std::string& id, std::size_t offset, std::size_t size,
                  const std::string& more = {})
{
    return "<" + element + " id=\"" + id + "\" offset=\"" + std::to_string(offset) + "\" size=\"" +
           std::to_string(size) + "\" " + more + "/>";
}

std::string Solution(const std::string& entries)
{
    return "<?xml version=\"1.0\"?><solution><resources>" + entries + "</resources></solution>";
}

std::string ReadAll(MStream& stream)
{
    std::string content;
    char buffer[7];
    while (const std::int32_t got = stream.Read(buffer, sizeof buffer))
        content.append(buffer, static_cast<std::size_t>(got));
    return content;
}

void ReadBoth(const std::string& block, auto&& check)
{
    MResourceTable fromMemory;
    for (int round = 0; round < 2; ++round)   // the second replaces the first
        fromMemory.Read(block.data(), static_cast<std::int32_t>(block.size()));
    check(fromMemory);
    MResourceTable fromStream;
    MMemoryStream stream = MMemoryStream::Borrow(block.data(), static_cast<std::int32_t>(block.size()));
    fromStream.Read(stream);
    check(fromStream);
}

TEST(ResourceTable, GivesEachEntryItsBytesAgainAndAgain)
{
    const std::string packed = Compressed("a text that is compressed compressed compressed");
    const std::string data = "logo!" + packed + "EQ";
    const std::string block = Block(
        Solution("<!-- " + std::string(70000, 'x') + " --><xresource id=\"style\" filename=\"style.qrf\"/>" +
                 Entry("resource", "logo", 0, 5) +
                 Entry("resourceMultiBand", "packed", 5, packed.size(), "compressed=\"1\"") +
                 Entry("resourceEq", "Eq", data.size() - 2, 2) + Entry("resource", "logo", 1, 1)),
        data);
    ReadBoth(block,
             [](MResourceTable& table)
             {
                 EXPECT_EQ(table.ResourceCount(), 4);
                 EXPECT_EQ(table.Find("style"), nullptr);
                 EXPECT_EQ(ReadAll(table.ResourceAt(1).Content()),
                           "a text that is compressed compressed compressed");
                 for (int round = 0; round < 2; ++round)
                 {
                     EXPECT_EQ(ReadAll(table.Get("logo").Content()), "logo!");
                     EXPECT_EQ(ReadAll(table.Get("packed").Content()),
                               "a text that is compressed compressed compressed");
                     EXPECT_EQ(ReadAll(table.Get("Eq").PlainBytes()), "EQ");
                 }
             });
}

TEST(ResourceTable, SaysWhatItDoesNotHave)
{
    const std::string block = Block(Solution(Entry("resource", "logo", 0, 1, "compressed=\"1\"")), "x");
    MResourceTable table;
    table.Read(block.data(), static_cast<std::int32_t>(block.size()));
    EXPECT_EQ(ErrorOf([&] { table.Get("Logo"); }), "Cannot find requested resource (Logo).");
    EXPECT_EQ(ErrorOf([&] { table.Get("logo").PlainBytes(); }),
              "Attempt to attach compressed resource using memory-stream.");
}

TEST(ResourceTable, StaysEmptyWithoutAHeaderAndAfterABrokenBlock)
{
    const std::string whole = Block(Solution(Entry("resource", "logo", 0, 5)), "logo!");
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        SCOPED_TRACE(size);
        // Exactly as many bytes as there are: the sanitizer sees whoever reads on.
        const std::vector<char> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        MMemoryStream stream = MMemoryStream::Borrow(cut.data(), static_cast<std::int32_t>(size));
        MResourceTable table;
        const std::string errors[] = { ErrorOf([&]
                                               { table.Read(cut.data(), static_cast<std::int32_t>(size)); }),
                                       ErrorOf([&] { table.Read(stream); }) };
        EXPECT_TRUE(table.IsEmpty());
        for (const std::string& error : errors)
            EXPECT_EQ(error.empty(), size < 12);
    }
    const char size[] = "Invalid file contents. The resource block has an invalid size.";
    const char outside[] = "Invalid file contents. The resource \"a\" lies outside the data.";
    const char partial[] = "Could not read required data from stream.";
    const std::string largest = "9223372036854775807";
    for (const auto& [hostile, error] : {
             std::pair{ Word(0) + Word(64 << 20) + Word(0), partial },
             { Word(0) + Word((64 << 20) + 1) + Word(0), size },
             { Word(0) + Word(0xFFFFFFFF) + Word(1), size },
             { Word(0) + Word(4) + Word(0x7FFFFFFF) + "<a/>", size },
             { Word(0) + Word(4) + Word(5) + "<a/>1234", partial },
             { Block(Solution(Entry("resource", "a", 0, 6)), "logo!"), outside },
             { Block(Solution(Entry("resource", "a", 6, 0)), "logo!"), outside },
             { Block(Solution("<resource id=\"a\" offset=\"-1\" size=\"1\"/>"), "logo!"), outside },
             { Block(Solution("<resource id=\"a\" offset=\"1\" size=\"-1\"/>"), "logo!"), outside },
             { Block(Solution("<resource id=\"a\" offset=\"1\" size=\"" + largest + "\"/>"), "logo!"),
               outside },
         })
    {
        MResourceTable table;
        EXPECT_EQ(ErrorOf([&] { table.Read(hostile.data(), static_cast<std::int32_t>(hostile.size())); }),
                  error);
        EXPECT_TRUE(table.IsEmpty());
        EXPECT_EQ(table.DataSize(), 0);
    }
    for (const std::string& broken : { Block("", "data"), Block("<!-- nothing -->", "") })
    {
        MResourceTable table;
        EXPECT_THROW(table.Read(broken.data(), static_cast<std::int32_t>(broken.size())), MException);
    }
}

// The block is registered for good, so that a process of its own does it.
TEST(ResourceTableDeathTest, ComesWithTheModule)
{
    const auto start = []
    {
        const std::string block = Block(Solution(Entry("resource", "logo", 0, 5)), "logo!");
        MModule& module = StartModule();
        const bool wasEmpty = module.resources.IsEmpty();
        RegisterEmbeddedResources(block.data(), static_cast<std::int32_t>(block.size()));
        module.Initialize();
        _exit(wasEmpty && ReadAll(module.GetResource("logo").Content()) == "logo!" ? 0 : 1);
    };
    EXPECT_EXIT(start(), testing::ExitedWithCode(0), "");
}

// Started again in several ways, this very test tells what it finds.
TEST(ResourceTable, LiesBesideAProgramHoweverThatWasStarted)
{
    if (const char* told = std::getenv("TOLD"))
    {
        const MModule& module = StartModule();
        std::ofstream(told) << module.modulePath.ToUTF8() << " " << module.productName.ToUTF8() << " "
                            << module.resources.ResourceCount();
        return;
    }
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(std::getenv("TONALIGN_TEST_FOLDER")) / "started";
    const fs::path self = fs::read_symlink("/proc/self/exe");
    fs::create_directories(folder);
    fs::create_symlink(self, folder / "program");
    std::ofstream(folder / "program.qrf", std::ios::binary)
        << Block(Solution(Entry("resource", "logo", 0, 5)), "logo!");
    const std::string beside = (folder / "program").string() + " program 1";
    for (const auto& [start, told] :
         { std::pair<std::string, std::string>{ "./program", beside },
           { (folder / "program").string(), beside },
           // The name alone doesn't say where it was found.
           { "PATH=.:$PATH program", self.string() + " " + self.stem().string() + " 0" } })
    {
        const std::string command = "cd '" + folder.string() + "' && TOLD=told " + start +
                                    " --gtest_filter=*LiesBesideAProgram* >/dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0);
        std::string line;
        std::getline(std::ifstream(folder / "told"), line);
        EXPECT_EQ(line, told);
    }
}
}   // namespace
