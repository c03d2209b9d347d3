// SPDX-License-Identifier: GPL-3.0-or-later
// A page of help, about 2000 characters in several fonts with a list and a table, 600 units wide: what it
// costs to parse, to lay out at another width, and to paint.
#include <string>

#include <benchmark/benchmark.h>

#include "tests/gui/richtext/RichTextStyle.h"

namespace
{
std::string HelpPage()
{
    std::string page = "<l4>Automatic equalizer</l4><hline vspace=4>";
    const std::string paragraph =
        "<p><name>Equalize button</name> performs automatic equalization. First you have to use the "
        "<reference>Analyse</reference> button to analyse your recording, the blue line in the graph. Then "
        "you "
        "create the source analysis, or press <control>Ctrl+E</control>; the range is <range>-24 to 24 "
        "dB</range>, "
        "the default <value>0.00 dB</value>.";
    for (int count = 0; count < 4; ++count)
        page += paragraph;
    page += "<p><l2>Steps</l2>";
    for (int count = 0; count < 4; ++count)
        page +=
            "<li>Use <name><img icon=plus> button</name> to add a new area, which is as long as you like.";
    for (int count = 0; count < 6; ++count)
        page += "<tr border=1><td width=90><b>Parameter</b></td><td>Output gain applied <i>after</i> the "
                "equalizer.</td><td autosize=1><value>0.00 dB</value></td></tr>";
    return page;
}

struct Page
{
    explicit Page(std::int64_t percent)
        : style(static_cast<double>(percent) / 100), text(style, style),
          width(static_cast<std::int32_t>(6 * percent)), markUp(MString::FromUTF8(HelpPage()))
    {
        text.Parse(markUp);
        canvas.Create(width, text.GetHeight(width));
    }
    void Paint()
    {
        MDrawerToMBitmap painter(canvas);
        text.Paint(painter, canvas.Bounds());
        benchmark::ClobberMemory();
    }

    RichTextStyle style;
    MSTML text;
    std::int32_t width;
    MString markUp;
    MBitmap canvas;
};

void Parse(benchmark::State& state)
{
    Page page(100);
    for (auto _ : state)
        page.text.Parse(page.markUp);
}
BENCHMARK(Parse)->Unit(benchmark::kMicrosecond);

// The words are measured; the width is another one each time.
void Layout(benchmark::State& state)
{
    Page page(state.range(0));
    std::int32_t other = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(page.text.GetHeight(page.width - (other ^= 1)));
}
BENCHMARK(Layout)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);

void Paint(benchmark::State& state)
{
    Page page(state.range(0));
    for (auto _ : state)
        page.Paint();
}
BENCHMARK(Paint)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);

// As a new help window does it: everything, with known fonts.
void All(benchmark::State& state)
{
    Page page(state.range(0));
    page.Paint();
    for (auto _ : state)
    {
        page.text.Parse(page.markUp);
        page.Paint();
    }
}
BENCHMARK(All)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);
}   // namespace
