// SPDX-License-Identifier: GPL-3.0-or-later
// Layouts by what must hold in any tree of them: nothing overlaps, leaves its parent, or is smaller than it
// can be.
#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "gui/controls/MControl.h"
#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MLayoutCorner.h"
#include "gui/controls/MLayoutGrid.h"
#include "gui/controls/MLayoutOccupyBorder.h"
#include "gui/controls/MLayoutSide.h"
#include "gui/controls/MLayoutSwitch.h"

#include "tests/gui/PlainStyle.h"

using ::testing::ElementsAre;

namespace
{
class TestStyle : public PlainStyle
{
public:
    TestStyle() { gap = 4; }
    Frame GetFrame(const MControl& control) const override
    {
        return control.id == MString("framed") ? Frame{ 3, 5, 2, 1 } : Frame{};
    }
};

// A text of so many square pixels: the wider, the lower.
class Plastic : public MControl
{
public:
    Plastic() { layout.plastic = true; }
    static constexpr std::int32_t Area = 1200;
    std::int32_t ComputePlasticSize(Axis, std::int32_t cross) const override
    {
        return cross > 0 ? (Area + cross - 1) / cross : Area;
    }
};

// With content of its own.
class Label : public MControl
{
public:
    MSize ContentMinimum() const override { return content; }
    MSize content;
};

class Layouts : public ::testing::Test
{
protected:
    void SetUp() override { root.SetStyle(&style); }

    MControl& Add(MControl& parent, MLayout& layout, std::int32_t width, std::int32_t height,
                  std::int32_t ratioX = 0, std::int32_t ratioY = 0)
    {
        MControl& child = parent.Make<MControl>();
        child.SetSize(width, height);
        child.layout.x.ratio = ratioX;
        child.layout.y.ratio = ratioY;
        layout.AddControl(child);
        return child;
    }
    static MRectangle AreaOf(const MControl& control)
    {
        return MRectangle::OfSize(control.X(), control.Y(), control.PresentSize(Axis::X),
                                  control.PresentSize(Axis::Y));
    }
    // Of a live tree: everything lies inside its parent, and nothing on its neighbour.
    static void Check(const MControl& control, std::int32_t gap)
    {
        std::vector<MRectangle> areas;
        for (const auto& child : control.Children())
        {
            if (!child->IsVisible() || child->layout.layout == nullptr)
                continue;
            if (dynamic_cast<const MLayoutSwitch*>(child->layout.layout) != nullptr)
                continue;
            const MRectangle area = AreaOf(*child);
            ASSERT_EQ(area.Intersection(control.ClientRectangle()), area)
                << area.left << " " << area.top << " " << area.right << " " << area.bottom << " in "
                << control.ClientRectangle().right << " " << control.ClientRectangle().bottom;
            for (const MRectangle& other : areas)
                ASSERT_TRUE(area.Inset(1 - gap, 1 - gap).Intersection(other).IsEmpty() ||
                            area.Inset(0, 1 - gap).Intersection(other).IsEmpty() ||
                            area.Inset(1 - gap, 0).Intersection(other).IsEmpty());
            areas.push_back(area);
            ASSERT_GE(child->PresentSize(Axis::X), child->MinimalSize(Axis::X));
            ASSERT_TRUE(child->IsCollapsed() || child->PresentSize(Axis::Y) >= child->MinimalSize(Axis::Y));
            ASSERT_EQ(child->AbsoluteX(), control.AbsoluteX() + child->X());
            ASSERT_EQ(child->AbsoluteY(), control.AbsoluteY() + child->Y());
            Check(*child, gap);
        }
    }
    std::vector<std::int32_t> Widths() const
    {
        std::vector<std::int32_t> widths;
        for (const auto& child : root.Children())
            widths.push_back(child->Width());
        return widths;
    }

    TestStyle style;
    MControl root;
};
}   // namespace

