// SPDX-License-Identifier: GPL-3.0-or-later
// The coverage of curves, against the exact one of polygons, and curves in an editor.
#include <cmath>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "foundation/text/Boundary.h"
#include "foundation/text/MException.h"
#include "foundation/threads/MLock.h"
#include "gui/graphs/CurvePainter.h"
#include "gui/painting/MDrawerToMBitmap.h"
#include "tests/gui/graphs/GraphWindow.h"

namespace
{
constexpr std::int32_t Width = 240;
constexpr std::int32_t Height = 200;
const MColor white(255, 255, 255);

struct Curve
{
    const char* name;
    std::function<double(double)> height;
};

std::vector<Curve> Curves()
{
    std::mt19937 random(3);
    std::vector<double> noise;
    for (std::int32_t i = 0; i <= Width; ++i)
        noise.push_back(40 + static_cast<double>(random() % 1200) / 10);
    return { { "level",
               [](double)
               {
                   return 90.25;
               } },
             { "slope",
               [](double x)
               {
                   return 20.3 + x * 0.61;
               } },
             { "steep",
               [](double x)
               {
                   return 100 - (x - 120) * 20;
               } },
             { "smooth",
               [](double x)
               {
                   return 100 + 60 * std::sin(x * 0.05) + 3 * std::sin(x * 0.7);
               } },
             { "peaks",
               [](double x)
               {
                   return 160 - 140 * std::exp(-std::pow(std::fmod(x, 60) - 30, 2) / 9);
               } },
             { "noise", [noise](double x)
               {
                   return noise[static_cast<std::size_t>(x)];
               } } };
}

struct Picture
{
    Picture() : bitmap(Width, Height), made(bitmap)
    {
        drawer.FillRectangle(bitmap.Bounds(), MColor(0, 0, 0));
    }
    std::int32_t At(std::int32_t x, std::int32_t y) const { return bitmap.Pixel(x, y).Green(); }
    double Sum() const
    {
        double sum = 0;
        for (std::int32_t y = 0; y < Height; ++y)
            for (std::int32_t x = 0; x < Width; ++x)
                sum += At(x, y) / 255.0;
        return sum;
    }

    MBitmap bitmap;
    MDrawerToMBitmap made;
    MDrawer& drawer = made;
};

std::vector<double> EdgesOf(const Curve& curve)
{
    std::vector<double> edges;
    for (std::int32_t x = 0; x <= Width; ++x)
        edges.push_back(curve.height(x));
    return edges;
}

/// What a round brush covers that is carried along the lines between the edges: in strips of a column, from
/// the highest to the lowest place that it reaches, found by trying.
void Brush(Picture& picture, const std::vector<double>& edges, double radius)
{
    constexpr std::int32_t strips = 32;
    constexpr double step = 1.0 / 64;
    std::vector<double> covered(static_cast<std::size_t>(Width * Height));
    const auto heightAt = [&edges](double x)
    {
        const double inside = std::clamp(x, 0.0, static_cast<double>(Width));
        const auto i = static_cast<std::size_t>(std::min(inside, Width - 1.0));
        return edges[i] + (inside - static_cast<double>(i)) * (edges[i + 1] - edges[i]);
    };
    for (std::int32_t strip = 0; strip < Width * strips; ++strip)
    {
        const double x = (strip + 0.5) / strips;
        double top = heightAt(x);
        double bottom = top;
        for (double d = -radius; d <= radius; d += step)
        {
            const double height = std::sqrt(std::max(0.0, radius * radius - d * d));
            top = std::min(top, heightAt(x + d) - height);
            bottom = std::max(bottom, heightAt(x + d) + height);
        }
        const auto first = std::max(0, static_cast<std::int32_t>(top));
        for (std::int32_t y = first; y <= std::min(Height - 1, static_cast<std::int32_t>(bottom)); ++y)
            covered[static_cast<std::size_t>(y * Width + strip / strips)] +=
                std::max(0.0, std::min(bottom, y + 1.0) - std::max(top, static_cast<double>(y))) / strips;
    }
    for (std::int32_t y = 0; y < Height; ++y)
        for (std::int32_t x = 0; x < Width; ++x)
        {
            const auto level = static_cast<std::uint8_t>(
                std::min(1.0, covered[static_cast<std::size_t>(y * Width + x)]) * 255 + 0.5);
            picture.bitmap.Row(y)[x] = MColor(level, level, level).value;
        }
}

struct Difference
{
    double mean = 0;   // of the pixels that either covers
    std::int32_t most = 0;
};

Difference Compare(const Picture& a, const Picture& b, std::int32_t margin)
{
    Difference difference;
    double count = 0;
    for (std::int32_t y = 0; y < Height; ++y)
        for (std::int32_t x = margin; x < Width - margin; ++x)
        {
            const std::int32_t apart = std::abs(a.At(x, y) - b.At(x, y));
            difference.most = std::max(difference.most, apart);
            difference.mean += apart / 255.0;
            count += a.At(x, y) > 0 || b.At(x, y) > 0 ? 1 : 0;
        }
    difference.mean /= std::max(1.0, count);
    return difference;
}
}   // namespace

