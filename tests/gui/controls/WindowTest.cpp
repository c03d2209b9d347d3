// SPDX-License-Identifier: GPL-3.0-or-later
// Windows without a display: who gets which event, what is painted, who is blocked.
#include <random>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/controls/MControlInvalidator.h"
#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MWindows.h"
#include "gui/platform/HeadlessWindowSystem.h"
#include "state/tree/MAttribute.h"
#include "tests/ErrorOf.h"
#include "tests/gui/PlainStyle.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{
using Names = std::vector<std::string>;

// Paints itself flat and writes down what it gets.
class Probe : public MControl
{
public:
    Probe(Names& diary, std::string ownName, MColor ownColor)
        : log(diary), name(std::move(ownName)), color(ownColor)
    {
        id = name.c_str();
    }

    void Paint(MDrawer& drawer) override { drawer.FillRectangle(OwnRectangle(), color); }
    void PaintAbove(MDrawer& drawer) override
    {
        drawer.FillRectangle({ 0, 0, 2, 60 }, MColor(200, 0, 0, 120));
    }
    bool OnEvent(const MControlEvent& event) override
    {
        last = event;
        if (event.code == MEventCode::Focus)
            log.push_back(name + (event.focused ? " focused" : " unfocused"));
        else if (event.code == MEventCode::Wheel || event.IsPress() || event.IsDoubleClick())
            log.push_back(name + " " + std::to_string(static_cast<int>(event.code)));
        return event.IsMouse() ? takesMouse : MControl::OnEvent(event);
    }
    void OnMouseEnter() override { log.push_back(name + " in"); }
    void OnMouseLeave() override { log.push_back(name + " out"); }
    void OnCaptureEnd() override { log.push_back(name + " released"); }
    void OnTimer() override { log.push_back(name + " timer"); }
    bool OnDrop(const std::vector<MString>& files, std::int32_t x, std::int32_t y) override
    {
        log.push_back(name + " " + std::to_string(files.size()) + "@" + std::to_string(x) + "," +
                      std::to_string(y));
        return true;
    }
    void OnClick(const MOnControlClickParams& params, std::uintptr_t what)
    {
        log.push_back(name + " click" + std::to_string(what) + "@" + std::to_string(params.x));
    }
    void ListenToClicks()
    {
        Clicks().OnLeftClick().AddHandler<&Probe::OnClick>(*this, {}, 1);
        Clicks().OnRightClick().AddHandler<&Probe::OnClick>(*this, {}, 2);
        Clicks().OnMiddleClick().AddHandler<&Probe::OnClick>(*this, {}, 3);
        Clicks().OnLeftDoubleClick().AddHandler<&Probe::OnClick>(*this, {}, 11);
    }

    Names& log;
    std::string name;
    MColor color;
    MControlEvent last;
    bool takesMouse = false;
};

class Windows : public ::testing::Test
{
protected:
    Windows()
    {
        auto system = std::make_unique<HeadlessWindowSystem>();
        screen = system.get();
        windows = std::make_unique<MWindows>(std::move(system));
        windows->SetStyle(std::make_unique<PlainStyle>());
    }

    std::unique_ptr<MWindow> NewWindow(std::int32_t width = 200, std::int32_t height = 150)
    {
        auto window = std::make_unique<MWindow>();
        window->SetSize(width, height);
        window->resizableX = window->resizableY = true;
        return window;
    }
    Probe& Add(MControl& parent, const std::string& name, MRectangle place, MColor color = MColor(9, 90, 200))
    {
        Probe& made = parent.Make<Probe>(log, name, color);
        made.SetSize(place.Width(), place.Height());
        made.SetPosition(place.left, place.top);
        return made;
    }
    Names Taken() { return std::exchange(log, {}); }

    Names log;
    HeadlessWindowSystem* screen = nullptr;
    std::unique_ptr<MWindows> windows;
};

constexpr MRectangle At(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height)
{
    return MRectangle::OfSize(x, y, width, height);
}
}   // namespace

