// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "foundation/text/MObject.h"
#include "gui/richtext/STMLOwner.h"

/// Anything that can be laid out and painted. Sizes are whole pixels. Measuring needs no drawer; it is done
/// once for the fonts, laying out once for each new width. Thread: GUI.
class MSTMLItem : public MObject
{
public:
    /// Shares the owner until it gets another.
    virtual std::unique_ptr<MSTMLItem> Clone() const = 0;
    /// Below which words are broken.
    virtual std::int32_t GetMinimalWidth() = 0;
    /// With no line broken. An object that is as wide as a share of its line counts with its own width.
    virtual std::int32_t GetPreferredWidth() = 0;
    virtual std::int32_t GetHeight(std::int32_t width) = 0;
    virtual void Layout(std::int32_t width) = 0;
    /// Lays itself out for the rectangle's width. What is higher than the item is filled where the item can.
    virtual void Paint(MDrawer& drawer, const MRectangle& area) = 0;
    /// Takes everything from this owner and forgets what was measured.
    virtual void SetOwner(const STMLOwner& newOwner) { owner = &newOwner; }

    /// How much of its container's height it wants, 0 to 1.
    virtual double GetHeightShare() const { return 0; }

protected:
    explicit MSTMLItem(const STMLOwner& itemOwner) : owner(&itemOwner) {}
    MSTMLItem(const MSTMLItem&) = default;
    MSTMLItem& operator=(const MSTMLItem&) = delete;

    const STMLOwner& Owner() const { return *owner; }

private:
    const STMLOwner* owner;
};
