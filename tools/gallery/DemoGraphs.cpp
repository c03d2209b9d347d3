// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/gallery/DemoGraphs.h"

#include <cmath>
#include <functional>
#include <span>

#include "gui/graphs/MAxisRendererFrequencyLog.h"
#include "gui/graphs/MAxisRendererNumbers.h"
#include "gui/graphs/MFunctionGraphT.h"
#include "gui/graphs/MLineGraphVertical.h"

namespace
{
const double LowestLog = std::log10(20.0);
const double HighestLog = std::log10(20000.0);

/// Decibels over the logarithm of a frequency.
class Curve : public MGraph
{
public:
    void GetRanges(double& xMin, double& xMax, double& yMin, double& yMax) const override
    {
        xMin = LowestLog;
        xMax = HighestLog;
        yMin = -24;
        yMax = 24;
    }
    void ComputeValues(std::span<const double> x, std::span<double> y)
    {
        for (std::size_t i = 0; i < x.size(); ++i)
            y[i] = function(x[i]);
    }

    std::function<double(double)> function;
};

double Bump(double x, double centre, double width, double height)
{
    const double away = (x - centre) / width;
    return height * std::exp(-away * away);
}

double Spectrum(double x, double shift)
{
    return 6 + 5 * std::sin(3 * x + shift) + 2 * std::sin(11 * x + 2 * shift) -
           9 * std::pow(std::abs(x - 2.8), 2.5);
}
}   // namespace

void DemoGraphs::Attach(MControl& control)
{
    if (auto* editor = dynamic_cast<MGraphEditor*>(&control))
        Fill(*editor);
    for (const auto& child : control.Children())
        Attach(*child);
}

void DemoGraphs::Fill(MGraphEditor& editor)
{
    const MStyle& style = *editor.Style();
    const auto add =
        [&](std::function<double(double)> function, std::vector<CurveStroke> strokes, MStdColor color)
    {
        auto graph = std::make_unique<MFunctionGraphT<Curve>>();
        graph->function = std::move(function);
        graph->strokes = std::move(strokes);
        graph->color = style.GetColor(color);
        MFunctionGraphT<Curve>& made = *graph;
        graphs.push_back(std::move(graph));
        editor.AddGraph(made, editor.Graphs().empty());
        return &made;
    };
    const MColor casing = style.GetColor(MStdColor::Canvas).WithAlpha(200);
    add([](double x) { return Bump(x, 2.2, 0.2, -5) + Bump(x, 3.6, 0.3, 6); },
        { { 5, casing }, { 2, style.GetColor(MStdColor::Equalizer) } }, MStdColor::Equalizer);
    for (const bool isSource : { true, false })
        add([isSource](double x) { return Spectrum(x, isSource ? 1 : 0); },
            { { 4, style.GetColor(isSource ? MStdColor::SourceBody : MStdColor::TargetBody) },
              { 1.5, style.GetColor(isSource ? MStdColor::SourceCore : MStdColor::TargetCore) } },
            isSource ? MStdColor::SourceBody : MStdColor::TargetBody);
    auto* output = add([](double x) { return Spectrum(x, 0.4) - 8 + 1.5 * std::sin(90 * x); },
                       { { 1.25, style.GetColor(MStdColor::OutputBody) } }, MStdColor::OutputBody);
    output->drawFill = true;
    output->baseLevel = -24;
    editor.SetRanges(LowestLog, HighestLog, -24, 24);
    editor.SetAxis(std::make_shared<MAxisRendererFrequencyLog>(LowestLog, HighestLog),
                   std::make_shared<MAxisRendererVolumedBValues>(-24, 24, 6),
                   std::make_shared<MAxisRendererVolumedBValues>(-60, 0, 10));
}
