// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "foundation/text/MObject.h"
#include "foundation/text/MString.h"
#include "gui/controls/StyleNames.h"

/// A line of a menu, or a menu itself: what it holds are its lines.
class MMenuItem : public MObject
{
public:
    MMenuItem() = default;
    explicit MMenuItem(const MString& shownText, std::int32_t itemId = 0) : text(shownText), id(itemId) {}

    MMenuItem& Add(const MString& shownText, std::int32_t itemId, const MString& keysText = {})
    {
        items.push_back(std::make_unique<MMenuItem>(shownText, itemId));
        items.back()->keys = keysText;
        return *items.back();
    }
    void AddSeparator() { items.push_back(std::make_unique<MMenuItem>()); }
    bool IsSeparator() const { return text.IsEmpty() && items.empty(); }
    bool IsMenu() const { return !items.empty(); }
    bool CanBeChosen() const { return enabled && !IsSeparator(); }
    /// The item with an id, here or deeper; null for none.
    MMenuItem* FindItem(std::int32_t wanted)
    {
        for (const auto& each : items)
            if (MMenuItem* found =
                    each->id == wanted && !each->IsMenu() ? each.get() : each->FindItem(wanted))
                return found;
        return nullptr;
    }

    MString text;
    MString keys;   ///< shown at the right
    std::int32_t id = 0;
    MStdIcon icon = MStdIcon::None;
    bool checked = false;
    bool enabled = true;
    std::vector<std::unique_ptr<MMenuItem>> items;
};
