// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/module/HostPresetFile.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "foundation/streams/MMemoryStream.h"
#include "hosts/module/PluginIdentity.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"
#include "plugin/driver/PluginState.h"

namespace HostPresetFile
{
namespace
{
using Bytes = std::string;

enum class ByteOrder
{
    LittleEndian,
    BigEndian
};

void AppendNumber(Bytes& bytes, std::uint64_t value, int size, ByteOrder order)
{
    for (int index = 0; index < size; ++index)
    {
        const int place = order == ByteOrder::LittleEndian ? index : size - 1 - index;
        bytes.push_back(static_cast<char>(static_cast<unsigned char>(value >> (8 * place))));
    }
}

Bytes StateOf(MQuorvaneAudioEffectPlugin& plugin)
{
    MMemoryStream stream;
    WritePluginState(plugin, stream);
    stream.Seek(0, MStream::Begin);
    const std::uint8_t* begin = stream.GetCurrentPointer();
    return { begin, begin + stream.GetSize() };
}

std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char letter : text)
        switch (letter)
        {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += letter;
        }
    return escaped;
}

// What a host's browser of presets shows.
std::string Information(const std::string& name)
{
    const auto attribute = [](const char* id, const std::string& value)
    {
        return "\t<Attribute id=\"" + std::string(id) + "\" value=\"" + Escaped(value) +
               "\" type=\"string\" flags=\"writeProtected\"/>\n";
    };
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<MetaInfo>\n" + attribute("MediaType", "VstPreset") +
           attribute("PlugInName", PluginIdentity::Name) + attribute("PlugInVendor", PluginIdentity::Maker) +
           attribute("PlugInCategory", "Fx|EQ") + attribute("Name", name) + "</MetaInfo>\n";
}

//  "VST3" | version 1, 32 bits | class as 32 hexadecimal digits | place of the list, 64 bits
//  "Comp": the state of the component | "Info": XML
//  "List" | count, 32 bits | for each part: its four letters, place and size, 64 bits each
Bytes MakeVst3(const Bytes& state, const std::string& name)
{
    constexpr std::size_t headSize = 4 + 4 + 32 + 8;
    constexpr ByteOrder order = ByteOrder::LittleEndian;
    const std::string information = Information(name);
    Bytes file;
    file += "VST3";
    AppendNumber(file, 1, 4, order);
    for (const char letter : std::string_view(PluginIdentity::Vst3Class))
    {
        constexpr char digits[] = "0123456789ABCDEF";
        file += digits[static_cast<unsigned char>(letter) >> 4];
        file += digits[letter & 15];
    }
    AppendNumber(file, headSize + state.size() + information.size(), 8, order);
    file += state;
    file += information;
    file += "List";
    AppendNumber(file, 2, 4, order);
    file += "Comp";
    AppendNumber(file, headSize, 8, order);
    AppendNumber(file, state.size(), 8, order);
    file += "Info";
    AppendNumber(file, headSize + state.size(), 8, order);
    AppendNumber(file, information.size(), 8, order);
    return file;
}

//  "CcnK" | size of what follows | "FPCh" | format 1 | effect | its version | parameters | name, 28 bytes
//  size of the state | state
Bytes MakeVst2(const Bytes& state, const std::string& name, std::int32_t parameterCount)
{
    constexpr std::size_t nameSize = 28;
    constexpr ByteOrder order = ByteOrder::BigEndian;
    Bytes body;
    body += "FPCh";
    AppendNumber(body, 1, 4, order);
    body += PluginIdentity::Vst2Effect;
    AppendNumber(body, PluginIdentity::Vst2Version, 4, order);
    AppendNumber(body, static_cast<std::uint64_t>(parameterCount), 4, order);
    // Whole characters, and at least one zero behind them.
    std::size_t length = std::min(name.size(), nameSize - 1);
    while (length < name.size() && length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80)
        --length;
    body += std::string_view(name).substr(0, length);
    body.resize(body.size() + nameSize - length);
    AppendNumber(body, state.size(), 4, order);
    body += state;
    Bytes file;
    file += "CcnK";
    AppendNumber(file, body.size(), 4, order);
    file += body;
    return file;
}
}   // namespace

std::optional<Format> FormatOf(const std::string& path)
{
    const auto endsWith = [&path](std::string_view ending)
    {
        return path.size() > ending.size() &&
               std::equal(ending.rbegin(), ending.rend(), path.rbegin(),
                          [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
    };
    if (endsWith(".vstpreset"))
        return Format::Vst3;
    if (endsWith(".fxp"))
        return Format::Vst2;
    return {};
}

std::string Make(Format format, MQuorvaneAudioEffectPlugin& plugin, const std::string& name)
{
    const Bytes state = StateOf(plugin);
    return format == Format::Vst3 ? MakeVst3(state, name) : MakeVst2(state, name, plugin.GetParameterCount());
}
}   // namespace HostPresetFile
