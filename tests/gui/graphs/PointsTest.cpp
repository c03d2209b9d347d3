// SPDX-License-Identifier: GPL-3.0-or-later
// Points that are dragged, widened, enabled and stored.
#include <cmath>
#include <random>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/text/Boundary.h"
#include "foundation/threads/MLock.h"
#include "gui/graphs/MPullPointGraph.h"
#include "state/tree/StoredNode.h"
#include "tests/gui/graphs/GraphWindow.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{
struct TestPoint
{
    MRelaxed<double> x = 0;
    MRelaxed<double> y = 0;
    MRelaxed<double> width = 0.5;
    MRelaxed<std::int32_t> type = 0;
    MRelaxed<bool> enabled = true;

    void Save(MAttribute& node) const { const_cast<TestPoint*>(this)->Store(node, 1); }
    void Load(MAttribute& node) { Store(node, 0); }

private:
    void Store(MAttribute& item, std::int32_t saving)
    {
        MStoreParams params;
        params.item = &item;
        params.saving = saving;
        StoredNode node(params);
        node.Always("x", x);
        node.Always("y", y);
        node.Always("width", width);
        node.Always("type", type);
        node.Always("enabled", enabled);
    }
};

constexpr std::int32_t typeWithoutWidth = 5;

class TestGraph : public MPullPointGraph<MPullPointList<TestPoint>>
{
protected:
    bool HasWidth(std::int32_t type) const override { return type != typeWithoutWidth; }
};

class Points : public GraphWindow, public MEventTarget
{
protected:
    Points()
    {
        graph.points.xMin = 1;
        graph.points.xMax = 4;
        graph.points.yMin = -24;
        graph.points.yMax = 24;
        graph.lock = &lock;
        graph.selection = &selection;
        graph.OnChanged().AddHandler<&Points::OnChanged>(*this);
        graph.OnRightClick().AddHandler<&Points::OnRight>(*this);
        for (std::int32_t i = 0; i < 5; ++i)
        {
            auto point = std::make_unique<TestPoint>();
            point->x = 1.5 + 0.5 * i;
            point->y = 12.0 - 5 * i;
            graph.points.Add(std::move(point));
        }
    }
    void Show(double scale = 1)
    {
        Open(static_cast<std::int32_t>(900 * scale), static_cast<std::int32_t>(500 * scale), scale);
        editor->AddGraph(graph, true);
        Look();
    }
    MPoint PixelOf(std::int32_t index) const
    {
        return { graph.Mapping().x.PixelOf(graph.points.At(index).x),
                 graph.Mapping().y.PixelOf(graph.points.At(index).y) };
    }
    void Press(MPoint at, std::int32_t button = 0) { screen->PressMouse(*window, at.x, at.y, button); }
    void Move(MPoint at) { screen->MoveMouse(*window, at.x, at.y); }
    void Release(MPoint at, std::int32_t button = 0) { screen->ReleaseMouse(*window, at.x, at.y, button); }
    std::vector<std::string> Taken() { return std::exchange(log, {}); }

public:
    void OnChanged(const MOnItemParams<std::int32_t>& params)
    {
        log.push_back("changed " + std::to_string(params.item));
        // Whoever listens may wait for others that use the points.
        std::thread([this] { free = free && lock.Acquire(0) == 0 && (lock.Release(), true); }).join();
    }
    void OnRight(const MOnItemParams<std::int32_t>& params)
    {
        log.push_back("right " + std::to_string(params.item));
    }

protected:
    TestGraph graph;
    MLock lock;
    MRelaxed<std::int32_t> selection = -1;
    std::vector<std::string> log;
    bool free = true;
};
}   // namespace