TEST_F(Windows, SendPressesToTheTopmostAndClicksOnlyWhereBothHappen)
{
    auto window = NewWindow();
    Probe& below = Add(*window, "below", At(10, 10, 100, 80));
    Probe& above = Add(*window, "above", At(50, 40, 100, 80));
    Probe& inner = Add(above, "inner", At(5, 5, 20, 20));
    below.ListenToClicks();
    above.ListenToClicks();
    inner.takesMouse = true;
    window->Open(MWindowSystem::Kind::Normal);

    screen->Click(*window, 60, 80);
    EXPECT_THAT(Taken(), ElementsAre("above in", "above 0", "above released", "above click1@10"));
    // Pressed below, let go above: no click for anybody, and nobody else comes alive under the mouse.
    screen->PressMouse(*window, 20, 20, 1);
    EXPECT_TRUE(below.IsPressed());
    EXPECT_EQ(below.GetDrawState() & DrawPressed, DrawPressed);
    screen->MoveMouse(*window, 120, 80);
    EXPECT_EQ(below.GetDrawState() & (DrawPressed | DrawHovered), 0) << "let go now it does nothing";
    screen->ReleaseMouse(*window, 120, 80, 1);
    EXPECT_FALSE(below.IsPressed());
    EXPECT_THAT(Taken(),
                ElementsAre("above out", "below in", "below 1", "below out", "below released", "above in"));
    // Who takes the press keeps it from those behind.
    screen->Click(*window, 56, 46, 2);
    EXPECT_THAT(Taken(), ElementsAre("inner in", "inner 2", "inner released"));
    EXPECT_EQ(inner.last.x, 1);
    EXPECT_EQ(inner.last.y, 1);

    above.SetEnabled(false);
    screen->Click(*window, 60, 80);
    inner.SetVisible(false);
    screen->Click(*window, 56, 46);
    EXPECT_THAT(Taken(), ElementsAre("inner out")) << "what is disabled still hides what lies behind it";
    above.SetVisible(false);
    screen->Click(*window, 60, 80);
    EXPECT_THAT(Taken(),
                ElementsAre("above out", "below in", "below 0", "below released", "below click1@50"));
}

TEST_F(Windows, MakeADoubleClickOfTwoAndAPressOfOneThatNobodyWants)
{
    auto window = NewWindow();
    Probe& probe = Add(*window, "probe", At(0, 0, 100, 100));
    probe.takesMouse = true;
    window->Open(MWindowSystem::Kind::Normal);
    screen->DoubleClick(*window, 5, 5);
    EXPECT_THAT(Taken(), ElementsAre("probe in", "probe 0", "probe released", "probe 6"));

    probe.takesMouse = false;
    probe.tabStop = true;
    screen->DoubleClick(*window, 5, 5);
    EXPECT_THAT(Taken(), ElementsAre("probe focused", "probe 0", "probe released", "probe 6", "probe 0",
                                     "probe released"));
    probe.ListenToClicks();
    screen->DoubleClick(*window, 6, 5);
    EXPECT_THAT(Taken(),
                ElementsAre("probe 0", "probe released", "probe click1@6", "probe 6", "probe click11@6"));
    // Too far apart for a pair.
    screen->Click(*window, 6, 5);
    screen->PressMouse(*window, 20, 5);
    screen->ReleaseMouse(*window, 20, 5);
    EXPECT_EQ(probe.last.code, MEventCode::LeftUp);
    EXPECT_THAT(Taken(), ::testing::Not(::testing::Contains("probe 6")));

    windows->LockClicksOut(100);
    screen->PressMouse(*window, 6, 5);
    screen->MoveMouse(*window, 7, 5);
    EXPECT_EQ(probe.last.code, MEventCode::Move);
    EXPECT_THAT(Taken(), IsEmpty()) << "swallowed, but moves pass";
    screen->Click(*window, 6, 5);
    EXPECT_THAT(Taken(), ::testing::Contains("probe click1@6"));
}

