// SPDX-License-Identifier: GPL-3.0-or-later
// Whole pages of controls without a display: from the document to the first picture, laid out anew, painted
// anew, and what a control that changes costs. Arguments: percent of scale.
#include <benchmark/benchmark.h>

#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MLayoutGrid.h"
#include "gui/controls/MPanel.h"
#include "gui/controls/MWindows.h"
#include "gui/platform/HeadlessWindowSystem.h"
#include "gui/widgets/MKnob.h"
#include "gui/widgets/MLevelMeter.h"
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
    explicit Screen(std::int64_t percent) : windows(std::make_unique<HeadlessWindowSystem>())
    {
        Pages();
        windows.SetStyle(Gallery::MakeStyle("dark", static_cast<double>(percent) / 100));
        system = static_cast<HeadlessWindowSystem*>(&windows.Platform());
    }

    MWindows windows;
    HeadlessWindowSystem* system;
};

void DocumentToPicture(benchmark::State& state)
{
    Screen screen(state.range(0));
    for (auto _ : state)
    {
        const auto window = Gallery::MakeWindow(PageOf("fields"));
        window->Open(MWindowSystem::Kind::Normal);
        benchmark::DoNotOptimize(screen.system->Look(*window).Pixel(0, 0));
    }
}

void RepaintPage(benchmark::State& state)
{
    Screen screen(state.range(0));
    const auto window = Gallery::MakeWindow(PageOf("parts"));
    window->Open(MWindowSystem::Kind::Normal);
    screen.system->Look(*window);
    for (auto _ : state)
    {
        window->Invalidate();
        benchmark::DoNotOptimize(screen.system->Look(*window).Pixel(0, 0));
    }
    state.counters["ns/px"] =
        benchmark::Counter(static_cast<double>(window->Width()) * window->Height() * 1e-9,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// 300 controls in rows of a grid inside of panels.
void Layout(benchmark::State& state)
{
    Screen screen(100);
    MWindow window;
    MLayout& column = window.MakeLayout<MLayoutVertical>();
    for (int panel = 0; panel < 10; ++panel)
    {
        MControl& made = window.Make<MPanel>();
        made.layout.x.ratio = made.layout.y.ratio = 1;
        column.AddControl(made);
        auto& grid = made.MakeLayout<MLayoutGrid>();
        grid.SetColumns(10);
        grid.verticalFill = true;
        for (int i = 0; i < 29; ++i)
        {
            MControl& cell = made.Make<MControl>();
            cell.SetMinimalClientSize({ 20 + i, 10 });
            cell.layout.x.ratio = i % 3;
            cell.layout.y.ratio = 1;
            grid.AddControl(cell);
        }
    }
    window.GoLive();
    std::int32_t width = 800;
    for (auto _ : state)
    {
        width = width == 800 ? 801 : 800;
        window.SetSize(width, 560);
        window.Relayout();
    }
}

void KnobDragged(benchmark::State& state)
{
    Screen screen(state.range(0));
    const auto window = Gallery::MakeWindow(PageOf("parts"));
    window->Open(MWindowSystem::Kind::Normal);
    screen.system->Look(*window);
    MControl* knob = nullptr;
    const auto find = [&knob](const auto& self, MControl& control) -> void
    {
        if (knob == nullptr && dynamic_cast<MKnob*>(&control) != nullptr && control.IsEnabled())
            knob = &control;
        for (const auto& child : control.Children())
            self(self, *child);
    };
    find(find, *window);
    const std::int32_t x = knob->AbsoluteX() + knob->Width() / 2;
    const std::int32_t y = knob->AbsoluteY() + knob->Height() / 2;
    screen.system->PressMouse(*window, x, y);
    std::int32_t way = 0;
    for (auto _ : state)
    {
        way = (way + 1) % 40;
        screen.system->MoveMouse(*window, x, y + way);
        benchmark::DoNotOptimize(screen.system->Look(*window).Pixel(0, 0));
    }
}

void TwoMeters(benchmark::State& state)
{
    Screen screen(state.range(0));
    MWindow window;
    auto& in = window.Make<MLevelMeter>();
    auto& out = window.Make<MLevelMeter>();
    const auto units = static_cast<std::int32_t>(state.range(0));
    in.SetSize(units * 9 / 5, units / 10);
    out.SetSize(units * 9 / 5, units / 10);
    out.SetPosition(0, units / 5);
    window.SetSize(units * 8, units * 28 / 5);
    window.Open(MWindowSystem::Kind::Normal);
    screen.system->Look(window);
    std::uint64_t time = 1000;
    for (auto _ : state)
    {
        time += 33;
        const float level = time % 2 == 0 ? 0.3f : 0.9f;
        in.SetLevels({ level, level / 2 }, time);
        out.SetLevels({ level, level / 3 }, time);
        benchmark::DoNotOptimize(screen.system->Look(window).Pixel(0, 0));
    }
}

BENCHMARK(DocumentToPicture)->Arg(100)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(RepaintPage)->Arg(100)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(Layout)->Unit(benchmark::kMicrosecond);
BENCHMARK(KnobDragged)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);
BENCHMARK(TwoMeters)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);
}   // namespace
