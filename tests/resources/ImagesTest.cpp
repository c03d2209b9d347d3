// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/module/MModule.h"
#include "resources/RegisterResources.h"

namespace
{
// What the editors draw: each is there, is a TGA file of 32 bits a pixel of the right size, and shows
// something that isn't the whole rectangle.
TEST(EmbeddedResources, HoldTheImages)
{
    MModule& module = StartModuleWithResources();
    struct Row
    {
        std::string id;
        int width;
        int height;
        std::int64_t fileSize;
    };
    std::vector<Row> rows = { { "logo", 32, 32, 4140 } };
    for (const char* button : { "Mute", "Solo", "Bypass" })
        for (const char* state : { "0", "1" })
            rows.push_back({ std::string("MultiBand") + button + state, 11, 11, 528 });
    for (const char* type : { "bandpass", "highpass", "highshelf", "lowpass", "lowshelf", "highslope",
                              "lowslope", "notch", "allpass", "peak" })
        rows.push_back({ std::string("Eq") + type, 26, 16, 1682 });
    rows.push_back({ "Eqeqpoint", 19, 19, 1462 });
    for (int number = 1; number <= 10; ++number)
        rows.push_back({ "Eqeqpoint" + std::to_string(number), 19, 19, 1462 });

    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.id);
        MMemoryStream& file = module.GetResource(MString::FromUTF8(row.id)).PlainBytes();
        ASSERT_EQ(file.GetSize(), row.fileSize);
        const std::uint8_t* bytes = file.GetCurrentPointer();
        EXPECT_EQ(bytes[2], 2);   // true colour, not compressed
        EXPECT_EQ(bytes[12] + 256 * bytes[13], row.width);
        EXPECT_EQ(bytes[14] + 256 * bytes[15], row.height);
        EXPECT_EQ(bytes[16], 32);
        int visible = 0;
        for (int pixel = 0; pixel < row.width * row.height; ++pixel)
            visible += bytes[18 + 4 * pixel + 3] > 64;
        EXPECT_GT(visible, row.width);
        EXPECT_LT(visible, row.width * row.height);
    }
    EXPECT_EQ(module.resources.Find("qstyle"), nullptr);
    EXPECT_EQ(
        module.resources.RequireSubItem("resources").RequireSubItem("xresource").GetAttribute("id").ToUTF8(),
        "qstyle");
}
}   // namespace
