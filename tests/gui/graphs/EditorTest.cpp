// SPDX-License-Identifier: GPL-3.0-or-later
// The graph editor as a user works it: the way between values and pixels, zoom and scroll, who gets what
// first.
#include <cmath>
#include <random>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/text/MException.h"
#include "gui/graphs/MAxisRendererFrequencyLog.h"
#include "gui/graphs/MLineGraphVertical.h"
#include "gui/graphs/MOverlayPainter.h"
#include "state/tree/MAttribute.h"
#include "tests/gui/graphs/GraphWindow.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{
using Names = std::vector<std::string>;

// Writes down what it gets, and paints a square at a corner that all share.
class Probe : public MGraphWithRanges<>
{
public:
    Probe(Names& diary, std::string ownName) : log(diary), name(std::move(ownName)) {}

    void Paint(MGraphEditor& shownIn, MDrawer& drawer) override
    {
        log.push_back("paint " + name);
        const MRectangle& area = shownIn.GraphRectangle();
        drawer.FillRectangle(MRectangle::OfSize(area.left + 20, area.top + 20, 50, 30), GetColor(drawer));
        if (throws)
            throw MException("Could not acquire mutex.");
    }
    bool OnEvent(MGraphEditor&, const MControlEvent& event) override
    {
        if (event.code == MEventCode::LeftDown || event.code == MEventCode::Wheel ||
            event.code == MEventCode::KeyDown)
            log.push_back(name);
        return takes;
    }
    void CollectHelp(MAttribute& item) const override { AddHelp(item, "probe"); }

    Names& log;
    std::string name;
    bool takes = false;
    bool throws = false;
};

class Ranged : public MGraph
{
public:
    void GetRanges(double& xMin, double& xMax, double& yMin, double& yMax) const override
    {
        xMin = ranges[0];
        xMax = ranges[1];
        yMin = ranges[2];
        yMax = ranges[3];
    }

    double ranges[4] = { 0, 1, 0, 1 };
};
}   // namespace

TEST_F(GraphWindow, MapsValuesToPixelsAndBackAtEverySizeScaleAndView)
{
    std::mt19937 random(1);
    const auto share = [&random]
    {
        return static_cast<double>(random() % 100001) / 100000;
    };
    for (const double scale : { 1.0, 1.25, 2.0, 3.0 })
        for (std::int32_t round = 0; round < 12; ++round)
        {
            SCOPED_TRACE(std::to_string(scale) + " round " + std::to_string(round));
            Open(static_cast<std::int32_t>((200 + share() * 700) * scale),
                 static_cast<std::int32_t>((150 + share() * 500) * scale), scale);
            MGraphWithRanges<Ranged> graph;
            graph.ranges[0] = share() * 100 - 50;
            graph.ranges[1] = graph.ranges[0] + 0.01 + share() * 300;
            graph.ranges[2] = share() * 2000 - 1000;
            graph.ranges[3] = graph.ranges[2] + 0.01 + share() * 30;
            editor->AddGraph(graph, true);
            EXPECT_EQ(editor->XMin(), graph.ranges[0]);
            EXPECT_EQ(editor->YMax(), graph.ranges[3]);
            const double x0 = share() * 0.9;
            const double y0 = share() * 0.9;
            editor->SetView(x0, x0 + 0.1, y0, y0 + 0.1 * share());
            const MRectangle& area = editor->GraphRectangle();
            const GraphAxis axes[] = { graph.Mapping().x, graph.Mapping().y };
            const std::int32_t ends[][2] = { { area.left, area.right }, { area.bottom, area.top } };
            const double views[][2] = { { editor->ViewX0(), editor->ViewX1() },
                                        { editor->ViewY0(), editor->ViewY1() } };
            for (const std::size_t i : { 0u, 1u })
            {
                const GraphAxis& axis = axes[i];
                const double range = axis.high - axis.low;
                EXPECT_EQ(axis.PixelOf(axis.low + range * views[i][0]), ends[i][0]);
                EXPECT_EQ(axis.PixelOf(axis.low + range * views[i][1]), ends[i][1]);
                const std::int32_t direction = ends[i][1] > ends[i][0] ? 1 : -1;
                double before = -HUGE_VAL;
                for (std::int32_t pixel = ends[i][0]; pixel != ends[i][1] + direction; pixel += direction)
                {
                    const double value = axis.ValueOf(pixel);
                    ASSERT_EQ(axis.PixelOf(value), pixel);
                    ASSERT_GT(value, before);
                    before = value;
                    const double off = value + (share() - 0.5) * std::abs(axis.inverseScale);
                    ASSERT_LE(std::abs(axis.PixelOf(off) - axis.PlaceOf(off)), 0.5 + 1e-6);
                }
            }
            const MPoint middle = Middle();
            EXPECT_NEAR(editor->ViewAtX(middle.x), axes[0].ShareOf(axes[0].ValueOf(middle.x)), 1e-9);
            EXPECT_NEAR(editor->ViewAtY(middle.y), axes[1].ShareOf(axes[1].ValueOf(middle.y)), 1e-9);
        }
}

