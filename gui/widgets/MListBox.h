// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/containers/MEvent.h"
#include "gui/controls/MControl.h"
#include "gui/fields/MScrollBar.h"

/// A line of a list.
struct MListItem
{
    MString text;
    MString detail;   ///< quieter, at the right
    MStdIcon icon = MStdIcon::None;
    bool enabled = true;
    bool selected = false;
};

/// A list of lines, of which one, or with multiple some, are chosen. Letters that are typed look for the line
/// that begins with them.
class MListBox : public MControl
{
public:
    MListBox();

    /// Keeps what is chosen by its place as far as there are lines.
    void SetItems(std::vector<MListItem> newItems);
    const std::vector<MListItem>& Items() const { return items; }
    std::int32_t Count() const { return static_cast<std::int32_t>(items.size()); }
    /// The line that keys move; -1: none.
    std::int32_t Current() const { return current; }
    /// From outside: no event.
    void SetCurrent(std::int32_t index);
    void ShowItem(std::int32_t index);
    /// Another line is chosen.
    MEvent<MOnItemParams<std::int32_t>>& OnSelect() { return select; }
    /// A double click, or Enter.
    MEvent<MOnItemParams<std::int32_t>>& OnActivate() { return activate; }
    /// A right click; -1: beside the lines.
    MEvent<MOnItemParams<std::int32_t>>& OnContext() { return context; }

    /// Elements "item" with "text", "detail" and "icon" are its lines.
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnMouseLeave() override;

    bool multiple = false;
    MString emptyText;   ///< in the middle while there are no lines
    std::int32_t minimalRows = 3;

protected:
    void Realize() override;
    MSize ContentMinimum() const override;
    void OnPlaced() override;
    /// What stands on a line, after its background.
    virtual void PaintItem(MDrawer& drawer, const MRectangle& area, std::int32_t index, std::uint16_t state);
    virtual std::int32_t RowHeight() const;

private:
    MRectangle ListArea() const;
    MRectangle RowArea(std::int32_t index) const;
    std::int32_t RowAt(std::int32_t x, std::int32_t y) const;
    void InvalidateRow(std::int32_t index);
    bool OnKey(const MControlEvent& event);
    bool OnLetter(char32_t character);
    void Choose(std::int32_t index, std::uint8_t modifiers);
    void Tell(MEvent<MOnItemParams<std::int32_t>>& event, std::int32_t index);
    void OnScrolled(const MOnNotifyParams&) { Invalidate(); }

    std::vector<MListItem> items;
    MScrollBar* bar = nullptr;
    MEvent<MOnItemParams<std::int32_t>> select;
    MEvent<MOnItemParams<std::int32_t>> activate;
    MEvent<MOnItemParams<std::int32_t>> context;
    MString typed;
    std::uint64_t typedTime = 0;
    std::int32_t current = -1;
    std::int32_t anchor = -1;   // from where Shift chooses
    std::int32_t hovered = -1;
};
