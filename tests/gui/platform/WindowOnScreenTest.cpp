// SPDX-License-Identifier: GPL-3.0-or-later
// Windows on a server: what they show, which size they have, what they cost, and how they end.
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <random>
#include <thread>

#include "tests/ErrorOf.h"
#include "tests/gui/platform/OnScreen.h"

using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace
{
constexpr MRectangle At(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height)
{
    return MRectangle::OfSize(x, y, width, height);
}

// The second has no memory to share with its clients, as a server on another machine.
class EachWay : public OnScreen, public ::testing::WithParamInterface<bool>
{
protected:
    void SetUp() override
    {
        Connect(GetParam() ? std::vector<std::string>{}
                           : std::vector<std::string>{ "-extension", "MIT-SHM" });
    }
};
INSTANTIATE_TEST_SUITE_P(SharedAndSent, EachWay, ::testing::Bool());

// Of any small rectangles.
class Patches : public PadWindow
{
public:
    Patches(std::vector<std::string>& diary, std::mt19937& numbers) : PadWindow(diary, 640, 480)
    {
        for (int i = 0; i < 60; ++i)
        {
            Pad& patch = Make<Pad>(diary);
            patch.SetPosition(static_cast<int>(numbers() % 600), static_cast<int>(numbers() % 440));
            patch.SetSize(1 + static_cast<int>(numbers() % 90), 1 + static_cast<int>(numbers() % 90));
            patches.push_back(&patch);
        }
    }
    std::vector<Pad*> patches;
};
}   // namespace

TEST_P(EachWay, ShowWhatWasPaintedWhateverWasChangedCoveredOrResized)
{
    std::mt19937 numbers(5);
    Patches window(log, numbers);
    window.Open(MWindowSystem::Kind::Normal);
    Settle();
    EXPECT_EQ(WrongPixels(window), 0U);

    for (int round = 0; round < 30; ++round)
    {
        SCOPED_TRACE(round);
        for (int i = 0; i < 5; ++i)
        {
            Pad& patch = *window.patches[numbers() % window.patches.size()];
            patch.color = MColor(static_cast<std::uint32_t>(numbers()) | 0xFF000000u);
            patch.Invalidate();
        }
        const std::uint64_t sentBefore = system->BytesSent();
        if (round % 3 == 0)
            system->UpdateWindow(window);
        // Another window comes and goes above.
        xcb_window_t cover = XCB_NONE;
        if (round % 4 == 1)
            cover = user->MakeWindow(At(static_cast<int>(numbers() % 500), 50, 200, 200));
        if (round % 5 == 2)
            user->Configure(
                IdOf(window), XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                { static_cast<int>(300 + numbers() % 400), static_cast<int>(300 + numbers() % 300) });
        Settle();
        if (cover != XCB_NONE)
        {
            xcb_destroy_window(user->Connection(), cover);
            Settle();
        }
        ASSERT_EQ(WrongPixels(window), 0U);
        if (GetParam() && round % 5 != 2)
        {
            EXPECT_LT(system->BytesSent() - sentBefore, 4000U) << "pictures go through shared memory";
        }
    }
}

TEST_F(OnScreen, PaintsOnlyWhatChangedAndSendsNothingAtRest)
{
    std::mt19937 numbers(6);
    Patches window(log, numbers);
    window.Open(MWindowSystem::Kind::Normal);
    user->MoveTo(1200, 700);
    Settle();

    // Two corners that change aren't the middle between them.
    std::vector<Pad*> corners;
    for (const MPoint place : { MPoint{ 0, 0 }, MPoint{ 620, 460 } })
    {
        corners.push_back(&window.Make<Pad>(log));
        corners.back()->SetPosition(place.x, place.y);
        corners.back()->SetSize(20, 20);
    }
    Settle();
    for (Pad* patch : window.patches)
        patch->paintCount = 0;
    for (Pad* corner : corners)
        corner->Invalidate();
    Settle();
    std::int64_t pixels = 0;
    for (const MRectangle& part : window.Shown())
        pixels += std::int64_t{ part.Width() } * part.Height();
    EXPECT_EQ(pixels, 2 * 20 * 20);
    EXPECT_EQ(WrongPixels(window), 0U);

    // Others type, and move the mouse elsewhere. The first key makes the user's keyboard the one in use.
    user->Focus(user->MakeWindow(At(1000, 500, 200, 200)));
    user->Type({ 38 });
    Settle();
    const std::uint64_t sent = system->BytesSent();
    pollfd readable{ system->GetDescriptor(), POLLIN, 0 };
    user->MoveTo(1100, 600);
    user->Type({ 38, 39 });
    EXPECT_EQ(poll(&readable, 1, 300), 0) << "nothing wakes it";
    system->WaitForMessages(50);
    system->ProcessPendingMessages();
    EXPECT_EQ(system->BytesSent(), sent);
}

