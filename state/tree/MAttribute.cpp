// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/tree/MAttribute.h"

#include "foundation/text/MStringFormat.h"

MAttribute::MAttribute(const MString& itemName) : name(itemName) {}

MAttribute::MAttribute(MAttribute& parentItem, const MString& itemName)
    : parent(&parentItem), depth(parentItem.depth + 1), name(itemName)
{
}

MAttribute::~MAttribute() = default;

void MAttribute::AppendText(const MString& piece)
{
    if (!text.IsEmpty())
        text.Append(u' ');
    text.Append(piece);
}

int MAttribute::AttributeCount() const
{
    return attributes.Count();
}

const MAttributePair& MAttribute::AttributeAt(int index) const
{
    return *attributes[index];
}

int MAttribute::FindPair(const MString& key, bool& found) const
{
    int low = 0;
    int high = attributes.Count();
    while (low < high)
    {
        const int middle = low + (high - low) / 2;
        const int order = MString::CompareNoCase(attributes[middle]->key, key);
        if (order == 0)
        {
            found = true;
            return middle;
        }
        if (order < 0)
            low = middle + 1;
        else
            high = middle;
    }
    found = false;
    return low;
}

MAttributePair* MAttribute::PairOf(const MString& key) const
{
    bool found = false;
    const int index = FindPair(key, found);
    return found ? attributes[index] : nullptr;
}

const MString* MAttribute::FindAttribute(const MString& key) const
{
    const MAttributePair* pair = PairOf(key);
    return pair != nullptr ? &pair->value : nullptr;
}

bool MAttribute::HasAttribute(const MString& key)
{
    attributeCache = PairOf(key);
    return attributeCache != nullptr;
}

const MString& MAttribute::GetCachedAttribute() const
{
    if (attributeCache == nullptr)
        throw MException("There is no attribute in the cache. Previous call to HasAttribute probably did "
                         "not succeed.");
    return attributeCache->value;
}

MString MAttribute::GetAttribute(const MString& key, const MString& defaultValue) const
{
    const MAttributePair* pair = PairOf(key);
    return pair != nullptr ? pair->value : defaultValue;
}

const MString& MAttribute::RequireAttribute(const MString& key) const
{
    const MAttributePair* pair = PairOf(key);
    if (pair == nullptr)
        throw MException(Format("Could not find required attribute ({0}).", key));
    return pair->value;
}

void MAttribute::SetAttribute(const MString& key, const MString& value)
{
    bool found = false;
    const int index = FindPair(key, found);
    if (found)
        attributes[index]->value = value;
    else
        attributes.Insert(index, std::make_unique<MAttributePair>(MAttributePair{ key, value }));
}

void MAttribute::RemoveAttribute(const MString& key)
{
    bool found = false;
    const int index = FindPair(key, found);
    if (!found)
        return;
    if (attributes[index] == attributeCache)
        attributeCache = nullptr;
    attributes.Delete(index);
}

int MAttribute::SubItemCount() const
{
    return subItems.Count();
}

MAttribute& MAttribute::SubItemAt(int index) const
{
    return *subItems[index];
}

MAttribute* MAttribute::FindSubItem(const MString& itemName) const
{
    for (MAttribute* item : subItems)
        if (item->name.EqualsNoCase(itemName))
            return item;
    return nullptr;
}

bool MAttribute::HasSubItem(const MString& itemName)
{
    subItemCache = FindSubItem(itemName);
    return subItemCache != nullptr;
}

MAttribute& MAttribute::GetCachedSubItem() const
{
    if (subItemCache == nullptr)
        throw MException(
            "There is no subitem in the cache. Previous call to HasSubItem probably did not succeed.");
    return *subItemCache;
}

MAttribute& MAttribute::GetSubItem(const MString& itemName)
{
    MAttribute* item = FindSubItem(itemName);
    return item != nullptr ? *item : AddSubItem(itemName);
}

MAttribute& MAttribute::AddSubItem(const MString& itemName)
{
    MAttribute* last = subItems.IsEmpty() ? nullptr : subItems[subItems.Count() - 1];
    MAttribute* item = subItems.Add(std::unique_ptr<MAttribute>(new MAttribute(*this, itemName)));
    item->previous = last;
    if (last != nullptr)
        last->next = item;
    return *item;
}

void MAttribute::RemoveSubItems(const MString& itemName)
{
    subItemCache = nullptr;
    isIterating = false;
    for (int index = subItems.Count() - 1; index >= 0; --index)
    {
        MAttribute* item = subItems[index];
        if (!item->name.EqualsNoCase(itemName))
            continue;
        if (item->previous != nullptr)
            item->previous->next = item->next;
        if (item->next != nullptr)
            item->next->previous = item->previous;
        subItems.Delete(index);
    }
}

MAttribute& MAttribute::RequireSubItem(const MString& itemName) const
{
    MAttribute* item = FindSubItem(itemName);
    if (item == nullptr)
        throw MException(Format("Could not find required subitem ({0}).", itemName));
    return *item;
}

MAttribute* MAttribute::FindSubItem(const MString& itemName, const MString& key, const MString& value) const
{
    for (MAttribute* item : subItems)
    {
        const MAttributePair* pair = item->name.EqualsNoCase(itemName) ? item->PairOf(key) : nullptr;
        if (pair != nullptr && pair->value == value)
            return item;
    }
    return nullptr;
}

void MAttribute::Clear()
{
    attributeCache = nullptr;
    subItemCache = nullptr;
    isIterating = false;
    attributes.Clear();
    subItems.Clear();
    text = {};
}

void MAttribute::CopyFrom(const MAttribute& item)
{
    if (&item == this)
        return;
    // Into a spare first: the item may be one of this one's descendants, or the memory may not suffice.
    MAttribute copy;
    copy.depth = depth;
    copy.CopyContent(item);
    Clear();
    attributes.Swap(copy.attributes);
    subItems.Swap(copy.subItems);
    text = copy.text;
    for (MAttribute* child : subItems)
        child->parent = this;
}

void MAttribute::CopyContent(const MAttribute& item)
{
    text = item.text;
    for (const MAttributePair* pair : item.attributes)
        attributes.Add(std::make_unique<MAttributePair>(*pair));
    for (const MAttribute* child : item.subItems)
        AddSubItem(child->name).CopyContent(*child);
}

void MAttribute::BeginIteration(MAttribute& item)
{
    iterationRoot = &item;
    iterated = &item;
    isIterating = true;
}

MAttribute* MAttribute::NextItem()
{
    if (CurrentItem() == nullptr)
        return nullptr;
    MAttribute* item = iterated;
    if (!item->subItems.IsEmpty())
        return iterated = item->subItems[0];
    while (item != iterationRoot && item->next == nullptr)
        item = item->parent;
    return iterated = item == iterationRoot ? nullptr : item->next;
}

MAttribute* MAttribute::CurrentItem()
{
    if (!isIterating)
        throw MException("XML item iterator has not been initialized.");
    return iterated;
}
