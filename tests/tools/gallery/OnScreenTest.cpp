// SPDX-License-Identifier: GPL-3.0-or-later
// The controls of the gallery under real events, on a server of their own: what a user's hand does.
#include <chrono>
#include <cstdlib>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/controls/MWindows.h"
#include "gui/fields/MEdit.h"
#include "gui/platform/XcbWindowSystem.h"
#include "gui/widgets/MButton.h"
#include "gui/widgets/MCheckBox.h"
#include "gui/widgets/MKnob.h"
#include "gui/widgets/MListBox.h"
#include "gui/widgets/MSplitter.h"
#include "gui/widgets/MSwitcher.h"
#include "gui/widgets/MTracker.h"
#include "gui/widgets/MTreeControl.h"
#include "gui/windows/MMessageWindow.h"
#include "gui/windows/OwnedWindow.h"
#include "tests/gui/platform/XClient.h"
#include "tests/gui/platform/XServer.h"
#include "tools/gallery/Gallery.h"

namespace
{
// Keys as Xvfb numbers them.
constexpr int KeyTab = 23;
constexpr int KeyReturn = 36;
constexpr int KeyEscape = 9;
constexpr int KeyDown = 116;
constexpr int KeyControl = 37;
constexpr int KeyA = 38;
constexpr int KeyC = 54;
constexpr int KeyV = 55;

class GalleryOnScreen : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.IsRunning()) << "Xvfb doesn't start; scripts/setup installs it";
        user = std::make_unique<XClient>();
        auto made = std::make_unique<XcbWindowSystem>();
        system = made.get();
        windows = std::make_unique<MWindows>(std::move(made));
        static const Gallery gallery(std::string(std::getenv("TONALIGN_SOURCE_DIR")) +
                                     "/tools/gallery/pages");
        pages = &gallery;
        windows->SetStyle(Gallery::MakeStyle("dark", 1));
    }

    MWindow& Open(const std::string& name)
    {
        for (const Gallery::Page& each : pages->Pages())
            if (each.name == name)
                window = Gallery::MakeWindow(each);
        window->Open(MWindowSystem::Kind::Normal);
        Settle();
        return *window;
    }
    void Settle()
    {
        user->Sync();
        for (int quiet = 0; quiet < 3;)
        {
            const std::uint64_t sent = system->BytesSent();
            system->WaitForMessages(5);
            user->Sync();
            quiet = sent == system->BytesSent() ? quiet + 1 : 0;
        }
    }
    template <typename Control>
    std::vector<Control*> All(MControl& control)
    {
        std::vector<Control*> found;
        if (auto* own = dynamic_cast<Control*>(&control); own != nullptr && own->IsUsable() && own->IsShown())
            found.push_back(own);
        for (const auto& child : control.Children())
            for (Control* each : All<Control>(*child))
                found.push_back(each);
        return found;
    }
    MPoint OnScreen(const MControl& control, double across = 0.5, double down = 0.5)
    {
        const MRectangle place = system->GetScreenRect(*control.Window());
        return { place.left + control.AbsoluteX() + static_cast<std::int32_t>(across * control.Width()),
                 place.top + control.AbsoluteY() + static_cast<std::int32_t>(down * control.Height()) };
    }
    void Click(const MControl& control, double across = 0.5, double down = 0.5)
    {
        const MPoint at = OnScreen(control, across, down);
        user->Click(at.x, at.y);
        Settle();
    }
    void Press(int code)
    {
        user->Type({ code });
        Settle();
    }
    void PressWithControl(int code)
    {
        user->Key(KeyControl, true);
        user->Type({ code });
        user->Key(KeyControl, false);
        Settle();
    }

    XServer server;
    std::unique_ptr<XClient> user;
    std::unique_ptr<MWindows> windows;
    XcbWindowSystem* system = nullptr;
    const Gallery* pages = nullptr;
    std::unique_ptr<MWindow> window;
};
}   // namespace

TEST_F(GalleryOnScreen, ValuesFollowTheHand)
{
    Open("parts");
    for (MControlValue* each : All<MControlValue>(*window))
    {
        if (dynamic_cast<MSwitcher*>(each) != nullptr)
            continue;
        SCOPED_TRACE(each->caption.ToUTF8());
        auto* slider = dynamic_cast<MTracker*>(each);
        const double across = slider != nullptr ? 0.55 : 0.5;
        const MPoint at = OnScreen(*each, across);
        user->MoveTo(at.x, at.y);
        user->Button(1, true);
        Settle();
        const double held = each->ValuePosition();
        user->MoveTo(at.x + (held > 0.5 ? -20 : 20), at.y);
        Settle();
        const double dragged = each->ValuePosition();
        EXPECT_GT(std::abs(dragged - held), 0.05);
        // Far outside it still follows.
        user->MoveTo(held > 0.5 ? at.x : 1270, held > 0.5 ? 790 : at.y);
        Settle();
        EXPECT_NEAR(each->ValuePosition(), held > 0.5 ? 0 : 1, 1e-9);
        user->Button(1, false);
        user->Click(at.x, at.y, held > 0.5 ? 4 : 5);
        Settle();
        EXPECT_NEAR(std::abs(each->ValuePosition() - (held > 0.5 ? 0 : 1)), 0.01, 0.0011)
            << "a notch is a step";
    }
}

