// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/containers/MList.h"
#include "foundation/streams/MStream.h"
#include "foundation/text/MException.h"
#include "foundation/text/MString.h"

struct MAttributePair
{
    MString key;
    MString value;
};

/// One element of a settings tree: name, text, attributes sorted by key, children in order of creation.
/// Keys and names are compared without case and accents. The tree owns its children. One thread at a time.
class MAttribute
{
public:
    explicit MAttribute(const MString& name = {});
    ~MAttribute();
    MAttribute(const MAttribute&) = delete;
    MAttribute& operator=(const MAttribute&) = delete;

    const MString& Name() const { return name; }
    void SetName(const MString& newName) { name = newName; }
    const MString& Text() const { return text; }
    void SetText(const MString& newText) { text = newText; }
    /// Joined to what is there by a blank.
    void AppendText(const MString& piece);
    int Depth() const { return depth; }
    MAttribute* Parent() const { return parent; }
    MAttribute* Next() const { return next; }
    MAttribute* Previous() const { return previous; }

    int AttributeCount() const;
    const MAttributePair& AttributeAt(int index) const;
    /// The value; null when there is none. Changes nothing, so that many threads may look at one tree.
    const MString* FindAttribute(const MString& key) const;
    bool HasAttribute(const MString& key);
    /// The value that the last HasAttribute found, as long as it stays in the tree; throws without one.
    const MString& GetCachedAttribute() const;
    MString GetAttribute(const MString& key, const MString& defaultValue = {}) const;
    const MString& RequireAttribute(const MString& key) const;
    void SetAttribute(const MString& key, const MString& value);
    void RemoveAttribute(const MString& key);

    int SubItemCount() const;
    MAttribute& SubItemAt(int index) const;
    /// The first child of that name; null when there is none. Changes nothing.
    MAttribute* FindSubItem(const MString& itemName) const;
    bool HasSubItem(const MString& itemName);
    MAttribute& GetCachedSubItem() const;
    /// The first child of that name, or a new one at the end.
    MAttribute& GetSubItem(const MString& itemName);
    /// Always a new child at the end.
    MAttribute& AddSubItem(const MString& itemName);
    void RemoveSubItems(const MString& itemName);
    MAttribute& RequireSubItem(const MString& itemName) const;
    MAttribute* FindSubItem(const MString& itemName, const MString& key, const MString& value) const;

    void Clear();
    /// Attributes, text and descendants of `item`; the name stays.
    void CopyFrom(const MAttribute& item);

    /// Binary data as upper-case hexadecimal digits in the text, through zlib first if asked for.
    void SetBinary(MStream& stream, bool compress);
    void SetBinary(const void* buffer, std::int32_t size, bool compress);
    /// The stream stands where it stood before. Throws "Invalid character to be converted to a number.", and
    /// MException for compressed data of more than 64 MB.
    void GetBinary(MStream& stream, bool compressed) const;
    /// Plain: at most size and what is there. Compressed: exactly size, or "Value doesn't have correct
    /// format." is thrown. Answers the bytes written to the buffer.
    std::int32_t GetBinary(void* buffer, std::int32_t size, bool compressed) const;

    /// Depth-first walk over the descendants of `item` in document order. NextItem answers null at the end;
    /// CurrentItem is the item it gave last. The tree must not change meanwhile.
    void BeginIteration(MAttribute& item);
    MAttribute* NextItem();
    MAttribute* CurrentItem();

private:
    MAttribute(MAttribute& parentItem, const MString& itemName);
    // Where the key stands or would have to stand; `found` tells which.
    int FindPair(const MString& key, bool& found) const;
    MAttributePair* PairOf(const MString& key) const;
    void CopyContent(const MAttribute& item);

    MAttribute* parent = nullptr;
    MAttribute* next = nullptr;
    MAttribute* previous = nullptr;
    std::int32_t depth = 0;
    MList<MAttribute, 2> subItems;
    MString name;
    MString text;
    MList<MAttributePair, 2> attributes;   // sorted by key
    MAttributePair* attributeCache = nullptr;   // set by HasAttribute
    MAttribute* subItemCache = nullptr;   // set by HasSubItem
    MAttribute* iterationRoot = nullptr;
    MAttribute* iterated = nullptr;   // the item last given out; the root before the first
    bool isIterating = false;
};
