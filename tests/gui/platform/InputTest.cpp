// SPDX-License-Identifier: GPL-3.0-or-later
// Mouse and keyboard as the user has them in hand.
#include "tests/gui/platform/OnScreen.h"

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

namespace
{
// Keys of a PC by their places: the server's own numbers.
namespace KeyPlace
{
constexpr int Escape = 9;
constexpr int Digit1 = 10;
constexpr int Tab = 23;
constexpr int E = 26;
constexpr int Enter = 36;
constexpr int Ctrl = 37;
constexpr int A = 38;
constexpr int Apostrophe = 48;
constexpr int Shift = 50;
constexpr int C = 54;
constexpr int Alt = 64;
constexpr int F5 = 71;
constexpr int NumLock = 77;
constexpr int Keypad7 = 79;
constexpr int Left = 113;
}   // namespace KeyPlace

class Input : public OnScreen
{
protected:
    void SetUp() override
    {
        setenv("LC_ALL", "en_US.UTF-8", 1);
        OnScreen::SetUp();
    }
    void UseLayout(const std::string& options)
    {
        const std::string command = "setxkbmap -display " + server->Display() + " " + options;
        ASSERT_EQ(std::system(command.c_str()), 0);
        // The server takes it over with the first key.
        user->Type({ KeyPlace::Shift });
        Settle();
        log.clear();
    }
    std::unique_ptr<PadWindow> OpenActive()
    {
        auto window = OpenWindow(MRectangle::OfSize(100, 100, 200, 150));
        EXPECT_TRUE(Until([&] { return system->HasKeyboard(*window); }));
        window->SetFocusOwner(&window->pad);
        user->Type({ KeyPlace::Shift });
        Settle();
        log.clear();
        return window;
    }
};
}   // namespace

TEST_F(Input, MouseComesWithPlacesButtonsAndModifiersAlsoFromOutside)
{
    auto window = OpenWindow(MRectangle::OfSize(100, 100, 200, 150));
    user->MoveTo(110, 120);
    Settle();
    EXPECT_THAT(Taken(), AllOf(Contains("in"), Contains("move 10,20")));
    user->Button(1, true);
    user->MoveTo(600, 500);
    user->Button(3, true);
    user->Button(3, false);
    user->Button(1, false);
    Settle();
    EXPECT_THAT(Taken(), ElementsAre("focused", "left 10,20 +1", "out", "move 500,400 +1", "right 500,400 +5",
                                     "right up 500,400 +1", "released", "left up 500,400"))
        << "what is held stays held outside";
    EXPECT_FALSE(window->pad.IsPressed());

    user->MoveTo(150, 150);
    Settle();
    log.clear();
    user->Key(KeyPlace::Ctrl, true);
    user->Key(KeyPlace::Alt, true);
    user->Button(2, true);
    user->Button(2, false);
    for (const int wheel : { 4, 5, 6, 7 })
    {
        user->Button(wheel, true);
        user->Button(wheel, false);
    }
    user->Key(KeyPlace::Alt, false);
    user->Key(KeyPlace::Ctrl, false);
    Settle();
    EXPECT_THAT(Taken(), AllOf(Contains("middle 50,50 +50"), Contains("wheel 50,50 120 +48"),
                               Contains("wheel 50,50 -120 +48"), Contains("wheel 50,50 120 +112"),
                               Contains("wheel 50,50 -120 +112")));

    user->Click(160, 160);
    user->Click(160, 160);
    user->Click(160, 160);
    Settle();
    const std::vector<std::string> clicks = Taken();
    EXPECT_EQ(std::count(clicks.begin(), clicks.end(), "twice 60,60 +1"), 1) << "the third begins anew";
    EXPECT_EQ(std::count(clicks.begin(), clicks.end(), "left 60,60 +1"), 3);

    system->SetCursorClient(*window, 7, 9);
    Settle();
    EXPECT_THAT(Taken(), ElementsAre("move 7,9"));
    EXPECT_EQ(system->GetCursorScreen(), (MPoint{ 107, 109 }));
    EXPECT_EQ(system->GetCursorClient(*window), (MPoint{ 7, 9 }));
    user->MoveTo(500, 500);
    Settle();
    EXPECT_THAT(Taken(), ElementsAre("out"));
}

