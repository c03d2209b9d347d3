// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/MTexturedStyle.h"

#include <algorithm>
#include <cmath>

#include "foundation/text/Boundary.h"
#include "gui/controls/MWindow.h"
#include "gui/styles/StyleFiles.h"
#include "state/tree/StoredNode.h"

// In the order of Kind.
const char* const MTexturedStyle::kindNames[] = {
    "window",      "panel",         "control",         "edit",        "menu",
    "button",      "captionbutton", "checkbox",        "radiobutton", "tracker",
    "progressbar", "selector",      "valuebutton",     "hscrollbar",  "vscrollbar",
    "tabset",      "menubar",       "controlcheckbox", "listcontrol", "treecontrol",
    "splitter",    "focusring",     "shadow",          "rotator",     "knob"
};

namespace
{
std::int32_t ReachOf(const StyleDefinition& definition, const MString& name, double scale)
{
    constexpr std::int64_t LargestReach = 256;
    const MAttribute* section = definition.Section(name);
    if (section == nullptr)
        return 0;
    const std::int64_t units =
        std::clamp<std::int64_t>(section->GetAttribute("reach", "0").ToInt(), 0, LargestReach);
    return static_cast<std::int32_t>(std::lround(static_cast<double>(units) * scale));
}

MColor ColorOf(const MAttribute* section, const MString& key, MColor otherwise)
{
    const MString* text = section != nullptr ? section->FindAttribute(key) : nullptr;
    return text != nullptr ? MColor(StoredColorOf(*text)) : otherwise;
}

double NumberOf(const MAttribute& section, const MString& key, double otherwise, double least, double most)
{
    const MString* text = section.FindAttribute(key);
    const double number = text != nullptr ? text->ToDouble() : otherwise;
    return std::isfinite(number) ? std::clamp(number, least, most) : otherwise;
}

bool DrawsOwnFrame(const MControl& control)
{
    if (control.Parent() != nullptr)
        return true;
    const MWindow* window = control.Window();
    return window != nullptr && (window->resizeBorder > 0 || window->moveZoneHeight > 0);
}
}   // namespace

void MTexturedStyle::Apply(const MAttribute& configuration)
{
    const std::unique_ptr<StyleDefinition> definition =
        FindStyleDefinition(configuration.GetAttribute("Style"), GetStylePath(configuration));
    Load(*definition, &configuration);
}

void MTexturedStyle::Load(StyleDefinition& definition, const MAttribute* configuration)
{
    MBaseStyle::Load(definition, configuration);
    StyleImageLoader loader(definition, GetScale(), Tints());
    for (std::size_t index = 0; index < sections.size(); ++index)
        LoadSection(static_cast<Kind>(index), definition, loader);
    LoadKnobColors(definition);
    focusReach = ReachOf(definition, "focusring", GetScale());
    shadowReach = ReachOf(definition, "shadow", GetScale());
}

void MTexturedStyle::LoadSection(Kind kind, const StyleDefinition& definition, StyleImageLoader& loader)
{
    const auto index = static_cast<std::size_t>(kind);
    sections[index] = {};
    const MAttribute* item = definition.Section(MString::Literal(kindNames[index]));
    if (item == nullptr)
        return;
    if (kind < Kind::Rotator)
        return sections[index].Load(*item, loader);
    // Knobs can do without their images.
    try
    {
        sections[index].Load(*item, loader);
    }
    catch (...)
    {
        sections[index] = {};
        LogSystemException(kind == Kind::Rotator ? "Load rotator" : "Load knob");
    }
}

void MTexturedStyle::LoadKnobColors(const StyleDefinition& definition)
{
    knob = {};
    knobBodies.clear();
    const MAttribute* section = definition.Section("knob");
    if (section != nullptr)
    {
        knob.baseAngle = NumberOf(*section, "baseangle", -135, -180, 0);
        knob.selectorRatio = NumberOf(*section, "selectorratio", 0.45, 0, 0.95);
    }
    knob.track = ColorOf(section, "trackcolor", GetColor(MStdColor::LineStrong));
    knob.top = ColorOf(section, "topcolor", GetColor(MStdColor::Raised));
    knob.bottom = ColorOf(section, "bottomcolor", GetColor(MStdColor::Raised));
    knob.edge = ColorOf(section, "edgecolor", GetColor(MStdColor::RaisedEdge));
}

MTexturedStyle::Kind MTexturedStyle::FaceKindOf(MControlType type)
{
    switch (type)
    {
    case MControlType::Window:
        return Kind::Window;
    case MControlType::Panel:
        return Kind::Panel;
    case MControlType::Control:
        return Kind::Control;
    case MControlType::Button:
        return Kind::Button;
    case MControlType::CaptionButton:
        return Kind::CaptionButton;
    case MControlType::Switcher:
        return Kind::Selector;
    case MControlType::Edit:
        return Kind::Edit;
    case MControlType::ListBox:
        return Kind::ListControl;
    case MControlType::TreeControl:
        return Kind::TreeControl;
    case MControlType::Menu:
        return Kind::Menu;
    case MControlType::MenuBar:
        return Kind::MenuBar;
    default:
        return Kind::Count;
    }
}

MStyle::Frame MTexturedStyle::GetFrame(const MControl& control) const
{
    // Controls leave room for their own faces. A window's content knows nothing of its edge.
    if (control.controlType != MControlType::Window || !DrawsOwnFrame(control))
        return {};
    const std::int32_t x = GetSize(MStyleSize::WindowBorderX);
    const std::int32_t y = GetSize(MStyleSize::WindowBorderY);
    return { x, y, x, y };
}

void MTexturedStyle::Paint(MControl& control, MDrawer& drawer)
{
    std::uint16_t state = control.GetDrawState();
    if (control.controlType == MControlType::Window)
        state = DrawsOwnFrame(control) ? DrawEnabled | DrawOn : DrawEnabled;
    PaintFace(drawer, control.OwnRectangle(), control.controlType, state);
}
