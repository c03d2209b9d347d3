// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/text/MObject.h"
#include "gui/controls/LayoutOptions.h"
#include "gui/controls/SizeSums.h"
#include "gui/painting/MRectangle.h"

class MAttribute;
class MControl;

/// Places some children of a control in what earlier layouts have left of its area. Owned by the control,
/// which owns the children, too. Hidden children take no part. Thread: GUI, under the window's lock.
class MLayout : public MObject
{
public:
    /// How much room a child takes, with its borders.
    class SizeComputer
    {
    public:
        virtual ~SizeComputer() = default;
        virtual std::int32_t Size(const MControl& child, Axis axis) const = 0;
        std::int32_t Width(const MControl& child) const { return Size(child, Axis::X); }
        std::int32_t Height(const MControl& child) const { return Size(child, Axis::Y); }
    };
    /// Of sizes as they are.
    class CurrentSizeComputer : public SizeComputer
    {
    public:
        std::int32_t Size(const MControl& child, Axis axis) const override;
    };
    /// Of the least that each can do with.
    class MinimalSizeComputer : public SizeComputer
    {
    public:
        std::int32_t Size(const MControl& child, Axis axis) const override;
    };

    explicit MLayout(MControl& ownerControl) : owner(ownerControl) {}
    ~MLayout() override;
    MLayout(const MLayout&) = delete;
    MLayout& operator=(const MLayout&) = delete;

    virtual void AddControl(MControl& control);
    virtual void RemoveControl(MControl& control);
    const std::vector<MControl*>& Controls() const { return controls; }
    bool HasVisible() const;

    /// Takes the attributes of its element in a layout document.
    virtual void LoadXml(const MAttribute& node);
    /// Takes what the element of a child, which has been added, says to this layout.
    virtual void AddChildXml(MControl& /*control*/, const MAttribute& /*node*/) {}

    /// Places the children in `area`; answers what is left for the next layout.
    virtual MRectangle Arrange(const MRectangle& area) = 0;
    /// Adds what the children need.
    /// @param last  nothing follows, so that no gap has to stand between
    virtual void ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool last) = 0;
    /// Bit 1: the content can stretch horizontally; bit 2: vertically.
    virtual std::uint8_t GetStretch() const = 0;

    std::int32_t layoutSpaceExtra = 0;   ///< added to the style's gap
    std::int32_t defaultBorderX = -1;   ///< of children that are added from now on; negative: their own
    std::int32_t defaultBorderY = -1;

protected:
    struct StackSums
    {
        std::int32_t fixed =
            0;   // sizes of what doesn't share, with a gap and its own space behind each child
        std::int32_t ratio = 0;
    };

    std::int32_t Gap() const;
    std::vector<MControl*> Visible() const;
    /// The largest of the visible children.
    static std::int32_t Largest(const std::vector<MControl*>& children, Axis axis,
                                const SizeComputer& computer);
    /// What a row or column of the children takes. Plastic ones get their size from `crossSize`.
    StackSums SumAlong(const std::vector<MControl*>& children, Axis axis, std::int32_t crossSize,
                       const SizeComputer& computer) const;
    /// The least length in which every child that shares gets what it needs.
    std::int32_t Need(const std::vector<MControl*>& children, Axis axis, const StackSums& sums,
                      const SizeComputer& computer) const;
    /// Gives out the area along an axis, by weight where there are weights; nothing is lost by rounding.
    void Stack(const std::vector<MControl*>& children, Axis axis, const MRectangle& area,
               StackSums sums) const;
    /// Places a child between two pixels.
    static void Place(MControl& child, Axis axis, std::int32_t first, std::int32_t last);
    static void PlaceIn(MControl& child, const MRectangle& cell);

    MControl& owner;

private:
    std::vector<MControl*> controls;
};

std::int32_t& FirstOf(MRectangle& area, Axis axis);
std::int32_t& LastOf(MRectangle& area, Axis axis);
std::int32_t LengthOf(const MRectangle& area, Axis axis);
