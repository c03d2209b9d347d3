// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MArray.h"
#include "foundation/text/MString.h"
#include "state/tree/MAttribute.h"

/// Receives what a scanner finds in a document of elements, attributes and text.
template <typename Item, typename List>
class MMLParser
{
public:
    using ItemType = Item;
    using ListType = List;

    virtual ~MMLParser() = default;
    /// An element without content comes twice, opening and closing. A closing one has no attributes.
    virtual void OnElement(const MString& name, const MArray<MAttributePair>& attributes, bool closing) = 0;
    virtual void OnText(const MString& text) = 0;
};

using MTreeParser = MMLParser<MAttribute, MList<MAttribute, 2>>;
