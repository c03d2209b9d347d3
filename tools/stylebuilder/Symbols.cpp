// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/stylebuilder/Symbols.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "gui/controls/StyleNames.h"
#include "gui/painting/MDrawerToMBitmap.h"

namespace
{
const MColor white(255, 255, 255);

// A stroke of 1.3 at 14 would be too thin in the smallest, and is what it is in larger ones.
double StrokeAt14(const PathDrawing& icon, double size)
{
    return std::max(1.2, icon.second * size / 14) * 14 / size;
}
}   // namespace

const PathDrawing& FindDrawing(const std::vector<PathDrawing>& drawings, PathDrawing::Kind kind,
                               const std::string& name)
{
    constexpr const char* kinds[] = { "icon", "picture", "cursor" };
    for (const PathDrawing& drawing : drawings)
        if (drawing.kind == kind && drawing.name == name)
            return drawing;
    throw MException(Format("There is no {0} \"{1}\".", MString::Literal(kinds[static_cast<int>(kind)]),
                            MString::FromUTF8(name)));
}

void AddIcons(StyleImages& images, const std::vector<PathDrawing>& drawings, const StyleScale& scale)
{
    constexpr auto count = static_cast<std::int32_t>(std::size(MEnumLabels<MStdIcon>::Labels));
    for (const double size : IconSizes)
    {
        const std::int32_t side = scale.Pixels(size);
        MBitmap sheet(count * side, side);
        MDrawerToMBitmap painter(sheet);
        MDrawer& drawer = painter;
        for (std::int32_t index = 1; index < count; ++index)
        {
            const PathDrawing& icon =
                FindDrawing(drawings, PathDrawing::Kind::Icon, MEnumLabels<MStdIcon>::Labels[index]);
            MBitmap cell(side, side);
            DrawPaths(cell, icon, side / 14.0, StrokeAt14(icon, size), white);
            drawer.BitBlt(index * side, 0, cell, cell.Bounds(), 255, MColorOp::Copy);
        }
        images.Add("icons" + std::to_string(static_cast<int>(size)), scale, sheet);
    }
}

void AddPictures(StyleImages& images, const std::vector<PathDrawing>& drawings, const StyleScale& scale)
{
    for (const PathDrawing& drawing : drawings)
    {
        if (drawing.kind != PathDrawing::Kind::Picture)
            continue;
        MBitmap picture(scale.Pixels(drawing.first), scale.Pixels(drawing.second));
        DrawPaths(picture, drawing, scale.Factor(), 1.3, white);
        images.Add(drawing.name, scale, picture);
    }
}

void AddCursors(StyleImages& images, const std::vector<PathDrawing>& drawings)
{
    for (const PathDrawing& drawing : drawings)
    {
        if (drawing.kind != PathDrawing::Kind::Cursor)
            continue;
        for (const int percent : { 100, 200 })
        {
            const StyleScale scale{ percent };
            MBitmap cursor(scale.Pixels(24), scale.Pixels(24));
            DrawPaths(cursor, drawing, scale.Factor(), 1.4, MColor(0x15, 0x18, 0x1C), 1);
            DrawPaths(cursor, drawing, scale.Factor(), 1.4, white);
            images.Add("cursor." + drawing.name, scale, cursor);
        }
    }
}

void AddPoints(StyleImages& images, const Theme& theme, const StyleScale& scale,
               const std::shared_ptr<FontFace>& bold)
{
    MFontDescriptor descriptor;
    descriptor.height = std::round(20 * scale.Factor()) / 2;
    descriptor.tabularDigits = true;
    MFont font(bold, descriptor);
    const double radius = theme.Size("graph/pointRadius");
    for (int number = 1; number <= 10; ++number)
    {
        MBitmap point(scale.Pixels(2 * radius), scale.Pixels(2 * radius));
        MDrawerToMBitmap painter(point);
        MDrawer& drawer = painter;
        const double middle = point.Width() / 2.0;
        const MColor color = theme.Band(number);
        const MColor top = theme.IsDark() ? color.Mixed(white, 0.16) : color;
        drawer.FillCircle({ middle, middle }, middle, theme.Color("canvas"), MColorOp::Overlay);
        drawer.FillCircle({ middle, middle }, middle - scale.Factor() / 2, MFill::Down(top, color),
                          MColorOp::Overlay);
        const MString text = MString::FromInt(number);
        const auto baseline = static_cast<std::int32_t>(std::lround(middle + font.CapitalHeight() / 2));
        drawer.TextOut(middle - font.Width(text) / 2, baseline, text, font, theme.BandInk());
        images.Add("eqeqpoint" + std::to_string(number), scale, point);
    }
}
