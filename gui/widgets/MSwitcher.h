// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/widgets/MControlValue.h"
#include "gui/widgets/MPopupMenu.h"

/// Chooses one of a few: shows the chosen one and opens a menu of all, or, as segments, shows all side by
/// side.
class MSwitcher : public MControlValue
{
public:
    MSwitcher();
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OpenMenu();

    bool segments = false;

protected:
    MSize ContentMinimum() const override;
    void Realize() override;
    MRectangle TypingArea() const override { return {}; }

private:
    std::int32_t Count() const;
    MString LabelAt(std::int32_t index) const;
    MRectangle SegmentArea(std::int32_t index) const;
    void Choose(std::int32_t index);
    void OnChosen(const MOnItemParams<std::int32_t>& params);
    void PaintSegments(MDrawer& drawer, std::uint16_t state);

    MMenuItem items;
    MPopupMenu menu;
};
