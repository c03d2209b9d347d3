// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MZLibStream.h"
#include "state/tree/MAttribute.h"

/// Bytes of the module that go by an id: an image, a style, presets.
struct MResource : public MObject
{
    MResource(const MString& resourceId, MMemoryStream stream) : id(resourceId), bytes(std::move(stream)) {}

    /// The content, inflated where it is compressed. Forward reading only.
    MStream& Content();
    /// The bytes as they lie in the block, to be read in place. Throws "Attempt to attach compressed resource
    /// using memory-stream." where they are compressed.
    MMemoryStream& PlainBytes();
    /// Back to the first byte.
    void Rewind();

    MString id;
    bool compressed = false;
    MMemoryStream bytes;
    std::unique_ptr<MZLibStream> inflated;   // over `bytes`, of a compressed entry only
};

/// The resources of one block, with the block's description as a tree.
///
/// A block is little-endian: three words (0, bytes of the description, bytes of the data), the description
/// as UTF-8 XML, the data. The description's root is `solution`, below it `resources`, below it one element
/// for each resource. Those whose name begins with "resource" have `id`, `offset` and `size` in bytes from
/// the start of the data, and `compressed` = "1" for a zlib stream. An `xresource` has `id` and `filename`:
/// it lives in another file of this format.
///
/// Reading is one thread's business; afterwards the table stays as it is, but two threads must not use one
/// resource at the same time.
class MResourceTable : public MAttribute
{
public:
    /// Reads a block from a stream. A header that ends early leaves an empty table. Throws MException for a
    /// broken description, data that ends early, or an entry that points outside; the table is empty then.
    void Read(MStream& stream);
    /// The same from memory that outlives the table; the data is not copied.
    void Read(const void* block, std::int32_t size);

    bool IsEmpty() const { return entries.IsEmpty(); }
    int ResourceCount() const { return entries.Count(); }
    MResource& ResourceAt(int index) { return *entries[index]; }
    /// The first entry of that id, rewound; null when there is none. The id's case matters.
    MResource* Find(const MString& id);
    /// The same; throws "Cannot find requested resource ({0}).".
    MResource& Get(const MString& id);

    std::int32_t DataSize() const { return data.Size(); }

private:
    struct Header
    {
        std::int32_t descriptionSize = 0;
        std::int32_t dataSize = 0;
    };

    static bool ReadHeader(MStream& stream, Header& header);
    void ReadDescription(MStream& stream, std::int32_t size);
    void AddEntries();
    void AddEntry(MAttribute& element);
    void Reset();

    MList<MResource, 2> entries;
    MDataBlock data;   // borrowed when the block is embedded
};
