// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MWindow.h"
#include "gui/widgets/MMenuItem.h"

/// A menu that is open: a window with a row for each item, and the menus that open out of it. It closes with
/// a choice, with Escape, and by a press anywhere else. It needn't have the keyboard: keys of its owner's
/// window come here while it is open.
class MPopupMenu : public MWindow
{
public:
    MPopupMenu();
    ~MPopupMenu() override;

    /// Opens beside a rectangle of the owner's, below it where there is room, otherwise above.
    /// @param leastWidth  as wide as the control that it belongs to
    void Popup(MMenuItem& items, MWindow& owner, const MRectangle& beside, std::int32_t leastWidth = 0);
    /// The id of the item; it is told when the menu has closed.
    MEvent<MOnItemParams<std::int32_t>>& OnChosen() { return chosen; }
    /// The row that Enter would choose; -1 for none.
    std::int32_t Current() const { return current; }
    void SetCurrent(std::int32_t row);

    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnMouseLeave() override;

protected:
    void OnClosing() override;

private:
    void MeasureRows();
    void PaintRow(MDrawer& drawer, std::size_t row) const;
    MRectangle RowArea(std::size_t row) const;
    std::int32_t RowAt(std::int32_t x, std::int32_t y) const;
    void MoveCurrent(std::int32_t direction);
    bool MoveToLetter(std::int32_t letter);
    bool OnKey(const MControlEvent& event);
    void Choose(std::int32_t row);
    void OpenSubmenu(std::int32_t row, bool byKey);
    void ShowAtSide(MWindow& owner, const MRectangle& beside, bool below);
    MPopupMenu& First();

    MMenuItem* menu = nullptr;
    MEvent<MOnItemParams<std::int32_t>> chosen;
    std::unique_ptr<MPopupMenu> submenu;
    MPopupMenu* parentMenu = nullptr;
    MWindow* ownerOfMenu = nullptr;
    std::vector<std::int32_t> tops;   // of the rows, and the end
    std::int32_t current = -1;
};