TEST_F(Points, ADragFollowsThePointerWithinTheLimits)
{
    for (const double scale : { 1.0, 2.0 })
    {
        SCOPED_TRACE(scale);
        Show(scale);
        const MPoint at = PixelOf(1);
        TestPoint& point = graph.points.At(1);
        Move(at);
        EXPECT_EQ(screen->CursorOf(*window), MStdCursor::Move);
        Press(at);
        EXPECT_EQ(selection, 1);
        EXPECT_THAT(Taken(), IsEmpty());
        const auto moveBy = [&](std::uint8_t held, std::int32_t dx, std::int32_t dy)
        {
            screen->SetHeldKeys(held);
            const MPoint now = editor->Pointer();
            Move({ now.x + dx, now.y + dy });
            EXPECT_THAT(Taken(), ElementsAre("changed 1"));
            EXPECT_TRUE(IsWhole());
        };
        moveBy(0, 30, -20);
        EXPECT_EQ(PixelOf(1), (MPoint{ at.x + 30, at.y - 20 }));
        const double x = point.x;
        const double y = point.y;
        moveBy(ModifierShift, 30, 10);
        EXPECT_EQ(point.x, x);
        EXPECT_EQ(PixelOf(1).y, at.y - 10);
        moveBy(ModifierAlt, 30, 10);
        EXPECT_EQ(PixelOf(1), (MPoint{ at.x + 90, at.y - 10 }));
        const double movedX = point.x;
        moveBy(ModifierShift | ModifierAlt, -5, -5);
        EXPECT_EQ(point.x, movedX) << "both keep both";
        moveBy(ModifierCtrl, 20, 6);
        EXPECT_NEAR(point.x, movedX + 20 * 0.0005 * 3, 1e-12);
        moveBy(ModifierCtrl | ModifierAlt, 0, -40);
        moveBy(ModifierCtrl | ModifierShift, 20, -40);
        EXPECT_NEAR(point.x, movedX + 20 * 0.0005 * 3, 1e-12);
        EXPECT_NEAR(point.y, graph.Mapping().y.ValueOf(at.y - 10) + (40 - 6) * 0.0005 * 48, 1e-9);
        moveBy(0, 5000, 5000);
        EXPECT_EQ(point.x, 4);
        EXPECT_EQ(point.y, -24);
        Release({ 10, 10 });
        EXPECT_THAT(Taken(), ElementsAre("changed 1"));
        EXPECT_EQ(selection, -1);
        screen->SetHeldKeys(0);
        Move(at);
        EXPECT_EQ(point.x, 4);
        EXPECT_THAT(Taken(), IsEmpty());
        EXPECT_NE(y, -24);
        point.x = 2;
        point.y = 7;
    }
    EXPECT_TRUE(free) << "nobody is told under the lock";

    // Told once, at the end.
    graph.notifyAtOnce = false;
    Press(PixelOf(2));
    Move({ 300, 100 });
    Move({ 310, 110 });
    EXPECT_THAT(Taken(), IsEmpty());
    Release({ 310, 110 });
    EXPECT_THAT(Taken(), ElementsAre("changed 2"));
}

