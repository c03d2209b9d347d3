// SPDX-License-Identifier: GPL-3.0-or-later
// Colours and the settings of the style, as a user changes them.
#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/text/MStringFormat.h"
#include "gui/fields/MEdit.h"
#include "gui/loader/MXmlLoader.h"
#include "gui/styles/StyleConfiguration.h"
#include "gui/windows/MColorSelectButton.h"
#include "gui/windows/MColorWindow.h"
#include "gui/windows/MStyleWindow.h"
#include "gui/windows/RegisterWindowControls.h"
#include "resources/RegisterResources.h"
#include "tests/gui/windows/WindowsFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{
class StyleWindows : public Windows
{
protected:
    StyleWindows()
    {
        StartModuleWithResources();
        ResetStyleConfiguration();
    }

public:
    void OnColor(const MOnNotifyParams&) { log.push_back("color"); }
};
}   // namespace

TEST_F(StyleWindows, ColoursAreChosenInAWindowAndToldOnce)
{
    MXmlLoader loader;
    RegisterWindowControls(loader);
    MAttribute document;
    MAttribute& node = document.AddSubItem("colorselectbutton");
    node.SetAttribute("value", "10203040");
    node.SetAttribute("default", "C08040");
    auto holder = std::make_unique<MControl>();
    loader.Load(*holder, document);
    auto& button = TheOne<MColorSelectButton>(*holder);
    window->AddChild(std::move(holder)).SetSize(100, 100);
    button.SetSize(60, 22);
    button.OnColor().AddHandler<&StyleWindows::OnColor>(*this);
    ASSERT_EQ(button.Color(), MColor(0x10, 0x20, 0x30, 0x40));

    const auto type = [this](const char* digits)
    {
        auto& edit = TheOne<MEdit>(Top());
        edit.SetFocus();
        edit.SelectAll();
        screen->Type(Top(), MString(digits));
        TopKey(MKey::Enter);
    };
    ClickOn(button);
    ASSERT_EQ(OpenCount(), 2u);
    type("0a0B0c");
    TopKey(MKey::Escape);
    EXPECT_EQ(button.Color(), MColor(0x10, 0x20, 0x30, 0x40));
    EXPECT_THAT(Taken(), IsEmpty()) << "given up";
    button.SetFocus();
    Key(MKey::Enter);
    type("0a0B0c");
    Press("OK");
    EXPECT_EQ(button.Color(), MColor(10, 11, 12));
    EXPECT_THAT(Taken(), ElementsAre("color"));
    ClickOn(button);
    Press("Default");
    ASSERT_EQ(OpenCount(), 2u) << "can be thought over";
    Press("OK");
    EXPECT_EQ(button.Color(), MColor(0xC0, 0x80, 0x40));
    EXPECT_THAT(Taken(), ElementsAre("color"));
    ClickOn(button);
    Press("OK");
    EXPECT_THAT(Taken(), IsEmpty()) << "the same colour";
    // The colour before comes back by a click on it.
    ClickOn(button);
    type("FF0000");
    auto& shown = static_cast<MColorWindow&>(Top());
    screen->Click(shown, 30, Button(shown, "OK")->AbsoluteY() - 40);
    EXPECT_EQ(shown.Color(), MColor(0xC0, 0x80, 0x40));
    // A button that goes meanwhile is asked no more.
    window->RemoveChild(*button.Parent());
    type("00FF00");
    Press("OK");
    EXPECT_EQ(OpenCount(), 1u);
    EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(StyleWindows, SettingsComeBackAsTheyWereStored)
{
    std::mt19937 random(5);
    auto& settings = window->Make<MStyleConfiguration>();
    for (int round = 0; round < 30; ++round)
    {
        MAttribute stored;
        stored.SetAttribute("Style", random() % 3 == 0   ? "Gone with its file"
                                     : random() % 2 == 0 ? "Default (light)"
                                                         : "Default (dark)");
        stored.SetAttribute("StylePath", "/nowhere");
        for (const char* key : { "maincolor0", "maincolor1", "maincolor2", "maincolor3", "iconcolor" })
            stored.SetAttribute(MString::Literal(key), MString::FromUnsigned(random(), 16, 8, '0'));
        for (const char* key : { "inverticons", "invertbitmaps", "motionoff" })
            stored.SetAttribute(MString::Literal(key), MString::FromInt(random() % 2));
        const double scale = MStyleConfiguration::ScalesPercent[random() % 6] / 100.0;
        for (const char* key : { "ResizeX", "ResizeY" })
            stored.SetAttribute(MString::Literal(key), MString::FromDouble(scale, 6));
        MAttribute again;
        again.SetAttribute("StylePath", "/nowhere");
        again.SetAttribute("of somebody else", "stays");
        settings.Load(stored);
        settings.Store(again);
        EXPECT_EQ(again.GetAttribute("of somebody else"), "stays");
        again.RemoveAttribute("of somebody else");
        ASSERT_EQ(again.AttributeCount(), stored.AttributeCount());
        for (int i = 0; i < stored.AttributeCount(); ++i)
            EXPECT_EQ(again.GetAttribute(stored.AttributeAt(i).key), stored.AttributeAt(i).value)
                << stored.AttributeAt(i).key.ToUTF8();
    }
}

TEST_F(StyleWindows, OnlyScalesThatFitTheScreenCanBeChosen)
{
    auto& settings = window->Make<MStyleConfiguration>();
    MAttribute configuration;
    configuration.SetAttribute("Style", "Default (dark)");
    for (const std::int32_t chosen : MStyleConfiguration::ScalesPercent)
        for (const std::int32_t width : { 300, 640, 800, 961, 1400, 3000 })
        {
            configuration.SetAttribute("ResizeX", MString::FromDouble(chosen / 100.0));
            configuration.SetAttribute("ResizeY", MString::FromDouble(chosen / 100.0));
            settings.Load(configuration);
            settings.LimitScales({ width, 200 }, { 1920, 1080 });
            for (const std::int32_t percent : MStyleConfiguration::ScalesPercent)
            {
                const MString caption = Format("{0}%", percent);
                MButton& button = *Button(settings, caption.ToUTF8().c_str());
                EXPECT_EQ(button.IsOn(), percent == chosen);
                EXPECT_EQ(button.IsEnabled(),
                          width * percent <= 192000 || percent == chosen || percent == 100)
                    << percent << " of " << width;
                EXPECT_EQ(button.help.IsEmpty(), width * percent <= 192000);
            }
        }
}

TEST_F(StyleWindows, TheConfigurationIsWrittenWithOkAloneAndResetAfterAQuestion)
{
    int changes = 0;
    const auto open = [&]
    {
        MStyleWindow::Ask(*window, [&] { ++changes; });
    };
    const auto stored = [](const char* key)
    {
        MAttribute configuration;
        LoadStyleConfiguration(configuration);
        return configuration.GetAttribute(MString::Literal(key)).ToUTF8();
    };
    for (const char* end : { "Cancel", "OK" })
    {
        open();
        Press("150%");
        TheOne<MSwitcher>(Top()).SetFocus();
        TopKey(MKey::Up);   // the dark one comes first
        ClickOn(*FindControl<MCheckBox>(Top(),
                                        [](const MCheckBox& each) { return each.caption.Find("Off") == 0; }));
        Press(end);
        EXPECT_EQ(OpenCount(), 1u);
    }
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(stored("Style"), "Default (dark)");
    EXPECT_EQ(stored("ResizeX"), "1.500000");
    EXPECT_EQ(stored("motionoff"), "1");
    EXPECT_EQ(stored("maincolor2"), "E7DE81DC");
    open();
    Press("Reset...");
    ASSERT_EQ(OpenCount(), 3u);
    Press("No");
    EXPECT_EQ(stored("ResizeX"), "1.500000");
    ASSERT_EQ(OpenCount(), 2u);
    Press("Reset...");
    TopKey(MKey::Enter);
    ASSERT_EQ(OpenCount(), 3u) << "tells that it is done";
    EXPECT_EQ(stored("Style"), "Default (light)");
    EXPECT_EQ(stored("ResizeX"), "");
    TopKey(MKey::Enter);
    EXPECT_EQ(OpenCount(), 1u);
    EXPECT_EQ(changes, 2);
}