TEST_F(GraphWindow, NothingBringsTheViewOutOfItsLimits)
{
    Open();
    std::mt19937 random(2);
    const auto upTo = [&random](std::int32_t most)
    {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(most + 1));
    };
    editor->ZoomerX().SetRange(0, 1, 0.05);
    editor->SetFocus();
    const std::uint8_t held[] = { 0, ModifierAlt, ModifierAlt | ModifierCtrl, ModifierShift };
    for (std::int32_t round = 0; round < 3000; ++round)
    {
        const std::int32_t x = upTo(window->Width() + 40) - 20;
        const std::int32_t y = upTo(window->Height() + 40) - 20;
        switch (upTo(9))
        {
        case 0:
            screen->Wheel(*window, x, y, upTo(2000) - 1000);
            break;
        case 1:
            screen->SetHeldKeys(held[upTo(3)]);
            break;
        case 2:
            screen->PressMouse(*window, x, y);
            break;
        case 3:
            screen->ReleaseMouse(*window, x, y);
            break;
        case 4:
            screen->DoubleClick(*window, x, y, upTo(1));
            break;
        case 5:
            screen->Key(*window, MKey::Left + upTo(3));
            break;
        case 6:
            screen->Type(*window, MString::FromInt(upTo(9)));
            break;
        case 7:
            editor->ZoomerY().ChangePart(upTo(400) / 100.0 - 2, upTo(40) / 10.0 - 1);
            editor->ZoomerX().MoveTo(round % 7 == 0 ? std::nan("") : upTo(300) / 100.0 - 1);
            break;
        default:
            screen->MoveMouse(*window, x, y);
        }
        for (const MZoomer* zoomer : { &editor->ZoomerX(), &editor->ZoomerY() })
        {
            ASSERT_GE(zoomer->PartSize(), zoomer->MinimumSize()) << round;
            ASSERT_LE(zoomer->PartSize(), 1) << round;
            ASSERT_GE(zoomer->Position(), 0) << round;
            ASSERT_LE(zoomer->Position() + zoomer->PartSize(), 1 + 1e-12) << round;
            ASSERT_LE(std::int64_t{ zoomer->BarPosition() } + zoomer->BarPage(), MZoomer::BarMaximum + 1);
            const MRectangle bar = zoomer->BarRectangle();
            ASSERT_EQ(zoomer->ThumbRectangle().Intersection(bar), zoomer->ThumbRectangle()) << round;
        }
    }
    EXPECT_TRUE(IsWhole());
}

