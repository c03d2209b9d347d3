// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MEnumLabels.h"

/// The kind of a control, by which a style paints it.
enum class MControlType : std::int32_t
{
    Empty,   ///< paints nothing
    NoBackground,   ///< paints its content only
    Window,
    Panel,
    Control,
    Static,
    Button,
    CaptionButton,
    CheckBox,
    Tracker,
    Rotator,
    Knob,
    HScrollBar,
    VScrollBar,
    Edit,
    Switcher,
    ProgressBar,
    ListBox,
    TreeControl,
    TabSet,
    Menu,
    MenuBar
};

template <>
struct MEnumLabels<MControlType>
{
    static constexpr const char* Labels[] = { "empty",       "nobackground", "window",      "panel",
                                              "control",     "static",       "button",      "captionbutton",
                                              "checkbox",    "tracker",      "rotator",     "knob",
                                              "hscrollbar",  "vscrollbar",   "edit",        "switcher",
                                              "progressbar", "listbox",      "treecontrol", "tabset",
                                              "menu",        "menubar" };
};

enum class MStdFont : std::int32_t
{
    Normal,
    Bold,
    Italic,
    Small,
    Large1,
    Large2,
    Large3,
    Large4,
    Control,   ///< faces of buttons
    Value,   ///< digits of equal width
    Label,
    Axis,   ///< digits of equal width
    Point,   ///< the number in a band's point; digits of equal width
    SmallValue,   ///< values in narrow columns; digits of equal width
    Tiny
};

template <>
struct MEnumLabels<MStdFont>
{
    static constexpr const char* Labels[] = { "normal", "bold",   "italic", "small",      "large1",
                                              "large2", "large3", "large4", "control",    "value",
                                              "label",  "axis",   "point",  "smallvalue", "tiny" };
};

/// The roles of colours. The first eight are those of rich text.
enum class MStdColor : std::int32_t
{
    Text,
    Graph,
    Text2,
    Light,
    Dark,
    Danger,
    Success,
    Info,
    Text3,
    TextDisabled,
    Window,
    Header,
    Panel,
    PanelEdge,
    Raised,
    RaisedHover,
    RaisedPressed,
    RaisedEdge,
    Field,
    FieldEdge,
    Canvas,
    CanvasEdge,
    Line,
    LineStrong,
    Accent,
    AccentInk,
    OnFace,
    OnText,
    Focus,
    Selection,
    Amber,
    Tooltip,
    TooltipEdge,
    Menu,
    Grid,   ///< with the alpha from which grids take their shares
    MeterLow,
    MeterMid,
    MeterClip,
    MeterTrack,
    Icon,
    Progress,
    Band1,
    Band2,
    Band3,
    Band4,
    Band5,
    Band6,
    Band7,
    Band8,
    Band9,
    Band10,
    BandInk,
    OutputBody,
    OutputCore,
    InputBody,
    InputCore,
    TargetBody,
    TargetCore,
    SourceBody,
    SourceCore,
    Equalizer
};

template <>
struct MEnumLabels<MStdColor>
{
    static constexpr const char* Labels[] = {
        "text",       "graph",       "text2",         "light",      "dark",        "danger",    "success",
        "info",       "text3",       "textdisabled",  "window",     "header",      "panel",     "paneledge",
        "raised",     "raisedhover", "raisedpressed", "raisededge", "field",       "fieldedge", "canvas",
        "canvasedge", "line",        "linestrong",    "accent",     "accentink",   "onface",    "ontext",
        "focus",      "selection",   "amber",         "tooltip",    "tooltipedge", "menu",      "grid",
        "meterlow",   "metermid",    "meterclip",     "metertrack", "icon",        "progress",  "band1",
        "band2",      "band3",       "band4",         "band5",      "band6",       "band7",     "band8",
        "band9",      "band10",      "bandink",       "outputbody", "outputcore",  "inputbody", "inputcore",
        "targetbody", "targetcore",  "sourcebody",    "sourcecore", "equalizer"
    };
};

/// Small pictures of one colour, which whoever paints them chooses.
enum class MStdIcon : std::int32_t
{
    None,
    CaretDown,
    CaretUp,
    CaretLeft,
    CaretRight,
    Tick,
    Close,
    Menu,
    Information,
    Warning,
    Question,
    Pause,
    Peaks,
    Copy,
    Paste,
    Plus,
    Minus,
    Reset,
    Random,
    Settings,
    Power,
    Undo,
    Redo,
    Target,
    Source,
    Folder,
    File,
    NewFolder,
    Home,
    Computer,
    Star,
    Search,
    ZoomIn,
    ZoomOut,
    ZoomDefault,
    Listen,
    Areas,
    Draw,
    Save,
    Load,
    Delete,
    Invert,
    Link,
    Lock,
    Help,
    Play,
    Stop,
    Up,
    Filter,
    Maximize,
    Minimize
};