TEST_F(GalleryOnScreen, ButtonsBoxesAndListsAreClicked)
{
    Open("parts");
    for (MCheckBox* each : All<MCheckBox>(*window))
    {
        const MCheckBoxState before = each->State();
        Click(*each, 0.1);
        if (each->group == 0)
            EXPECT_NE(each->State(), before);
        else
            EXPECT_EQ(each->State(), MCheckBoxState::On);
    }
    MListBox& list = *All<MListBox>(*window).front();
    Click(list, 0.5, 0.2);
    EXPECT_EQ(list.Current(), 0);
    Press(KeyDown);
    EXPECT_EQ(list.Current(), 1);
    MSwitcher& choice = *All<MSwitcher>(*window).front();
    const MString before = choice.ValueText();
    Click(choice);
    ASSERT_EQ(windows->OpenWindows().size(), 2u);
    Press(KeyDown);
    Press(KeyReturn);
    EXPECT_EQ(windows->OpenWindows().size(), 1u);
    EXPECT_NE(choice.ValueText(), before);
    Click(choice);
    user->Click(1270, 790);   // beside all windows
    Settle();
    EXPECT_EQ(windows->OpenWindows().size(), 1u);
}

TEST_F(GalleryOnScreen, FieldsTakeWhatIsTypedAndPasted)
{
    Open("fields");
    MEdit* search = dynamic_cast<MEdit*>(window->Find("search"));
    Click(*search);
    user->Type({ KeyA, KeyC, KeyA });
    Settle();
    EXPECT_EQ(search->Text(), "aca");
    PressWithControl(KeyA);
    PressWithControl(KeyC);
    EXPECT_EQ(system->GetClipboardText(), "aca");
    system->SetClipboardText(MString(std::u16string(1 << 20, u'x')));
    PressWithControl(KeyV);
    EXPECT_EQ(search->Text().Length(), 1 << 20);
    Press(KeyTab);
    EXPECT_FALSE(search->HasFocus());
    MTreeControl& tree = *All<MTreeControl>(*window).front();
    Click(tree, 0.6, 0.05);
    ASSERT_NE(tree.Current(), nullptr);
    Press(KeyDown);
    EXPECT_EQ(tree.Current()->text, "Vocals");
}

TEST_F(GalleryOnScreen, WindowsAboveWindowsAreAnsweredFromTheTop)
{
    Open("parts");
    MButton& button = *All<MButton>(*window).front();
    int answers = 0;
    const auto ask = [&](MWindow& owner)
    {
        MMessageWindow::Show(owner, MMessageWindow::Kind::Question, "Question", "Really?",
                             [&answers](MModalValue answer)
                             { answers = answers * 10 + static_cast<int>(answer); });
        Settle();
        return windows->OpenWindows().back();
    };
    MWindow* first = ask(*window);
    MWindow* second = ask(*first);
    Click(button);
    EXPECT_FALSE(button.HasFocus()) << "a click on what is blocked does nothing";
    Press(KeyReturn);
    EXPECT_EQ(windows->OpenWindows().size(), 2u);
    EXPECT_EQ(window->BlockedBy(), first);
    EXPECT_FALSE(second == windows->OpenWindows().back());
    Press(KeyEscape);
    EXPECT_EQ(windows->OpenWindows().size(), 1u);
    EXPECT_EQ(answers, static_cast<int>(MModalValue::Yes) * 10) << "Enter is yes, Escape is no answer";
    Click(button);
    EXPECT_TRUE(button.HasFocus());
}

TEST_F(GalleryOnScreen, ManyWindowsLeaveNothing)
{
    Open("fields");
    const auto resident = []
    {
        long size = 0;
        long inUse = 0;
        if (FILE* status = std::fopen("/proc/self/statm", "r"))
        {
            if (std::fscanf(status, "%ld %ld", &size, &inUse) != 2)
                inUse = 0;
            std::fclose(status);
        }
        return inUse * 4;
    };
    const auto round = [&](int count)
    {
        for (int i = 0; i < count; ++i)
        {
            const auto opened =
                Gallery::MakeWindow(pages->Pages()[static_cast<std::size_t>(i) % pages->Pages().size()]);
            opened->Open(MWindowSystem::Kind::Normal);
            system->WaitForMessages(1);
            opened->Close();
            system->SetSizeOnly(*window, 820 + i % 50, 500 + i % 40);
            system->ProcessPendingMessages();
        }
        Settle();
    };
    // With TONALIGN_SOAK a thousand windows and ten thousand sizes, which takes a minute.
    const bool soaks = std::getenv("TONALIGN_SOAK") != nullptr;
    round(90);
    const long before = resident();
    round(soaks ? 1000 : 90);
    for (int i = 0; soaks && i < 10000; ++i)
    {
        system->SetSizeOnly(*window, 820 + i % 300, 500 + i % 170);
        system->ProcessPendingMessages();
    }
    Settle();
#ifndef __SANITIZE_ADDRESS__   // which keeps what was freed
    EXPECT_LT(resident() - before, 500) << "kB";
#endif
    EXPECT_GT(before, 0);
    EXPECT_EQ(windows->OpenWindows().size(), 1u);
}