TEST_F(Points, AWidthIsDraggedOnBothSidesAndThePointerStays)
{
    Show();
    TestPoint& point = graph.points.At(2);
    const MPoint middle = PixelOf(2);
    for (const bool isLeft : { true, false })
    {
        SCOPED_TRACE(isLeft);
        point.width = 0.5;
        const MPoint at{ middle.x + (isLeft ? -25 : 25), middle.y + 2 };
        Move(at);
        EXPECT_EQ(screen->CursorOf(*window), MStdCursor::WidthHover);
        Press(at);
        EXPECT_EQ(selection, 2);
        Move({ at.x + (isLeft ? -10 : 10), at.y + 7 });
        EXPECT_EQ(screen->CursorOf(*window), MStdCursor::WidthDrag);
        EXPECT_NEAR(point.width, 0.55, 1e-12) << "outward is wider";
        EXPECT_EQ(screen->GetCursorClient(*window), at) << "the pointer doesn't creep";
        screen->SetHeldKeys(ModifierCtrl);
        Move({ at.x + (isLeft ? -10 : 10), at.y });
        EXPECT_NEAR(point.width, 0.555, 1e-12);
        screen->SetHeldKeys(0);
        Taken();
        Move(at);
        EXPECT_THAT(Taken(), IsEmpty()) << "the pointer put back is no drag";
        Move({ at.x + 4000, at.y });
        EXPECT_EQ(point.width, isLeft ? 0 : 1);
        Move({ at.x - 4000, at.y });
        EXPECT_EQ(point.width, isLeft ? 1 : 0);
        EXPECT_TRUE(IsWhole());
        Release(at);
        EXPECT_EQ(selection, -1);
    }
    const MPoint handle{ middle.x + 40, middle.y };
    screen->Click(*window, handle.x, handle.y, 1);
    EXPECT_EQ(point.width, 0.7608717583261314);
    point.width = 0.1;
    screen->DoubleClick(*window, handle.x, handle.y);
    EXPECT_EQ(point.width, 0.7608717583261314);
    screen->Wheel(*window, middle.x, middle.y, 240);
    EXPECT_NEAR(point.width, 0.8108717583261314, 1e-12);
    screen->SetHeldKeys(ModifierCtrl);
    screen->Wheel(*window, middle.x, middle.y, -1);
    EXPECT_NEAR(point.width, 0.8103717583261314, 1e-12);
    EXPECT_TRUE(editor->ZoomerX().IsWhole());
    screen->SetHeldKeys(0);
    point.type = typeWithoutWidth;
    screen->Wheel(*window, middle.x, middle.y, 120);
    EXPECT_FALSE(editor->ZoomerX().IsWhole()) << "what has no width leaves the wheel to the zoom";
}

TEST_F(Points, DoubleClicksEnableAndMakeTheNearestFreePointFollow)
{
    Show();
    const MPoint first = PixelOf(0);
    screen->DoubleClick(*window, first.x, first.y);
    EXPECT_FALSE(graph.points.At(0).enabled);
    screen->DoubleClick(*window, first.x, first.y);
    EXPECT_TRUE(graph.points.At(0).enabled);
    Taken();
    const MPoint empty{ PixelOf(0).x + 15, PixelOf(4).y };
    screen->DoubleClick(*window, empty.x, empty.y);
    EXPECT_THAT(Taken(), IsEmpty()) << "none is free";
    EXPECT_TRUE(editor->ZoomerX().IsWhole());

    graph.points.At(1).enabled = graph.points.At(3).enabled = false;
    graph.points.At(3).type = typeWithoutWidth;
    const double keptX = graph.points.At(3).x;
    const MPoint near{ PixelOf(1).x + 12, PixelOf(1).y + 25 };
    screen->DoubleClick(*window, near.x, near.y);
    EXPECT_TRUE(graph.points.At(1).enabled);
    EXPECT_EQ(PixelOf(1), near);
    EXPECT_EQ(graph.points.At(1).width, 0.7608717583261314);
    EXPECT_EQ(graph.points.At(3).x, keptX);
    EXPECT_FALSE(graph.points.At(3).enabled);
    EXPECT_EQ(selection, -1) << "the button is up again";
    EXPECT_THAT(Taken(), ElementsAre("changed 1", "changed 1"));

    // Held down after it, the new point goes with the pointer.
    const MPoint far{ PixelOf(3).x + 20, PixelOf(3).y - 60 };
    screen->Click(*window, far.x, far.y);
    Press(far);
    ASSERT_EQ(selection, 3);
    Move({ far.x + 33, far.y + 11 });
    EXPECT_EQ(PixelOf(3), (MPoint{ far.x + 33, far.y + 11 }));
    EXPECT_EQ(graph.points.At(3).type, 0);
    Release({ far.x + 33, far.y + 11 });
    EXPECT_EQ(selection, -1);
    Move({ far.x, far.y });
    EXPECT_EQ(PixelOf(3), (MPoint{ far.x + 33, far.y + 11 }));
    EXPECT_EQ(window->CaptureOwner(), nullptr);
}