TEST_F(GraphWindow, WheelAndKeysZoomAroundWhatIsMeant)
{
    Open();
    const MPoint at{ editor->GraphRectangle().left + 100, editor->GraphRectangle().top + 60 };
    const double x = editor->ViewAtX(at.x);
    const double y = editor->ViewAtY(at.y);
    double size = 1;
    for (const std::int32_t delta : { 120, 1, 0, 240, -1, -120, 119 })
    {
        EXPECT_TRUE(screen->Wheel(*window, at.x, at.y, delta));
        size *= std::pow(0.75, delta == 240 ? 2 : delta < 0 ? -1 : 1);
        EXPECT_NEAR(editor->ZoomerX().PartSize(), size, 1e-12) << delta;
        EXPECT_NEAR(editor->ZoomerY().PartSize(), size, 1e-12) << delta;
        EXPECT_NEAR(editor->ViewAtX(at.x), x, 1e-9) << "the place under the pointer stays";
        EXPECT_NEAR(editor->ViewAtY(at.y), y, 1e-9);
    }
    screen->SetHeldKeys(ModifierAlt);
    screen->DoubleClick(*window, at.x, at.y, 1);
    EXPECT_NEAR(editor->ZoomerX().PartSize(), size * 0.75, 1e-12);
    screen->DoubleClick(*window, at.x, at.y, 0);
    EXPECT_NEAR(editor->ZoomerX().PartSize(), size, 1e-12);
    EXPECT_NEAR(editor->ViewAtY(at.y), y, 1e-9);
    screen->SetHeldKeys(0);

    editor->SetFocus();
    for (const std::int32_t level : { 1, 2, 5, 9, 0 })
    {
        const double middle = editor->ZoomerX().Position() + editor->ZoomerX().PartSize() / 2;
        screen->Type(*window, MString::FromInt(level));
        size = std::pow(0.75, level == 0 ? 9 : level - 1);
        EXPECT_NEAR(editor->ZoomerX().PartSize(), size, 1e-12) << level;
        EXPECT_NEAR(editor->ZoomerY().PartSize(), size, 1e-12) << level;
        if (level != 1)
        {
            EXPECT_NEAR(editor->ZoomerX().Position() + size / 2, std::clamp(middle, size / 2, 1 - size / 2),
                        1e-9);
        }
    }
    editor->SetView(0.4, 0.6, 0.4, 0.6);
    EXPECT_TRUE(screen->Key(*window, MKey::Right));
    EXPECT_TRUE(screen->Key(*window, MKey::Up));
    EXPECT_NEAR(editor->ViewX0(), 0.42, 1e-12);
    EXPECT_NEAR(editor->ViewY0(), 0.42, 1e-12) << "up shows higher values";
    editor->zoomableX = editor->zoomableY = false;
    editor->UpdateLayout();
    EXPECT_FALSE(screen->Wheel(*window, at.x, at.y, 120));
    screen->Type(*window, "5");
    EXPECT_NEAR(editor->ViewX0(), 0.42, 1e-12);
    EXPECT_FALSE(editor->ZoomerX().IsVisible());
}

TEST_F(GraphWindow, AltDrawsARectangleToZoomInAndWithCtrlScrolls)
{
    Open();
    const MRectangle area = editor->GraphRectangle();
    screen->SetHeldKeys(ModifierAlt);
    const double x0 = editor->ViewAtX(area.left + 300);
    const double x1 = editor->ViewAtX(area.left + 120);
    const double y0 = editor->ViewAtY(area.top + 200);
    const double y1 = editor->ViewAtY(area.top + 50);
    const std::vector<std::uint32_t> before = Look();
    screen->PressMouse(*window, area.left + 300, area.top + 50);
    screen->MoveMouse(*window, area.left + 120, area.top + 200);
    EXPECT_NE(Look(), before) << "the rectangle is shown";
    EXPECT_TRUE(IsWhole());
    EXPECT_EQ(screen->CursorOf(*window), MStdCursor::Cross);
    screen->ReleaseMouse(*window, area.left + 120, area.top + 200);
    EXPECT_NEAR(editor->ViewX0(), x1, 1e-12);
    EXPECT_NEAR(editor->ViewX1(), x0, 1e-12);
    EXPECT_NEAR(editor->ViewY0(), y0, 1e-12);
    EXPECT_NEAR(editor->ViewY1(), y1, 1e-12);
    // No width: nothing.
    screen->PressMouse(*window, area.left + 30, area.top + 50);
    screen->MoveMouse(*window, area.left + 30, area.top + 150);
    screen->ReleaseMouse(*window, area.left + 30, area.top + 150);
    EXPECT_NEAR(editor->ViewX0(), x1, 1e-12);

    screen->SetHeldKeys(ModifierAlt | ModifierCtrl);
    screen->PressMouse(*window, area.left + 200, area.top + 100);
    const double heldX = editor->ViewAtX(area.left + 200);
    const double heldY = editor->ViewAtY(area.top + 100);
    for (const std::int32_t way : { 5, 40, 13 })
    {
        screen->MoveMouse(*window, area.left + 200 + way, area.top + 100 - way);
        EXPECT_NEAR(editor->ViewAtX(area.left + 200 + way), heldX, 1e-9) << "the curves go with the pointer";
        EXPECT_NEAR(editor->ViewAtY(area.top + 100 - way), heldY, 1e-9);
    }
    screen->ReleaseMouse(*window, area.left + 213, area.top + 87);
    const double scrolled = editor->ViewX0();
    screen->MoveMouse(*window, area.left + 20, area.top + 20);
    EXPECT_EQ(editor->ViewX0(), scrolled);
    editor->SetView(0, 1, 0, 1);
    screen->PressMouse(*window, area.left + 200, area.top + 100);
    screen->MoveMouse(*window, area.left + 20, area.top + 20);
    EXPECT_EQ(editor->ViewX0(), 0) << "all of it is seen: nothing to scroll";
    EXPECT_EQ(editor->ViewY1(), 1);
}

