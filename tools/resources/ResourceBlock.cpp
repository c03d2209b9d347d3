// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/resources/ResourceBlock.h"

#include <cstdint>
#include <set>
#include <sstream>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MStdFileStream.h"
#include "foundation/streams/MZLibStream.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XML.h"

namespace
{
MString Text(std::string_view text)
{
    return MString::FromUTF8(text);
}

[[noreturn]] void Refuse(const std::string& name, int line, const MString& reason)
{
    throw MException(Format("{0}:{1}: {2}", Text(name), line, reason));
}

ResourceLine ParseLine(const std::vector<std::string>& words, const std::string& name, int number)
{
    if (words.size() < 3 || words.size() > 4 || (words.size() == 4 && words[3] != "compressed"))
        Refuse(name, number, "expected KIND ID FILE [compressed]");
    const bool isEmbedded = words[0].starts_with("resource");
    if (!isEmbedded && words[0] != "xresource")
        Refuse(name, number, Format("\"{0}\" is no kind of resource", Text(words[0])));
    if (!isEmbedded && words.size() == 4)
        Refuse(name, number, "an xresource isn't compressed here");
    return { words[0], words[1], words[2], words.size() == 4 };
}

std::string BytesOf(MMemoryStream& stream)
{
    const MDataBlock& block = stream.Block();
    return { reinterpret_cast<const char*>(block.Data()), static_cast<std::size_t>(block.Size()) };
}

std::string FileBytes(const std::string& path)
{
    MStdFileStream file(Text(path), MStdFileStream::ReadAccess);
    std::string bytes(static_cast<std::size_t>(file.GetSize()), '\0');
    ReadExact(file, bytes.data(), static_cast<std::int32_t>(bytes.size()));
    return bytes;
}

std::string PathOf(const std::string& file, const std::string& folder, const std::string& built)
{
    constexpr std::string_view prefix = "built/";
    if (!built.empty() && file.starts_with(prefix))
        return built + "/" + file.substr(prefix.size());
    return folder + "/" + file;
}

std::string Compressed(const std::string& bytes)
{
    MMemoryStream target;
    MZLibStream stream(&target, MZLibStream::Direction::Compress);
    stream.Write(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    stream.Finish();
    return BytesOf(target);
}

void AppendWord(std::string& block, std::size_t value)
{
    for (unsigned shift = 0; shift < 32; shift += 8)
        block += static_cast<char>(value >> shift & 0xFF);
}
}   // namespace

std::vector<ResourceLine> ParseResourceLines(std::string_view text, const std::string& name)
{
    std::vector<ResourceLine> lines;
    std::set<std::string> ids;
    std::istringstream stream{ std::string(text) };
    int number = 0;
    for (std::string line; std::getline(stream, line);)
    {
        ++number;
        std::istringstream words(line.substr(0, line.find('#')));
        std::vector<std::string> found;
        for (std::string word; words >> word;)
            found.push_back(word);
        if (found.empty())
            continue;
        lines.push_back(ParseLine(found, name, number));
        if (!ids.insert(lines.back().id).second)
            Refuse(name, number, Format("the id \"{0}\" comes twice", Text(lines.back().id)));
    }
    return lines;
}

std::string MakeResourceBlock(const std::vector<ResourceLine>& lines, const std::string& folder,
                              const std::string& built)
{
    MAttribute solution("solution");
    MAttribute& list = solution.AddSubItem("resources");
    std::string data;
    for (const ResourceLine& line : lines)
    {
        MAttribute& element = list.AddSubItem(Text(line.kind));
        element.SetAttribute("id", Text(line.id));
        if (line.kind == "xresource")
        {
            element.SetAttribute("filename", Text(line.file));
            continue;
        }
        std::string bytes = FileBytes(PathOf(line.file, folder, built));
        if (line.compressed)
        {
            bytes = Compressed(bytes);
            element.SetAttribute("compressed", "1");
        }
        element.SetAttribute("offset", MString::FromUnsigned(data.size()));
        element.SetAttribute("size", MString::FromUnsigned(bytes.size()));
        data += bytes;
    }
    MMemoryStream stream;
    WriteXML(solution, stream, true, "utf-8");
    const std::string description = BytesOf(stream);

    std::string block;
    AppendWord(block, 0);
    AppendWord(block, description.size());
    AppendWord(block, data.size());
    return block + description + data;
}

std::string MakeResourceSource(std::string_view block)
{
    constexpr std::size_t BytesALine = 24;
    constexpr const char* digits = "0123456789abcdef";
    std::string source = "// Made by make_resources out of resources/.\n"
                         "#include \"resources/EmbeddedResources.h\"\n\n"
                         "alignas(16) const unsigned char EmbeddedResourceBlock[] = {";
    for (std::size_t index = 0; index < block.size(); ++index)
    {
        const auto byte = static_cast<unsigned char>(block[index]);
        source += index % BytesALine == 0 ? "\n    " : " ";
        source += "0x";
        source += digits[byte >> 4];
        source += digits[byte & 15];
        source += ',';
    }
    return source + "\n};\nconst std::int32_t EmbeddedResourceBlockSize = " + std::to_string(block.size()) +
           ";\n";
}
