// SPDX-License-Identifier: GPL-3.0-or-later
// Which style is loaded, and what its definition and the user's settings make of it.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include <gtest/gtest.h>

#include "foundation/module/Configuration.h"
#include "foundation/module/MModule.h"
#include "foundation/streams/MFile.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/Boundary.h"
#include "gui/controls/MControl.h"
#include "gui/styles/StyleConfiguration.h"
#include "gui/styles/StyleFiles.h"
#include "state/tree/XML.h"
#include "tests/ErrorOf.h"
#include "tests/gui/styles/StyleOf.h"
#include "tools/stylebuilder/StyleImages.h"

namespace
{
namespace fs = std::filesystem;

fs::path EmptyFolder(const char* name)
{
    const fs::path folder = fs::path(std::getenv("TONALIGN_TEST_FOLDER")) / name;
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

// A style that can be told by one colour; with `isWhole` it has fonts.
std::string Block(const MString& textColor, bool isWhole = true, void (*change)(MAttribute&) = nullptr)
{
    MAttribute definition("style");
    definition.GetSubItem("colors").SetAttribute("text", textColor);
    if (isWhole)
    {
        MAttribute& font = definition.GetSubItem("fonts").AddSubItem("font");
        font.SetAttribute("id", "normal");
        font.SetAttribute("face", "Inter-Regular");
    }
    if (change != nullptr)
        change(definition);
    StyleImages images;
    MBitmap image(7, 9);
    image.Row(4)[3] = 0xFFFFFFFF;
    images.Add("some", { 200 }, image);
    return images.Block(definition);
}

void Write(const fs::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

std::unique_ptr<StyleDefinition> Definition(const std::string& block)
{
    MMemoryStream stream = MMemoryStream::Borrow(block.data(), static_cast<std::int32_t>(block.size()));
    return StyleDefinition::Read(stream);
}

MColor TextColorWith(const MString& name, const fs::path& folder)
{
    MAttribute configuration;
    configuration.SetAttribute("Style", name);
    configuration.SetAttribute("StylePath", MString::FromUTF8(folder.string()));
    MTexturedStyle style;
    style.Apply(configuration);
    return style.GetColor(MStdColor::Text);
}

std::string lastLine;
}   // namespace

TEST(StyleFiles, TheNamedOneThenDefaultThenAny)
{
    MModule& module = StartModuleWithResources();
    const fs::path folder = EmptyFolder("styles");
    const MColor lightText = TextColorWith("Default (light)", folder);
    const MColor darkText = TextColorWith("Default (dark)", folder);
    EXPECT_EQ(lightText, MColor(0x1A, 0x1D, 0x21));
    EXPECT_EQ(darkText, MColor(0xE9, 0xEB, 0xEE));
    EXPECT_EQ(TextColorWith("Missing", folder), lightText);

    Write(folder / "Zebra.qrf", Block("010203FF"));
    EXPECT_EQ(TextColorWith("Zebra", folder), MColor(1, 2, 3));
    EXPECT_EQ(TextColorWith("Missing", folder), MColor(1, 2, 3)) << "any file";
    EXPECT_EQ(TextColorWith("Default (dark)", folder), darkText) << "the module has that one";
    Write(folder / "Default.qrf", Block("040506FF"));
    EXPECT_EQ(TextColorWith("Missing", folder), MColor(4, 5, 6));
    EXPECT_EQ(TextColorWith("../styles/Zebra", folder), MColor(4, 5, 6)) << "a name is no path";
    Write(folder / "Default (dark).qrf", Block("070809FF"));
    EXPECT_EQ(TextColorWith("Default (dark)", folder), MColor(7, 8, 9)) << "a file goes before the module's";
    const MArray<MString> names = ListStyles(MString::FromUTF8(folder.string()));
    ASSERT_EQ(names.Count(), 4);
    EXPECT_EQ(names[0].ToUTF8() + "," + names[3].ToUTF8(), "Default,Zebra");

    // A module without any resources, as a broken installation is.
    MMemoryStream nothing;
    module.resources.Read(nothing);
    const fs::path empty = EmptyFolder("nothing");
    EXPECT_EQ(ErrorOf([&] { TextColorWith("Default (light)", empty); }),
              "No styles are available. Please reinstall the software.");
    Write(empty / "Part.qrf", Block("010203FF", false));
    EXPECT_EQ(ErrorOf([&] { TextColorWith("Part", empty); }), "No style definition has been found.");
    MLoadGlobalResources();
    EXPECT_EQ(TextColorWith("Default (light)", empty / "x"), lightText);
}

TEST(StyleFiles, APartTakesTheRestFromTheCommonDefinition)
{
    MModule& module = StartModuleWithResources();
    const fs::path common = fs::path(module.modulePath.ToUTF8()).parent_path() / "qstyle.qrf";
    Write(common, Block("0A0B0CFF", true,
                        [](MAttribute& definition)
                        {
                            definition.SetAttribute("deflayoutspace", "9");
                            definition.GetSubItem("bitmap").SetAttribute("picture", "some");
                        }));
    const fs::path folder = EmptyFolder("parts");
    Write(folder / "Part.qrf", Block("010203FF", false));
    MAttribute configuration;
    configuration.SetAttribute("Style", "Part");
    configuration.SetAttribute("StylePath", MString::FromUTF8(folder.string()));
    configuration.SetAttribute("ResizeX", "2");
    configuration.SetAttribute("ResizeY", "2.5");
    MTexturedStyle style;
    style.Apply(configuration);
    fs::remove(common);
    EXPECT_EQ(style.GetColor(MStdColor::Text), MColor(1, 2, 3));
    EXPECT_EQ(style.GetScale(), 2) << "what fits both ways";
    EXPECT_EQ(style.GetSpacing(0), 18);
    EXPECT_GT(style.GetFont(MStdFont::Value).Width("0"), 0) << "the normal one stands in";
    ASSERT_NE(style.FindBitmap("picture"), nullptr);
    EXPECT_EQ(style.FindBitmap("picture")->Width(), 7);
    EXPECT_EQ(style.FindBitmap("nothing"), nullptr);
}

TEST(StyleFiles, RefuseWhatTheyCannotMeanWithItsWords)
{
    StartModuleWithResources();
    const struct
    {
        void (*change)(MAttribute&);
        const char* error;
    } cases[] = {
        { [](MAttribute& d) { d.SetAttribute("contentrendering", "Glow"); },
          "Invalid MColorOp identifier to parse (Glow)." },
        { [](MAttribute& d) { d.GetSubItem("colors").SetAttribute("texture", "00000000"); },
          "Invalid MStdColor identifier to parse (texture)." },
        { [](MAttribute& d) { d.GetSubItem("fonts").AddSubItem("font").SetAttribute("id", "huge"); },
          "Invalid MStdFont identifier to parse (huge)." },
        { [](MAttribute& d) { d.GetSubItem("cursor").AddSubItem("claw"); },
          "Invalid MStdCursor identifier to parse (claw)." },
        { [](MAttribute& d) { d.GetSubItem("defaultcontrolsizes").SetAttribute("buton", "1x2"); },
          "Invalid MControlType identifier to parse (buton)." },
        { [](MAttribute& d) { d.GetSubItem("defaultcontrolsizes").SetAttribute("button", "12"); },
          "\"12\" is no size." },
        { [](MAttribute& d) { d.GetSubItem("button").SetAttribute("image", "none"); },
          "Cannot find requested resource (none)." },
    };
    for (const auto& each : cases)
    {
        MTexturedStyle style;
        const auto definition = Definition(Block("010203FF", true, each.change));
        EXPECT_EQ(ErrorOf([&] { style.Load(*definition, nullptr); }), each.error);
    }
    EXPECT_EQ(
        ErrorOf([] { Definition(std::string("\0\0\0\0\x17\0\0\0\0\0\0\0<solution><x/></solution>", 37)); })
            .substr(0, 21),
        "Invalid file contents");

    // A knob does without its image, and says so in the log.
    SetLogSink([](const MString& line) { lastLine = line.ToUTF8(); });
    const auto definition = Definition(
        Block("010203FF", true, [](MAttribute& d) { d.GetSubItem("knob").SetAttribute("image", "none"); }));
    MTexturedStyle style;
    style.Load(*definition, nullptr);
    SetLogSink(nullptr);
    EXPECT_EQ(lastLine, "SYSTEM EXCEPTION! Load knob");
}

TEST(StyleSettings, ComeBackAsTheyWereStoredAndSurviveWhatIsWrong)
{
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round)
    {
        StyleSettings settings;
        for (MColor& color : settings.mainColors)
            color = MColor(static_cast<std::uint32_t>(random()));
        settings.iconColor = MColor(static_cast<std::uint32_t>(random()));
        settings.resizeX = 1 + static_cast<double>(random() % 2001) / 1000;
        settings.invertIcons = random() % 2 == 1;
        settings.minAlpha = static_cast<std::int32_t>(random() % 256);
        settings.clickedAlpha = static_cast<std::int32_t>(random() % 256);
        settings.contentRendering = static_cast<MColorOp>(random() % 17);
        MAttribute item;
        settings.Store(item);
        StyleSettings again;
        again.Load(item);
        MAttribute second;
        again.Store(second);
        ASSERT_EQ(second.AttributeCount(), item.AttributeCount());
        for (int index = 0; index < item.AttributeCount(); ++index)
            EXPECT_EQ(second.AttributeAt(index).value, item.AttributeAt(index).value);
        for (int index = 0; index < 4; ++index)
            EXPECT_EQ(again.mainColors[index], settings.mainColors[index]);
        EXPECT_EQ(again.contentRendering, settings.contentRendering);
        EXPECT_NEAR(again.resizeX, settings.resizeX, 1e-6);
    }
    MAttribute wrong;
    for (const char* key : { "maincolor0", "maincolor1", "maincolor2", "maincolor3" })
        wrong.SetAttribute(MString::Literal(key), key[9] == '0'   ? MString("1234567")
                                                  : key[9] == '1' ? MString("123456789")
                                                  : key[9] == '2' ? MString("12345x78")
                                                                  : MString("12345678"));
    wrong.SetAttribute("ResizeX", "1e99");
    wrong.SetAttribute("ResizeY", "wide");
    wrong.SetAttribute("minalpha", "-3");
    StyleSettings settings;
    settings.Load(wrong);
    for (int index = 0; index < 3; ++index)
        EXPECT_EQ(settings.mainColors[index].value, 0xFFFFFFFFu) << index;
    EXPECT_EQ(settings.mainColors[3].value, 0x78123456u) << "red, green, blue, alpha";
    EXPECT_EQ(settings.resizeX, 3);
    EXPECT_EQ(settings.resizeY, 1);
    EXPECT_EQ(settings.minAlpha, 0);
}

TEST(StyleConfiguration, IsTheLightDefaultUntilItIsSaved)
{
    StartModuleWithResources();
    ResetStyleConfiguration();
    MAttribute configuration;
    LoadStyleConfiguration(configuration);
    EXPECT_EQ(configuration.Name().ToUTF8(), "StyleConfiguration");
    const char* wanted[][2] = { { "Style", "Default (light)" },
                                { "maincolor0", "F9A002B6" },
                                { "maincolor1", "F9A002FF" },
                                { "maincolor2", "E7DE81DC" },
                                { "maincolor3", "2CE312FF" } };
    ASSERT_EQ(configuration.AttributeCount(), 5);
    for (const auto& [key, value] : wanted)
        EXPECT_EQ(configuration.GetAttribute(MString::Literal(key)).ToUTF8(), value);

    configuration.SetAttribute("Style", "Default (dark)");
    configuration.SetAttribute("maincolor2", "FF0000FF");
    SaveStyleConfiguration(configuration);
    MAttribute again;
    LoadStyleConfiguration(again);
    EXPECT_EQ(again.GetAttribute("Style").ToUTF8(), "Default (dark)");
    EXPECT_EQ(again.GetAttribute("maincolor2").ToUTF8(), "FF0000FF");

    MAttribute sizes;
    LoadConfiguration(sizes);
    sizes.SetAttribute("DefaultSizeMain", "800x560");
    sizes.SetAttribute("EditorMode", "2");
    SaveConfiguration(sizes);
    ResetStyleConfiguration();
    LoadStyleConfiguration(again);
    EXPECT_EQ(again.GetAttribute("Style").ToUTF8(), "Default (light)");
    LoadConfiguration(sizes);
    EXPECT_FALSE(sizes.HasAttribute("DefaultSizeMain"));
    EXPECT_TRUE(sizes.HasAttribute("EditorMode"));
}

TEST(StyleColors, AMainColourChangesItsRolesInHueAlone)
{
    const auto lightness = [](MColor color)
    {
        return std::max({ color.Red(), color.Green(), color.Blue() }) +
               std::min({ color.Red(), color.Green(), color.Blue() });
    };
    for (const MString& look : { MString("light"), MString("dark") })
    {
        const auto plain = StyleOf(look, 1);
        for (const auto& [key, chosen] : { std::pair{ "maincolor1", MColor(0, 0, 255) },
                                           std::pair{ "maincolor2", MColor(0, 0, 255, 0xDC) },
                                           std::pair{ "maincolor3", MColor(0, 0, 255) } })
        {
            const auto tinted = StyleOf(look, 1, MString::Literal(key),
                                        chosen.Alpha() == 255 ? MString("0000FFFF") : MString("0000FFDC"));
            int changed = 0;
            for (std::size_t index = 0; index < std::size(MEnumLabels<MStdColor>::Labels); ++index)
            {
                SCOPED_TRACE(std::string(key) + " " + MEnumLabels<MStdColor>::Labels[index]);
                const auto role = static_cast<MStdColor>(index);
                const MColor before = plain->GetColor(role);
                const MColor after = tinted->GetColor(role);
                if (StyleTint::RoleOf(role) != key[9] - '0')
                {
                    EXPECT_EQ(after, before);
                    continue;
                }
                ++changed;
                EXPECT_NEAR(lightness(after), lightness(before), 2);
                EXPECT_EQ(after.Alpha(), before.Alpha());
                EXPECT_GE(after.Blue(), std::max(after.Red(), after.Green()))
                    << "its hue is the chosen one's";
                EXPECT_NEAR(after.Red(), after.Green(), 1);
            }
            EXPECT_GT(changed, 0);
        }
        // The same colour again changes nothing at all.
        const auto same = StyleOf(look, 1, "maincolor2", "E7DE81DC");
        EXPECT_EQ(same->GetColor(MStdColor::Accent), plain->GetColor(MStdColor::Accent));
        EXPECT_EQ(plain->GetColor(MStdColor::Grid).Alpha(), look == MString("dark") ? 54 : 70);
    }
}

TEST(StyleSizes, GrowWithTheScale)
{
    const auto small = StyleOf("dark", 1);
    for (const double scale : { 1.25, 1.5, 2.0, 3.0 })
    {
        SCOPED_TRACE(scale);
        const auto large = StyleOf("light", scale);
        for (std::int32_t index = 0; index < 27; ++index)
        {
            const auto size = static_cast<MStyleSize>(index);
            const bool isAlpha = size == MStyleSize::AlphaEnabled || size == MStyleSize::AlphaDisabled;
            EXPECT_EQ(large->GetSpacing(index),
                      isAlpha ? small->GetSpacing(index) : large->Pixels(small->GetSpacing(index)))
                << index;
        }
        EXPECT_EQ(large->GetSpacing(27), 0);
        MControl control;
        for (std::size_t type = 0; type < std::size(MEnumLabels<MControlType>::Labels); ++type)
        {
            control.controlType = static_cast<MControlType>(type);
            const MSize usual = large->GetDefaultSize(control.controlType);
            const MSize least = large->GetMinimalSize(control);
            EXPECT_EQ(usual.width, large->Pixels(small->GetDefaultSize(control.controlType).width));
            EXPECT_LE(least.width, usual.width);
            EXPECT_LE(least.height, usual.height);
        }
        control.controlType = MControlType::Window;
        EXPECT_EQ(large->GetFrame(control).left, 0) << "a root in the desktop's frame";
        EXPECT_EQ(large->FocusRingReach(), large->Pixels(3));
        for (std::size_t index = 0; index < std::size(MEnumLabels<MStdFont>::Labels); ++index)
        {
            const auto font = static_cast<MStdFont>(index);
            EXPECT_NEAR(large->GetFont(font).height, scale * small->GetFont(font).height, 0.25);
            EXPECT_NEAR(large->GetFont(font).Width("Frequency") / small->GetFont(font).Width("Frequency"),
                        large->GetFont(font).height / small->GetFont(font).height, 0.01);
        }
        MFont& value = large->GetFont(MStdFont::Value);
        EXPECT_EQ(value.Width("+111.11"), value.Width("-808.08")) << "digits and signs of equal width";
    }
}
