// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <utility>
#include <vector>

#include "gui/richtext/MSTMLItem.h"

/// Items below each other. Thread: GUI.
class MSTMLContainer : public MSTMLItem
{
public:
    explicit MSTMLContainer(const STMLOwner& itemOwner) : MSTMLItem(itemOwner) {}
    MSTMLContainer(const MSTMLContainer& other);

    std::unique_ptr<MSTMLItem> Clone() const override;
    std::int32_t GetMinimalWidth() override;
    std::int32_t GetPreferredWidth() override;
    /// The sum of the items' heights.
    std::int32_t GetHeight(std::int32_t width) override;
    void Layout(std::int32_t width) override;
    void Paint(MDrawer& drawer, const MRectangle& area) override;
    void SetOwner(const STMLOwner& newOwner) override;

    const std::vector<std::unique_ptr<MSTMLItem>>& Items() const { return items; }
    template <typename Item>
    Item& Add(std::unique_ptr<Item> item)
    {
        items.push_back(std::move(item));
        return static_cast<Item&>(*items.back());
    }

protected:
    void PaintItems(MDrawer& drawer, const MRectangle& area, MPlacement down);
    void TakeItems(MSTMLContainer& other);

private:
    struct Measures
    {
        std::int32_t minimal = -1;   // -1: not measured
        std::int32_t preferred = -1;
        std::int32_t width = -1;
        std::int32_t height = 0;   // for `width`
    };

    std::vector<std::unique_ptr<MSTMLItem>> items;
    Measures measures;
};
