// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/stylebuilder/Faces.h"

#include <algorithm>
#include <cmath>

#include "gui/painting/ShapeOutline.h"
#include "tools/stylebuilder/FaceDrawing.h"
#include "tools/stylebuilder/PathDrawing.h"

namespace
{
const MColor none(0);
const MColor white(255, 255, 255);

class PartSet
{
public:
    PartSet(StyleImages& target, const Theme& usedTheme, const StyleScale& usedScale)
        : images(target), theme(usedTheme), scale(usedScale), factor(usedScale.Factor())
    {
    }

    void AddAll()
    {
        AddCheckBoxes();
        AddRadioButtons();
        AddTracker();
        AddBars();
        AddShadow();
    }

private:
    MColor Color(const char* name) const { return theme.Color(name); }
    MColor Dull(MColor color, double share) const { return Color("panel").Mixed(color, share); }

    void AddBox(const std::string& id, MColor fill, MColor edge, MColor ink, bool ticked, bool partly)
    {
        const std::int32_t side = scale.Pixels(theme.Size("checkbox/box"));
        MBitmap box(side, side);
        DrawFace(box, scale, box.Bounds(), { .fill = fill, .edge = edge, .radius = 3 });
        PathDrawing mark;
        // In a box of 14: the tick of 12 lies one inside of it.
        if (ticked)
            mark.shapes.push_back({ .points = { { 3.57, 7.34 }, { 6.06, 9.74 }, { 10.43, 4.43 } } });
        if (partly)
            mark.shapes.push_back({ .points = { { 4, 7 }, { 10, 7 } } });
        if (!mark.shapes.empty())
            DrawPaths(box, mark, static_cast<double>(side) / 14, 1.8, ink);
        images.Add(id, scale, box);
    }

    void AddCheckBoxes()
    {
        const MColor field = Color("field");
        const MColor accent = Color("accent");
        const MColor ink = Color("accentInk");
        const MColor strong = Color("lineStrong");
        const MColor lit = accent.Mixed(white, theme.IsDark() ? 0.25 : 0.12);
        AddBox("checkbox", field, strong, none, false, false);
        AddBox("checkbox.hover", field, Color("text3"), none, false, false);
        AddBox("checkbox.grayed", Dull(field, 0.6), Dull(strong, 0.7), none, false, false);
        AddBox("checkbox.on", accent, accent, ink, true, false);
        AddBox("checkbox.onhover", lit, lit, ink, true, false);
        AddBox("checkbox.ongrayed", Dull(accent, 0.35), Dull(accent, 0.35), Color("panel"), true, false);
        AddBox("checkbox.partly", accent, accent, ink, false, true);
        AddBox("checkbox.partlyhover", lit, lit, ink, false, true);
        AddBox("checkbox.partlygrayed", Dull(accent, 0.35), Dull(accent, 0.35), Color("panel"), false, true);
    }

    void AddRadio(const std::string& id, MColor fill, MColor edge, MColor dot)
    {
        // The line's middle lies on the radius of 7: it takes a little more than the box of 14.
        const std::int32_t side = scale.Pixels(theme.Size("radio/box")) + 2 * scale.PixelsAbove(0.6);
        MBitmap image(side, side);
        const double middle = side / 2.0;
        ShapeOutline outline;
        outline.AddCircle({ middle, middle }, 7.6 * factor);
        outline.Fill(image, image.Bounds(), edge, MColorOp::Overlay);
        outline.Clear();
        outline.AddCircle({ middle, middle }, 6.4 * factor);
        outline.Fill(image, image.Bounds(), fill, MColorOp::Overlay);
        outline.Clear();
        outline.AddCircle({ middle, middle }, 3.5 * factor);
        outline.Fill(image, image.Bounds(), dot, MColorOp::Overlay);
        images.Add(id, scale, image);
    }

    void AddRadioButtons()
    {
        const MColor field = Color("field");
        const MColor accent = Color("accent");
        const MColor strong = Color("lineStrong");
        const MColor dull = Dull(field, 0.6);
        AddRadio("radiobutton", field, strong, field);
        AddRadio("radiobutton.hover", field, Color("text3"), field);
        AddRadio("radiobutton.grayed", dull, Dull(strong, 0.7), dull);
        AddRadio("radiobutton.on", field, accent, accent);
        AddRadio("radiobutton.onhover", field, accent.Mixed(white, theme.IsDark() ? 0.4 : 0.25), accent);
        AddRadio("radiobutton.ongrayed", dull, Dull(accent, 0.35), Dull(accent, 0.35));
    }