TEST_F(Points, RightClicksCountOnlyOverTheSamePoint)
{
    Show();
    const MPoint first = PixelOf(0);
    const MPoint second = PixelOf(1);
    screen->Click(*window, first.x + 4, first.y - 4, 1);
    EXPECT_THAT(Taken(), ElementsAre("right 0"));
    for (const MPoint end : { second, MPoint{ first.x, first.y + 40 }, MPoint{ first.x + 4000, first.y } })
    {
        Press(first, 1);
        Release(end, 1);
    }
    EXPECT_THAT(Taken(), IsEmpty());

    // The first enabled one counts, or else the last.
    graph.points.At(3).x = graph.points.At(0).x;
    graph.points.At(3).y = graph.points.At(0).y;
    EXPECT_EQ(graph.PointAt(first.x, first.y), 0);
    graph.points.At(0).enabled = false;
    EXPECT_EQ(graph.PointAt(first.x, first.y), 3);
    graph.points.At(3).enabled = false;
    EXPECT_EQ(graph.PointAt(first.x, first.y), 3);
    bool isOnLeft = false;
    EXPECT_EQ(graph.HandleAt(first.x + 20, first.y, isOnLeft), -1);

    // What is out of the view can't be touched beside the graph.
    editor->SetView(0.2, 0.5, 0, 1);
    graph.points.At(2).x = graph.Mapping().x.ValueOf(editor->GraphRectangle().right + 4);
    EXPECT_EQ(graph.PointAt(editor->GraphRectangle().right + 4, PixelOf(2).y), -1);
    graph.points.At(2).x = graph.Mapping().x.ValueOf(editor->GraphRectangle().right);
    EXPECT_EQ(graph.PointAt(editor->GraphRectangle().right + 4, PixelOf(2).y), 2);
}

TEST_F(Points, KeysStepInChooseMoveAndLeave)
{
    Show();
    graph.points.At(0).enabled = false;
    graph.keyStepX = 0.01;
    editor->SetFocus();
    const auto key = [this](std::int32_t code, std::uint8_t held = 0)
    {
        return screen->Key(*window, code, held);
    };
    EXPECT_EQ(graph.KeyPoint(), -1);
    EXPECT_TRUE(key(MKey::Enter));
    EXPECT_EQ(graph.KeyPoint(), 1) << "the first enabled one";
    const std::vector<std::uint32_t> chosen = Look();
    EXPECT_TRUE(key(MKey::Tab));
    EXPECT_TRUE(key(MKey::Tab, ModifierShift));
    EXPECT_TRUE(key(MKey::Tab, ModifierShift));
    EXPECT_EQ(graph.KeyPoint(), 0);
    EXPECT_NE(Look(), chosen);
    EXPECT_TRUE(key(MKey::Space));
    EXPECT_TRUE(graph.points.At(0).enabled);
    TestPoint& point = graph.points.At(0);
    key(MKey::Right);
    key(MKey::Down, ModifierCtrl);
    key(']');
    key('[', ModifierCtrl);
    EXPECT_NEAR(point.x, 1.51, 1e-12);
    EXPECT_NEAR(point.y, 11.95, 1e-12);
    EXPECT_NEAR(point.width, 0.5225, 1e-12);
    EXPECT_THAT(Taken(), ElementsAre("changed 0", "changed 0", "changed 0", "changed 0", "changed 0"));
    for (std::int32_t i = 0; i < 400; ++i)
        key(i % 2 == 0 ? MKey::Left : MKey::Up);
    EXPECT_EQ(point.x, 1);
    EXPECT_EQ(point.y, 24);
    EXPECT_TRUE(editor->ZoomerX().IsWhole());
    EXPECT_TRUE(key(MKey::Escape));
    EXPECT_EQ(graph.KeyPoint(), -1);
    editor->SetView(0.4, 0.6, 0, 1);
    key(MKey::Left);
    EXPECT_LT(editor->ViewX0(), 0.4) << "outside, arrows scroll";
    key(MKey::Enter);
    window->SetFocusOwner(nullptr);
    EXPECT_EQ(graph.KeyPoint(), -1);
}

