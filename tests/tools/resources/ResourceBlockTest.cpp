// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "foundation/module/MResourceTable.h"
#include "foundation/text/MException.h"
#include "tools/resources/ResourceBlock.h"

namespace
{
std::string Content(MResource& resource)
{
    std::string content;
    char buffer[64];
    while (const std::int32_t got = resource.Content().Read(buffer, sizeof buffer))
        content.append(buffer, static_cast<std::size_t>(got));
    return content;
}

TEST(MakeResources, ABlockGivesBackTheFiles)
{
    const std::filesystem::path folder = std::filesystem::path(std::getenv("TONALIGN_TEST_FOLDER")) / "files";
    std::filesystem::create_directories(folder / "deeper");
    const std::string zeros(5000, '\0');
    std::ofstream(folder / "a.bin", std::ios::binary) << zeros;
    std::ofstream(folder / "deeper/b.txt") << "plain";
    std::ofstream(folder / "empty") << "";
    constexpr const char* Lines = "# comment\n\nxresource style style.qrf\n"
                                  "resource a a.bin compressed   # packed\r\nresourceEq b deeper/b.txt\n"
                                  "resource & empty";
    const std::string block = MakeResourceBlock(ParseResourceLines(Lines, "list"), folder.string());
    EXPECT_LT(block.size(), 600u);
    // The program makes the same of a file, and source that spells it out.
    std::ofstream(folder / "list.txt") << Lines;
    const std::string program =
        std::string(std::getenv("TONALIGN_BINARY_DIR")) + "/tools/resources/make_resources";
    const auto made = [&](const std::string& output)
    {
        const std::string command =
            "'" + program + "' '" + (folder / "list.txt").string() + "' '" + (folder / output).string() + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
        std::ifstream file(folder / output, std::ios::binary);
        return std::string{ std::istreambuf_iterator<char>(file), {} };
    };
    EXPECT_EQ(made("block.qrf"), block);
    const std::string source = made("block.cpp");
    std::string spelled;
    for (std::size_t place = 0; (place = source.find("0x", place)) != std::string::npos; place += 2)
        spelled += static_cast<char>(std::stoi(source.substr(place, 4), nullptr, 16));
    EXPECT_EQ(spelled, block);
    EXPECT_NE(source.find("Size = " + std::to_string(block.size()) + ";"), std::string::npos);
    // What the build made may stand in another folder.
    const auto lines = ParseResourceLines("resource b built/b.txt", "list");
    MResourceTable fromBuilt;
    const std::string built = MakeResourceBlock(lines, "/nowhere", (folder / "deeper").string());
    fromBuilt.Read(built.data(), static_cast<std::int32_t>(built.size()));
    EXPECT_EQ(Content(fromBuilt.Get("b")), "plain");
    EXPECT_EQ(WEXITSTATUS(std::system(("'" + program + "' 2>/dev/null").c_str())), 2);
    EXPECT_EQ(WEXITSTATUS(std::system(("'" + program + "' /nowhere x 2>/dev/null").c_str())), 1);
    MResourceTable table;
    table.Read(block.data(), static_cast<std::int32_t>(block.size()));
    EXPECT_EQ(table.ResourceCount(), 3);
    EXPECT_EQ(Content(table.Get("a")), zeros);
    EXPECT_EQ(Content(table.Get("b")), "plain");
    EXPECT_EQ(Content(table.Get("&")), "");
    EXPECT_EQ(table.RequireSubItem("resources").RequireSubItem("xresource").GetAttribute("filename").ToUTF8(),
              "style.qrf");
}

TEST(MakeResources, SaysWhatIsWrongInWhichLine)
{
    struct Row
    {
        const char* text;
        const char* message;
    };
    for (const Row& row : { Row{ "resource a", "list:1: expected KIND ID FILE [compressed]" },
                            Row{ "\nresource a b packed", "list:2: expected KIND ID FILE [compressed]" },
                            Row{ "image a b", "list:1: \"image\" is no kind of resource" },
                            Row{ "xresource a b compressed", "list:1: an xresource isn't compressed here" },
                            Row{ "resource a b\nresource a c", "list:2: the id \"a\" comes twice" } })
    {
        try
        {
            ParseResourceLines(row.text, "list");
            FAIL() << row.text;
        }
        catch (const MException& error)
        {
            EXPECT_EQ(error.Message.ToUTF8(), row.message);
        }
    }
    EXPECT_THROW(MakeResourceBlock(ParseResourceLines("resource a missing", "list"), "/nowhere"), MException);
}
}   // namespace