TEST_F(GraphWindow, GraphsGetEventsFromTheFirstAndArePaintedFromTheLast)
{
    Open();
    Names log;
    std::vector<std::unique_ptr<Probe>> probes;
    for (const char* name : { "a", "b", "c", "d" })
        probes.push_back(std::make_unique<Probe>(log, name));
    for (std::size_t i = 0; i < probes.size(); ++i)
    {
        probes[i]->color = MColor(static_cast<std::uint8_t>(40 + 60 * i), 90, 10);
        editor->InsertGraph(i == 3 ? -5 : 99, *probes[i]);   // d before all
    }
    const auto at = Middle();
    const auto taken = [&log]
    {
        return std::exchange(log, {});
    };
    Look();
    EXPECT_THAT(taken(), ElementsAre("paint c", "paint b", "paint a", "paint d"));
    probes[1]->ChangeFlag(MGraph::OnTop, true);
    probes[2]->throws = true;
    Look();
    EXPECT_THAT(taken(), ElementsAre("paint c", "paint a", "paint d", "paint b"));
    screen->Wheel(*window, at.x, at.y, 120);
    EXPECT_THAT(taken(), ElementsAre("d", "a", "b", "c"));
    probes[0]->takes = true;
    probes[3]->ClearFlag(MGraph::Enabled);
    editor->SetView(0, 1, 0, 1);
    screen->Wheel(*window, at.x, at.y, 120);
    EXPECT_EQ(editor->ViewX0(), 0) << "who takes it keeps it from the zoom";
    screen->Click(*window, at.x, at.y);
    EXPECT_THAT(taken(), ElementsAre("a", "a"));
    probes[0]->SetVisible(false);
    screen->Key(*window, MKey::Left);
    EXPECT_THAT(taken(), ElementsAre("b", "c"));

    MAttribute help;
    editor->CollectHelp(help);
    EXPECT_EQ(help.GetAttribute("name"), "Graph editor");
    EXPECT_EQ(help.SubItemCount(), 9) << "five of the editor, one of each graph";
    editor->zoomableX = editor->zoomableY = false;
    MAttribute shortHelp;
    editor->CollectHelp(shortHelp);
    EXPECT_EQ(shortHelp.SubItemCount(), 5);

    // Graphs and editors may go in any order.
    probes[1].reset();
    EXPECT_EQ(editor->Graphs().size(), 3u);
    MGraphEditor other;
    other.AddGraph(*probes[0]);
    EXPECT_EQ(editor->Graphs().size(), 2u);
    window.reset();
    EXPECT_EQ(probes[2]->Editor(), nullptr);
}

