// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: state/presets
// What a user or another program puts in place of a preset file: it is refused with an MException, or every
// operation works on it and what is saved can be read again with the same presets.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "state/presets/MPresetTree.h"
#include "state/tree/XML.h"

namespace
{
std::vector<std::string> Names(const MAttribute& root)
{
    std::vector<MAttribute*> presets;
    CollectPresets(root, presets);
    std::vector<std::string> names;
    for (MAttribute* preset : presets)
        names.push_back(preset->GetAttribute("name").ToUTF8());
    return names;
}

void ReadAll(MAttribute& root)
{
    constexpr std::size_t largestCount = 16;   // each may inflate to its limit: enough is enough
    std::vector<MAttribute*> presets;
    CollectPresets(root, presets);
    for (std::size_t index = 0; index < presets.size() && index < largestCount; ++index)
    {
        MAttribute settings;
        try
        {
            ReadPreset(*presets[index], settings);
        }
        catch (const MException&)
        {
        }
    }
}

void CheckRoundTrip(const MAttribute& root)
{
    MMemoryStream stream;
    WriteXML(root, stream, false, "utf-8");
    stream.Seek(0, MStream::Begin);
    MAttribute again;
    ReadXML(again, stream);
    std::vector<std::string> names = Names(root);
    if (Names(again).size() != names.size())
        std::abort();
    MMemoryStream second;
    WriteXML(again, second, false, "utf-8");
    second.Seek(0, MStream::Begin);
    MAttribute third;
    ReadXML(third, second);
    if (Names(third) != Names(again))
        std::abort();
}
}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > (1u << 18))
        return 0;
    MAttribute root;
    try
    {
        MMemoryStream stream = MMemoryStream::Borrow(data, static_cast<std::int32_t>(size));
        ReadCompressedXML(root, stream);
    }
    catch (const MException&)
    {
        return 0;
    }
    ReadAll(root);
    MAttribute merged("presets");
    const int addedCount = MergePresets(merged, root, 7);
    if (static_cast<std::size_t>(addedCount) > Names(root).size() || MergePresets(merged, root, 8) != 0)
        std::abort();
    const std::size_t count = Names(root).size();
    CompressPresets(root);
    if (Names(root).size() != count)
        std::abort();
    ReadAll(root);
    CheckRoundTrip(root);
    return 0;
}