TEST_F(Points, AreStoredOneByOneAndLoadedWithinTheLimits)
{
    Show();
    MAttribute stored;
    EXPECT_TRUE(graph.Store(stored));
    EXPECT_EQ(stored.SubItemCount(), 5);
    for (std::int32_t i = 0; i < 5; ++i)
    {
        graph.points.At(i).x = 3.9;
        graph.points.At(i).enabled = false;
    }
    EXPECT_TRUE(graph.Load(stored));
    for (std::int32_t i = 0; i < 5; ++i)
    {
        EXPECT_NEAR(graph.points.At(i).x, 1.5 + 0.5 * i, 1e-9);
        EXPECT_TRUE(graph.points.At(i).enabled);
    }
    // Whatever is written there.
    std::mt19937 random(8);
    const char* const texts[] = {
        "-1e300", "nan", "inf", "", "x", "99999999999", "-3", "0.5", "1e-320", "8"
    };
    for (std::int32_t round = 0; round < 200; ++round)
    {
        MAttribute hostile;
        for (std::size_t i = random() % 9; i > 0; --i)
        {
            MAttribute& node = hostile.AddSubItem(random() % 4 == 0 ? "other" : "Point");
            for (const char* key : { "x", "y", "width", "type", "enabled" })
                if (random() % 3 != 0)
                    node.SetAttribute(key, texts[random() % std::size(texts)]);
        }
        graph.Load(hostile);
        for (std::int32_t i = 0; i < 5; ++i)
        {
            const TestPoint& point = graph.points.At(i);
            ASSERT_TRUE(point.x >= 1 && point.x <= 4 && point.y >= -24 && point.y <= 24) << round;
            ASSERT_TRUE(point.width >= 0 && point.width <= 1 && point.type >= 0 && point.type <= 8) << round;
        }
    }
    graph.points.At(0).x = std::nan("");
    graph.points.Limit();
    EXPECT_EQ(graph.points.At(0).x, 1);
}

TEST_F(Points, ArePaintedFromTheLastToTheFirstAndUnderTheLock)
{
    Show();
    const MPoint first = PixelOf(0);
    const auto pixel = [this](std::int32_t x, std::int32_t y)
    {
        return MColor(Look()[static_cast<std::size_t>(y * window->Width() + x)]);
    };
    const ScaledStyle style(1);
    const MColor band = style.GetColor(static_cast<std::int32_t>(MStdColor::Band1));
    EXPECT_EQ(pixel(first.x - 4, first.y), band);
    for (const double width : { 0.0, 0.4, 1.0 })
    {
        graph.points.At(0).width = width;
        editor->Invalidate();
        const std::int32_t reach = 5 + static_cast<std::int32_t>(10 + 40 * width + 0.5);
        for (const std::int32_t side : { -1, 1 })
        {
            EXPECT_NE(pixel(first.x + side * reach, first.y + 3),
                      pixel(first.x + side * (reach - 2), first.y + 3))
                << "the cap is higher than the bar";
            EXPECT_EQ(pixel(first.x + side * reach, first.y), pixel(first.x + side * (reach - 2), first.y));
            EXPECT_NE(pixel(first.x + side * reach, first.y), pixel(first.x + side * (reach + 1), first.y));
        }
    }
    graph.points.At(4).x = graph.points.At(0).x;
    graph.points.At(4).y = graph.points.At(0).y;
    editor->Invalidate();
    EXPECT_EQ(pixel(first.x - 4, first.y), band) << "the first lies on top";
    graph.points.At(0).enabled = graph.points.At(4).enabled = false;
    editor->Invalidate();
    EXPECT_NE(pixel(first.x - 4, first.y), band) << "disabled, it is faint";

    static std::vector<std::string> logged;
    SetLogSink([](const MString& line) { logged.push_back(line.ToUTF8()); });
    graph.lock = nullptr;
    struct Failing : MSynchronizer
    {
        int Acquire(std::uint32_t) override { return 1; }
        void Release() override {}
    } failing;
    graph.lock = &failing;
    LookAgain();
    SetLogSink(nullptr);
    graph.lock = &lock;
    EXPECT_THAT(logged, ElementsAre("SYSTEM EXCEPTION! MGraphEditor::PaintGraph"));
}