TEST_F(Layouts, SharesAreWholePixelsAndNothingIsLost)
{
    style.gap = 0;
    auto& row = root.MakeLayout<MLayoutHorizontal>();
    for (int i = 0; i < 3; ++i)
        Add(root, row, 0, 10, 1);
    root.SetSize(100, 20);
    root.GoLive();
    EXPECT_THAT(Widths(), ElementsAre(33, 33, 34));

    style.gap = 4;
    Add(root, row, 20, 10);
    root.Children()[1]->layout.x.ratio = 3;
    root.Children()[3]->layout.space = 7;
    for (std::int32_t width = 60; width < 400; ++width)
    {
        root.SetSize(width, 20);
        root.Relayout();
        const std::vector<std::int32_t> widths = Widths();
        EXPECT_EQ(widths[3], 20);
        EXPECT_EQ(widths[0] + widths[1] + widths[2],
                  std::max(width, root.MinimalSize(Axis::X)) - 20 - 3 * 4 - 7);
        EXPECT_NEAR(widths[1], 3 * widths[0], 3);
    }
}

TEST_F(Layouts, PlacementPutsAControlIntoItsCell)
{
    auto& column = root.MakeLayout<MLayoutVertical>();
    struct Case
    {
        std::uint8_t placement;
        std::int32_t x;
        std::int32_t y;
    };
    MControl& child = Add(root, column, 20, 10);
    child.layout.x.border = 3;
    child.layout.y.border = 2;
    root.SetSize(101, 14);
    root.GoLive();
    // Centred with half a pixel downwards; at the end, the border and one pixel stay free.
    for (const Case& each : { Case{ AlignCenter, 40, 2 }, Case{ AlignLeft | AlignTop, 3, 2 },
                              Case{ AlignRight | AlignBottom, 77, 1 } })
    {
        child.layout.placement = each.placement;
        root.Relayout();
        EXPECT_EQ(child.X(), each.x);
        EXPECT_EQ(child.Y(), each.y);
        EXPECT_EQ(child.Width(), 20);
    }
    child.layout.x.ratio = 1;
    root.Relayout();
    EXPECT_EQ(AreaOf(child).left, 3);
    EXPECT_EQ(AreaOf(child).right, 97);
}

TEST_F(Layouts, StripsBiteOffWhatRemainsAndHiddenOnesCostNothing)
{
    auto& border = root.MakeLayout<MLayoutOccupyBorder>();
    border.left = 5;
    border.bottom = 6;
    auto& left = root.MakeLayout<MLayoutLeft>();
    auto& top = root.MakeLayout<MLayoutTop>();
    auto& right = root.MakeLayout<MLayoutRight>();
    auto& bottom = root.MakeLayout<MLayoutBottom>();
    auto& rest = root.MakeLayout<MLayoutHorizontal>();
    MControl& a = Add(root, left, 30, 10, 0, 1);
    MControl& b = Add(root, top, 10, 20, 1);
    MControl& c = Add(root, right, 40, 10, 0, 1);
    MControl& d = Add(root, bottom, 10, 15, 1);
    MControl& e = Add(root, rest, 10, 10, 1, 1);
    root.SetSize(200, 150);
    root.GoLive();
    EXPECT_EQ(AreaOf(a), (MRectangle{ 5, 0, 34, 143 }));
    EXPECT_EQ(AreaOf(b), (MRectangle{ 39, 0, 199, 19 }));
    EXPECT_EQ(AreaOf(c), (MRectangle{ 160, 24, 199, 143 }));
    EXPECT_EQ(AreaOf(d), (MRectangle{ 39, 129, 155, 143 }));
    EXPECT_EQ(AreaOf(e), (MRectangle{ 39, 24, 155, 124 }));
    EXPECT_EQ(root.MinimalSize(Axis::X), 5 + 4 + 30 + 4 + 40);
    b.SetVisible(false);
    EXPECT_EQ(AreaOf(e), (MRectangle{ 39, 0, 155, 124 }));
    c.SetVisible(false);
    EXPECT_EQ(AreaOf(e).right, 199);
    EXPECT_EQ(root.MinimalSize(Axis::X), 5 + 4 + 30);
    EXPECT_EQ(root.GetStretch(), 3);
    EXPECT_THROW(MLayoutSide(root, 4), MException);
}

