// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/widgets/MPopupMenu.h"

/// Menus side by side. While one is open, pointing at another opens that.
class MMenuBar : public MControl
{
public:
    MMenuBar();

    /// Its items are the menus.
    MMenuItem& Items() { return items; }
    MEvent<MOnItemParams<std::int32_t>>& OnChosen() { return menu.OnChosen(); }

    /// Elements "menu" with "text", in them "item" with "text", "id" and "keys", and "separator".
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnMouseLeave() override;

protected:
    MSize ContentMinimum() const override;
    void Realize() override;

private:
    std::int32_t Count() const { return static_cast<std::int32_t>(items.items.size()); }
    MRectangle TitleArea(std::int32_t index) const;
    std::int32_t TitleAt(std::int32_t x, std::int32_t y) const;
    void OpenMenu(std::int32_t index);
    void OnMenuClosed(const MOnWindowCloseParams& params);
    static void ReadItems(MMenuItem& parentItem, const MAttribute& node);

    MMenuItem items;
    MPopupMenu menu;
    std::int32_t current = -1;   // pointed at, or open
    std::int32_t opened = -1;
};
