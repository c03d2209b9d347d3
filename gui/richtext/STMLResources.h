// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

#include "foundation/text/MString.h"
#include "gui/painting/MBitmap.h"

/// A panel behind a text, as names of keys have it. Colours are indexes of MDrawerOwner.
struct STMLField
{
    std::int32_t color = 0;
    std::int32_t edgeColor = 0;
    double radius = 3;   ///< units
};

/// What a tag of the style does to the text that it encloses; what is absent stays as it is outside.
struct STMLTagSet
{
    std::optional<std::int32_t> font;   ///< index of MDrawerOwner
    std::optional<std::int32_t> color;   ///< the same
    std::optional<std::uint8_t> alpha;
    std::optional<STMLField> field;
    bool underlined = false;   ///< by a hairline
};

/// What a marked-up text asks its style for by name. Fonts, colours by index and the scale come from the
/// MDrawerOwner beside it. Thread: GUI.
class STMLResources
{
public:
    virtual ~STMLResources() = default;

    /// Null: there is none of that name. It stays until the style changes.
    virtual const STMLTagSet* FindTagSet(const MString& name) const = 0;
    /// A picture in pixels of the present scale, by a name of `MStdIcon` in any case. Null: no such name; an
    /// empty one: no picture.
    virtual const MBitmap* FindIcon(const MString& name) const = 0;
    /// The same by a name of `MStdBitmap`.
    virtual const MBitmap* FindBitmap(const MString& name) const = 0;
    /// The index of a name of `MStdColor`.
    virtual std::optional<std::int32_t> FindColor(const MString& name) const = 0;
    /// A size of the style in pixels of the present scale, as "MaxStdIconSizeX".
    virtual std::optional<double> FindMetric(const MString& name) const = 0;
};