TEST_F(Input, OfManyMovesOnlyTheLastIsToldAndNoneIsLostBetweenPresses)
{
    auto window = OpenWindow(MRectangle::OfSize(100, 100, 200, 150));
    user->MoveTo(100, 100);
    Settle();
    log.clear();
    for (int i = 0; i < 150; ++i)
        user->MoveTo(101 + i, 101);
    user->Button(1, true);
    for (int i = 0; i < 100; ++i)
        user->MoveTo(250 - i, 110);
    user->Button(1, false);
    Settle();
    EXPECT_THAT(Taken(), ElementsAre("move 150,1", "focused", "left 150,1 +1", "move 51,10 +1", "released",
                                     "left up 51,10"));
}

TEST_F(Input, ACaptureWithoutAButtonBringsTheMouseFromEverywhereUntilItEnds)
{
    auto window = OpenWindow(MRectangle::OfSize(100, 100, 200, 150));
    user->MakeWindow(MRectangle::OfSize(500, 100, 200, 150), XCB_EVENT_MASK_BUTTON_PRESS);
    window->SetCaptureOwner(&window->pad);
    user->MoveTo(600, 150);
    Settle();
    EXPECT_THAT(Taken(), Contains("move 500,50"));
    window->SetCaptureOwner(nullptr);
    Settle();
    log.clear();
    user->Click(605, 155);
    Settle();
    EXPECT_THAT(Taken(), Not(Contains(StartsWith("move"))));
    EXPECT_NE(user->Take<xcb_button_press_event_t>(XCB_BUTTON_PRESS), nullptr);
    // A window that goes takes its capture with it.
    window->SetCaptureOwner(&window->pad);
    window.reset();
    user->Click(605, 155);
    Settle();
    EXPECT_NE(user->Take<xcb_button_press_event_t>(XCB_BUTTON_PRESS), nullptr);
}

TEST_F(Input, KeysAreKnownByTheirPlaceAndWriteWhatTheLayoutSays)
{
    UseLayout("-layout us -variant intl");
    auto window = OpenActive();
    struct Case
    {
        std::vector<int> held;
        int key;
        std::vector<std::string> expected;
    };
    const std::string down = "key ";
    const std::vector<Case> cases = {
        { {}, KeyPlace::A, { "key 65", "char 97", "key up 65" } },
        { { KeyPlace::Shift }, KeyPlace::A, { "key 65 +64", "char 65 +64", "key up 65 +64" } },
        { { KeyPlace::Shift }, KeyPlace::Digit1, { "key 49 +64", "char 33 +64", "key up 49 +64" } },
        { { KeyPlace::Ctrl }, KeyPlace::C, { "key 67 +16", "key up 67 +16" } },
        { { KeyPlace::Alt }, KeyPlace::A, { "key 65 +32", "key up 65 +32" } },
        { {}, KeyPlace::Left, { "key 37", "key up 37" } },
        { {}, KeyPlace::F5, { "key 116", "key up 116" } },
        { {}, KeyPlace::Enter, { "key 13", "key up 13" } },
        { { KeyPlace::Shift }, KeyPlace::Tab, { "key 9 +64", "key up 9 +64" } },
        { {}, KeyPlace::Keypad7, { "key 36", "key up 36" } },
    };
    for (const Case& each : cases)
    {
        for (const int held : each.held)
            user->Key(held, true);
        user->Type({ each.key });
        for (const int held : each.held)
            user->Key(held, false);
        Settle();
        EXPECT_EQ(Taken(), each.expected) << each.key;
    }
    // A dead key and a letter make one; the two alone, or a way out of it, write nothing wrong.
    user->Type({ KeyPlace::Apostrophe, KeyPlace::E });
    Settle();
    EXPECT_THAT(Taken(), AllOf(Contains("char 233"), Not(Contains("char 101")), Not(Contains("key 69"))));
    user->Type({ KeyPlace::Apostrophe, KeyPlace::Escape, KeyPlace::E });
    Settle();
    EXPECT_THAT(Taken(), AllOf(Contains("char 101"), Not(Contains("char 233"))));

    // The keypad's digits with NumLock on.
    user->Type({ KeyPlace::NumLock, KeyPlace::Keypad7, KeyPlace::NumLock });
    Settle();
    EXPECT_THAT(Taken(), AllOf(Contains("key 55"), Contains("char 55")));

    // Another layout while the window is open: its letters are written, Ctrl+C is where it was.
    UseLayout("-layout ru");
    user->Type({ KeyPlace::C });
    Settle();
    EXPECT_THAT(Taken(), Contains("char 1089"));
    UseLayout("-layout us,ru");
    user->Key(KeyPlace::Ctrl, true);
    user->Type({ KeyPlace::C });
    user->Key(KeyPlace::Ctrl, false);
    Settle();
    EXPECT_THAT(Taken(), Contains("key 67 +16"));
}