TEST_F(Windows, GiveTheKeyboardRoundAndTakeItFromWhoeverGoes)
{
    auto window = NewWindow();
    window->closesOnEscape = true;
    std::vector<Probe*> probes;
    for (int i = 0; i < 5; ++i)
    {
        probes.push_back(&Add(*window, std::to_string(i), At(i * 30, 0, 20, 20)));
        probes.back()->tabStop = i != 1;
    }
    probes[2]->SetEnabled(false);
    window->Open(MWindowSystem::Kind::Normal);
    const auto press = [&](std::int32_t key, std::uint8_t modifiers = 0)
    {
        screen->Key(*window, key, modifiers);
        const MControl* owner = window->FocusOwner();
        return owner != nullptr ? owner->id : MString("nobody");
    };
    EXPECT_EQ(press(MKey::Tab), "0");
    EXPECT_EQ(press(MKey::Tab), "3");
    EXPECT_EQ(press(MKey::Right), "4");
    EXPECT_EQ(press(MKey::Down), "0");
    EXPECT_EQ(press(MKey::Tab, ModifierShift), "4");
    EXPECT_EQ(press(MKey::Left), "3");
    EXPECT_EQ(press('X'), "3");
    EXPECT_TRUE(window->ShowsFocusRing());
    EXPECT_THAT(Taken(), ElementsAre("0 focused", "0 unfocused", "3 focused", "3 unfocused", "4 focused",
                                     "4 unfocused", "0 focused", "0 unfocused", "4 focused", "4 unfocused",
                                     "3 focused"));
    EXPECT_EQ(screen->Look(*window).Pixel(88, 21), PlainStyle::RingColor) << "outside of the control";
    screen->Click(*window, 125, 5);
    EXPECT_EQ(window->FocusOwner(), probes[4]);
    EXPECT_FALSE(window->ShowsFocusRing());
    EXPECT_NE(screen->Look(*window).Pixel(88, 21), PlainStyle::RingColor);

    probes[4]->SetVisible(false);
    EXPECT_EQ(window->FocusOwner(), nullptr);
    probes[3]->SetFocus();
    windows->DeleteLater(window->RemoveChild(*probes[3]));
    EXPECT_EQ(window->FocusOwner(), nullptr);
    EXPECT_EQ(press(MKey::Tab), "0");
    screen->Key(*window, MKey::Escape);
    EXPECT_FALSE(window->IsOpen());
}

TEST_F(Windows, RunShortcutsWhenNobodyElseWantsTheKey)
{
    auto window = NewWindow();
    Probe& probe = Add(*window, "probe", At(0, 0, 20, 20));
    probe.tabStop = true;
    const auto shortcut =
        [&](std::int32_t key, std::uint8_t modifiers, bool further, bool whenDown, const char* name)
    {
        MWindowShortcut made;
        made.keys.keyCode = key;
        made.keys.modifiers = modifiers;
        made.keys.allowsFurtherModifiers = further;
        made.whenDown = whenDown;
        made.act = [this, name]
        {
            log.push_back(name);
            return true;
        };
        window->AddShortcut(made);
    };
    shortcut('Z', ModifierCtrl, false, true, "undo");
    shortcut('S', ModifierCtrl, true, false, "save");
    shortcut(MKey::Tab, 0, false, false, "never: Tab moves the focus");
    window->Open(MWindowSystem::Kind::Normal);
    EXPECT_TRUE(screen->Key(*window, 'Z', ModifierCtrl));
    EXPECT_FALSE(screen->Key(*window, 'Z', ModifierCtrl | ModifierShift));
    EXPECT_TRUE(screen->Key(*window, 'S', ModifierCtrl | ModifierShift));
    EXPECT_FALSE(screen->Key(*window, 'S'));
    screen->Key(*window, MKey::Tab);
    EXPECT_THAT(Taken(), ElementsAre("undo", "save", "probe focused"));
}