TEST_F(Layouts, ASwitchShowsTheFirstVisibleAndHasRoomForAll)
{
    auto& pages = root.MakeLayout<MLayoutSwitch>();
    MControl& first = Add(root, pages, 50, 10, 1, 1);
    MControl& second = Add(root, pages, 10, 70, 1, 1);
    for (MControl* page : { &first, &second })
        page->SetMinimalClientSize({ page->Width(), page->Height() });
    root.GoLive();
    EXPECT_EQ(root.Width(), 50);
    EXPECT_EQ(root.Height(), 70);
    EXPECT_EQ(AreaOf(first), (MRectangle{ 0, 0, 49, 69 }));
    first.SetVisible(false);
    EXPECT_EQ(AreaOf(second), (MRectangle{ 0, 0, 49, 69 }));
}

TEST_F(Layouts, GridsAlignTheirCells)
{
    auto& grid = root.MakeLayout<MLayoutGrid>();
    grid.SetColumns(3);
    grid.verticalFill = true;
    MControl& a = Add(root, grid, 30, 10);
    MControl& b = Add(root, grid, 10, 20, 1);
    MControl& c = Add(root, grid, 15, 10);
    MControl& wide = Add(root, grid, 120, 10, 1, 1);
    grid.SetSpan(wide, 2, 1);
    MControl& last = Add(root, grid, 25, 10, 0, 1);
    root.SetSize(200, 100);
    root.GoLive();
    EXPECT_EQ(b.Width(), 200 - 30 - 25 - 8);
    EXPECT_EQ(c.X(), 200 - 25 + (25 - 15) / 2);
    EXPECT_EQ(AreaOf(wide), (MRectangle{ 0, 24, 170, 99 }));
    EXPECT_EQ(AreaOf(last), (MRectangle{ 175, 24, 199, 99 }));
    EXPECT_EQ(a.Y(), 5);
    c.SetVisible(false);
    last.SetVisible(false);
    EXPECT_EQ(b.Width(), 200 - 30 - 8) << "a column of nothing behind one with a share takes nothing";
    b.SetVisible(false);
    EXPECT_EQ(AreaOf(wide).right, 30 + 4 + (200 - 30 - 8) - 1) << "the span's second column takes the room";
    // Equal sets: every second column as wide as the widest of its set.
    MControl other;
    other.SetStyle(&style);
    auto& pairs = other.MakeLayout<MLayoutGrid>();
    pairs.SetColumns(4);
    pairs.columnSpanCount = 2;
    Add(other, pairs, 30, 10);
    Add(other, pairs, 20, 10, 5);
    MControl& third = Add(other, pairs, 50, 10, 7);
    MControl& fourth = Add(other, pairs, 20, 10, 5);
    other.SetSize(300, 10);
    other.GoLive();
    EXPECT_EQ(third.Width(), 30) << "the set has a fixed column: its shares go";
    EXPECT_EQ(fourth.Width(), (300 - 60 - 12) / 2);
}