TEST_F(Input, AHeldKeyIsPressedAgainAndAgainAndReleasedOnce)
{
    auto window = OpenActive();
    user->Key(KeyPlace::A, true);
    EXPECT_TRUE(Until([&] { return std::count(log.begin(), log.end(), "char 97") >= 4; }));
    EXPECT_THAT(log, Not(Contains("key up 65")));
    user->Key(KeyPlace::A, false);
    Settle();
    const std::vector<std::string> lines = Taken();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "key up 65"), 1);
}

TEST_F(Input, FocusGoesWithTheWindowsAndNamesWhoTakesIt)
{
    auto first = OpenActive();
    MControl* taker = nullptr;
    first->pad.onEvent = [&](const MControlEvent& event)
    {
        if (event.code == MEventCode::Focus && !event.focused)
            taker = event.otherControl;
    };
    auto second = OpenWindow(MRectangle::OfSize(400, 100, 200, 150));
    EXPECT_TRUE(Until([&] { return system->GetActiveRoot() == second.get(); }));
    EXPECT_FALSE(system->HasKeyboard(*first));
    EXPECT_EQ(taker, second.get());

    user->Focus(user->MakeWindow(MRectangle::OfSize(700, 100, 50, 50)));
    EXPECT_TRUE(Until([&] { return system->GetActiveRoot() == nullptr; }));
    // A modal window gets the keyboard, also when its owner is meant.
    auto modal = std::make_unique<PadWindow>(log);
    modal->OpenModal(first.get());
    EXPECT_TRUE(Until([&] { return system->HasKeyboard(*modal); }));
    Settle();
    user->Focus(IdOf(*first));
    EXPECT_TRUE(Until([&] { return system->HasKeyboard(*modal); }));
}

