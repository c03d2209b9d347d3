// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEvent.h"
#include "gui/controls/MControl.h"

/// Pages of which one is shown, with their names above. Each child is a page, its caption the name.
class MTabSet : public MControl
{
public:
    MTabSet();

    std::int32_t Page() const { return page; }
    /// From outside: no event.
    void SetPage(std::int32_t index);
    MEvent<MOnItemParams<std::int32_t>>& OnPage() { return changed; }

    void OnLoaded() override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnMouseLeave() override;

protected:
    MSize ContentMinimum() const override;
    void Realize() override;
    void OnPlaced() override;

private:
    std::int32_t Count() const { return static_cast<std::int32_t>(Children().size()); }
    std::int32_t RowHeight() const;
    MRectangle TabArea(std::int32_t index) const;
    std::int32_t TabAt(std::int32_t x, std::int32_t y) const;
    void Choose(std::int32_t index);

    MEvent<MOnItemParams<std::int32_t>> changed;
    std::int32_t page = 0;
    std::int32_t hoveredTab = -1;
};