TEST_F(Layouts, CornersFrameWhatIsLeft)
{
    auto& corner = root.MakeLayout<MLayoutCorner>();
    auto& rest = root.MakeLayout<MLayoutHorizontal>();
    const auto put = [&](std::int32_t width, std::int32_t height, const char* target, std::int32_t ratio)
    {
        MControl& child = Add(root, corner, width, height, ratio, ratio);
        corner.SetTarget(child, MString::Literal(target));
        return &child;
    };
    const MControl* left = put(20, 10, "left", 1);
    const MControl* top = put(10, 15, "top", 1);
    const MControl* first = put(5, 5, "corner0", 0);
    MControl& middle = Add(root, rest, 10, 10, 1, 1);
    root.SetSize(100, 80);
    root.GoLive();
    EXPECT_EQ(AreaOf(*left), (MRectangle{ 0, 19, 19, 79 }));
    EXPECT_EQ(AreaOf(*top), (MRectangle{ 24, 0, 99, 14 }));
    EXPECT_EQ(AreaOf(*first), (MRectangle{ 7, 5, 11, 9 }));
    EXPECT_EQ(AreaOf(middle), (MRectangle{ 24, 19, 99, 79 }));
    const MControl* replacing = put(8, 8, "corner0", 0);
    root.Relayout();
    EXPECT_EQ(replacing->layout.layout, &corner);
    EXPECT_EQ(first->layout.layout, nullptr);
    MControl& bad = Add(root, corner, 1, 1);
    EXPECT_THROW(corner.SetTarget(bad, "corner4"), MException);
}

TEST_F(Layouts, PlasticControlsTradeWidthForHeight)
{
    auto& top = root.MakeLayout<MLayoutTop>();
    auto& rest = root.MakeLayout<MLayoutHorizontal>();
    auto& text = root.Make<Plastic>();
    top.AddControl(text);
    MControl& below = Add(root, rest, 10, 10, 1, 1);
    root.SetSize(100, 200);
    root.GoLive();
    EXPECT_EQ(AreaOf(text), (MRectangle{ 0, 0, 99, Plastic::Area / 100 - 1 }));
    EXPECT_EQ(below.Y(), Plastic::Area / 100 + 4);
    root.SetSize(60, 200);
    EXPECT_EQ(text.Height(), Plastic::Area / 60);
    MControl plain;
    plain.layout.plastic = true;
    try
    {
        plain.FitPlastic(Axis::X, 10);
        ADD_FAILURE();
    }
    catch (const MException& error)
    {
        EXPECT_EQ(error.Message.ToUTF8(), "Service \"compute plastic control size\" is not implemented.");
    }
}

