// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>

#include "gui/controls/MStyle.h"
#include "gui/richtext/STMLResources.h"

/// What marked-up texts find in a style by name.
class StyleResources : public STMLResources
{
public:
    explicit StyleResources(const MStyle& style) : owner(style) {}

    const STMLTagSet* FindTagSet(const MString& name) const override;
    const MBitmap* FindIcon(const MString& name) const override;
    const MBitmap* FindBitmap(const MString& name) const override;
    std::optional<std::int32_t> FindColor(const MString& name) const override;
    std::optional<double> FindMetric(const MString& name) const override;

private:
    const MStyle& owner;
    mutable std::map<std::int32_t, MBitmap> icons;   // drawn when first asked for
};
