// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MFlagManager.h"
#include "foundation/text/MObject.h"
#include "gui/controls/MControlEvent.h"
#include "gui/controls/StyleNames.h"
#include "gui/painting/MDrawer.h"

class MAttribute;
class MGraphEditor;

/// One thing in a graph editor: a curve, draggable points, a line. It knows how to paint itself in the
/// editor's rectangle and how to answer an event, and nothing of the others. It isn't the editor's: either
/// may go first. Thread: GUI.
class MGraph : public MObject, public MFlagManager<32>
{
public:
    /// Bits; those from FirstOwn on belong to derived classes.
    enum Flag : std::uint8_t
    {
        Enabled,   ///< gets events
        Visible,   ///< is painted; events need it, too
        HasOverlay,   ///< painted by an MOverlayPainter of its own, not by the editor
        OnTop,   ///< painted in the second pass, above those that aren't
        FirstOwn
    };
    class MOverlayPainter;

    MGraph();
    MGraph(const MGraph&) = delete;
    MGraph& operator=(const MGraph&) = delete;
    ~MGraph() override;

    /// `color`, or the style's where that has an alpha of 0, with its alpha times the opacity, at least 1.
    virtual MColor GetColor(const MDrawer& drawer) const;
    /// The values at the ends of the axes: 0 to 1 in the base.
    virtual void GetRanges(double& xMin, double& xMax, double& yMin, double& yMax) const;
    /// With the editor's places. The editor's lock is held; what it throws is logged, the others are painted.
    virtual void Paint(MGraphEditor&, MDrawer&) {}
    /// True: nobody else gets it. Places are the editor's. Focus and Leave come to all graphs.
    virtual bool OnEvent(MGraphEditor&, const MControlEvent&) { return false; }
    /// Inherited: none of its own.
    virtual MStdCursor GetCursor(MGraphEditor&, std::int32_t /*x*/, std::int32_t /*y*/) const
    {
        return MStdCursor::Inherited;
    }
    /// Appends children "controlitem" with the texts of its help.
    virtual void CollectHelp(MAttribute&) const {}
    /// Size or view of the editor have changed.
    virtual void UpdateRanges(MGraphEditor&) {}
    /// True when there was something to be written.
    virtual bool Store(MAttribute&) { return false; }
    virtual bool Load(MAttribute&) { return false; }

    /// The one that shows it, null for none.
    MGraphEditor* Editor() const { return shownBy; }
    bool IsVisible() const { return TestFlag(Visible); }
    void SetVisible(bool shown);
    /// The same for any bit, with a repaint.
    void ChangeFlag(Flag flag, bool on);

    MOverlayPainter* overlayPainter = nullptr;   ///< the editor's child
    std::int32_t colorIndex = static_cast<std::int32_t>(MStdColor::Graph);   ///< of the style
    MColor color;   ///< alpha 0: the style's
    float opacity = 1;

protected:
    static void AddHelp(MAttribute& item, const char* text);

private:
    friend class MGraphEditor;

    MGraphEditor* shownBy = nullptr;
};

/// The part of a graph's `color` that can be seen: its alpha times the opacity, 1 to 255.
MColor ColorWithOpacity(MColor color, double opacity);