template <>
struct MEnumLabels<MStdIcon>
{
    static constexpr const char* Labels[] = {
        "none",        "caretdown", "caretup",     "caretleft", "caretright", "tick",     "close", "menu",
        "information", "warning",   "question",    "pause",     "peaks",      "copy",     "paste", "plus",
        "minus",       "reset",     "random",      "settings",  "power",      "undo",     "redo",  "target",
        "source",      "folder",    "file",        "newfolder", "home",       "computer", "star",  "search",
        "zoomin",      "zoomout",   "zoomdefault", "listen",    "areas",      "draw",     "save",  "load",
        "delete",      "invert",    "link",        "lock",      "help",       "play",     "stop",  "up",
        "filter",      "maximize",  "minimize"
    };
};

/// Pictures in colours of their own.
enum class MStdBitmap : std::int32_t
{
    None,
    Logo,
    Icon   ///< of the windows, for the desktop
};

template <>
struct MEnumLabels<MStdBitmap>
{
    static constexpr const char* Labels[] = { "none", "logo", "icon" };
};

enum class MStdCursor : std::int32_t
{
    Inherited = -1,   ///< that of the parent
    Hidden = 0,
    Arrow = 1,
    Text = 2,
    Wait = 3,
    Cross = 4,
    SizeHorizontal = 5,   ///< edges and corners of windows
    SizeVertical = 6,
    SizeFalling = 7,   ///< from the upper left to the lower right
    SizeRising = 8,
    Move = 9,
    Hand = 10,
    Forbidden = 11,
    WidthHover = 12,
    WidthDrag = 13,
    ColumnLine = 14,   ///< a line that moves sideways
    RowLine = 15,
    Ear = 16,
    Copy = 17
};

template <>
struct MEnumLabels<MStdCursor>
{
    static constexpr const char* Labels[] = {
        "hidden",       "arrow",       "text",       "wait",    "cross", "sizehorizontal",
        "sizevertical", "sizefalling", "sizerising", "move",    "hand",  "forbidden",
        "widthhover",   "widthdrag",   "columnline", "rowline", "ear",   "copy"
    };
};

/// The table of sizes of a style, in pixels at its scale.
enum class MStyleSize : std::int32_t
{
    LayoutSpace,   ///< the gap of every layout
    ScrollerLayoutSpace,
    ContentSpaceX,
    ContentSpaceY,
    ContentBorderX,
    ContentBorderY,
    ListItemHeight,
    ListCheckBox,
    TreeItemHeight,
    TreeCheckBox,
    AlphaEnabled,   ///< the only two that aren't pixels
    AlphaDisabled,
    TabSetLeft,
    TabSetRight,
    TabSetOverlap,
    MenuBarLeft,
    MenuBarRight,
    MenuBarOverlap,
    CheckBoxIcon,
    MaxStdIconX,
    MaxStdIconY,
    MaxStdBitmapX,
    MaxStdBitmapY,
    HSplitter,
    VSplitter,
    WindowBorderX,
    WindowBorderY
};

enum class MHorizontalObjectLayout : std::int32_t
{
    Left,
    Center,
    Right,
    Stretch
};

template <>
struct MEnumLabels<MHorizontalObjectLayout>
{
    static constexpr const char* Labels[] = { "left", "center", "right", "stretch" };
};

enum class MVerticalObjectLayout : std::int32_t
{
    Top,
    Center,
    Bottom,
    Stretch
};

template <>
struct MEnumLabels<MVerticalObjectLayout>
{
    static constexpr const char* Labels[] = { "top", "center", "bottom", "stretch" };
};

/// What closed a modal window.
enum class MModalValue : std::int32_t
{
    None,
    Ok,
    Cancel,
    Yes,
    No,
    Close
};

template <>
struct MEnumLabels<MModalValue>
{
    static constexpr const char* Labels[] = { "none", "ok", "cancel", "yes", "no", "close" };
};

enum class MCheckBoxState : std::int32_t
{
    Off,
    On,
    Grayed   ///< partly
};

template <>
struct MEnumLabels<MCheckBoxState>
{
    static constexpr const char* Labels[] = { "off", "on", "grayed" };
};

enum class MCaptionType : std::int32_t
{
    None,
    Small,
    Normal,
    Large
};

template <>
struct MEnumLabels<MCaptionType>
{
    static constexpr const char* Labels[] = { "none", "small", "normal", "large" };
};