TEST(CurvePainter, FillsAsExactlyAsAPolygonOnBothSidesOfALevel)
{
    for (const Curve& curve : Curves())
        for (const std::int32_t base : { 200, 0, 95 })
        {
            SCOPED_TRACE(std::string(curve.name) + " from " + std::to_string(base));
            const std::vector<double> edges = EdgesOf(curve);
            Picture painted;
            CurvePainter().Fill(painted.drawer, 0, edges, base, white);
            std::vector<MPointF> outline{ { 0, static_cast<double>(base) } };
            for (std::int32_t x = 0; x <= Width; ++x)
                outline.push_back({ static_cast<double>(x), edges[static_cast<std::size_t>(x)] });
            outline.push_back({ static_cast<double>(Width), static_cast<double>(base) });
            Picture exact;
            exact.drawer.FillPolygon(outline, white);
            // FreeType's places are whole 256ths: two levels of 255 on an edge of slope 1, more along edges
            // that hardly rise and where a column crosses the level.
            const Difference difference = Compare(painted, exact, 0);
            EXPECT_LE(difference.most, 5);
            EXPECT_LT(difference.mean, 0.002);
        }
}

TEST(CurvePainter, StrokesKeepTheirWidthOnEverySlope)
{
    for (const Curve& curve : Curves())
        for (const double width : { 1.0, 1.25, 2.0, 4.0, 5.0, 10.0 })
        {
            SCOPED_TRACE(std::string(curve.name) + ", " + std::to_string(width) + " wide");
            const std::vector<double> edges = EdgesOf(curve);
            Picture painted;
            const CurvePainter::Stroke stroke{ width, white };
            CurvePainter().Ribbon(painted.drawer, 0, edges, std::span(&stroke, 1));
            Picture exact;
            Brush(exact, edges, width / 2);
            const Difference difference = Compare(painted, exact, 12);
            // Four lines stand for the border in a column: enough for a peak of slope 20 on both sides, not
            // for noise that leaps 100 pixels from column to column.
            const bool isNoise = std::string(curve.name) == "noise";
            EXPECT_LE(difference.most, isNoise ? 64 : 16);
            EXPECT_LT(difference.mean, isNoise ? 0.02 : 0.006);
        }
}

TEST(CurvePainter, PaintsTheSamePixelsWhateverTheClipAndTheOrigin)
{
    const std::vector<CurvePainter::Stroke> strokes{ { 5, MColor(9, 200, 30, 150) },
                                                     { 3, MColor(200, 90, 40) },
                                                     { 1.25, MColor(80, 99, 255, 90) } };
    for (const Curve& curve : Curves())
    {
        SCOPED_TRACE(curve.name);
        const std::vector<double> edges = EdgesOf(curve);
        CurvePainter painter;
        Picture whole;
        painter.Fill(whole.drawer, 0, edges, 120, MColor(50, 60, 70, 99));
        painter.Ribbon(whole.drawer, 0, edges, strokes);
        Picture pieces;
        for (std::int32_t x = 0; x < Width; x += 37)
            for (std::int32_t y = 0; y < Height; y += 41)
            {
                pieces.drawer.SetClip(MRectangle::OfSize(x, y, 37, 41));
                pieces.drawer.Shift(-7, 5);
                // No more edges than what is seen depends on.
                const std::int32_t first = std::max(0, x - CurvePainter::Margin(5));
                const std::int32_t last = std::min(Width, x + 37 + CurvePainter::Margin(5));
                std::vector<double> part;
                for (std::int32_t i = first; i <= last; ++i)
                    part.push_back(edges[static_cast<std::size_t>(i)] - 5);
                painter.Fill(pieces.drawer, first + 7, part, 115, MColor(50, 60, 70, 99));
                painter.Ribbon(pieces.drawer, first + 7, part, strokes);
                pieces.drawer.Shift(7, -5);
            }
        for (std::int32_t y = 0; y < Height; ++y)
            for (std::int32_t x = 0; x < Width; ++x)
                ASSERT_EQ(pieces.bitmap.Row(y)[x], whole.bitmap.Row(y)[x]) << x << ", " << y;
    }
    // Nothing of this is a curve, and all of it ends.
    Picture picture;
    CurvePainter painter;
    for (const double height : { std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300 })
    {
        const std::vector<double> edges{ 10, height, 20, height, height, 30 };
        painter.Fill(picture.drawer, -2, edges, height, white);
        painter.Ribbon(picture.drawer, 238, edges, strokes);
        painter.Ribbon(picture.drawer, 0, std::span(edges).first(1), strokes);
        painter.Ribbon(picture.drawer, 0, {}, strokes);
        painter.Ribbon(picture.drawer, 5000, edges, {});
    }
}

