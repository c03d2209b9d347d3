// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "foundation/text/MObject.h"
#include "foundation/text/MString.h"
#include "gui/controls/StyleNames.h"

/// A line of a tree with the lines below it.
class MTreeItem : public MObject
{
public:
    MTreeItem& Add(const MString& shownText, std::uintptr_t itemData = 0)
    {
        children.push_back(std::make_unique<MTreeItem>());
        MTreeItem& made = *children.back();
        made.text = shownText;
        made.data = itemData;
        made.parent = this;
        return made;
    }

    MString text;
    MStdIcon icon = MStdIcon::None;
    std::uintptr_t data = 0;   ///< whatever its owner finds it by
    bool expanded = false;
    bool mayHaveChildren = false;   ///< shows that it can be expanded before its children are there
    MTreeItem* parent = nullptr;
    std::vector<std::unique_ptr<MTreeItem>> children;
};
