// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/stylebuilder/Faces.h"

#include "tools/stylebuilder/FaceDrawing.h"

namespace
{
const MColor none(0);
const MColor white(255, 255, 255);
const MColor black(0, 0, 0);

class FaceSet
{
public:
    FaceSet(StyleImages& target, const Theme& usedTheme, const StyleScale& usedScale)
        : images(target), theme(usedTheme), scale(usedScale)
    {
    }

    void AddAll()
    {
        AddButtons();
        AddFields();
        AddSurfaces();
        AddRows();
    }

private:
    MColor Color(const char* name) const { return theme.Color(name); }
    MColor Mixed(const char* from, const char* to, double share) const
    {
        return Color(from).Mixed(Color(to), share);
    }
    void Add(const std::string& id, const FaceLook& look) { images.Add(id, scale, FaceImage(scale, look)); }

    struct Gradient
    {
        MColor top;
        MColor bottom;
    };

    Gradient Rest() const
    {
        const MColor raised = Color("raised");
        return theme.IsDark() ? Gradient{ raised.Mixed(white, 0.045), raised }
                              : Gradient{ raised, raised.Mixed(black, 0.035) };
    }
    static Gradient Lighter(Gradient gradient, double top, double bottom)
    {
        return { gradient.top.Mixed(white, top), gradient.bottom.Mixed(white, bottom) };
    }
    Gradient Hover() const
    {
        return theme.IsDark() ? Lighter(Rest(), 0.05, 0.05) : Lighter(Rest(), 0.5, 0.3);
    }
    static FaceLook Raised(const Gradient& gradient, MColor edge)
    {
        return { .fill = MFill::Down(gradient.top, gradient.bottom), .edge = edge, .height = 22 };
    }

    void AddButtons()
    {
        Add("button", Raised(Rest(), Color("raisedEdge")));
        Add("button.hover", Raised(Hover(), Color("lineStrong")));
        Add("button.pressed", { .fill = Color("raisedPressed"), .edge = Color("raisedEdge") });
        const MColor dullEdge = Mixed("panel", "raisedEdge", 0.45);
        Add("button.grayed", { .fill = Mixed("panel", "raised", 0.35), .edge = dullEdge });

        const MColor on = Color("onFill");
        const MColor onEdge = theme.IsDark() ? Mixed("onFill", "accent", 0.22) : on;
        Add("button.on", { .fill = on, .edge = onEdge, .lamp = theme.Lamp() });
        Add("button.onhover", { .fill = on.Mixed(white, 0.05), .edge = onEdge, .lamp = theme.Lamp() });
        Add("button.onpressed", { .fill = on.Mixed(black, 0.2), .edge = onEdge, .lamp = theme.Lamp() });
        Add("button.ongrayed", { .fill = Color("panel").Mixed(on, 0.35),
                                 .edge = dullEdge,
                                 .lamp = Color("panel").Mixed(theme.Lamp(), theme.IsDark() ? 0.4 : 0.8) });

        const MColor accent = Color("accent");
        AddFlat("button.primary", accent);
        AddFlat("button.primaryhover", accent.Mixed(white, theme.IsDark() ? 0.25 : 0.1));
        AddFlat("button.primarypressed", accent.Mixed(black, 0.12));

        const MColor amber = Color("amber");
        AddMeasuring("button.learning", amber, none);
        Add("button.learninglamp", { .fill = none, .edge = none, .lamp = amber });
        for (const std::string curve : { "source", "target" })
        {
            const MColor hue = theme.Curve(curve, "core");
            AddMeasuring("button." + curve, hue, hue);
        }

        Add("captionbutton.hover", { .fill = Color("raisedHover"), .edge = none });
        Add("captionbutton.pressed", { .fill = Color("raisedPressed"), .edge = none });
        Add("captionbutton.on", { .fill = on, .edge = onEdge });
    }

    void AddFlat(const std::string& id, MColor color) { Add(id, { .fill = color, .edge = color }); }

    void AddMeasuring(const std::string& id, MColor hue, MColor lamp)
    {
        Add(id, { .fill = Color("raised").Mixed(hue, theme.IsDark() ? 0.26 : 0.16),
                  .edge = Color("raisedEdge").Mixed(hue, 0.75),
                  .lamp = lamp });
    }

    void AddFields()
    {
        const MColor field = Color("field");
        Add("field", { .fill = field, .edge = Color("fieldEdge") });
        Add("field.hover", { .fill = field, .edge = Color("lineStrong") });
        Add("field.focused", { .fill = field, .edge = Color("focus") });
        Add("field.grayed",
            { .fill = Mixed("panel", "field", 0.6), .edge = Mixed("panel", "fieldEdge", 0.6) });
    }

    void AddSurfaces()
    {
        Add("window", { .fill = Color("window"), .edge = none, .radius = 0, .cap = 1 });
        Add("window.framed", { .fill = Color("panel"), .edge = Color("lineStrong"), .radius = 7, .cap = 9 });
        Add("panel", { .fill = Color("panel"), .edge = Color("panelEdge"), .radius = 5, .cap = 7 });
        Add("menu", { .fill = Color("menu"), .edge = Color("lineStrong"), .radius = 5, .cap = 7 });
        Add("menubar", { .fill = Color("header"), .edge = none, .radius = 0, .cap = 1 });

        // The gap lies between the control and the ring, which has its radius of 4 and 3 more.
        const std::int32_t thick = scale.Pixels(theme.Size("focusRing/width"));
        MBitmap ring(2 * scale.PixelsAbove(9) + 1, 2 * scale.PixelsAbove(9) + 1);
        MDrawerToMBitmap painter(ring);
        MDrawer& drawer = painter;
        drawer.RoundRectangle(ring.Bounds(), 8 * scale.Factor(), thick, Color("focus"), MColorOp::Overlay);
        images.Add("focusring", scale, ring);
    }

    void AddRows()
    {
        const auto row = [this](const std::string& id, MColor fill)
        {
            Add(id, { .fill = fill, .edge = none, .radius = 3, .cap = 4 });
        };
        row("item.selected", Color("selection"));
        row("item.hover", theme.IsDark() ? Color("raised") : Mixed("field", "raisedPressed", 0.45));
        row("menubar.hover", Color("raisedHover"));
        row("menubar.on", Color("selection"));
        const auto line = [this](const std::string& id, MColor fill)
        {
            Add(id, { .fill = fill, .edge = none, .radius = 1, .cap = 1 });
        };
        line("mark", Color("accent"));
        line("tab.hover", Color("lineStrong"));
    }

    StyleImages& images;
    const Theme& theme;
    const StyleScale& scale;
};
}   // namespace

void AddFaces(StyleImages& images, const Theme& theme, const StyleScale& scale)
{
    FaceSet(images, theme, scale).AddAll();
}
