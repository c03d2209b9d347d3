// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/module/MResourceTable.h"

#include <algorithm>

#include "foundation/text/MStringFormat.h"
#include "state/tree/XML.h"

namespace
{
constexpr std::int32_t HeaderSize = 12;
constexpr std::int32_t LargestPart = 64 << 20;   // far above any block: a broken length doesn't take memory

std::int32_t WordAt(const std::uint8_t* bytes)
{
    return static_cast<std::int32_t>(std::uint32_t{ bytes[0] } | std::uint32_t{ bytes[1] } << 8 |
                                     std::uint32_t{ bytes[2] } << 16 | std::uint32_t{ bytes[3] } << 24);
}

void CheckPart(std::int32_t size)
{
    if (size < 0 || size > LargestPart)
        throw MException("Invalid file contents. The resource block has an invalid size.",
                         MErrorCode::Content);
}

// In growing pieces, so that a length that promises too much takes no more than twice what is there.
MDataBlock ReadPart(MStream& stream, std::int32_t size)
{
    constexpr std::int32_t FirstPiece = 1 << 16;
    MDataBlock part;
    for (std::int32_t position = 0; position < size; position = part.Size())
    {
        const std::int32_t piece = std::min(std::max(FirstPiece, position), size - position);
        const std::int32_t wanted = position + piece;
        part.MakeUnique(wanted);
        ReadExact(stream, part.WritableData() + position, piece);
    }
    return part;
}

bool BeginsWithResource(const MString& name)
{
    return name.SubString(0, 8) == MString("resource");
}
}   // namespace

MStream& MResource::Content()
{
    if (compressed)
        return *inflated;
    return bytes;
}

MMemoryStream& MResource::PlainBytes()
{
    if (compressed)
        throw MException("Attempt to attach compressed resource using memory-stream.");
    return bytes;
}

void MResource::Rewind()
{
    bytes.Seek(0, MStream::Begin);
    if (compressed)
        inflated = std::make_unique<MZLibStream>(&bytes, MZLibStream::Direction::Inflate);
}

void MResourceTable::Reset()
{
    Clear();
    entries.Clear();
    data = {};
}

bool MResourceTable::ReadHeader(MStream& stream, Header& header)
{
    std::uint8_t bytes[HeaderSize];
    if (stream.Read(bytes, HeaderSize) != HeaderSize)
        return false;
    header = { WordAt(bytes + 4), WordAt(bytes + 8) };
    CheckPart(header.descriptionSize);
    CheckPart(header.dataSize);
    return true;
}

void MResourceTable::ReadDescription(MStream& stream, std::int32_t size)
{
    MMemoryStream description(ReadPart(stream, size));
    ReadXML(*this, description);
}

void MResourceTable::Read(MStream& stream)
{
    Reset();
    try
    {
        Header header;
        if (!ReadHeader(stream, header))
            return;
        ReadDescription(stream, header.descriptionSize);
        data = ReadPart(stream, header.dataSize);
        AddEntries();
    }
    catch (...)
    {
        Reset();
        throw;
    }
}

void MResourceTable::Read(const void* block, std::int32_t size)
{
    Reset();
    try
    {
        MMemoryStream stream = MMemoryStream::Borrow(block, size);
        Header header;
        if (!ReadHeader(stream, header))
            return;
        ReadDescription(stream, header.descriptionSize);
        const std::int32_t start = HeaderSize + header.descriptionSize;
        if (header.dataSize > size - start)
            throw MException("Could not read required data from stream.", MErrorCode::Content);
        data = MDataBlock::Borrow(static_cast<const std::uint8_t*>(block) + start, header.dataSize);
        AddEntries();
    }
    catch (...)
    {
        Reset();
        throw;
    }
}

void MResourceTable::AddEntries()
{
    if (!HasSubItem("resources"))
        return;
    MAttribute& list = GetCachedSubItem();
    for (int index = 0; index < list.SubItemCount(); ++index)
        if (BeginsWithResource(list.SubItemAt(index).Name()))
            AddEntry(list.SubItemAt(index));
}

void MResourceTable::AddEntry(MAttribute& element)
{
    const std::int64_t offset = element.RequireAttribute("offset").ToInt();
    const std::int64_t size = element.RequireAttribute("size").ToInt();
    const MString id = element.RequireAttribute("id");
    if (offset < 0 || size < 0 || offset > data.Size() || size > data.Size() - offset)
        throw MException(Format("Invalid file contents. The resource \"{0}\" lies outside the data.", id),
                         MErrorCode::Content);
    // The bytes are borrowed from `data`, which stays where it is as long as the table does.
    auto entry = std::make_unique<MResource>(
        id, MMemoryStream::Borrow(data.Data() + offset, static_cast<std::int32_t>(size)));
    entry->compressed = element.GetAttribute("compressed", "0").ToInt() == 1;
    entry->Rewind();
    entries.Add(std::move(entry));
}

MResource* MResourceTable::Find(const MString& id)
{
    for (MResource* entry : entries)
        if (entry->id == id)
        {
            entry->Rewind();
            return entry;
        }
    return nullptr;
}

MResource& MResourceTable::Get(const MString& id)
{
    MResource* entry = Find(id);
    if (entry == nullptr)
        throw MException(Format("Cannot find requested resource ({0}).", id));
    return *entry;
}
