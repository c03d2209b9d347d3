// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/FrequencyAreas.h"

#include "state/tree/StoredNode.h"

namespace
{
void StoreArea(FrequencyAreas::Area& area, const MStoreParams& params)
{
    constexpr double lowest = 1.3010299956639813;
    constexpr StoredRange<std::int32_t> rows = { -100000, 100000 };
    StoredNode node(params);
    node.Optional("Min", area.minX, lowest);
    node.Optional("Max", area.maxX, lowest);
    node.OptionalColor("Color", area.color);
    node.Optional("ColorEnabled", area.colorEnabled, false);
    node.Optional("Row", area.row, 0, rows);
    node.Optional("Height", area.height, 0, rows);
    node.Optional("Name", area.name, "Undefined");
}
}   // namespace

void FrequencyAreas::Store(const MStoreParams& params)
{
    StoredNode node(params);
    node.Optional("RowHeight", rowHeight, 20, { -100000, 100000 });
    node.Optional("FromTop", fromTop, false);
    node.Optional("InvertRows", invertRows, false);
    node.Optional("MaximizeRows", maximizeRows, false);
    node.Optional("Alpha", alpha, 0.5);
    if (node.IsSaving())
    {
        for (Area& area : areas)
            StoreArea(area, params.At(node.Item().AddSubItem("Item")));
        return;
    }
    if (node.IsOverlay() && !node.HasChild("Item"))
        return;
    areas.clear();
    for (int index = 0; index < node.Item().SubItemCount(); ++index)
        if (MAttribute& item = node.Item().SubItemAt(index); item.Name().EqualsNoCase("Item"))
            StoreArea(areas.emplace_back(), params.At(item));
}
