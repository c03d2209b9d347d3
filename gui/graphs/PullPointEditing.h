// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "foundation/containers/MCallback.h"
#include "foundation/threads/MRelaxed.h"
#include "foundation/threads/MSynchronizer.h"
#include "gui/graphs/GraphMapping.h"
#include "gui/graphs/MGraphEditor.h"

/// What a graph of points does, whatever its points are: hit tests, dragging, keys and painting. A point has
/// a place, may have a width with a handle on both sides, and is enabled or only waits to be. Thread: GUI.
class PullPointEditing : public MGraph
{
public:
    using IndexEvent = MCallback<MOnItemParams<std::int32_t>>;
    using PointText = std::function<MString(std::int32_t index)>;
    /// Of a point in which Q is 0.7071067811865.
    static constexpr double DefaultWidth = 0.7608717583261314;
    static constexpr std::int32_t HandleReach = 50;   ///< units beside a point

    /// What the base knows of a point.
    struct State
    {
        double x = 0;
        double y = 0;
        double width = 0;
        bool enabled = false;
        bool hasWidth = false;
    };

    /// With the point's index; the lock isn't held.
    IndexEvent& OnRightClick() { return rightClick; }
    IndexEvent& OnChanged() { return changed; }

    void Paint(MGraphEditor& editor, MDrawer& drawer) override;
    bool OnEvent(MGraphEditor& editor, const MControlEvent& event) override;
    MStdCursor GetCursor(MGraphEditor& editor, std::int32_t x, std::int32_t y) const override;
    void CollectHelp(MAttribute& item) const override;

    /// -1 for none.
    std::int32_t PointAt(std::int32_t x, std::int32_t y) const;
    /// Of a point whose type has a width.
    std::int32_t HandleAt(std::int32_t x, std::int32_t y, bool& isOnLeft) const;
    bool IsDragging() const { return dragPoint || dragWidth; }
    /// Keys choose and move points: by Enter in, by Escape out again.
    std::int32_t KeyPoint() const { return keyPoint; }

    bool notifyAtOnce = true;   ///< otherwise a change is told when the button rises
    MRelaxed<std::int32_t>* selection = nullptr;   ///< gets the index of what is dragged, -1 for nothing
    MSynchronizer* lock = nullptr;   ///< held around every change of a point and while points are read
    PointText format;   ///< of a dragged point; empty: the editor's
    PointText widthFormat;   ///< of a dragged width; empty: its share in percent
    double keyStepX = 0.1;   ///< that an arrow key moves
    double keyStepY = 0.5;

protected:
    // The points, as the derived class has them.
    virtual std::int32_t PointCount() const = 0;
    virtual State GetPoint(std::int32_t index) const = 0;
    virtual void SetPlace(std::int32_t index, double x, double y) = 0;
    virtual void SetWidth(std::int32_t index, double width) = 0;
    virtual void SetPointEnabled(std::int32_t index, bool enabled) = 0;
    /// All of it as in a new one, but its place.
    virtual void ResetPoint(std::int32_t index) = 0;
    virtual void LimitPoints() = 0;
    virtual const GraphMapping& PointMapping() const = 0;
    /// That the style may have; a disc with the number is drawn without it.
    virtual MString PointImage(std::int32_t index) const;
    virtual MColor PointColor(const MDrawer& drawer, std::int32_t index) const;

private:
    /// Zoomed out of the view, a point can neither be seen nor touched.
    bool IsInView(MPoint pixel) const;
    MPoint PixelOf(const State& point) const;
    /// Changes a point under the lock and tells it.
    template <typename Change>
    void ChangePoint(MGraphEditor& editor, std::int32_t index, Change&& change);
    void PointChanged(std::int32_t index);
    void TellChange(std::int32_t index);
    void Select(std::int32_t index);
    std::int32_t Selected() const { return selection != nullptr ? selection->Get() : -1; }
    void BeginDrag(std::int32_t index, const MControlEvent& event);
    void Hover(MGraphEditor& editor, std::int32_t index);

    bool OnLeftDown(MGraphEditor& editor, const MControlEvent& event);
    bool OnMove(MGraphEditor& editor, const MControlEvent& event);
    void MoveDraggedPoint(MGraphEditor& editor, const MControlEvent& event);
    void MoveDraggedWidth(MGraphEditor& editor, const MControlEvent& event);
    bool OnLeftUp(MGraphEditor& editor);
    bool OnRightDown(const MGraphEditor& editor, const MControlEvent& event);
    bool OnRightUp(MGraphEditor& editor, const MControlEvent& event);
    bool OnDoubleClick(MGraphEditor& editor, const MControlEvent& event);
    void AddPointAt(MGraphEditor& editor, const MControlEvent& event);
    bool OnWheel(MGraphEditor& editor, const MControlEvent& event);
    void ResetWidth(MGraphEditor& editor, std::int32_t index);

    bool OnKeyDown(MGraphEditor& editor, const MControlEvent& event);
    bool IsKeyOfPoints(const MControlEvent& event) const;
    bool ChooseByKey(MGraphEditor& editor, std::int32_t direction);
    void MoveByKey(MGraphEditor& editor, const MControlEvent& event);
    void LeaveKeys(MGraphEditor& editor);

    void PaintPoint(MDrawer& drawer, std::int32_t index) const;
    void PaintHandles(MDrawer& drawer, MPoint centre, double width, MColor ink) const;
    void PaintNumber(MDrawer& drawer, std::int32_t index, MPoint centre, bool enabled) const;
    void PaintText(MGraphEditor& editor, MDrawer& drawer) const;

    IndexEvent rightClick;
    IndexEvent changed;
    bool dragPoint = false;
    bool dragWidth = false;
    bool widthOnLeft = false;
    bool pendingChange = false;
    std::int32_t pendingIndex = -1;
    std::int32_t dragIndex = -1;
    std::int32_t widthIndex = -1;
    std::int32_t rightIndex = -1;
    std::int32_t hoverIndex = -1;
    std::int32_t keyPoint = -1;
    MPoint dragStart;
    std::int32_t pointRadius = 5;   // pixels: of the image, as it was painted last
    double scale = 1;   // of the style, as it was painted last
};

template <typename Change>
void PullPointEditing::ChangePoint(MGraphEditor& editor, std::int32_t index, Change&& change)
{
    {
        const MSynchronizerGuard guard(lock);
        change();
        LimitPoints();
    }
    PointChanged(index);
    editor.InvalidateGraph(*this);
}
