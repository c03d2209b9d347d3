// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "foundation/containers/MEvent.h"
#include "gui/controls/MControl.h"
#include "gui/fields/MScrollBar.h"
#include "gui/widgets/MTreeItem.h"

/// Lines in lines, which open and close. One is chosen.
class MTreeControl : public MControl
{
public:
    MTreeControl();

    /// The top lines are the children of an item that isn't shown. After changing items call ItemsChanged.
    MTreeItem& Items() { return root; }
    void ItemsChanged();
    /// Null: none.
    MTreeItem* Current() const { return current; }
    /// From outside: no event. Opens what is above it.
    void SetCurrent(MTreeItem* item);
    void SetExpanded(MTreeItem& item, bool expands);
    MEvent<MOnItemParams<MTreeItem*>>& OnSelect() { return select; }
    MEvent<MOnItemParams<MTreeItem*>>& OnActivate() { return activate; }
    /// A right click; null: beside the lines.
    MEvent<MOnItemParams<MTreeItem*>>& OnContext() { return context; }
    /// Before a line opens: who fills it late does it here.
    MCallback<MOnItemParams<MTreeItem*>>& OnExpand() { return expand; }

    /// Elements "item" with "text", "icon" and "expanded", in each other.
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnMouseLeave() override;

protected:
    MSize ContentMinimum() const override;
    void OnPlaced() override;

private:
    struct Row
    {
        MTreeItem* item = nullptr;
        std::int32_t depth = 0;
    };

    void ListRows(MTreeItem& item, std::int32_t depth);
    static void ReadItems(MTreeItem& parentItem, const MAttribute& node);
    std::int32_t RowHeight() const;
    std::int32_t IndexOf(const MTreeItem* item) const;
    MRectangle ListArea() const;
    MRectangle RowArea(std::int32_t index) const;
    MRectangle SignArea(std::int32_t index) const;
    std::int32_t RowAt(std::int32_t x, std::int32_t y) const;
    static bool CanExpand(const MTreeItem& item) { return item.mayHaveChildren || !item.children.empty(); }
    void PaintRow(MDrawer& drawer, std::int32_t index) const;
    bool OnKey(const MControlEvent& event);
    void Choose(std::int32_t index);
    void ShowRow(std::int32_t index);
    void Tell(MEvent<MOnItemParams<MTreeItem*>>& event, MTreeItem* item);
    void OnScrolled(const MOnNotifyParams&) { Invalidate(); }

    MTreeItem root;
    std::vector<Row> rows;   // that can be seen, from the top
    MScrollBar* bar = nullptr;
    MEvent<MOnItemParams<MTreeItem*>> select;
    MEvent<MOnItemParams<MTreeItem*>> activate;
    MEvent<MOnItemParams<MTreeItem*>> context;
    MCallback<MOnItemParams<MTreeItem*>> expand;
    MTreeItem* current = nullptr;
    std::int32_t hovered = -1;
};