TEST_F(OnScreen, FollowsTheUsersSizesToTheLastAndKeepsItsOwn)
{
    auto window = OpenWindow(At(30, 40, 300, 200));
    EXPECT_EQ(system->GetScreenRect(*window), At(30, 40, 300, 200));

    const int placedBefore = window->pad.placedCount;
    for (int i = 0; i < 500; ++i)
        user->Configure(IdOf(*window), XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                        { 300 + i % 90, 200 + i / 5 });
    user->Sync();
    Settle();
    EXPECT_EQ(window->Width(), 300 + 499 % 90);
    EXPECT_EQ(window->Height(), 200 + 499 / 5);
    EXPECT_LT(window->pad.placedCount - placedBefore, 40) << "one layout each is too many";
    EXPECT_EQ(WrongPixels(*window), 0U);

    // Its own wishes cross the user's; both agree in the end, and are quiet.
    std::mt19937 numbers(7);
    for (int i = 0; i < 50; ++i)
    {
        window->SetSize(250 + static_cast<int>(numbers() % 200), 150 + static_cast<int>(numbers() % 200));
        window->AskForSize();
        if (i % 7 == 0)
            user->Configure(IdOf(*window), XCB_CONFIG_WINDOW_WIDTH, { 260 + i });
        if (i % 3 == 0)
            system->ProcessPendingMessages();
    }
    Settle();
    EXPECT_EQ(system->GetScreenRect(*window).Width(), window->Width());
    EXPECT_EQ(system->GetScreenRect(*window).Height(), window->Height());
    EXPECT_EQ(WrongPixels(*window), 0U);

    system->MoveTo(*window, 100, 60);
    Settle();
    EXPECT_EQ(system->GetScreenRect(*window), At(100, 60, window->Width(), window->Height()));
}

TEST_F(OnScreen, TellsTheDesktopWhatItIs)
{
    auto window = OpenWindow(At(10, 10, 200, 150));
    window->maxWidth = 900;
    const xcb_window_t id = IdOf(*window);
    system->SetTitle(*window, MString::FromUTF8("Größe"));
    system->SetSizeLimits(*window, 120, 80, 900, 0);
    MBitmap icon(2, 1);
    icon.Row(0)[0] = 0x80112233;
    system->SetIcon(*window, icon);
    auto dialog = OpenWindow(At(50, 50, 100, 80), MWindowSystem::Kind::Dialog, window.get());
    Settle();

    EXPECT_EQ(user->Property(id, user->Atom("_NET_WM_NAME")), "Größe");
    EXPECT_THAT(user->Values(id, "_NET_WM_ICON"), ElementsAre(2U, 1U, 0x80112233U, 0U));
    const auto hints = user->Values(id, "WM_NORMAL_HINTS");
    ASSERT_EQ(hints.size(), 18U);
    EXPECT_EQ(hints[0] & 0x30, 0x30U);
    EXPECT_THAT((std::array{ hints[5], hints[6], hints[7] }), ElementsAre(120U, 80U, 900U));
    EXPECT_THAT(hints[8], Ge(32767U)) << "no limit";
    EXPECT_THAT(user->Values(IdOf(*dialog), "WM_TRANSIENT_FOR"), ElementsAre(id));
    EXPECT_THAT(user->Values(IdOf(*dialog), "_NET_WM_WINDOW_TYPE"),
                ElementsAre(user->Atom("_NET_WM_WINDOW_TYPE_DIALOG")));
    dialog->Close();

    // Whether it lives, and that it should end.
    const std::uint32_t everything = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(user->Connection(), user->Root(), XCB_CW_EVENT_MASK, &everything);
    user->Send(id, "WM_PROTOCOLS", { user->Atom("_NET_WM_PING"), 77, id });
    Settle();
    const auto pong = user->Take<xcb_client_message_event_t>(
        XCB_CLIENT_MESSAGE,
        [&](const xcb_client_message_event_t& event) { return event.type == user->Atom("WM_PROTOCOLS"); });
    ASSERT_NE(pong, nullptr);
    EXPECT_EQ(pong->data.data32[1], 77U);
    user->Send(id, "WM_PROTOCOLS", { user->Atom("WM_DELETE_WINDOW"), 0 });
    EXPECT_TRUE(Until([&] { return !window->IsOpen(); }));
}

