// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEventBase.h"
#include "gui/controls/DrawState.h"
#include "gui/controls/LayoutOptions.h"
#include "gui/controls/StyleNames.h"
#include "gui/painting/MDrawer.h"

class MControl;
struct MControlEvent;

/// Width and height in pixels.
struct MSize
{
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool operator==(const MSize&) const = default;
};

/// The look of controls: their spacing, frames and pictures. Everything is in pixels at the style's scale;
/// `state` is made of DrawState. Thread: GUI.
class MStyle : public MEventTarget, public MDrawerOwner
{
public:
    /// What a control's frame takes from it at each side.
    struct Frame
    {
        std::int32_t left = 0;
        std::int32_t top = 0;
        std::int32_t right = 0;
        std::int32_t bottom = 0;
    };
    /// What a knob or a slider shows: shares of its range, 0 to 1.
    struct ValueLook
    {
        double value = 0;
        double origin = 0;   ///< where the filled part begins: 0, or the middle for a range with two signs
        double ticks = 0;   ///< a mark for each step, 0: none
    };

    virtual Frame GetFrame(const MControl& control) const = 0;
    /// Below which no control of this kind goes.
    virtual MSize GetMinimalSize(const MControl& control) const = 0;
    /// That a control of this kind has when it is made.
    virtual MSize GetDefaultSize(MControlType type) const = 0;
    /// The face of the control's kind in its present state. Nothing for those without a face.
    virtual void Paint(MControl& control, MDrawer& drawer) = 0;
    /// Sees each event before the control does; true takes it.
    virtual bool OfferEvent(MControl&, const MControlEvent&) { return false; }

    virtual void PaintFace(MDrawer& drawer, const MRectangle& area, MControlType type,
                           std::uint16_t state) const = 0;
    /// Around a control, outside of it.
    virtual void PaintFocusRing(MDrawer& drawer, const MRectangle& control) const = 0;
    /// How far outside it reaches.
    virtual std::int32_t FocusRingReach() const = 0;
    /// In the middle of an area.
    virtual void PaintIcon(MDrawer& drawer, const MRectangle& area, MStdIcon icon, MColor color) const = 0;
    virtual MSize IconSize(MStdIcon icon) const = 0;
    /// The box alone, in the middle of an area.
    virtual void PaintCheckBox(MDrawer& drawer, const MRectangle& area, MCheckBoxState checked,
                               std::uint16_t state) const = 0;
    virtual void PaintRadioButton(MDrawer& drawer, const MRectangle& area, std::uint16_t state) const = 0;
    /// A knob without label and value, as large as the area lets it be.
    virtual void PaintKnob(MDrawer& drawer, const MRectangle& area, const ValueLook& look,
                           std::uint16_t state) const = 0;
    /// A slider with its thumb.
    virtual void PaintTracker(MDrawer& drawer, const MRectangle& area, Axis along, const ValueLook& look,
                              std::uint16_t state) const = 0;
    virtual void PaintProgress(MDrawer& drawer, const MRectangle& area, double share) const = 0;
    virtual void PaintScrollBar(MDrawer& drawer, const MRectangle& area, const MRectangle& thumb, Axis along,
                                std::uint16_t state) const = 0;
    /// Behind a row of a list, tree or menu.
    virtual void PaintItem(MDrawer& drawer, const MRectangle& area, MControlType type,
                           std::uint16_t state) const = 0;
    /// Behind the text of a tab.
    virtual void PaintTab(MDrawer& drawer, const MRectangle& area, std::uint16_t state) const = 0;
    /// Around a window or menu that lies above others; the area is the window's.
    virtual void PaintShadow(MDrawer& drawer, const MRectangle& area) const = 0;
    virtual std::int32_t ShadowReach() const = 0;

    virtual const MBitmap* GetBitmap(MStdBitmap bitmap) const = 0;
    /// A named image: "eqeqpoint1" and its like; null where the style has none.
    virtual const MBitmap* FindBitmap(const MString& name) const = 0;

    using MDrawerOwner::GetColor;
    MColor GetColor(MStdColor color) const { return GetColor(static_cast<std::int32_t>(color)); }
    using MDrawerOwner::GetFont;
    MFont& GetFont(MStdFont font) const { return GetFont(static_cast<std::int32_t>(font)); }
    std::int32_t GetSize(MStyleSize size) const { return GetSpacing(static_cast<std::int32_t>(size)); }
    /// Units at 100 % in whole pixels.
    std::int32_t Pixels(double units) const
    {
        return static_cast<std::int32_t>(units * GetScale() + (units < 0 ? -0.5 : 0.5));
    }
    /// Of a hairline: 1 to 150 %, 2 to 250 %, 3 beyond.
    std::int32_t Hairline() const { return GetScale() <= 1.5 ? 1 : GetScale() <= 2.5 ? 2 : 3; }
};
