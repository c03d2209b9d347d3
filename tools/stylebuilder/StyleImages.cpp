// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/stylebuilder/StyleImages.h"

#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MZLibStream.h"
#include "gui/painting/ImageFiles.h"
#include "state/tree/XML.h"

namespace
{
std::string BytesOf(const MMemoryStream& stream)
{
    const MDataBlock& block = stream.Block();
    return { reinterpret_cast<const char*>(block.Data()), static_cast<std::size_t>(block.Size()) };
}

void AppendWord(std::string& block, std::size_t value)
{
    for (unsigned shift = 0; shift < 32; shift += 8)
        block += static_cast<char>(value >> shift & 0xFF);
}

std::string Compressed(const std::string& bytes)
{
    MMemoryStream target;
    MZLibStream stream(&target, MZLibStream::Direction::Compress, 100);
    stream.Write(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    stream.Finish();
    return BytesOf(target);
}
}   // namespace

void StyleImages::Add(const std::string& id, const StyleScale& scale, const MBitmap& image)
{
    MMemoryStream stream;
    ImageFiles::SaveTGA(image, stream);
    const std::string bytes = BytesOf(stream);
    // Of small ones little is won, and each takes a while to begin.
    constexpr std::size_t Small = 4096;
    const bool compressed = bytes.size() > Small;
    entries.push_back(
        { id + "@" + std::to_string(scale.percent), compressed ? Compressed(bytes) : bytes, compressed });
}

std::string StyleImages::Block(const MAttribute& definition) const
{
    MAttribute solution("solution");
    MAttribute& list = solution.AddSubItem("resources");
    std::string data;
    for (const Entry& entry : entries)
    {
        MAttribute& element = list.AddSubItem("resource");
        element.SetAttribute("id", MString::FromUTF8(entry.id));
        element.SetAttribute("offset", MString::FromUnsigned(data.size()));
        element.SetAttribute("size", MString::FromUnsigned(entry.bytes.size()));
        if (entry.compressed)
            element.SetAttribute("compressed", "1");
        data += entry.bytes;
    }
    solution.AddSubItem("style").CopyFrom(definition);
    MMemoryStream stream;
    WriteXML(solution, stream, true, "utf-8");
    const std::string description = BytesOf(stream);

    std::string block;
    AppendWord(block, 0);
    AppendWord(block, description.size());
    AppendWord(block, data.size());
    return block + description + data;
}
