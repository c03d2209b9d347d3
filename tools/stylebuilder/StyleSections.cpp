// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/stylebuilder/StyleSections.h"

#include <cmath>
#include <iterator>
#include <sstream>

#include "gui/controls/StyleNames.h"
#include "state/tree/StoredNode.h"
#include "tools/stylebuilder/Symbols.h"

namespace
{
const MColor white(255, 255, 255);
const MColor black(0, 0, 0);

struct Pair
{
    const char* key;
    const char* value;
};

// In units, but for the two alphas. See MStyleSize for what they are.
constexpr Pair sizes[] = {
    { "deflayoutspace", "4" },
    { "scrollerlayoutspace", "4" },
    { "xspaceinmcontent", "4" },
    { "yspaceinmcontent", "2" },
    { "xborderinmcontent", "4" },
    { "yborderinmcontent", "3" },
    { "defaultlistboxitemheight", "24" },
    { "listboxitemcheckboxsize", "14" },
    { "defaulttreeitemheight", "22" },
    { "treeitemcheckboxsize", "14" },
    { "alphaenabled", "255" },
    { "alphadisabled", "102" },
    { "tabsetleftsize", "12" },
    { "tabsetrightsize", "12" },
    { "tabsetoverlapsize", "0" },
    { "menubarleftsize", "8" },
    { "menubarrightsize", "8" },
    { "menubaroverlapsize", "0" },
    { "checkboxiconsize", "14" },
    { "maxstdiconsizex", "18" },
    { "maxstdiconsizey", "18" },
    { "maxstdbitmapsizex", "48" },
    { "maxstdbitmapsizey", "48" },
    { "hsplittersize", "5" },
    { "vsplittersize", "5" },
    { "windowbordersizex", "1" },
    { "windowbordersizey", "1" },
};

constexpr Pair defaultSizes[] = {
    { "window", "288x150" },     { "panel", "100x50" },        { "static", "66x15" },
    { "button", "66x22" },       { "captionbutton", "22x22" }, { "checkbox", "118x20" },
    { "tracker", "118x22" },     { "rotator", "42x42" },       { "knob", "42x42" },
    { "hscrollbar", "100x10" },  { "vscrollbar", "10x100" },   { "edit", "76x22" },
    { "switcher", "76x22" },     { "progressbar", "252x6" },   { "listbox", "142x84" },
    { "treecontrol", "142x84" }, { "tabset", "142x28" },       { "menu", "148x33" },
    { "menubar", "142x24" },
};

constexpr Pair minimalSizes[] = {
    { "button", "18x15" },     { "captionbutton", "14x14" }, { "checkbox", "14x14" },
    { "tracker", "24x9" },     { "rotator", "20x20" },       { "knob", "20x20" },
    { "hscrollbar", "24x10" }, { "vscrollbar", "10x24" },    { "edit", "20x12" },
    { "progressbar", "24x6" }, { "listbox", "40x30" },       { "treecontrol", "40x28" },
    { "tabset", "24x28" },
};

void SetAll(MAttribute& item, auto& pairs)
{
    for (const Pair& pair : pairs)
        item.SetAttribute(MString::Literal(pair.key), MString::Literal(pair.value));
}

MString ColorText(MColor color)
{
    return StoredColorText(color.value);
}

MString Number(double value)
{
    return value == std::floor(value) ? MString::FromInt(static_cast<std::int64_t>(value))
                                      : MString::FromDouble(value, 2);
}

// A role's name in the metrics, where that isn't its label.
struct Role
{
    MStdColor color;
    const char* name;
};
constexpr Role roles[] = {
    { MStdColor::Text, "text1" },
    { MStdColor::Text2, "text2" },
    { MStdColor::Light, "text1" },
    { MStdColor::Dark, "text3" },
    { MStdColor::Danger, "danger" },
    { MStdColor::Success, "green" },
    { MStdColor::Info, "info" },
    { MStdColor::Text3, "text3" },
    { MStdColor::TextDisabled, "textDisabled" },
    { MStdColor::Window, "window" },
    { MStdColor::Header, "header" },
    { MStdColor::Panel, "panel" },
    { MStdColor::PanelEdge, "panelEdge" },
    { MStdColor::Raised, "raised" },
    { MStdColor::RaisedHover, "raisedHover" },
    { MStdColor::RaisedPressed, "raisedPressed" },
    { MStdColor::RaisedEdge, "raisedEdge" },
    { MStdColor::Field, "field" },
    { MStdColor::FieldEdge, "fieldEdge" },
    { MStdColor::Canvas, "canvas" },
    { MStdColor::CanvasEdge, "canvasEdge" },
    { MStdColor::Line, "line" },
    { MStdColor::LineStrong, "lineStrong" },
    { MStdColor::Accent, "accent" },
    { MStdColor::AccentInk, "accentInk" },
    { MStdColor::OnFace, "onFill" },
    { MStdColor::OnText, "onText" },
    { MStdColor::Focus, "focus" },
    { MStdColor::Selection, "selection" },
    { MStdColor::Amber, "amber" },
    { MStdColor::Tooltip, "tooltip" },
    { MStdColor::TooltipEdge, "tooltipEdge" },
    { MStdColor::Menu, "menu" },
    { MStdColor::MeterLow, "meterLow" },
    { MStdColor::MeterMid, "meterMid" },
    { MStdColor::MeterClip, "meterClip" },
    { MStdColor::MeterTrack, "meterTrack" },
    { MStdColor::Icon, "icon" },
};

void SetColor(MAttribute& section, MStdColor role, MColor color)
{
    section.SetAttribute(MString::Literal(MEnumLabels<MStdColor>::Labels[static_cast<int>(role)]),
                         ColorText(color));
}

MStdColor Next(MStdColor role, int steps)
{
    return static_cast<MStdColor>(static_cast<int>(role) + steps);
}

void AddColors(MAttribute& definition, const Theme& theme)
{
    MAttribute& section = definition.AddSubItem("colors");
    section.SetAttribute("disabledalpha", Number(theme.At("/states/disabledAlpha")));
    section.SetAttribute("focusedalpha", Number(theme.At("/states/focusedAlpha")));
    section.SetAttribute("highlightedalpha", Number(theme.At("/states/highlightedAlpha")));
    section.SetAttribute("clickedalpha", Number(theme.At("/states/clickedAlpha")));
    for (const Role& role : roles)
        SetColor(section, role.color, theme.Color(role.name));
    SetColor(section, MStdColor::Graph, theme.Curve("input", "core"));
    // From this alpha the graphs' shares give the grid its strengths.
    SetColor(section, MStdColor::Grid, theme.Color("grid").WithAlpha(theme.IsDark() ? 54 : 70));
    SetColor(section, MStdColor::Progress, theme.Color(theme.IsDark() ? "meterLow" : "green"));
    for (int band = 1; band <= 10; ++band)
        SetColor(section, Next(MStdColor::Band1, band - 1), theme.Band(band));
    SetColor(section, MStdColor::BandInk, theme.BandInk());
    int step = 0;
    for (const char* curve : { "output", "input", "target", "source" })
        for (const char* part : { "body", "core" })
            SetColor(section, Next(MStdColor::OutputBody, step++), theme.Curve(curve, part));
    SetColor(section, MStdColor::Equalizer, theme.Curve("equalizer", "core"));
}

struct Font
{
    const char* face;
    double height;
    MStdFont id;
    bool tabular = false;
};
constexpr Font fonts[] = {
    { "Inter-Regular", 11, MStdFont::Normal },   { "Inter-SemiBold", 11, MStdFont::Bold },
    { "Inter-Italic", 11, MStdFont::Italic },    { "Inter-Regular", 10, MStdFont::Small },
    { "Inter-SemiBold", 12, MStdFont::Large1 },  { "Inter-SemiBold", 13, MStdFont::Large2 },
    { "Inter-SemiBold", 15, MStdFont::Large3 },  { "Inter-SemiBold", 18, MStdFont::Large4 },
    { "Inter-Medium", 11, MStdFont::Control },   { "Inter-Medium", 11, MStdFont::Value, true },
    { "Inter-Medium", 10, MStdFont::Label },     { "Inter-Regular", 10, MStdFont::Axis, true },
    { "Inter-Bold", 10, MStdFont::Point, true }, { "Inter-Medium", 10.5, MStdFont::SmallValue, true },
    { "Inter-Medium", 9, MStdFont::Tiny },
};

void AddFonts(MAttribute& definition)
{
    MAttribute& section = definition.AddSubItem("fonts");
    for (const Font& font : fonts)
    {
        MAttribute& item = section.AddSubItem("font");
        item.SetAttribute("id", MString::Literal(MEnumLabels<MStdFont>::Labels[static_cast<int>(font.id)]));
        item.SetAttribute("face", MString::Literal(font.face));
        item.SetAttribute("name", "Inter");
        item.SetAttribute("height", Number(font.height));
        item.SetAttribute("spacebetweenchars", "0");
        if (font.tabular)
            item.SetAttribute("tabulardigits", "1");
    }
}

void AddSymbols(MAttribute& definition, const std::vector<PathDrawing>& drawings)
{
    MAttribute& icons = definition.AddSubItem("icon");
    icons.SetAttribute("image", "icons");
    MString iconSizes;
    for (const double size : IconSizes)
        iconSizes += Number(size) + " ";
    icons.SetAttribute("sizes", iconSizes);
    for (std::size_t index = 1; index < std::size(MEnumLabels<MStdIcon>::Labels); ++index)
    {
        const char* name = MEnumLabels<MStdIcon>::Labels[index];
        const PathDrawing& icon = FindDrawing(drawings, PathDrawing::Kind::Icon, name);
        icons.SetAttribute(MString::Literal(name), MString::FromUnsigned(index) + " " + Number(icon.first));
    }

    MAttribute& bitmaps = definition.AddSubItem("bitmap");
    for (const PathDrawing& drawing : drawings)
        if (drawing.kind == PathDrawing::Kind::Picture)
            bitmaps.SetAttribute(MString::FromUTF8(drawing.name), MString::FromUTF8(drawing.name));
    for (int number = 1; number <= 10; ++number)
    {
        const MString point = "eqeqpoint" + MString::FromInt(number);
        bitmaps.SetAttribute(point, point);
    }

    MAttribute& cursors = definition.AddSubItem("cursor");
    for (const PathDrawing& drawing : drawings)
    {
        if (drawing.kind != PathDrawing::Kind::Cursor)
            continue;
        MAttribute& cursor = cursors.AddSubItem(MString::FromUTF8(drawing.name));
        cursor.SetAttribute("hotx", Number(drawing.first));
        cursor.SetAttribute("hoty", Number(drawing.second));
        cursor.SetAttribute("image", MString::FromUTF8("cursor." + drawing.name));
    }
}

// "section key=value ...": which image a control has in which state. A key with "tint" behind it names the
// main colour that the image of that key follows.
constexpr const char* sections[] = {
    "window image=window framed=window.framed cap=9",
    "panel image=panel cap=7",
    "control",
    "edit image=field hover=field.hover focused=field.focused focusedtint=2 grayed=field.grayed cap=6",
    "menu image=menu selecteditem=item.selected selecteditemtint=2 cap=7 itemcap=4",
    "button image=button hover=button.hover pressed=button.pressed on=button.on ontint=2 "
    "onhover=button.onhover "
    "onhovertint=2 onpressed=button.onpressed onpressedtint=2 primary=button.primary primarytint=2 "
    "primaryhover=button.primaryhover primaryhovertint=2 primarypressed=button.primarypressed "
    "primarypressedtint=2 "
    "grayed=button.grayed ongrayed=button.ongrayed ongrayedtint=2 learning=button.learning learningtint=0 "
    "learninglamp=button.learninglamp learninglamptint=1 source=button.source target=button.target cap=6",
    "captionbutton hover=captionbutton.hover pressed=captionbutton.pressed on=captionbutton.on ontint=2 "
    "cap=6",
    "checkbox image=checkbox hover=checkbox.hover grayed=checkbox.grayed on=checkbox.on ontint=2 "
    "onhover=checkbox.onhover onhovertint=2 ongrayed=checkbox.ongrayed ongrayedtint=2 partly=checkbox.partly "
    "partlytint=2 partlyhover=checkbox.partlyhover partlyhovertint=2 partlygrayed=checkbox.partlygrayed "
    "partlygrayedtint=2",
    "radiobutton image=radiobutton hover=radiobutton.hover grayed=radiobutton.grayed on=radiobutton.on "
    "ontint=2 "
    "onhover=radiobutton.onhover onhovertint=2 ongrayed=radiobutton.ongrayed ongrayedtint=2",
    "tracker image=track fill=track.fill filltint=2 thumb=thumb thumbhover=thumb.hover "
    "lyingthumb=thumb.lying "
    "lyingthumbhover=thumb.lyinghover cap=3",
    "progressbar image=progress fill=progress.fill filltint=3 cap=4",
    "selector image=button hover=button.hover pressed=button.pressed grayed=button.grayed cap=6",
    "valuebutton image=button hover=button.hover pressed=button.pressed grayed=button.grayed cap=6",
    "hscrollbar image=scroll hover=scroll.hover pressed=scroll.pressed cap=3",
    "vscrollbar image=scroll hover=scroll.hover pressed=scroll.pressed cap=3",
    "tabset on=mark ontint=2 hover=tab.hover cap=1",
    "menubar image=menubar hoveritem=menubar.hover selecteditem=menubar.on selecteditemtint=2 cap=1 "
    "itemcap=4",
    "controlcheckbox iconon=checkbox.on iconontint=2 iconoff=checkbox icongrayed=checkbox.partly "
    "icongrayedtint=2 "
    "alpha=255",
    "listcontrol image=field focused=field.focused focusedtint=2 grayed=field.grayed "
    "selecteditem=item.selected "
    "selecteditemtint=2 hoveritem=item.hover mark=mark marktint=2 cap=6 itemcap=4",
    "treecontrol image=field focused=field.focused focusedtint=2 grayed=field.grayed "
    "selecteditem=item.selected "
    "selecteditemtint=2 hoveritem=item.hover mark=mark marktint=2 cap=6 itemcap=4 "
    "parentcrossoffset=8",
    "splitter vimage=splitter.hover himage=splitter.hover cap=1",
    "focusring image=focusring imagetint=2 cap=9 reach=3",
    "shadow image=shadow cap=33 reach=18",
};

void AddSections(MAttribute& definition)
{
    for (const char* text : sections)
    {
        std::istringstream words(text);
        std::string name;
        words >> name;
        MAttribute& section = definition.AddSubItem(MString::FromUTF8(name));
        for (std::string word; words >> word;)
        {
            const std::size_t equals = word.find('=');
            section.SetAttribute(MString::FromUTF8(word.substr(0, equals)),
                                 MString::FromUTF8(word.substr(equals + 1)));
        }
    }
}

void AddLiveColors(MAttribute& definition, const Theme& theme)
{
    MAttribute& tree = definition.GetSubItem("treecontrol");
    tree.SetAttribute("linecolor", ColorText(theme.Color("line")));
    tree.SetAttribute("fillcolor", ColorText(theme.Color("text3")));
    const MColor raised = theme.Color("raised");
    for (const char* kind : { "rotator", "knob" })
    {
        MAttribute& knob = definition.AddSubItem(MString::Literal(kind));
        knob.SetAttribute("baseangle", Number(-theme.Size("knob/sweepDegrees") / 2));
        knob.SetAttribute("selectorratio", "0.45");
        knob.SetAttribute("trackcolor", ColorText(theme.Color("panel").Mixed(theme.Color("text3"), 0.28)));
        knob.SetAttribute("topcolor", ColorText(theme.IsDark() ? raised.Mixed(white, 0.13) : white));
        knob.SetAttribute("bottomcolor",
                          ColorText(theme.IsDark() ? raised.Mixed(black, 0.18) : MColor(0xDC, 0xDD, 0xD6)));
        knob.SetAttribute("edgecolor", ColorText(theme.Color(theme.IsDark() ? "lineStrong" : "raisedEdge")));
    }
}
}   // namespace

void MakeDefinition(MAttribute& definition, const Theme& theme, const std::vector<PathDrawing>& drawings)
{
    for (int index = 0; index < 4; ++index)
    {
        const std::string key = "maincolor" + std::to_string(index);
        definition.SetAttribute(MString::FromUTF8(key),
                                MString::FromUTF8(theme.At("/tints/" + key + "/default").get<std::string>()));
    }
    definition.SetAttribute("minalpha", Number(theme.At("/states/minAlpha")));
    definition.SetAttribute("contentrendering", "Alphablend");
    SetAll(definition, sizes);
    SetAll(definition.AddSubItem("defaultcontrolsizes"), defaultSizes);
    SetAll(definition.AddSubItem("minimalcontrolsizes"), minimalSizes);
    AddColors(definition, theme);
    AddFonts(definition);
    AddSymbols(definition, drawings);
    AddSections(definition);
    AddLiveColors(definition, theme);
}