TEST_F(GraphWindow, AnOverlayShowsWhatTheEditorWouldAndIsPaintedApart)
{
    Open();
    MFunctionGraphT<PlainFunction> curve;
    curve.function = [](double x)
    {
        return 0.5 + 0.45 * std::sin(x * 40);
    };
    curve.color = MColor(250, 200, 10, 180);
    curve.strokes = { { 5, MColor(0, 0, 90, 120) }, { 2, MColor() } };
    curve.drawFill = true;
    editor->AddGraph(curve);
    const std::vector<std::uint32_t> direct = Look();
    curve.ChangeFlag(MGraph::HasOverlay, true);
    EXPECT_EQ(Look(), direct);
    ASSERT_NE(curve.overlayPainter, nullptr);
    const MRectangle area = editor->GraphRectangle();
    const MRectangle overlay = editor->OverlayRectangle();
    EXPECT_EQ(overlay, (MRectangle{ area.left - 2, area.top, area.right, area.bottom + 2 }));
    EXPECT_EQ(editor->ClipRectangle(), area.Inset(-1, -1));
    EXPECT_EQ(curve.overlayPainter->AbsoluteRectangle(), overlay);

    // Of two, the first lies on top, whichever came first.
    MFunctionGraphT<PlainFunction> above;
    above.function = curve.function;
    above.color = MColor(20, 90, 200);
    above.strokes = { { 3, MColor() } };
    above.SetFlag(MGraph::HasOverlay);
    curve.ChangeFlag(MGraph::HasOverlay, false);
    editor->InsertGraph(0, above);
    const std::vector<std::uint32_t> aboveThePlain = Look();
    curve.ChangeFlag(MGraph::HasOverlay, true);
    EXPECT_EQ(Look(), aboveThePlain);
    editor->RemoveGraph(above);
    EXPECT_EQ(Look(), direct);

    // Painted anew piece by piece, it is the same picture.
    curve.function = [](double x)
    {
        return 0.4 + 0.3 * std::sin(x * 300);
    };
    for (std::int32_t x = 0; x < window->Width(); x += 23)
    {
        editor->Invalidate(MRectangle::OfSize(x, 0, 23, window->Height()));
        Look();
    }
    EXPECT_TRUE(IsWhole());
    curve.function = [](double x)
    {
        return 0.5 + 0.45 * std::sin(x * 40);
    };
    LookAgain();

    screen->TakePaintedPixels();
    editor->InvalidateGraph(curve);
    EXPECT_EQ(Look(), direct);
    EXPECT_LE(screen->TakePaintedPixels(), std::int64_t{ overlay.Width() } * overlay.Height());
    screen->Wheel(*window, Middle().x, Middle().y, 120);
    const std::vector<std::uint32_t> zoomed = Look();
    EXPECT_NE(zoomed, direct);
    curve.ChangeFlag(MGraph::HasOverlay, false);
    EXPECT_EQ(Look(), zoomed);
    curve.ChangeFlag(MGraph::HasOverlay, true);
    curve.SetVisible(false);
    const std::vector<std::uint32_t> none = Look();
    editor->RemoveGraph(curve);
    EXPECT_EQ(Look(), none);
    EXPECT_EQ(curve.overlayPainter, nullptr);
}

namespace
{
class Counter : public MEventTarget
{
public:
    void OnChange(const MOnNotifyParams&) { ++count; }
    std::int32_t count = 0;
};
}   // namespace

TEST_F(GraphWindow, ALineIsDraggedWithinItsRange)
{
    Open();
    MRelaxed<double> frequency = 3.0;
    MLineGraphVerticalLogFrequency<> line;
    line.value = &frequency;
    line.color = MColor(255, 255, 255);
    Counter counter;
    line.Changed().AddHandler<&Counter::OnChange>(counter);
    editor->formatX = [](double value)
    {
        return MString::FromDouble(value);
    };
    editor->AddGraph(line);
    for (const double value : { 1.0, 1.5, 2.7, 4.2, 9.0 })
    {
        const double limited = std::clamp(value, line.LowestLog, line.HighestLog);
        EXPECT_NEAR(line.ViewToValue(line.ValueToView(value)), limited, 1e-12);
    }
    const MRectangle area = editor->GraphRectangle();
    const std::int32_t at = line.Mapping().x.PixelOf((3.0 - 1.3010299956639813) / 3);
    const std::vector<std::uint32_t> thin = Look();
    const auto pixel = [&](const std::vector<std::uint32_t>& look, std::int32_t x)
    {
        return look[static_cast<std::size_t>((area.top + 7) * window->Width() + x)];
    };
    EXPECT_NE(pixel(thin, at), pixel(thin, at + 1));
    line.ChangeFlag(static_cast<MGraph::Flag>(decltype(line)::Emphasised), true);
    const std::vector<std::uint32_t> wide = Look();
    EXPECT_EQ(pixel(wide, at), pixel(thin, at));
    EXPECT_NE(pixel(wide, at + 1), pixel(thin, at + 1));
    EXPECT_NE(pixel(wide, at - 1), pixel(thin, at - 1));

    screen->MoveMouse(*window, at + 4, area.top + 50);
    EXPECT_EQ(screen->CursorOf(*window), MStdCursor::Arrow);
    screen->PressMouse(*window, at + 4, area.top + 50);
    screen->MoveMouse(*window, at + 40, area.top + 50);
    screen->ReleaseMouse(*window, at + 40, area.top + 50);
    EXPECT_EQ(counter.count, 0);
    screen->PressMouse(*window, at - 3, area.top + 50);
    EXPECT_EQ(screen->CursorOf(*window), MStdCursor::ColumnLine);
    for (const std::int32_t x : { at + 60, area.left - 30, area.right + 30 })
    {
        screen->MoveMouse(*window, x, area.top + 50);
        const double view = std::clamp(line.Mapping().x.ValueOf(x), 0.0, 1.0);
        EXPECT_NEAR(frequency, 1.3010299956639813 + 3 * view, 1e-9);
        EXPECT_TRUE(IsWhole());
    }
    EXPECT_EQ(counter.count, 3);
    EXPECT_NEAR(frequency, line.HighestLog, 1e-12);
    screen->ReleaseMouse(*window, area.left, area.top + 50);
    screen->MoveMouse(*window, at, area.top + 50);
    EXPECT_EQ(counter.count, 3);
}