TEST_F(Layouts, AnyTreeFitsAtItsLeastSizeAndAbove)
{
    std::mt19937 random(11);
    const auto below = [&random](std::int32_t limit)
    {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(limit));
    };
    for (int round = 0; round < 300; ++round)
    {
        SCOPED_TRACE(round);
        MControl tree;
        style.gap = below(6);
        tree.SetStyle(&style);
        const std::vector<const char*> targets{ "left",    "top",     "right",   "bottom",
                                                "corner0", "corner1", "corner2", "corner3" };
        const auto fill = [&](auto&& self, MControl& control, int depth) -> void
        {
            if (below(3) == 0)
                control.id = "framed";
            const std::int32_t layouts = 1 + below(3);
            for (std::int32_t index = 0; index < layouts; ++index)
            {
                MLayout* layout = nullptr;
                const bool last = index + 1 == layouts;
                MLayoutCorner* corner = nullptr;
                switch (last ? 4 + below(4) : below(6) - 2)
                {
                case -2:
                    layout = corner = &control.MakeLayout<MLayoutCorner>();
                    break;
                case -1:
                {
                    auto& border = control.MakeLayout<MLayoutOccupyBorder>();
                    border.left = below(9);
                    border.top = below(9);
                    border.right = below(9);
                    border.bottom = below(9);
                    continue;
                }
                case 0:
                    layout = &control.MakeLayout<MLayoutLeft>();
                    break;
                case 1:
                    layout = &control.MakeLayout<MLayoutTop>();
                    break;
                case 2:
                    layout = &control.MakeLayout<MLayoutRight>();
                    break;
                case 3:
                    layout = &control.MakeLayout<MLayoutBottom>();
                    break;
                case 4:
                    layout = &control.MakeLayout<MLayoutHorizontal>();
                    break;
                case 5:
                    layout = &control.MakeLayout<MLayoutVertical>();
                    break;
                case 6:
                    layout = &control.MakeLayout<MLayoutSwitch>();
                    break;
                default:
                {
                    auto& grid = control.MakeLayout<MLayoutGrid>();
                    grid.SetColumns(1 + below(3));
                    grid.verticalFill = below(2) == 0;
                    grid.columnSpanCount = below(3);
                    layout = &grid;
                    break;
                }
                }
                layout->layoutSpaceExtra = below(3);
                layout->defaultBorderX = below(4) - 1;
                for (std::int32_t count = 1 + below(4); count > 0; --count)
                {
                    auto& child = control.Make<Label>();
                    child.SetSize(1 + below(30), 1 + below(30));
                    child.content = { child.Width(), child.Height() };
                    child.layout.x.ratio = below(3);
                    child.layout.y.ratio = below(3);
                    child.layout.y.border = below(3);
                    child.SetVisible(below(5) > 0);
                    layout->AddControl(child);
                    if (corner != nullptr)
                        corner->SetTarget(child,
                                          MString::Literal(targets[static_cast<std::size_t>(below(8))]));
                    else if (auto* grid = dynamic_cast<MLayoutGrid*>(layout))
                        grid->SetSpan(child, 1 + below(2), 1);
                    if (depth > 0)
                        self(self, child, depth - 1);
                }
            }
        };
        fill(fill, tree, below(3));
        tree.GoLive();
        tree.SetPosition(below(50), below(50));
        Check(tree, style.gap);
        const MSize least{ tree.Width(), tree.Height() };
        for (const std::int32_t more : { 0, 1, 7, 250 })
        {
            tree.SetSize(least.width + more, least.height + more / 2);
            Check(tree, style.gap);
        }
        tree.SetSize(1, 1);
        EXPECT_EQ(tree.Width(), std::max(1, tree.MinimalSize(Axis::X)));
        if (HasFatalFailure())
            return;
    }
}

TEST_F(Layouts, AControlGrowsWithWhatItHoldsAndStretchesAsThatDoes)
{
    root.id = "framed";
    root.adaptsSize = true;
    auto& grid = root.MakeLayout<MLayoutGrid>();
    grid.SetColumns(2);
    MControl& fixed = Add(root, grid, 20, 10);
    Add(root, grid, 30, 10);
    root.AdaptSize();
    EXPECT_EQ(root.Width(), 20 + 4 + 30 + 5);
    EXPECT_EQ(root.Height(), 10 + 6);
    EXPECT_EQ(root.GetStretch(), 0);
    fixed.layout.y.ratio = 1;
    EXPECT_EQ(root.GetStretch(), 0) << "rows don't share what is free";
    grid.verticalFill = true;
    EXPECT_EQ(root.GetStretch(), 2);
    fixed.layout.x.ratio = 1;
    EXPECT_EQ(root.GetStretch(), 3);
    MControl& loose = root.Make<MControl>();
    loose.SetSize(50, 40);
    loose.SetPosition(40, 30);
    root.sizesToChildren = true;
    root.ComputeMinimalSize();
    EXPECT_EQ(root.MinimalSize(Axis::X), 40 + 50 + 5);
    EXPECT_EQ(root.MinimalSize(Axis::Y), 30 + 40 + 6);
    root.RemoveChild(fixed);
    EXPECT_EQ(grid.Controls().size(), 1u);
    // A row of text alone is as high as its text is at the width of its column.
    MControl other;
    other.SetStyle(&style);
    auto& rows = other.MakeLayout<MLayoutGrid>();
    rows.SetColumns(2);
    Add(other, rows, 40, 10);
    Add(other, rows, 60, 10);
    auto& first = other.Make<Plastic>();
    rows.AddControl(first);
    other.GoLive();
    EXPECT_EQ(AreaOf(first), (MRectangle{ 0, 14, 39, 14 + Plastic::Area / 40 - 1 }));
}