TEST_F(OnScreen, TakesMonitorsAndScaleAsTheDesktopHasThem)
{
    auto window = OpenWindow(At(10, 10, 100, 100));
    EXPECT_EQ(system->GetWorkArea(5, 5), At(0, 0, 1280, 800));
    EXPECT_EQ(system->GetWorkArea(99999, -5), At(0, 0, 1280, 800)) << "the nearest";
    EXPECT_EQ(system->GetMonitorScale(0, 0), 1.0);

    const std::vector<std::uint32_t> areas = { 1, 2, 30, 40, 10, 30, 1270, 700 };
    user->SetProperty(user->Root(), "_NET_WORKAREA", XCB_ATOM_CARDINAL, 32, XClient::Bytes(areas));
    user->SetProperty(user->Root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, 32, XClient::Bytes({ 1 }));
    EXPECT_EQ(system->GetWorkArea(5, 5), At(10, 30, 1270, 700));
    user->SetProperty(user->Root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, 32, XClient::Bytes({ 9 }));
    EXPECT_EQ(system->GetWorkArea(5, 5), At(0, 0, 1280, 800)) << "a desktop that isn't told of";

    struct Case
    {
        const char* resources;
        double scale;
    };
    for (const Case& each : { Case{ "a: b\nXft.dpi:\t144\nc: d\n", 1.5 }, Case{ "Xft.dpi: 192", 2.0 },
                              Case{ "MyXft.dpi: 192\n", 1.0 }, Case{ "Xft.dpi:", 1.0 },
                              Case{ "Xft.dpi: -5\n", 1.0 }, Case{ "Xft.dpi: 99999\n", 4.0 } })
    {
        user->SetProperty(user->Root(), "RESOURCE_MANAGER", XCB_ATOM_STRING, 8, each.resources);
        EXPECT_EQ(system->GetMonitorScale(0, 0), each.scale) << each.resources;
    }
}

TEST_F(OnScreen, ShowsItsPointersAndTheDrawnOnes)
{
    auto window = OpenWindow(At(100, 100, 200, 150));
    MBitmap ear(24, 24);
    for (int i = 0; i < 24; ++i)
        ear.Row(i)[i] = 0xFFFFEE80u;
    ear.Row(2)[10] = 0x80FF0000u;
    system->SetDrawnCursor(MStdCursor::Ear, ear, { 3, 4 });
    window->pad.cursor = MStdCursor::Ear;
    user->MoveTo(150, 150);
    Settle();
    int width = 0;
    const std::vector<std::uint32_t> seen = user->CursorPixels(width);
    ASSERT_EQ(width, 24);
    EXPECT_EQ(seen[5 * 24 + 5], 0xFFFFEE80u);
    EXPECT_EQ(seen[2 * 24 + 10], 0x80800000u) << "half there: half as bright";
    EXPECT_EQ(seen[3], 0U);

    window->pad.cursor = MStdCursor::Hidden;
    user->MoveTo(151, 150);
    Settle();
    for (const std::uint32_t pixel : user->CursorPixels(width))
        ASSERT_EQ(pixel >> 24, 0U);
    window->pad.cursor = MStdCursor::Text;
    user->MoveTo(152, 150);
    Settle();
    EXPECT_THAT(user->CursorPixels(width), ::testing::Contains(0xFF000000u));
}

TEST_F(OnScreen, LeavesNothingBehindWhenWindowsCloseAndOpen)
{
    auto first = OpenWindow(At(0, 0, 50, 50));
    std::map<std::uint32_t, std::uint32_t> before;
    const auto descriptors = []
    {
        int count = 0;
        for (int i = 0; i < 256; ++i)
            count += fcntl(i, F_GETFD) >= 0 ? 1 : 0;
        return count;
    };
    int descriptorsBefore = 0;
    for (int round = 0; round < 200; ++round)
    {
        const auto kind = static_cast<MWindowSystem::Kind>(round % 3);
        auto window = std::make_unique<PadWindow>(log, 100 + round, 90);
        window->closesOutside = kind == MWindowSystem::Kind::PopUp;
        window->pad.cursor = static_cast<MStdCursor>(round % 18);
        window->Open(kind, round % 2 == 0 ? first.get() : nullptr);
        user->MoveTo(20 + round % 7, 20);
        for (int i = 0; i < 3; ++i)
            system->WaitForMessages(2);
        if (round % 5 != 0)
            window->Close();
        window.reset();
        if (round == 50)
        {
            Settle();
            before = user->ResourcesOf(IdOf(*first));
            descriptorsBefore = descriptors();
        }
    }
    Settle();
    ASSERT_FALSE(before.empty());
    EXPECT_EQ(user->ResourcesOf(IdOf(*first)), before);
    EXPECT_EQ(descriptors(), descriptorsBefore);
    EXPECT_TRUE(first->IsOpen());
}

