// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdlib>
#include <filesystem>
#include <fstream>
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
    const std::string block = MakeResourceBlock(
        ParseResourceLines("# comment\n\nxresource style style.qrf\n"
                           "resource a a.bin compressed   # packed\r\nresourceEq b deeper/b.txt\n"
                           "resource & empty",
                           "list"),
        folder.string());
    EXPECT_LT(block.size(), 600u);
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