namespace
{
// A curve of something that another thread owns.
class LockedFunction : public PlainFunction
{
public:
    void Paint(MGraphEditor&, MDrawer&) override
    {
        const MSynchronizerGuard guard(lock, 0);
        ++snapshots;
    }

    MLock lock;
    std::int32_t snapshots = 0;
};

std::vector<std::string> logged;
}   // namespace

TEST_F(GraphWindow, ACurveLiesAtItsValuesAndCanBeFilledAndThick)
{
    for (const double scale : { 1.0, 1.25, 2.0 })
    {
        SCOPED_TRACE(scale);
        Open(700, 400, scale);
        MFunctionGraphT<PlainFunction> graph;
        graph.function = [](double x)
        {
            return x < 0.5 ? 0.25 : std::nan("");
        };
        graph.color = MColor(255, 0, 0);
        editor->AddGraph(graph);
        const std::vector<std::uint32_t> ground = [&]
        {
            graph.SetVisible(false);
            const std::vector<std::uint32_t> look = Look();
            graph.SetVisible(true);
            return look;
        }();
        const auto rowsAt = [&](std::int32_t x)
        {
            const std::vector<std::uint32_t> look = Look();
            std::vector<std::int32_t> rows;
            for (std::int32_t y = 0; y < window->Height(); ++y)
            {
                const auto i = static_cast<std::size_t>(y * window->Width() + x);
                if (look[i] != ground[i])
                    rows.push_back(y);
            }
            return rows;
        };
        const MRectangle area = editor->GraphRectangle();
        const std::int32_t quarter = area.left + area.Width() / 4;
        const std::int32_t row = graph.Mapping().y.PixelOf(0.25);
        const std::vector<std::int32_t> line = rowsAt(quarter);
        ASSERT_FALSE(line.empty());
        EXPECT_NEAR((line.front() + line.back()) / 2.0, row, 0.51);
        EXPECT_NEAR(static_cast<double>(line.size()), scale, 1.01);
        EXPECT_EQ(rowsAt(area.right - 40).back(), area.bottom) << "what is no number lies at the bottom";
        EXPECT_TRUE(rowsAt(area.left - 1).empty());
        EXPECT_TRUE(rowsAt(area.right + 1).empty());

        graph.thick = true;
        editor->Invalidate();
        EXPECT_EQ(rowsAt(quarter).size(), line.size() + 1);
        EXPECT_EQ(rowsAt(quarter).front(), line.front());
        graph.drawFill = true;
        graph.drawLine = false;
        for (const double base : { 0.0, 1.0, 0.6 })
        {
            graph.baseLevel = base;
            editor->Invalidate();
            const std::vector<std::int32_t> filled = rowsAt(quarter);
            const std::int32_t baseRow = graph.Mapping().y.PixelOf(base);
            EXPECT_EQ(filled.front(), base == 0 ? row : base == 1 ? baseRow : baseRow + 1) << base;
            // From above the area ends between pixels.
            EXPECT_NEAR(filled.back(), base == 0 ? area.bottom : row, base == 0 ? 0 : 1) << base;
            EXPECT_EQ(static_cast<std::int32_t>(filled.size()), filled.back() - filled.front() + 1);
        }
        EXPECT_TRUE(IsWhole());
    }
}

TEST_F(GraphWindow, ACurveThatCantGetItsDataIsLeftOutAndLogged)
{
    Open();
    SetLogSink([](const MString& line) { logged.push_back(line.ToUTF8()); });
    MFunctionGraphT<LockedFunction> locked;
    MFunctionGraphT<PlainFunction> other;
    other.color = MColor(0, 255, 0);
    editor->AddGraph(locked);
    editor->AddGraph(other);
    const std::vector<std::uint32_t> both = LookAgain();
    EXPECT_GT(locked.snapshots, 0);
    EXPECT_TRUE(logged.empty());
    std::vector<std::uint32_t> withoutLock;
    locked.lock.Acquire(InfiniteTimeout);
    std::thread([&] { withoutLock = LookAgain(); }).join();
    locked.lock.Release();
    SetLogSink(nullptr);
    EXPECT_EQ(logged, std::vector<std::string>{ "SYSTEM EXCEPTION! MFunctionGraphT::Paint" });
    EXPECT_NE(withoutLock, both);
    locked.SetVisible(false);
    EXPECT_EQ(withoutLock, LookAgain()) << "the others are painted";
}
