// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MWindows.h"
#include "gui/platform/XcbWindowSystem.h"
#include "tests/ErrorOf.h"
#include "tests/gui/PlainStyle.h"
#include "tests/gui/platform/XClient.h"
#include "tests/gui/platform/XServer.h"

/// A control that writes down what it gets and shows one colour.
class Pad : public MControl
{
public:
    explicit Pad(std::vector<std::string>& diary) : log(diary) { tabStop = true; }

    bool OnEvent(const MControlEvent& event) override
    {
        static const char* names[] = { "left",  "right", "middle", "left up", "right up", "middle up",
                                       "twice", "twice", "twice",  "move",    "wheel",    "",
                                       "",      "key",   "key up", "char" };
        const auto code = static_cast<std::size_t>(event.code);
        std::string line;
        if (event.code == MEventCode::Focus)
            line = event.focused ? "focused" : "unfocused";
        else if (event.code == MEventCode::Character)
            line = "char " + std::to_string(static_cast<std::uint32_t>(event.character));
        else if (event.IsKey())
            line = std::string(names[code]) + " " + std::to_string(event.key);
        else
            line = std::string(names[code]) + " " + std::to_string(event.x) + "," + std::to_string(event.y);
        if (event.code == MEventCode::Wheel)
            line += " " + std::to_string(event.key);
        if (event.modifiers != 0)
            line += " +" + std::to_string(event.modifiers);
        log.push_back(line);
        if (onEvent)
            onEvent(event);
        return event.IsKey() ? takesKeys : event.IsMouse() && !event.IsDoubleClick();
    }
    void OnMouseEnter() override { log.emplace_back("in"); }
    void OnMouseLeave() override { log.emplace_back("out"); }
    void OnCaptureEnd() override { log.emplace_back("released"); }
    void OnTimer() override
    {
        ++timerCount;
        if (onTimer)
            onTimer();
    }
    bool OnDrop(const std::vector<MString>& files, std::int32_t x, std::int32_t y) override
    {
        log.push_back("drop " + std::to_string(x) + "," + std::to_string(y));
        dropped = files;
        return true;
    }
    bool OnDropText(const MString& text, std::int32_t, std::int32_t) override
    {
        log.push_back("text " + text.ToUTF8());
        return true;
    }
    void OnDragOver(bool isOver) override { log.emplace_back(isOver ? "over" : "away"); }
    void Paint(MDrawer& drawer) override
    {
        ++paintCount;
        drawer.FillRectangle(OwnRectangle(), color);
    }
    void OnPlaced() override { ++placedCount; }

    std::vector<std::string>& log;
    std::vector<MString> dropped;
    std::function<void(const MControlEvent&)> onEvent;
    std::function<void()> onTimer;
    MColor color{ 20, 120, 220 };
    int timerCount = 0;
    int paintCount = 0;
    int placedCount = 0;
    bool takesKeys = true;
};

/// A window that is filled with one pad.
class PadWindow : public MWindow
{
public:
    explicit PadWindow(std::vector<std::string>& diary, std::int32_t width = 200, std::int32_t height = 150)
        : pad(Make<Pad>(diary))
    {
        MLayout& column = MakeLayout<MLayoutVertical>();
        pad.layout.x.ratio = pad.layout.y.ratio = 1;
        column.AddControl(pad);
        resizableX = resizableY = true;
        SetSize(width, height);
    }

    Pad& pad;
};

/// Tests against a server of their own: what a user does there, and what other programs do.
class OnScreen : public ::testing::Test
{
protected:
    void SetUp() override { Connect({}); }
    void TearDown() override
    {
        windows.reset();
        user.reset();
        server.reset();
    }
    void Connect(const std::vector<std::string>& options)
    {
        server = std::make_unique<XServer>(options);
        ASSERT_TRUE(server->IsRunning()) << "Xvfb doesn't start; scripts/setup installs it";
        user = std::make_unique<XClient>();
        auto made = std::make_unique<XcbWindowSystem>();
        system = made.get();
        windows = std::make_unique<MWindows>(std::move(made));
        windows->SetStyle(std::make_unique<PlainStyle>());
    }

    /// Works as a program's main loop does until `isDone`.
    bool Until(const std::function<bool()>& isDone, int milliseconds = 5000)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        while (!isDone())
        {
            if (std::chrono::steady_clock::now() > end)
                return false;
            system->WaitForMessages(5);
        }
        return true;
    }
    /// Until nothing happens any more.
    void Settle()
    {
        user->Sync();
        for (int quiet = 0; quiet < 4;)
        {
            const std::uint64_t sent = system->BytesSent();
            const std::size_t lines = log.size();
            system->WaitForMessages(10);
            user->Sync();
            quiet = sent == system->BytesSent() && lines == log.size() ? quiet + 1 : 0;
        }
    }
    std::unique_ptr<PadWindow> OpenWindow(MRectangle place,
                                          MWindowSystem::Kind kind = MWindowSystem::Kind::Normal,
                                          MWindow* owner = nullptr)
    {
        auto window = std::make_unique<PadWindow>(log, place.Width(), place.Height());
        window->SetPosition(place.left, place.top);
        window->closesOutside = kind == MWindowSystem::Kind::PopUp;
        EXPECT_EQ(ErrorOf([&] { window->Open(kind, owner); }), "");
        Settle();
        return window;
    }
    xcb_window_t IdOf(const MWindow& window) const
    {
        return static_cast<xcb_window_t>(system->GetHandle(window));
    }
    std::vector<std::string> Taken() { return std::exchange(log, {}); }
    /// How many pixels the user sees other than the window has painted them.
    std::size_t WrongPixels(const MWindow& window)
    {
        const MBitmap& picture = window.Picture();
        const std::vector<std::uint32_t> seen = user->Pixels(IdOf(window), picture.Bounds());
        const auto count =
            static_cast<std::size_t>(picture.Width()) * static_cast<std::size_t>(picture.Height());
        if (seen.size() != count || count == 0)
            return count + 1;
        std::size_t wrong = 0;
        for (std::size_t i = 0; i < count; ++i)
            wrong += seen[i] != (picture.Row(0)[i] & 0xFFFFFF);
        return wrong;
    }

    std::vector<std::string> log;
    std::unique_ptr<XServer> server;
    std::unique_ptr<XClient> user;
    XcbWindowSystem* system = nullptr;
    std::unique_ptr<MWindows> windows;
};
