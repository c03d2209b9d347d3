// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/stylebuilder/PathDrawing.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>
#include <utility>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "gui/painting/MDrawerToMBitmap.h"

namespace
{
struct Word
{
    const char* name;
    PathShape::Kind kind;
    std::size_t least;   // values, at least
    std::size_t most;
};

// What follows the first point, but for the lines and polygons.
constexpr Word words[] = {
    { "line", PathShape::Kind::Line, 0, 0 },     { "ring", PathShape::Kind::Ring, 1, 2 },
    { "arc", PathShape::Kind::Arc, 3, 4 },       { "disc", PathShape::Kind::Disc, 1, 1 },
    { "frame", PathShape::Kind::Frame, 3, 4 },   { "box", PathShape::Kind::Box, 3, 3 },
    { "shape", PathShape::Kind::Polygon, 0, 0 },
};

class Reader
{
public:
    explicit Reader(const std::string& filePath) : path(filePath), file(filePath)
    {
        if (!file)
            throw MException(Format("Cannot read \"{0}\".", MString::FromUTF8(path)));
    }

    std::vector<PathDrawing> Read()
    {
        for (std::string text; std::getline(file, text);)
        {
            ++number;
            std::istringstream line(text.substr(0, text.find('#')));
            std::string word;
            if (line >> word)
                ReadLine(word, line);
        }
        return std::move(drawings);
    }

private:
    [[noreturn]] void Refuse(const MString& reason) const
    {
        throw MException(Format("{0}:{1}: {2}", MString::FromUTF8(path), number, reason));
    }

    void ReadLine(const std::string& word, std::istringstream& line)
    {
        if (word == "icon" || word == "picture" || word == "cursor")
        {
            PathDrawing drawing;
            drawing.kind = word == "icon"      ? PathDrawing::Kind::Icon
                           : word == "picture" ? PathDrawing::Kind::Picture
                                               : PathDrawing::Kind::Cursor;
            if (!(line >> drawing.name >> drawing.first))
                Refuse("a name and a number are missing");
            if (!(line >> drawing.second))
                drawing.second = drawing.kind == PathDrawing::Kind::Icon ? 1.3 : 0;
            drawings.push_back(drawing);
            return;
        }
        for (const Word& known : words)
            if (word == known.name)
                return ReadShape(known, line);
        Refuse(Format("\"{0}\" is no shape", MString::FromUTF8(word)));
    }

    void ReadShape(const Word& known, std::istringstream& line)
    {
        if (drawings.empty())
            Refuse("a shape stands before the first drawing");
        PathShape shape;
        shape.kind = known.kind;
        std::vector<double> values;
        for (std::string text; line >> text;)
        {
            const std::size_t comma = text.find(',');
            if (text.starts_with("w="))
                shape.stroke = Number(text.substr(2));
            else if (comma != std::string::npos)
                shape.points.push_back({ Number(text.substr(0, comma)), Number(text.substr(comma + 1)) });
            else
                values.push_back(Number(text));
        }
        if (shape.points.empty() || values.size() < known.least || values.size() > known.most)
            Refuse("not what this shape is made of");
        for (std::size_t i = 0; i < std::min<std::size_t>(values.size(), 3); ++i)
            shape.values[i] = values[i];
        if (known.most > known.least && values.size() == known.most)
            shape.stroke = values.back();
        drawings.back().shapes.push_back(shape);
    }

    double Number(const std::string& text) const
    {
        int used = 0;
        const MString number_ = MString::FromUTF8(text);
        const double value = number_.ToDouble(&used);
        if (used == 0 || used != number_.Length())
            Refuse(Format("\"{0}\" is no number", number_));
        return value;
    }

    std::string path;
    std::ifstream file;
    int number = 0;
    std::vector<PathDrawing> drawings;
};

// All contours run counterclockwise, as strokes do, so that nothing that overlaps cancels out.
class OutlineOfPaths
{
public:
    OutlineOfPaths(ShapeOutline& target, double pixels, double usualStroke, double spreadUnits, MPointF moved)
        : outline(target), unit(pixels), usual(usualStroke), spread(spreadUnits), offset(moved)
    {
    }

    void Add(const PathShape& shape)
    {
        const double width = (shape.stroke > 0 ? shape.stroke : usual) + 2 * spread;
        const MPointF at = shape.points.front();
        const double radius = shape.values[0];
        switch (shape.kind)
        {
        case PathShape::Kind::Line:
            return AddLine(shape.points, width);
        case PathShape::Kind::Ring:
            outline.AddCircle(OnBitmap(at), (radius + width / 2) * unit, true);
            return outline.AddCircle(OnBitmap(at), (radius - width / 2) * unit);
        case PathShape::Kind::Disc:
            return outline.AddCircle(OnBitmap(at), (radius + spread) * unit, true);
        case PathShape::Kind::Arc:
            return AddArc(at, shape, width);
        case PathShape::Kind::Frame:
            AddBox(at, shape, width / 2, true);
            return AddBox(at, shape, -width / 2, false);
        case PathShape::Kind::Box:
            return AddBox(at, shape, spread, true);
        case PathShape::Kind::Polygon:
            return AddPolygon(shape.points);
        }
    }

private:
    MPointF OnBitmap(MPointF point) const { return { point.x * unit + offset.x, point.y * unit + offset.y }; }

