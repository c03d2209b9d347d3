// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "gui/controls/MControl.h"

/// Moves a part through a whole. Upright where it is higher than wide.
class MScrollBar : public MControl
{
public:
    MScrollBar();

    /// @param whole  how much there is
    /// @param page  how much of it is seen
    void SetRange(std::int32_t whole, std::int32_t page);
    /// Limited to what there is. From outside: no event.
    void SetFirst(std::int32_t first);
    /// Moves as little as brings a part of the whole into sight. From outside: no event.
    void ShowPart(std::int32_t first, std::int32_t size);
    std::int32_t First() const { return position; }
    std::int32_t Last() const;   ///< the largest First()
    bool IsNeeded() const { return wholeSize > pageSize; }
    /// As the user does it.
    void ScrollBy(std::int32_t way);
    MCallback<MOnNotifyParams>& OnScroll() { return scroll; }

    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnTimer() override;
    void OnCaptureEnd() override;

    std::int32_t line = 1;   ///< what a notch of the wheel moves, thrice

protected:
    MSize ContentMinimum() const override;

private:
    Axis Along() const { return Height() > Width() ? Axis::Y : Axis::X; }
    MRectangle Thumb() const;
    std::int32_t At(const MControlEvent& event) const { return Along() == Axis::X ? event.x : event.y; }
    void Turn();

    MCallback<MOnNotifyParams> scroll;
    std::int32_t wholeSize = 0;
    std::int32_t pageSize = 0;
    std::int32_t position = 0;
    std::int32_t grabbedAt = 0;   // from the thumb's begin
    std::int32_t pointerAt = 0;
    bool dragging = false;
    bool turning = false;   // page by page towards the pointer
};
