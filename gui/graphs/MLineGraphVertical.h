// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdlib>

#include "gui/graphs/MLineGraphBase.h"

/// An upright line at a value, which can be dragged.
template <typename R = MGraphWithRangesBase<0, 1, 0, 1>>
class MLineGraphVertical : public MLineGraphBase<R>
{
public:
    enum Flag : std::uint8_t
    {
        Emphasised = MGraph::FirstOwn,   ///< three pixels wide
        Dragging
    };
    static constexpr std::int32_t Reach = 3;   ///< units at 100 %

    using MLineGraphBase<R>::MLineGraphBase;

    /// Where on the x axis of the graph a value stands, and back.
    virtual double ValueToView(double shown) const { return shown; }
    virtual double ViewToValue(double view) const { return view; }

    void Paint(MGraphEditor& editor, MDrawer& drawer) override
    {
        MLineGraphBase<R>::Paint(editor, drawer);
        if (this->value == nullptr)
            return;
        const MRectangle& area = editor.GraphRectangle();
        drawer.SetClip(drawer.GetClip().Intersection(area));
        const MColor ink = this->GetColor(drawer);
        const std::int32_t at = Pixel();
        const MColor line = ink.WithAlpha(static_cast<std::uint8_t>(ink.Alpha() * 120 / 256));
        drawer.FillRectangle({ at, area.top, at, area.bottom }, line);
        if (this->TestFlag(Emphasised))
            for (const std::int32_t beside : { at - 1, at + 1 })
                drawer.FillRectangle({ beside, area.top, beside, area.bottom },
                                     line.WithAlpha(static_cast<std::uint8_t>(line.Alpha() / 2)));
        if (this->TestFlag(Dragging) && editor.formatX)
            editor.PaintReadout(drawer, editor.Pointer().x, editor.Pointer().y, editor.formatX(*this->value));
    }

    bool OnEvent(MGraphEditor& editor, const MControlEvent& event) override
    {
        switch (event.code)
        {
        case MEventCode::LeftDown:
            if (!IsNear(editor, event.x, event.y))
                return false;
            this->SetFlag(Dragging);
            return true;
        case MEventCode::Move:
            if (!this->TestFlag(Dragging) || this->value == nullptr)
                return false;
            *this->value = ViewToValue(this->mapping.x.Limited(this->mapping.x.ValueOf(event.x)));
            this->TellChange();
            editor.InvalidateGraph(*this);
            return true;
        case MEventCode::LeftUp:
            if (!this->TestFlag(Dragging))
                return false;
            this->ClearFlag(Dragging);
            return true;
        default:
            return MLineGraphBase<R>::OnEvent(editor, event);
        }
    }

    MStdCursor GetCursor(MGraphEditor& editor, std::int32_t x, std::int32_t y) const override
    {
        return this->TestFlag(Dragging) || IsNear(editor, x, y) ? MStdCursor::ColumnLine
                                                                : MStdCursor::Inherited;
    }

private:
    std::int32_t Pixel() const { return this->mapping.x.PixelOf(ValueToView(*this->value)); }
    bool IsNear(const MGraphEditor& editor, std::int32_t x, std::int32_t y) const
    {
        return this->value != nullptr && editor.ClipRectangle().Contains(x, y) &&
               std::abs(x - Pixel()) <= editor.PixelsOf(Reach);
    }
};

/// The same for the decimal logarithm of a frequency in Hertz, on an axis of 0 to 1 from 20 Hz to 20 kHz.
template <typename R = MGraphWithRangesBase<0, 1, 0, 1>>
class MLineGraphVerticalLogFrequency : public MLineGraphVertical<R>
{
public:
    static constexpr double LowestLog = 1.3010299956639813;   ///< 20 Hz
    static constexpr double HighestLog = 4.301029995663981;   ///< 20 kHz

    using MLineGraphVertical<R>::MLineGraphVertical;

    double ValueToView(double shown) const override { return std::clamp((shown - LowestLog) / 3, 0.0, 1.0); }
    double ViewToValue(double view) const override
    {
        return std::clamp(view * 3 + LowestLog, LowestLog, HighestLog);
    }
};
