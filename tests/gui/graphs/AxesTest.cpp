// SPDX-License-Identifier: GPL-3.0-or-later
// Captions of axes: where they stand, and that none touches another.
#include <cmath>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "gui/graphs/MAxisRendererFrequencyLog.h"
#include "gui/graphs/MAxisRendererNumbers.h"
#include "gui/graphs/MGraphWithRanges.h"
#include "gui/graphs/MStaticAxis.h"
#include "gui/painting/MDrawerToMBitmap.h"
#include "tests/gui/graphs/GraphWindow.h"

namespace
{
constexpr double lowLog = 1.3010299956639813;
constexpr double highLog = 4.301029995663981;

struct Named
{
    const char* name;
    std::shared_ptr<const MAxisRenderer> axis;
};

std::vector<Named> Axes()
{
    return { { "frequencies", std::make_shared<MAxisRendererFrequencyLog>(lowLog, highLog) },
             { "some frequencies", std::make_shared<MAxisRendererFrequencyLog>(2.0, 3.5) },
             { "levels", std::make_shared<MAxisRendererVolumedB>(0) },
             { "decibels", std::make_shared<MAxisRendererVolumedBValues>(-24, 24, 6) },
             { "tenths", std::make_shared<MAxisRendererVolumedBValues>(0, 1, 0.1) },
             { "percents", std::make_shared<MAxisRendererPercents>() },
             { "integers", std::make_shared<MAxisRendererIntegers>(-3, 900) },
             { "one", std::make_shared<MAxisRendererIntegers>(7, 7) } };
}

std::vector<MAxisLabel> LabelsOf(const MAxisRenderer& axis, std::int32_t length, bool isHorizontal,
                                 double from, double to, std::int32_t gap = 10)
{
    ScaledStyle style(1);
    MBitmap bitmap(4, 4);
    MDrawerToMBitmap drawer(bitmap, &style);
    MAxisRenderer::Options options;
    options.gap = gap;
    std::vector<MAxisLabel> labels;
    axis.Render(drawer, MRectangle::OfSize(30, 40, isHorizontal ? length : 44, isHorizontal ? 16 : length),
                isHorizontal, labels, options, from, to);
    return labels;
}
}   // namespace

TEST(Axes, LabelsNeverTouchAtAnyLengthAndView)
{
    const double views[][2] = { { 0, 1 },   { 0, 0.5 },    { 0.31, 0.77 },
                                { 0.5, 1 }, { 0.9, 0.95 }, { 0.2, 0.2001 } };
    for (const Named& each : Axes())
        for (std::int32_t length = 1; length < 900; length += length < 60 ? 1 : 13)
            for (const auto& view : views)
                for (const bool isHorizontal : { true, false })
                {
                    const std::string place = std::string(each.name) + " along " + std::to_string(length) +
                                              " from " + std::to_string(view[0]);
                    std::int32_t before = length + 10;
                    double positionBefore = 2;
                    for (const MAxisLabel& label :
                         LabelsOf(*each.axis, length, isHorizontal, view[0], view[1]))
                    {
                        ASSERT_LT(label.position, positionBefore) << place;
                        positionBefore = label.position;
                        ASSERT_NEAR(label.viewPosition, (label.position - view[0]) / (view[1] - view[0]),
                                    1e-9);
                        if (label.text.IsEmpty())
                        {
                            ASSERT_TRUE(label.viewPosition < 0 || label.viewPosition > 1) << place;
                            continue;
                        }
                        ASSERT_LE(label.start + label.size + 10, before) << place << label.text.ToUTF8();
                        ASSERT_GE(label.start, 0) << place;
                        before = label.start;
                        // Centred, but where that would leave the axis.
                        const double middle = label.start + (label.size - 1) / 2.0;
                        const bool isAtEnd = label.start == 0 || label.start + label.size >= length;
                        ASSERT_TRUE(isAtEnd || std::abs(middle - label.viewPosition * (length - 1)) <= 0.51)
                            << place << label.text.ToUTF8();
                    }
                }
}

