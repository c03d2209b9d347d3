// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "gui/controls/MWindows.h"
#include "gui/platform/HeadlessWindowSystem.h"
#include "gui/widgets/MCheckBox.h"
#include "gui/widgets/MControlValue.h"
#include "tests/gui/PlainStyle.h"

/// A window without a display, and a diary of what controls tell.
class Widgets : public ::testing::Test, public MEventTarget
{
protected:
    Widgets()
    {
        auto system = std::make_unique<HeadlessWindowSystem>();
        screen = system.get();
        windows = std::make_unique<MWindows>(std::move(system));
        windows->SetStyle(std::make_unique<PlainStyle>());
        window = std::make_unique<MWindow>();
        window->SetSize(400, 300);
        window->Open(MWindowSystem::Kind::Normal);
    }
    ~Widgets() override { window.reset(); }

    template <typename Widget>
    Widget& Add(MRectangle place)
    {
        Widget& made = window->Make<Widget>();
        made.SetPosition(place.left, place.top);
        made.SetSize(place.Width(), place.Height());
        return made;
    }

public:
    void OnClick(const MOnControlClickParams&) { log.push_back("click"); }
    void OnCheck(const MOnCheckParams& params)
    {
        log.push_back("check " + std::to_string(static_cast<int>(params.state)));
    }
    void OnDone(const MOnClickParams& params) { log.push_back("done " + std::to_string(params.data)); }
    void OnText(const MOnNotifyParams&) { log.push_back("text"); }
    void OnValue(const MOnValueChangeParams& params)
    {
        const char* const phases[] = { "begin", "change", "end" };
        log.push_back(phases[static_cast<int>(params.phase)]);
    }
    void OnItem(const MOnItemParams<std::int32_t>& params, std::uintptr_t kind)
    {
        const char* const kinds[] = { "select", "activate", "context", "page" };
        log.push_back(std::string(kinds[kind]) + " " + std::to_string(params.item));
    }

protected:
    std::vector<std::string> Taken() { return std::exchange(log, {}); }
    void Key(std::int32_t key, std::uint8_t modifiers = 0) { screen->Key(*window, key, modifiers); }

    std::vector<std::string> log;
    HeadlessWindowSystem* screen = nullptr;
    std::unique_ptr<MWindows> windows;
    std::unique_ptr<MWindow> window;
};