    void AddStretching(const std::string& id, MColor fill, MColor edge, double radius)
    {
        images.Add(id, scale,
                   FaceImage(scale, { .fill = fill, .edge = edge, .radius = radius, .cap = radius + 1 }));
    }

    void AddThumb(const std::string& id, bool upright, double topLight, MColor edge)
    {
        const std::int32_t along = scale.Pixels(theme.Size("slider/thumbWidth"));
        const std::int32_t across = scale.Pixels(theme.Size("slider/thumbHeight"));
        MBitmap thumb(upright ? along : across, upright ? across : along);
        const MColor raised = Color("raised");
        DrawFace(thumb, scale, thumb.Bounds(),
                 { .fill = MFill::Down(raised.Mixed(white, topLight), raised), .edge = edge, .radius = 3 });
        ShapeOutline notch;
        const double middle = along / 2.0;
        const double start = across / 2.0 - 4 * factor;
        const double half = factor / 2;
        if (upright)
            notch.AddRectangle(middle - half, start, middle + half, start + 8 * factor);
        else
            notch.AddRectangle(start, middle - half, start + 8 * factor, middle + half);
        notch.Fill(thumb, thumb.Bounds(), Color("text2"), MColorOp::Overlay);
        images.Add(id, scale, thumb);
    }

    void AddTracker()
    {
        AddStretching("track", Color("field"), Color("fieldEdge"), 2);
        AddStretching("track.fill", Color("accent"), none, 2);
        const double light = theme.IsDark() ? 0.22 : 1;
        const double hoverLight = theme.IsDark() ? 0.32 : 1;
        AddThumb("thumb", true, light, Color("lineStrong"));
        AddThumb("thumb.hover", true, hoverLight, Color("text3"));
        AddThumb("thumb.lying", false, light, Color("lineStrong"));
        AddThumb("thumb.lyinghover", false, hoverLight, Color("text3"));
    }

    void AddBars()
    {
        const MColor quiet = Color("text3");
        AddStretching("progress", Color("field"), Color("fieldEdge"), 3);
        AddStretching("progress.fill", theme.IsDark() ? Color("meterLow") : Color("green"), none, 3);
        AddStretching("scroll", Dull(quiet, 0.4), none, 2);
        AddStretching("scroll.hover", Dull(quiet, 0.6), none, 3);
        AddStretching("scroll.pressed", Dull(quiet, 0.8), none, 3);
        AddStretching("splitter.hover", Color("lineStrong"), none, 0);
    }

    // How far a pixel lies outside of a rectangle with round corners, below 0 inside.
    static double Distance(double x, double y, const MRectangle& area, double radius)
    {
        const double dx = std::max({ area.left + radius - x, x - (area.right + 1 - radius), 0.0 });
        const double dy = std::max({ area.top + radius - y, y - (area.bottom + 1 - radius), 0.0 });
        return std::sqrt(dx * dx + dy * dy) - radius;
    }

    void AddShadow()
    {
        const double reach = theme.Size("popup/shadow");
        const double radius = theme.Size("popup/radius");
        const std::int32_t reached = scale.Pixels(reach);
        const std::int32_t side = 2 * (reached + scale.PixelsAbove(radius + 8)) + 1;
        MBitmap shadow(side, side);
        MDrawerToMBitmap painter(shadow);
        MDrawer& drawer = painter;
        // It lies 4 below what throws it: 14 at the top, 18 at the bottom where it is cut at its reach.
        const MRectangle window{ reached, reached, side - 1 - reached, side - 1 - reached };
        const MRectangle thrown = window.Moved(0, scale.Pixels(4)).Inset(scale.Pixels(1), 0);
        const double length = reach * factor;
        const double deepest = theme.IsDark() ? 0.36 : 0.22;
        for (std::int32_t y = 0; y < side; ++y)
            for (std::int32_t x = 0; x < side; ++x)
            {
                const double away = Distance(x + 0.5, y + 0.5, thrown, radius * factor);
                // The last of it ends at the image's edge, wherever it would end by itself.
                const double toEdge = std::min(side - 0.5 - y, length) / length;
                const double share = std::clamp(1 - away / length, 0.0, 1.0);
                const double fade = std::min(1.0, toEdge * 3);
                drawer.SetPixel(x, y, MColor(0, 0, 0).Faded(deepest * share * share * fade), MColorOp::Copy);
            }
        images.Add("shadow", scale, shadow);
    }

    StyleImages& images;
    const Theme& theme;
    const StyleScale& scale;
    double factor;
};
}   // namespace

void AddParts(StyleImages& images, const Theme& theme, const StyleScale& scale)
{
    PartSet(images, theme, scale).AddAll();
}