TEST_F(GraphWindow, ZoomersMoveByBarAndButtons)
{
    Open();
    MZoomer& zoomer = editor->ZoomerX();
    editor->SetView(0.25, 0.5, 0.3, 0.9);
    const MPoint corner{ zoomer.AbsoluteX(), zoomer.AbsoluteY() };
    const MRectangle thumb = zoomer.ThumbRectangle();
    const MRectangle bar = zoomer.BarRectangle();
    const std::int32_t y = corner.y + (bar.top + bar.bottom) / 2;
    EXPECT_NEAR(thumb.left, bar.left + bar.Width() * 0.25, 2);
    EXPECT_NEAR(thumb.Width(), bar.Width() * 0.25, 2);
    screen->PressMouse(*window, corner.x + thumb.left + 5, y);
    screen->MoveMouse(*window, corner.x + thumb.left + 5 + bar.Width() / 4, y);
    EXPECT_NEAR(editor->ViewX0(), 0.5, 0.005);
    EXPECT_NEAR(editor->ViewX1(), 0.75, 0.005);
    screen->MoveMouse(*window, corner.x + 5000, y);
    EXPECT_NEAR(editor->ViewX1(), 1, 1e-8);
    screen->ReleaseMouse(*window, corner.x + 5000, y);
    screen->Click(*window, corner.x + bar.left + 2, y);
    EXPECT_NEAR(editor->ViewX0(), 0.5, 1e-8) << "beside the thumb: a page";

    const auto click = [&](MZoomer::Button button)
    {
        const MRectangle place = zoomer.ButtonRectangle(button);
        screen->Click(*window, corner.x + (place.left + place.right) / 2,
                      corner.y + (place.top + place.bottom) / 2);
    };
    click(MZoomer::Button::ZoomIn);
    EXPECT_NEAR(zoomer.PartSize(), 0.1875, 1e-9);
    EXPECT_NEAR(editor->ZoomerY().PartSize(), 0.45, 1e-9) << "both axes, as the wheel does";
    EXPECT_NEAR(editor->ViewX0() + editor->ViewX1(), 1.25, 1e-7) << "about the middle";
    click(MZoomer::Button::ZoomOut);
    EXPECT_NEAR(zoomer.PartSize(), 0.25, 1e-9);
    click(MZoomer::Button::ZoomDefault);
    EXPECT_EQ(zoomer.PartSize(), 1);
    EXPECT_EQ(editor->ZoomerY().PartSize(), 1);
}

TEST_F(GraphWindow, ShowsThePlaceUnderThePointerAndNothingWithoutRoom)
{
    Open();
    const MPoint at = Middle();
    screen->MoveMouse(*window, at.x, at.y);
    const std::vector<std::uint32_t> without = Look();
    editor->showCursorValue = true;
    editor->Invalidate();
    const std::vector<std::uint32_t> shown = Look();
    EXPECT_NE(shown, without);
    screen->TakePaintedPixels();
    screen->MoveMouse(*window, at.x + 9, at.y + 1);
    EXPECT_NE(Look(), shown);
    EXPECT_LT(screen->TakePaintedPixels(), 8000) << "only the text is painted anew";
    EXPECT_TRUE(IsWhole());
    screen->MoveMouse(*window, at.x, 1);
    EXPECT_EQ(Look(), without);

    for (const std::int32_t size : { 1, 30, 70 })
    {
        Open(size, size);
        Names log;
        Probe probe(log, "a");
        editor->AddGraph(probe);
        Look();
        EXPECT_EQ(log.empty(), editor->GraphRectangle().IsEmpty());
        screen->Wheel(*window, 0, 0, 120);
        screen->Click(*window, 0, 0);
    }
}