TEST_F(Windows, PaintOnlyWhatChangedAndAlwaysTheSameAsAll)
{
    std::mt19937 random(7);
    const auto pick = [&random](std::int32_t below)
    {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(below));
    };
    auto window = NewWindow(300, 240);
    std::vector<Probe*> probes;
    std::vector<MControl*> parents{ window.get() };
    for (int i = 0; i < 40; ++i)
    {
        MControl& parent =
            *parents[static_cast<std::size_t>(pick(static_cast<std::int32_t>(parents.size())))];
        const auto alpha = static_cast<std::uint8_t>(i % 3 == 0 ? 255 : 60 + i * 4);
        Probe& probe =
            Add(parent, std::to_string(i), At(pick(200) - 20, pick(160) - 20, 10 + pick(120), 10 + pick(90)),
                MColor(static_cast<std::uint8_t>(pick(256)), static_cast<std::uint8_t>(pick(256)),
                       static_cast<std::uint8_t>(i), alpha));
        probe.opaque = alpha == 255;
        probe.tabStop = true;
        probe.overlay = i % 7 == 0;
        probes.push_back(&probe);
        parents.push_back(&probe);
    }
    window->Open(MWindowSystem::Kind::Normal);
    screen->Look(*window);
    for (int round = 0; round < 400; ++round)
    {
        for (int change = pick(3); change >= 0; --change)
        {
            Probe& probe = *probes[static_cast<std::size_t>(pick(40))];
            switch (pick(7))
            {
            case 0:
                probe.SetVisible(!probe.IsVisible());
                break;
            case 1:
                probe.SetPosition(pick(200) - 20, pick(160) - 20);
                break;
            case 2:
                probe.SetSize(5 + pick(120), 5 + pick(90));
                break;
            case 3:
                probe.SetScroll(pick(30) - 15, pick(30) - 15);
                break;
            case 4:
                probe.color = MColor(static_cast<std::uint8_t>(pick(256)), 7,
                                     static_cast<std::uint8_t>(pick(256)), probe.color.Alpha());
                probe.Invalidate();
                break;
            case 5:
                probe.SetFocus();
                break;
            default:
                screen->Key(*window, MKey::Tab);
                break;
            }
        }
        MBitmap partly;
        partly.CopyFrom(screen->Look(*window));
        window->Invalidate();
        const MBitmap& whole = screen->Look(*window);
        std::int32_t wrong = 0;
        for (std::int32_t y = 0; y < 240; ++y)
            for (std::int32_t x = 0; x < 300; ++x)
                wrong += partly.Pixel(x, y) != whole.Pixel(x, y) ? 1 : 0;
        ASSERT_EQ(wrong, 0) << "round " << round;
    }
    screen->TakePaintedPixels();
    EXPECT_EQ(screen->TakePaintedPixels(), 0) << "at rest";
    window->Invalidate();
    EXPECT_EQ(screen->TakePaintedPixels(), 300 * 240) << "no pixel twice";
    window->Invalidate(At(3, 3, 4, 4));
    window->Invalidate(At(290, 230, 2, 2));
    EXPECT_EQ(screen->TakePaintedPixels(), 20) << "not what lies between two corners";
}

TEST_F(Windows, BlockTheirOwnerWhileModal)
{
    auto window = NewWindow();
    Probe& probe = Add(*window, "probe", At(0, 0, 50, 50));
    probe.ListenToClicks();
    probe.tabStop = true;
    window->Open(MWindowSystem::Kind::Normal);
    probe.SetFocus();
    Taken();
    auto first = NewWindow(100, 80);
    auto second = NewWindow(60, 40);
    second->closesOnEscape = true;
    screen->Later(
        [&]
        {
            EXPECT_EQ(window->BlockedBy(), first.get());
            screen->Click(*window, 5, 5);
            EXPECT_FALSE(screen->Key(*window, 'A'));
            EXPECT_EQ(screen->GetActiveRoot(), first.get()) << "the click only brings it forward";
            // Nested, closed from within.
            screen->Later([&] { EXPECT_EQ(window->BlockedBy(), second.get()); });
            screen->Later([&] { screen->Key(*second, MKey::Escape); });
            EXPECT_EQ(second->ShowModal(first.get()), 0);
            EXPECT_EQ(window->BlockedBy(), first.get());
            first->EndModal(7);
        });
    EXPECT_EQ(first->ShowModal(window.get()), 7);
    EXPECT_EQ(window->BlockedBy(), nullptr);
    EXPECT_THAT(Taken(), ElementsAre("probe unfocused", "probe focused"));
    screen->Click(*window, 5, 5);
    EXPECT_THAT(Taken(), ::testing::Contains("probe click1@5"));

    // The owner goes while something is open above it.
    first->OpenModal(window.get());
    second->OpenModal(first.get());
    window->Close();
    EXPECT_FALSE(first->IsOpen() || second->IsOpen());
    EXPECT_EQ(screen->WindowCount(), 0);
}