TEST(Axes, SayWhatTheyAreForAndHaveTheirEndsFlush)
{
    const auto textsOf = [](const MAxisRenderer& axis)
    {
        std::map<double, std::string> texts;
        for (const MAxisLabel& label : LabelsOf(axis, 5000, true, 0, 1, 0))
            texts[label.position] = label.text.ToUTF8();
        return texts;
    };
    const auto frequencies = textsOf(MAxisRendererFrequencyLog(lowLog, highLog));
    ASSERT_EQ(frequencies.size(), 10u);
    const char* const names[] = { "20", "50", "100", "200", "500", "1k", "2k", "5k", "10k", "20k" };
    const double hertz[] = { 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000 };
    std::size_t i = 0;
    for (const auto& [position, text] : frequencies)
    {
        EXPECT_EQ(text, names[i]);
        EXPECT_NEAR(std::pow(10.0, lowLog + position * 3), hertz[i], hertz[i] * 1e-9);
        ++i;
    }
    EXPECT_EQ(textsOf(MAxisRendererFrequencyLog(2, 3)).size(), 4u);

    const auto decibels = textsOf(MAxisRendererVolumedBValues(-24, 24, 6));
    EXPECT_EQ(decibels.size(), 9u);
    EXPECT_EQ(decibels.at(0), "-24 dB");
    EXPECT_EQ(decibels.at(0.5), "0 dB");
    EXPECT_EQ(decibels.at(0.75), "12 dB");
    for (const double top : { 0.0, 12.0 })
        for (const auto& [position, text] : textsOf(MAxisRendererVolumedB(top)))
        {
            const double db = std::atof(text.c_str());
            EXPECT_NEAR(position, text == "silence" ? 0 : std::pow(10.0, (db - top) / 40), 1e-12) << text;
        }
    EXPECT_EQ(textsOf(MAxisRendererPercents()).at(1), "100%");
    EXPECT_TRUE(textsOf(MAxisRendererVolumedBValues(0, 1, 0)).empty());
    EXPECT_TRUE(textsOf(MAxisRendererVolumedBValues(0, 1e9, 1e-9)).empty());

    for (const Named& each : Axes())
        for (const std::int32_t length : { 200, 568, 1136 })
        {
            const auto labels = LabelsOf(*each.axis, length, true, 0, 1);
            for (const MAxisLabel& label : labels)
            {
                EXPECT_TRUE(label.position < 1 || label.start + label.size == length) << each.name;
                EXPECT_TRUE(label.position > 0 || labels.size() == 1 || label.start == 0) << each.name;
            }
        }
}

// What a frequency is at, and what its grid line is at, is the same pixel; marks stand between.
TEST_F(GraphWindow, GridLinesLieWhereTheValuesAre)
{
    for (const double scale : { 1.0, 1.5, 3.0 })
    {
        SCOPED_TRACE(scale);
        Open(static_cast<std::int32_t>(701 * scale), static_cast<std::int32_t>(360 * scale), scale);
        editor->SetRanges(lowLog, highLog, -24, 24);
        const std::vector<std::uint32_t> plain = Look();
        editor->SetAxis(std::make_shared<MAxisRendererFrequencyLog>(lowLog, highLog),
                        std::make_shared<MAxisRendererVolumedBValues>(-24, 24, 6),
                        std::make_shared<MAxisRendererVolumedBValues>(-60, 0, 10));
        MGraphWithRanges<> graph;
        editor->AddGraph(graph);
        for (const double x0 : { 0.0, 0.37 })
        {
            editor->SetView(x0, x0 + 0.5, 0, 1);
            const std::vector<std::uint32_t> look = Look();
            EXPECT_NE(look, plain);
            const MRectangle area = editor->GraphRectangle();
            // Between the first two weak lines from below no level line passes.
            const std::int32_t row = area.bottom - area.Height() / 64;
            std::set<std::int32_t> lines;
            const auto pixel = [&](std::int32_t x)
            {
                return look[static_cast<std::size_t>(row * window->Width() + x)];
            };
            for (std::int32_t x = area.left + 1; x < area.right; ++x)
                if (pixel(x) != pixel(x - 1) && pixel(x) != pixel(area.left + 3))
                    lines.insert(x);
            // Three weaker ones between any two, a quarter of the way apart.
            const double positions[] = { 0, std::log10(2.5) / 3, std::log10(5.0) / 3 };
            for (const std::size_t i : { 0u, 1u })
                for (std::int32_t k = 0; k <= 4; ++k)
                {
                    const double position = positions[i] + (positions[i + 1] - positions[i]) * k / 4;
                    const std::int32_t x = graph.Mapping().x.PixelOf(position);
                    EXPECT_EQ(lines.count(x), x > area.left && x < area.right ? 1u : 0u) << k << " at " << x;
                }
            for (const double hertz : { 50.0, 100.0, 200.0, 500.0, 1000.0 })
            {
                const std::int32_t x = graph.Mapping().x.PixelOf((std::log10(hertz) - lowLog) / 3);
                EXPECT_EQ(lines.count(x), x > area.left && x < area.right ? 1u : 0u) << hertz << " at " << x;
            }
        }
    }
}

TEST_F(GraphWindow, AnAxisCanStandByItself)
{
    Open();
    auto& axis = window->Make<MStaticAxis>();
    axis.SetSize(300, 20);
    const std::vector<std::uint32_t> empty = Look();
    axis.SetAxis(std::make_shared<MAxisRendererPercents>());
    const std::vector<std::uint32_t> lying = Look();
    EXPECT_NE(lying, empty);
    axis.SetSize(44, 300);
    EXPECT_NE(Look(), lying);
}