    void AddLine(const std::vector<MPointF>& points, double width)
    {
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            outline.AddCircle(OnBitmap(points[i]), width / 2 * unit, true);
            if (i == 0)
                continue;
            const MPointF ends[] = { OnBitmap(points[i - 1]), OnBitmap(points[i]) };
            outline.AddStroke(ends, width * unit);
        }
    }

    void AddArc(MPointF centre, const PathShape& shape, double width)
    {
        // Backwards where it runs clockwise, for the direction of its contour.
        const double from = shape.values[1];
        const double sweep = shape.values[2];
        const double start = sweep > 0 ? from + sweep : from;
        outline.AddArc(OnBitmap(centre), shape.values[0] * unit, width * unit, start, -std::abs(sweep));
        for (const double degrees : { from, from + sweep })
        {
            const double angle = degrees * std::numbers::pi / 180;
            const MPointF end{ centre.x + shape.values[0] * std::cos(angle),
                               centre.y + shape.values[0] * std::sin(angle) };
            outline.AddCircle(OnBitmap(end), width / 2 * unit, true);
        }
    }

    void AddBox(MPointF corner, const PathShape& shape, double wider, bool counterclockwise)
    {
        const MPointF first = OnBitmap({ corner.x - wider, corner.y - wider });
        const MPointF last =
            OnBitmap({ corner.x + shape.values[0] + wider, corner.y + shape.values[1] + wider });
        outline.AddRectangle(first.x, first.y, last.x, last.y, std::max(0.0, shape.values[2] + wider) * unit,
                             counterclockwise);
    }

    void AddPolygon(const std::vector<MPointF>& points)
    {
        std::vector<MPointF> corners;
        double area = 0;
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            const MPointF next = points[(i + 1) % points.size()];
            area += points[i].x * next.y - next.x * points[i].y;
            corners.push_back(OnBitmap(points[i]));
        }
        if (area > 0)
            std::reverse(corners.begin(), corners.end());
        outline.AddPolygon(corners);
        if (spread <= 0)
            return;
        std::vector<MPointF> closed = points;
        closed.push_back(points.front());
        AddLine(closed, 2 * spread);
    }

    ShapeOutline& outline;
    double unit;
    double usual;
    double spread;
    MPointF offset;   // pixels
};

// What a drawing of nothing but upright and level lines has to be moved by, in pixels, so that the first of
// each lies in the middle of pixels, or between two where it is about two wide: half covered rows look dull.
MPointF CrispOffset(const PathDrawing& drawing, double unit, double stroke)
{
    MPointF offset;
    bool hasUpright = false;
    bool hasLevel = false;
    const bool isOdd = std::lround(stroke * unit) % 2 == 1;
    const auto toGrid = [isOdd](double place)
    {
        return (isOdd ? std::floor(place) + 0.5 : std::round(place)) - place;
    };
    for (const PathShape& shape : drawing.shapes)
    {
        if (shape.kind != PathShape::Kind::Line || shape.points.size() != 2)
            return {};
        const MPointF from = shape.points[0];
        const MPointF to = shape.points[1];
        if (from.x != to.x && from.y != to.y)
            return {};
        if (from.x == to.x && !std::exchange(hasUpright, true))
            offset.x = toGrid(from.x * unit);
        if (from.y == to.y && !std::exchange(hasLevel, true))
            offset.y = toGrid(from.y * unit);
    }
    return offset;
}
}   // namespace

std::vector<PathDrawing> ReadPathDrawings(const std::string& path)
{
    return Reader(path).Read();
}

void DrawPaths(MBitmap& bitmap, const PathDrawing& drawing, double unit, double stroke, MColor color,
               double spread)
{
    // The rasterizer adds up what overlapping shapes cover of a pixel, as if they lay side by side. In pixels
    // an eighth as large nothing is seen of that.
    constexpr std::int32_t Finer = 8;
    MBitmap fine(bitmap.Width() * Finer, bitmap.Height() * Finer);
    ShapeOutline outline;
    const MPointF crisp = CrispOffset(drawing, unit, stroke);
    OutlineOfPaths paths(outline, unit * Finer, stroke, spread, { crisp.x * Finer, crisp.y * Finer });
    for (const PathShape& shape : drawing.shapes)
        paths.Add(shape);
    outline.Fill(fine, fine.Bounds(), MColor(255, 255, 255), MColorOp::Overlay);

    MDrawerToMBitmap painter(bitmap);
    MDrawer& drawer = painter;
    for (std::int32_t y = 0; y < bitmap.Height(); ++y)
        for (std::int32_t x = 0; x < bitmap.Width(); ++x)
        {
            std::int32_t sum = 0;
            for (std::int32_t row = y * Finer; row < (y + 1) * Finer; ++row)
                for (std::int32_t column = x * Finer; column < (x + 1) * Finer; ++column)
                    sum += fine.Pixel(column, row).Alpha();
            if (sum > 0)
                drawer.SetPixel(x, y, color.Faded(sum / (255.0 * Finer * Finer)), MColorOp::Overlay);
        }
}