TEST_F(Input, PopUpsCloseWithAPressAnywhereElseWhichIsUsedUp)
{
    auto window = OpenWindow(MRectangle::OfSize(100, 100, 200, 150));
    const xcb_window_t other = user->MakeWindow(MRectangle::OfSize(500, 100, 200, 150),
                                                XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE);
    const auto openPopUp = [&](std::int32_t x, MWindow* owner)
    {
        return OpenWindow(MRectangle::OfSize(x, 130, 60, 80), MWindowSystem::Kind::PopUp, owner);
    };
    auto popUp = openPopUp(120, window.get());
    auto inner = openPopUp(180, popUp.get());
    ASSERT_TRUE(popUp->IsOpen() && inner->IsOpen());
    log.clear();

    user->Click(190, 140);
    Settle();
    EXPECT_TRUE(inner->IsOpen());
    EXPECT_THAT(Taken(), Contains("left 10,10 +1")) << "inside it is used";
    user->Click(130, 140);
    Settle();
    EXPECT_FALSE(inner->IsOpen());
    EXPECT_TRUE(popUp->IsOpen()) << "the one that was pressed stays";
    EXPECT_THAT(Taken(), Not(Contains(StartsWith("left 10,10"))));
    EXPECT_FALSE(system->HasKeyboard(*popUp));

    user->Click(600, 150);
    Settle();
    EXPECT_FALSE(popUp->IsOpen());
    EXPECT_EQ(user->Take<xcb_button_press_event_t>(XCB_BUTTON_PRESS), nullptr)
        << "another program's window isn't pressed";
    log.clear();
    user->Click(600, 150);
    Settle();
    EXPECT_NE(user->Take<xcb_button_press_event_t>(XCB_BUTTON_PRESS), nullptr) << "all is free again";
    EXPECT_THAT(Taken(), IsEmpty());

    // Opened by a press that is still held: the one that was pressed gets its release.
    window->pad.onEvent = [&](const MControlEvent& event)
    {
        if (event.code == MEventCode::LeftDown)
            popUp->Open(MWindowSystem::Kind::PopUp, window.get());
    };
    user->MoveTo(250, 220);
    user->Button(1, true);
    Settle();
    EXPECT_TRUE(popUp->IsOpen());
    user->MoveTo(130, 140);
    user->Button(1, false);
    Settle();
    EXPECT_FALSE(window->pad.IsPressed());
    EXPECT_THAT(Taken(), Contains("left up 30,40"));
    EXPECT_TRUE(popUp->IsOpen());

    // Who can't be told of presses elsewhere closes with the focus.
    popUp->Close();
    window->pad.onEvent = nullptr;
    Settle();
    XClient::Own(xcb_grab_pointer_reply(user->Connection(),
                                        xcb_grab_pointer(user->Connection(), 0, other, 0, XCB_GRAB_MODE_ASYNC,
                                                         XCB_GRAB_MODE_ASYNC, 0, 0, XCB_CURRENT_TIME),
                                        nullptr));
    popUp->Open(MWindowSystem::Kind::PopUp, window.get());
    Settle();
    EXPECT_TRUE(popUp->IsOpen());
    user->Focus(other);
    EXPECT_TRUE(Until([&] { return !popUp->IsOpen(); }));
}

TEST_F(Input, WindowsMayCloseInTheMiddleOfAnyMessage)
{
    for (const auto code : { MEventCode::LeftDown, MEventCode::LeftUp, MEventCode::Move, MEventCode::Wheel,
                             MEventCode::KeyDown, MEventCode::Character, MEventCode::KeyUp })
    {
        SCOPED_TRACE(static_cast<int>(code));
        auto window = OpenActive();
        window->pad.onEvent = [&](const MControlEvent& event)
        {
            if (event.code == code)
                window->Close();
        };
        user->MoveTo(150, 150);
        user->Click(155, 155);
        user->Button(4, true);
        user->Button(4, false);
        user->Type({ KeyPlace::A, KeyPlace::E });
        Settle();
        EXPECT_FALSE(window->IsOpen());
    }
    // And one may wait in a message for another to be answered.
    auto window = OpenActive();
    auto modal = std::make_unique<PadWindow>(log, 80, 60);
    std::int32_t answer = 0;
    window->pad.onEvent = [&](const MControlEvent& event)
    {
        if (event.code == MEventCode::LeftDown)
            answer = modal->ShowModal(window.get());
    };
    int rounds = 0;
    modal->pad.onTimer = [&]
    {
        if (++rounds == 5)
            modal->EndModal(42);
    };
    modal->SetTimer(modal->pad, 10);
    user->Click(150, 150);
    EXPECT_TRUE(Until([&] { return answer == 42; }));
    Settle();
    EXPECT_TRUE(window->IsOpen());
}