TEST_F(Windows, ClosePopUpsByAPressAnywhereElse)
{
    auto window = NewWindow();
    Probe& probe = Add(*window, "probe", At(0, 0, 50, 50));
    probe.ListenToClicks();
    window->Open(MWindowSystem::Kind::Normal);
    auto menu = NewWindow(60, 60);
    auto submenu = NewWindow(60, 60);
    menu->closesOutside = submenu->closesOutside = true;
    const auto open = [&]
    {
        menu->Open(MWindowSystem::Kind::PopUp, window.get());
        submenu->Open(MWindowSystem::Kind::PopUp, menu.get());
    };
    open();
    screen->Click(*submenu, 5, 5);
    EXPECT_TRUE(menu->IsOpen() && submenu->IsOpen());
    screen->Click(*menu, 5, 5);
    EXPECT_TRUE(menu->IsOpen());
    EXPECT_FALSE(submenu->IsOpen());
    menu->Close();
    open();
    screen->Click(*window, 5, 5);
    EXPECT_FALSE(menu->IsOpen() || submenu->IsOpen());
    EXPECT_THAT(Taken(), ElementsAre("probe in")) << "the press only closes";
    open();
    EXPECT_TRUE(windows->ClosePopUps(nullptr)) << "in another program's window";
    EXPECT_FALSE(menu->IsOpen());
}

TEST_F(Windows, RunTimersOnceForHoweverManyPeriods)
{
    auto window = NewWindow();
    Probe& fast = Add(*window, "fast", At(0, 0, 5, 5));
    auto slow = std::make_unique<Probe>(log, "slow", MColor());
    MControl& slowControl = window->AddChild(std::move(slow));
    window->Open(MWindowSystem::Kind::Normal);
    window->SetTimer(fast, 10);
    window->SetTimer(slowControl, 25);
    screen->PassTime(50);
    EXPECT_THAT(Taken(), ElementsAre("fast timer", "fast timer", "slow timer", "fast timer", "fast timer",
                                     "fast timer", "slow timer"));
    EXPECT_EQ(windows->Timers().Next(screen->GetTime() + 1000), 0);
    windows->Timers().Run(screen->GetTime() + 1003);
    EXPECT_THAT(Taken(), ElementsAre("fast timer", "slow timer"));
    window->RemoveChild(slowControl);
    window->SetTimer(fast, 0);
    EXPECT_EQ(windows->Timers().Next(screen->GetTime()), -1);
}

TEST_F(Windows, TakeRepaintsOfOtherThreadsTogether)
{
    auto window = NewWindow();
    Probe& probe = Add(*window, "probe", At(20, 30, 100, 80));
    window->Open(MWindowSystem::Kind::Normal);
    screen->TakePaintedPixels();
    MControlInvalidator invalidator(probe);
    std::vector<std::thread> threads;
    for (std::int32_t i = 0; i < 3; ++i)
        threads.emplace_back(
            [&invalidator, i]
            {
                for (std::int32_t k = 0; k < 2000; ++k)
                    invalidator.Invalidate(At(i * 10, k % 5, 10, 1));
            });
    std::int64_t painted = 0;
    for (int i = 0; i < 50; ++i)
    {
        painted += screen->TakePaintedPixels();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    for (std::thread& each : threads)
        each.join();
    for (int i = 0; i < 2000 && painted < 150; ++i)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        painted += screen->TakePaintedPixels();
    }
    EXPECT_GE(painted, 150);
    EXPECT_LE(painted, 150 * 20) << "6000 requests in a moment";
    EXPECT_GT(screen->WakeUps(), 0);
}

