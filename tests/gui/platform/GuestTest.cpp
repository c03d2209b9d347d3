// SPDX-License-Identifier: GPL-3.0-or-later
// Windows inside of a host's: what is the host's stays the host's.
#include <algorithm>

#include "tests/gui/platform/OnScreen.h"

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace
{
constexpr int KeyA = 38;
constexpr int KeyE = 26;

class Guest : public OnScreen
{
protected:
    void SetUp() override
    {
        OnScreen::SetUp();
        hostTop = user->MakeWindow(MRectangle::OfSize(50, 50, 500, 400),
                                   XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE);
        hostFrame = xcb_generate_id(user->Connection());
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(user->Connection(), XCB_COPY_FROM_PARENT, hostFrame, hostTop, 20, 30, 400, 300, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
        xcb_map_window(user->Connection(), hostFrame);
        user->Sync();
        guest = std::make_unique<PadWindow>(log);
        guest->AttachToParent(hostFrame);
        Settle();
        user->Focus(hostTop);
        user->MoveTo(900, 700);
        user->Type({ KeyA });
        Settle();
        user->Events().clear();
        log.clear();
    }
    void TearDown() override
    {
        guest.reset();
        OnScreen::TearDown();
    }
    /// Letters that the host has got.
    std::vector<int> HostKeys()
    {
        std::vector<int> codes;
        while (const auto event = user->Take<xcb_key_press_event_t>(XCB_KEY_PRESS))
            codes.push_back(event->detail);
        return codes;
    }

    xcb_window_t hostTop = XCB_NONE;
    xcb_window_t hostFrame = XCB_NONE;
    std::unique_ptr<PadWindow> guest;
};
}   // namespace

TEST_F(Guest, ShowsItselfInTheHostAndFollowsIt)
{
    EXPECT_EQ(system->GetParentWindow(*guest), hostFrame);
    EXPECT_EQ(system->GetScreenRect(*guest), MRectangle::OfSize(70, 80, 200, 150));
    EXPECT_EQ(WrongPixels(*guest), 0U);
    user->Configure(hostTop, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, { 100, 120 });
    user->Configure(IdOf(*guest), XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, { 260, 222 });
    user->Sync();
    Settle();
    EXPECT_EQ(system->GetScreenRect(*guest), MRectangle::OfSize(120, 150, 260, 222));
    EXPECT_EQ(guest->Width(), 260);
    EXPECT_EQ(WrongPixels(*guest), 0U);
    user->Click(130, 170);
    Settle();
    EXPECT_THAT(Taken(), Contains("left 10,20 +1"));

    // To another window of the host, and back to none.
    const xcb_window_t second = user->MakeWindow(MRectangle::OfSize(600, 100, 300, 300));
    system->SetParentWindow(*guest, second);
    Settle();
    EXPECT_EQ(system->GetScreenRect(*guest), MRectangle::OfSize(600, 100, 260, 222));
    EXPECT_EQ(WrongPixels(*guest), 0U);
    system->DetachFromParent(*guest);
    Settle();
    EXPECT_FALSE(system->IsVisible(*guest));
    xcb_destroy_window(user->Connection(), second);
    Settle();
    EXPECT_TRUE(guest->IsOpen());
}

TEST_F(Guest, HasTheKeyboardOnlyBetweenTakingAndReturningIt)
{
    // Under the mouse, but not asked for: the host's keys stay the host's.
    user->MoveTo(100, 100);
    user->Type({ KeyA });
    Settle();
    EXPECT_THAT(log, Not(Contains("key 65")));
    EXPECT_THAT(HostKeys(), ElementsAre(KeyA));

    user->Click(100, 100);
    ASSERT_TRUE(Until([&] { return system->HasKeyboard(*guest); }));
    EXPECT_EQ(user->FocusWindow(), IdOf(*guest));
    log.clear();
    user->Type({ KeyA });
    Settle();
    EXPECT_THAT(Taken(), ElementsAre("key 65", "char 97", "key up 65"));
    EXPECT_THAT(HostKeys(), IsEmpty());

    // What nobody here takes the host gets, once, down and up.
    guest->pad.takesKeys = false;
    user->Type({ KeyE });
    Settle();
    EXPECT_THAT(Taken(), ElementsAre("key 69", "char 101", "key up 69"));
    EXPECT_NE(user->Take<xcb_key_release_event_t>(XCB_KEY_RELEASE), nullptr);
    const auto handed = user->Take<xcb_key_press_event_t>(XCB_KEY_PRESS);
    ASSERT_NE(handed, nullptr);
    EXPECT_EQ(handed->detail, KeyE);
    // A host that gives all its keys to the guest gives this one back.
    xcb_key_press_event_t back = *handed;
    back.event = IdOf(*guest);
    for (int i = 0; i < 3; ++i)
        xcb_send_event(user->Connection(), 0, IdOf(*guest), XCB_EVENT_MASK_KEY_PRESS,
                       reinterpret_cast<const char*>(&back));
    user->Sync();
    Settle();
    EXPECT_THAT(Taken(), IsEmpty());
    EXPECT_THAT(HostKeys(), IsEmpty()) << "it doesn't go round";

    // Whoever needed it doesn't any more.
    guest->SetFocusOwner(nullptr);
    Settle();
    EXPECT_EQ(user->FocusWindow(), hostTop);
    EXPECT_FALSE(system->HasKeyboard(*guest));
    user->Type({ KeyA });
    Settle();
    EXPECT_THAT(HostKeys(), ElementsAre(KeyA));
}

TEST_F(Guest, AsksAnEmbedderForTheKeyboard)
{
    EXPECT_THAT(user->Values(IdOf(*guest), "_XEMBED_INFO"), ElementsAre(0U, 1U));
    const auto tell = [&](std::uint32_t what, std::uint32_t detail = 0)
    {
        user->Send(IdOf(*guest), "_XEMBED", { 0, what, 0, detail, 0 });
        Settle();
    };
    tell(0, hostFrame);
    const xcb_window_t before = user->FocusWindow();
    system->TakeKeyboard(*guest);
    Settle();
    EXPECT_EQ(user->FocusWindow(), before) << "the embedder does it";
    const auto wish = user->Take<xcb_client_message_event_t>(XCB_CLIENT_MESSAGE);
    ASSERT_NE(wish, nullptr);
    EXPECT_EQ(wish->type, user->Atom("_XEMBED"));
    EXPECT_EQ(wish->data.data32[1], 3U);
    EXPECT_FALSE(system->HasKeyboard(*guest));

    guest->SetFocusOwner(&guest->pad);
    tell(4);
    EXPECT_TRUE(system->HasKeyboard(*guest));
    log.clear();
    // It hands its keys on as sent ones.
    xcb_key_press_event_t key{};
    key.response_type = XCB_KEY_PRESS;
    key.detail = KeyA;
    key.time = 12345;
    key.event = IdOf(*guest);
    key.root = user->Root();
    key.same_screen = 1;
    xcb_send_event(user->Connection(), 0, IdOf(*guest), 0, reinterpret_cast<const char*>(&key));
    user->Sync();
    Settle();
    EXPECT_THAT(Taken(), ElementsAre("key 65", "char 97"));
    tell(5);
    EXPECT_FALSE(system->HasKeyboard(*guest));
}

TEST_F(Guest, OutlivesTheHostsWindow)
{
    auto other = OpenWindow(MRectangle::OfSize(600, 50, 200, 150));
    auto dialog = OpenWindow(MRectangle::OfSize(700, 300, 100, 80), MWindowSystem::Kind::Dialog, guest.get());
    EXPECT_THAT(user->Values(IdOf(*dialog), "WM_TRANSIENT_FOR"), ElementsAre(hostTop))
        << "the desktop knows the host's outer window only";
    // In the middle of painting, pressing and asking.
    user->MoveTo(100, 100);
    user->Button(1, true);
    xcb_destroy_window(user->Connection(), hostTop);
    user->Sync();
    guest->Invalidate();
    system->SetTitle(*guest, "gone");
    system->SetSizeOnly(*guest, 300, 200);
    system->TakeKeyboard(*guest);
    system->ReturnKeyboard(*guest);
    system->UpdateWindow(*guest);
    EXPECT_TRUE(Until([&] { return !guest->IsOpen(); }));
    EXPECT_FALSE(dialog->IsOpen()) << "with what stood above it";
    EXPECT_EQ(system->GetHandle(*guest), 0U);
    user->Button(1, false);
    Settle();
    EXPECT_TRUE(other->IsOpen());
    other->pad.color = MColor(1, 2, 3);
    other->Invalidate();
    Settle();
    EXPECT_EQ(WrongPixels(*other), 0U);

    // A window that was gone before: nothing crashes, and it isn't open for long.
    guest->AttachToParent(hostTop);
    Settle();
    EXPECT_TRUE(other->IsOpen());
    guest->Detach();

    // With the last window the keyboard and the mouse are everybody's again, and so is every byte.
    other->Close();
    const std::uint64_t sent = system->BytesSent();
    system->WaitForMessages(50);
    EXPECT_EQ(system->BytesSent(), sent);
}
