// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <map>
#include <utility>

#include "gui/styles/MBaseStyle.h"
#include "gui/styles/StyleSection.h"

/// The style: each kind of control has images, which its definition names in a section of its own. Knobs are
/// painted live, because an arc has to show its value exactly; their section has the colours. Painting only
/// copies and fills. A window's face is square, unless the window draws its own frame or lies in another one:
/// then it has round corners and an edge. Thread: GUI.
class MTexturedStyle : public MBaseStyle
{
public:
    /// Loads the style that a configuration names in `Style`, with the configuration's settings: the file of
    /// that name in the style folder, or the module's own style of that name; else the file of the style
    /// "Default", the first file in the folder, or the module's own light style. Throws MException "No styles
    /// are available. Please reinstall the software." without any of them, and what loading throws.
    void Apply(const MAttribute& configuration);
    void Load(StyleDefinition& definition, const MAttribute* configuration) override;

    Frame GetFrame(const MControl& control) const override;
    void Paint(MControl& control, MDrawer& drawer) override;
    /// A window's with DrawOn: the one that has its own frame.
    void PaintFace(MDrawer& drawer, const MRectangle& area, MControlType type,
                   std::uint16_t state) const override;
    void PaintFocusRing(MDrawer& drawer, const MRectangle& control) const override;
    std::int32_t FocusRingReach() const override { return focusReach; }
    void PaintCheckBox(MDrawer& drawer, const MRectangle& area, MCheckBoxState checked,
                       std::uint16_t state) const override;
    void PaintRadioButton(MDrawer& drawer, const MRectangle& area, std::uint16_t state) const override;
    void PaintKnob(MDrawer& drawer, const MRectangle& area, const ValueLook& look,
                   std::uint16_t state) const override;
    /// An area less than 14 units across has a slim one: a line and a small thumb.
    void PaintTracker(MDrawer& drawer, const MRectangle& area, Axis along, const ValueLook& look,
                      std::uint16_t state) const override;
    void PaintProgress(MDrawer& drawer, const MRectangle& area, double share) const override;
    void PaintScrollBar(MDrawer& drawer, const MRectangle& area, const MRectangle& thumb, Axis along,
                        std::uint16_t state) const override;
    void PaintItem(MDrawer& drawer, const MRectangle& area, MControlType type,
                   std::uint16_t state) const override;
    void PaintTab(MDrawer& drawer, const MRectangle& area, std::uint16_t state) const override;
    void PaintShadow(MDrawer& drawer, const MRectangle& area) const override;
    std::int32_t ShadowReach() const override { return shadowReach; }

private:
    enum class Kind : std::uint8_t
    {
        Window,
        Panel,
        Control,
        Edit,
        Menu,
        Button,
        CaptionButton,
        CheckBox,
        RadioButton,
        Tracker,
        ProgressBar,
        Selector,
        ValueButton,
        HScrollBar,
        VScrollBar,
        TabSet,
        MenuBar,
        ControlCheckBox,
        ListControl,
        TreeControl,
        Splitter,
        FocusRing,
        Shadow,
        Rotator,   // from here on: what can't be read is left out
        Knob,
        Count
    };
    struct KnobColors
    {
        double baseAngle = -135;   // degrees from 12 o'clock where the range begins
        double selectorRatio = 0.45;   // of the body's radius where the pointer begins
        MColor track;
        MColor top;
        MColor bottom;
        MColor edge;
    };

    static const char* const kindNames[];
    const StyleSection& Section(Kind kind) const { return sections[static_cast<std::size_t>(kind)]; }
    static Kind FaceKindOf(MControlType type);
    void LoadSection(Kind kind, const StyleDefinition& definition, StyleImageLoader& loader);
    void LoadKnobColors(const StyleDefinition& definition);
    void PaintCentred(MDrawer& drawer, const MRectangle& area, const NineSlice* image) const;
    void PaintSlimTracker(MDrawer& drawer, const MRectangle& area, Axis along, const ValueLook& look,
                          std::uint16_t state) const;
    /// Its track and body: what doesn't move.
    const MBitmap& KnobBody(std::int32_t diameter, bool isLit) const;
    void PaintPointer(MDrawer& drawer, MPointF centre, double angle, double from, double to, double width,
                      MColor color) const;
    void PaintTicks(MDrawer& drawer, MPointF centre, double radius, double count) const;
    /// Of what shows a value.
    MColor ValueColor(std::uint16_t state) const;

    std::array<StyleSection, static_cast<std::size_t>(Kind::Count)> sections;
    KnobColors knob;
    mutable std::map<std::pair<std::int32_t, bool>, MBitmap>
        knobBodies;   // by diameter, and whether it is lit
    std::int32_t focusReach = 0;
    std::int32_t shadowReach = 0;
};