TEST_F(Windows, ResizeByTheirBordersWithinTheirLimits)
{
    auto window = NewWindow(200, 150);
    window->resizeBorder = 4;
    window->moveZoneHeight = 20;
    window->maxWidth = 260;
    MLayout& column = window->MakeLayout<MLayoutVertical>();
    Probe& content = Add(*window, "content", At(0, 0, 120, 90));
    content.layout.x.ratio = content.layout.y.ratio = 1;
    content.SetMinimalClientSize({ 120, 90 });
    column.AddControl(content);
    content.receivesMouse = false;
    window->SetPosition(300, 200);
    window->Open(MWindowSystem::Kind::Normal);

    struct Case
    {
        MPoint from;
        MStdCursor cursor;
        MPoint by;
        MRectangle result;
    };
    const Case cases[] = {
        { { 199, 149 }, MStdCursor::SizeFalling, { 30, 10 }, At(300, 200, 230, 160) },
        { { 0, 80 }, MStdCursor::SizeHorizontal, { -100, 50 }, At(270, 200, 260, 160) },
        { { 100, 0 }, MStdCursor::SizeVertical, { 5, 200 }, At(270, 270, 260, 90) },
        { { 258, 5 }, MStdCursor::SizeRising, { -999, -999 }, At(270, -729, 120, 1089) },
        { { 60, 10 }, MStdCursor::Arrow, { 7, 800 }, At(277, 71, 120, 1089) },
    };
    for (const Case& each : cases)
    {
        screen->MoveMouse(*window, each.from.x, each.from.y);
        EXPECT_EQ(screen->CursorOf(*window), each.cursor);
        screen->PressMouse(*window, each.from.x, each.from.y);
        // In two steps, from wherever the window then is.
        for (const std::int32_t part : { 2, 1 })
        {
            const MRectangle now = screen->GetScreenRect(*window);
            const MPoint pointer = screen->GetCursorScreen();
            const std::int32_t x = part == 2 ? each.by.x / 2 : each.by.x - each.by.x / 2;
            const std::int32_t y = part == 2 ? each.by.y / 2 : each.by.y - each.by.y / 2;
            screen->MoveMouse(*window, pointer.x + x - now.left, pointer.y + y - now.top);
        }
        screen->ReleaseMouse(*window, each.from.x, each.from.y);
        EXPECT_EQ(screen->GetScreenRect(*window), each.result) << each.from.x << "," << each.from.y;
        EXPECT_EQ(content.AbsoluteRectangle(), window->OwnRectangle());
    }
    // Content that needs more room asks for it, once.
    content.SetMinimalClientSize({ 180, 90 });
    window->Relayout();
    windows->RequestUpdate();
    screen->MoveMouse(*window, 60, 60);
    EXPECT_EQ(screen->GetScreenRect(*window).Width(), 180);
    screen->Resize(*window, 20, 20);
    EXPECT_EQ(window->Width(), 180) << "a host that ignores limits sees a part";
}

TEST_F(Windows, DropFilesOnTheInnermostThatTakesThem)
{
    auto window = NewWindow();
    Probe& outer = Add(*window, "outer", At(10, 10, 100, 100));
    Probe& inner = Add(outer, "inner", At(10, 10, 20, 20));
    outer.acceptsFiles = true;
    window->Open(MWindowSystem::Kind::Normal);
    EXPECT_TRUE(screen->Drop(*window, 25, 26, { "a", "b" }));
    EXPECT_FALSE(screen->Drop(*window, 5, 5, { "a" }));
    inner.acceptsFiles = true;
    EXPECT_TRUE(screen->Drop(*window, 25, 26, { "a" }));
    inner.SetEnabled(false);
    EXPECT_TRUE(screen->Drop(*window, 25, 26, { "a" }));
    EXPECT_THAT(Taken(), ElementsAre("outer 2@15,16", "inner 1@5,6", "outer 1@15,16"));
}

TEST_F(Windows, RememberPlaceSizeAndWhatIsCollapsed)
{
    MAttribute stored("window");
    for (const bool saving : { true, false })
    {
        auto window = NewWindow();
        window->savesPosition = window->savesSize = true;
        Probe& panel = Add(*window, "panel", At(0, 0, 50, 50));
        panel.savesState = panel.savesRatio = true;
        if (saving)
        {
            panel.SetCollapsed(true);
            panel.layout.x.ratio = 17;
            window->Open(MWindowSystem::Kind::Normal);
            screen->SetPositionOnly(*window, 44, 55);
            screen->Resize(*window, 333, 222);
            window->SaveState(stored);
        }
        else
        {
            window->LoadState(stored);
            EXPECT_TRUE(panel.IsCollapsed());
            EXPECT_EQ(panel.layout.x.ratio, 17);
            window->Open(MWindowSystem::Kind::Normal);
            EXPECT_EQ(screen->GetScreenRect(*window), At(44, 55, 333, 222));
        }
    }
}
