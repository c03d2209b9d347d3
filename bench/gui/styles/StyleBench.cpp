// SPDX-License-Identifier: GPL-3.0-or-later
// What a style costs: to load it, and to paint faces with it. Beside a face: the same area as a plain copy.
#include <benchmark/benchmark.h>

#include "gui/painting/MDrawerToMBitmap.h"
#include "gui/styles/MTexturedStyle.h"
#include "resources/RegisterResources.h"

namespace
{
MAttribute& Configuration(std::int64_t percent)
{
    static MAttribute configuration;
    StartModuleWithResources();
    configuration.SetAttribute("Style", "Default (dark)");
    configuration.SetAttribute("ResizeX", MString::FromDouble(static_cast<double>(percent) / 100));
    configuration.SetAttribute("ResizeY", configuration.GetAttribute("ResizeX"));
    return configuration;
}

void Load(benchmark::State& state)
{
    const MAttribute& configuration = Configuration(state.range(0));
    MTexturedStyle kept;   // as in a process with an open editor: the faces of the font stay
    kept.Apply(configuration);
    for (auto _ : state)
    {
        MTexturedStyle style;
        style.Apply(configuration);
        benchmark::DoNotOptimize(style.GetScale());
    }
}
BENCHMARK(Load)->Arg(100)->Arg(110)->Arg(150)->Arg(200)->Arg(300)->Unit(benchmark::kMillisecond);

void FirstLoad(benchmark::State& state)
{
    const MAttribute& configuration = Configuration(state.range(0));
    for (auto _ : state)
    {
        MTexturedStyle style;
        style.Apply(configuration);
        benchmark::DoNotOptimize(style.GetScale());
    }
}
BENCHMARK(FirstLoad)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);

struct Canvas
{
    explicit Canvas(std::int64_t percent) : bitmap(1200, 900), painter(bitmap, &style), drawer(painter)
    {
        style.Apply(Configuration(percent));
    }
    MRectangle Area(double width, double height) const
    {
        return MRectangle::OfSize(40, 40, style.Pixels(width), style.Pixels(height));
    }

    MTexturedStyle style;
    MBitmap bitmap;
    MDrawerToMBitmap painter;
    MDrawer& drawer;
};

void CopyOfAButton(benchmark::State& state)
{
    Canvas canvas(state.range(0));
    const MRectangle area = canvas.Area(66, 22);
    MBitmap picture(area.Width(), area.Height());
    for (auto _ : state)
        canvas.drawer.BitBlt(area.left, area.top, picture, picture.Bounds(), 255, MColorOp::Copy);
}
BENCHMARK(CopyOfAButton)->Arg(100)->Arg(200);

void Face(benchmark::State& state)
{
    Canvas canvas(state.range(1));
    const MControlType types[] = { MControlType::Button, MControlType::Edit, MControlType::Panel };
    const MControlType type = types[state.range(0)];
    state.SetLabel(MEnumLabels<MControlType>::Labels[static_cast<int>(type)]);
    const MRectangle area = type == MControlType::Panel ? canvas.Area(384, 280) : canvas.Area(66, 22);
    for (auto _ : state)
        canvas.style.PaintFace(canvas.drawer, area, type, DrawEnabled);
}
BENCHMARK(Face)->ArgsProduct({ { 0, 1, 2 }, { 100, 200 } });

void Knob(benchmark::State& state)
{
    Canvas canvas(state.range(0));
    const MRectangle area = canvas.Area(42, 42);
    double value = 0;
    for (auto _ : state)
    {
        canvas.style.PaintKnob(canvas.drawer, area, { value, 0, 0 }, DrawEnabled);
        value = value < 1 ? value + 0.01 : 0;
    }
}
BENCHMARK(Knob)->Arg(100)->Arg(200);

void Icon(benchmark::State& state)
{
    Canvas canvas(state.range(0));
    const MRectangle area = canvas.Area(22, 22);
    for (auto _ : state)
        canvas.style.PaintIcon(canvas.drawer, area, MStdIcon::Settings, MColor(200, 200, 200));
}
BENCHMARK(Icon)->Arg(100)->Arg(200);

void Shadow(benchmark::State& state)
{
    Canvas canvas(state.range(0));
    const MRectangle area = canvas.Area(288, 150);
    for (auto _ : state)
        canvas.style.PaintShadow(canvas.drawer, area);
}
BENCHMARK(Shadow)->Arg(100)->Arg(200);
}   // namespace