TEST_F(OnScreen, OutlivesTheServer)
{
    EXPECT_EQ(system->GetDescriptor(), -1) << "making one connects nowhere";
    auto window = OpenWindow(At(0, 0, 300, 200));
    auto popUp = OpenWindow(At(10, 10, 50, 50), MWindowSystem::Kind::PopUp, window.get());
    bool wasTold = false;
    // More has come than is read at once, so that the end shows only when something is sent.
    for (int i = 0; i < 1000; ++i)
        user->MoveTo(5 + i % 200, 5);
    server->Kill();
    // What is asked for before anybody knows brings nothing, and doesn't end the process either.
    for (int i = 0; i < 2000; ++i)
    {
        window->Invalidate();
        system->UpdateWindow(*window);
        system->SetTitle(*window, MString(std::string(200, 'x').c_str()));
    }
    system->SetClipboardText("text");
    system->GetScreenRect(*window);
    for (int i = 0; i < 20 && !wasTold; ++i)
        wasTold = !system->WaitForMessages(10);
    EXPECT_TRUE(wasTold);
    EXPECT_FALSE(window->IsOpen());
    EXPECT_FALSE(popUp->IsOpen());
    EXPECT_EQ(system->GetDescriptor(), -1);
    EXPECT_FALSE(system->ProcessPendingMessages());
    EXPECT_EQ(system->GetHandle(*window), 0U);

    EXPECT_THAT(ErrorOf([&] { window->Open(MWindowSystem::Kind::Normal); }),
                HasSubstr("Could not connect to the display."));
    unsetenv("DISPLAY");
    EXPECT_EQ(ErrorOf([&] { system->Initialize(); }),
              "Could not connect to the display. DISPLAY is not set.");

    // Another one comes.
    server = std::make_unique<XServer>();
    user = std::make_unique<XClient>();
    window = OpenWindow(At(0, 0, 300, 200));
    EXPECT_EQ(WrongPixels(*window), 0U);
}

TEST_F(OnScreen, WakesForOtherThreadsAndTimersAndReturnsFromAStormOfThem)
{
    auto window = OpenWindow(At(0, 0, 100, 100));
    // A wake from another thread ends the wait for ever.
    std::thread other(
        [this]
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            system->SendForceExecuteEvents();
        });
    pollfd readable{ system->GetDescriptor(), POLLIN, 0 };
    EXPECT_EQ(poll(&readable, 1, 5000), 1);
    EXPECT_TRUE(system->WaitForMessages(-1));
    other.join();
    EXPECT_EQ(poll(&readable, 1, 30), 0) << "handled";

    // An event that came with the answer to a question isn't forgotten.
    user->MoveTo(50, 60);
    EXPECT_EQ(system->GetCursorScreen(), (MPoint{ 50, 60 }));
    EXPECT_EQ(poll(&readable, 1, 1000), 1);
    system->ProcessPendingMessages();
    EXPECT_THAT(Taken(), ::testing::Contains("move 50,60"));
    // What didn't fit into one call stays to be told.
    Settle();
    for (int i = 0; i < 1200; ++i)
    {
        user->Button(4, true);
        user->Button(4, false);
    }
    log.clear();
    for (int calls = 0; calls < 10 && poll(&readable, 1, 30) == 1; ++calls)
    {
        const std::size_t before = log.size();
        system->ProcessPendingMessages();
        EXPECT_LE(log.size() - before, 1024U);
    }
    EXPECT_EQ(Taken().size(), 1200U);
    EXPECT_EQ(poll(&readable, 1, 30), 0);

    // The descriptor alone tells that a timer is due.
    window->SetTimer(window->pad, 20);
    system->ProcessPendingMessages();
    EXPECT_EQ(poll(&readable, 1, 5000), 1);
    system->ProcessPendingMessages();
    EXPECT_EQ(window->pad.timerCount, 1);
    EXPECT_TRUE(Until([&] { return window->pad.timerCount >= 4; }));

    // A timer that is always due again lets the host have its thread back.
    window->pad.timerCount = 0;
    window->pad.onTimer = []
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    };
    window->SetTimer(window->pad, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    system->ProcessPendingMessages();
    EXPECT_EQ(window->pad.timerCount, 11);
    window->SetTimer(window->pad, 0);
    Settle();
    EXPECT_EQ(poll(&readable, 1, 30), 0) << "a stopped timer wakes nobody";
}

TEST(PlatformRoom, NeedsNoLibraryOfXToBeLoaded)
{
    const std::string library =
        std::string(std::getenv("TONALIGN_BINARY_DIR")) + "/gui/platform/libgui_platform.a";
    FILE* names = popen(("nm -u '" + library + "'").c_str(), "r");
    ASSERT_NE(names, nullptr);
    std::vector<std::string> needed;
    int lines = 0;
    for (char line[512]; std::fgets(line, sizeof(line), names) != nullptr; ++lines)
        if (std::strstr(line, " U xcb_") != nullptr || std::strstr(line, " U xkb_") != nullptr ||
            std::strstr(line, " U X") != nullptr)
            needed.emplace_back(line);
    EXPECT_EQ(pclose(names), 0);
    EXPECT_GT(lines, 100);
    EXPECT_THAT(needed, IsEmpty());
}
