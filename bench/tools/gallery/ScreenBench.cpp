// SPDX-License-Identifier: GPL-3.0-or-later
// Windows on an X server on the same machine: how long until one stands complete, and how long from an event
// of the user's to the picture. Skipped where Xvfb is not installed. Arguments: percent of scale.
#include <algorithm>
#include <chrono>
#include <fstream>
#include <functional>

#include <benchmark/benchmark.h>

#include "gui/controls/MWindows.h"
#include "gui/platform/XcbWindowSystem.h"
#include "gui/widgets/MButton.h"
#include "gui/widgets/MKnob.h"
#include "tests/gui/platform/XClient.h"
#include "tests/gui/platform/XServer.h"
#include "tools/gallery/Gallery.h"

namespace
{
const Gallery& Pages()
{
    static const Gallery gallery(BENCH_PAGES);
    return gallery;
}

const Gallery::Page& PageOf(const std::string& name)
{
    for (const Gallery::Page& each : Pages().Pages())
        if (each.name == name)
            return each;
    return Pages().Pages().front();
}

struct Screen
{
    Screen()
        : server({ "-screen", "0", "2600x1600x24" }), windows(std::make_unique<XcbWindowSystem>()),
          system(static_cast<XcbWindowSystem*>(&windows.Platform()))
    {
        if (server.IsRunning())
            user = std::make_unique<XClient>();
    }

    /// Until the window's picture has been painted and the server has read it.
    void Settle()
    {
        for (int quiet = 0; quiet < 2;)
        {
            const std::uint64_t sent = system->BytesSent();
            system->WaitForMessages(1);
            user->Sync();
            quiet = sent == system->BytesSent() ? quiet + 1 : 0;
        }
    }

    XServer server;
    std::unique_ptr<XClient> user;
    MWindows windows;
    XcbWindowSystem* system;
};

template <typename Control>
Control* First(MControl& control)
{
    auto* found = dynamic_cast<Control*>(&control);
    if (found != nullptr && found->IsEnabled())
        return found;
    for (const auto& child : control.Children())
        if (Control* below = First<Control>(*child))
            return below;
    return nullptr;
}

/// Of the process, in MB.
double Memory()
{
    std::ifstream status("/proc/self/statm");
    long size = 0;
    long resident = 0;
    long shared = 0;
    status >> size >> resident >> shared;
    return static_cast<double>(resident) * 4096 / 1e6;
}

/// From the call to a window that stands complete. The style is read and the connection made with the first.
void OpenWindow(benchmark::State& state)
{
    const double before = Memory();
    Screen screen;
    if (screen.user == nullptr)
        return state.SkipWithError("Xvfb isn't installed");
    Pages();
    double first = 0;
    const auto open = [&screen, &state](bool withStyle)
    {
        const auto start = std::chrono::steady_clock::now();
        if (withStyle)
            screen.windows.SetStyle(Gallery::MakeStyle("dark", static_cast<double>(state.range(0)) / 100));
        const auto window = Gallery::MakeWindow(PageOf("fields"));
        window->Open(MWindowSystem::Kind::Normal);
        while (!window->Picture().Width() || window->Shown().empty())
            screen.system->WaitForMessages(1);
        screen.user->Sync();
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    };
    first = open(true);
    state.counters["first ms"] = first;
    state.counters["MB"] = Memory() - before;
    for (auto _ : state)
        state.SetIterationTime(open(false) / 1000);
}

/// A knob is dragged: from the motion on the wire to the server having the picture.
void EventToPicture(benchmark::State& state)
{
    Screen screen;
    if (screen.user == nullptr)
        return state.SkipWithError("Xvfb isn't installed");
    Pages();
    screen.windows.SetStyle(Gallery::MakeStyle("dark", static_cast<double>(state.range(0)) / 100));
    const auto window = Gallery::MakeWindow(PageOf("parts"));
    window->Open(MWindowSystem::Kind::Normal);
    screen.Settle();
    const MKnob& knob = *First<MKnob>(*window);
    const MRectangle place = screen.system->GetScreenRect(*window);
    const int x = place.left + knob.AbsoluteX() + knob.Width() / 2;
    const int y = place.top + knob.AbsoluteY() + knob.Height() / 2;
    screen.user->MoveTo(x, y);
    screen.user->Button(1, true);
    screen.Settle();
    std::vector<double> times;
    int way = 0;
    for (auto _ : state)
    {
        way = (way + 1) % 60;
        const double before = knob.ValuePosition();
        const std::uint64_t sent = screen.system->BytesSent();
        const auto start = std::chrono::steady_clock::now();
        screen.user->MoveTo(x, y + way);
        while (knob.ValuePosition() == before || screen.system->BytesSent() == sent)
            screen.system->WaitForMessages(2);
        screen.user->Sync();
        const double time = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        times.push_back(time * 1000);
        state.SetIterationTime(time);
        screen.Settle();
    }
    screen.user->Button(1, false);
    std::sort(times.begin(), times.end());
    state.counters["p95 ms"] = times[times.size() * 95 / 100];
}

BENCHMARK(OpenWindow)->Arg(100)->Arg(200)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(EventToPicture)
    ->Arg(100)
    ->Arg(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(200);
}   // namespace
